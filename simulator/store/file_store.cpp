#include "simulator/store/file_store.hpp"

#include <algorithm>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "framework/error.hpp"
#include "simulator/store/file.hpp"

namespace ocpsm::sysdb {
namespace {

// What a store and its transactions share.
struct Core {
    Core(const std::filesystem::path &directory, Store::Mode mode) : file(directory, mode) {}

    // Readers wait for each other only while one of them looks at the file.
    State refreshed() {
        const std::lock_guard guard(state_lock);
        state = file.read(state);
        return state;
    }

    const File file;
    std::mutex state_lock;
    State state;
    std::mutex writer; // of this store; those of others are held off by the file's lock
};

// One link per transaction of a thread; plain pointers, so that nothing has to be destroyed at the thread's end.
struct Link {
    const ReadTransaction *transaction;
    const Core *written; // null: it only reads
    Link *older;
};

thread_local Link *youngest = nullptr;

class Registration {
public:
    Registration(const ReadTransaction *transaction, const Core *written) : link_{transaction, written, youngest} {
        youngest = &link_;
    }
    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;
    ~Registration() { end(); }

    void end() {
        for (Link **link = &youngest; *link != nullptr; link = &(*link)->older) {
            if (*link == &link_) {
                *link = link_.older;
                return;
            }
        }
    }

private:
    Link link_;
};

bool can_be_key(std::string_view key) {
    return !key.empty() && key.size() <= max_key_size;
}

// What both interfaces share: everything that reads.
template <class Interface>
class TablesTransaction : public Interface {
public:
    std::optional<std::string_view> get(Table table, std::string_view key) const override {
        const std::string *const found = tables().table(table).find(key);
        return found == nullptr ? std::nullopt : std::optional<std::string_view>(*found);
    }

    void for_each(Table table, std::string_view prefix, const ReadTransaction::Visitor &visit) const override {
        tables().table(table).for_each(prefix, [&](std::string_view key, std::string_view value) {
            return key.starts_with(prefix) && visit(key, value);
        });
    }

    std::optional<std::string_view> lower_bound(Table table, std::string_view from) const override {
        std::optional<std::string_view> found;
        tables().table(table).for_each(from, [&found](std::string_view key, std::string_view) {
            found = key;
            return false;
        });
        return found;
    }

protected:
    virtual const Tables &tables() const = 0;
};

class FileReadTransaction final : public TablesTransaction<ReadTransaction> {
public:
    explicit FileReadTransaction(Tables tables) : tables_(std::move(tables)), registration_(this, nullptr) {}

protected:
    const Tables &tables() const override { return tables_; }

private:
    Tables tables_;
    Registration registration_;
};

class FileWriteTransaction final : public TablesTransaction<WriteTransaction> {
public:
    explicit FileWriteTransaction(std::shared_ptr<Core> core)
        : core_(std::move(core)), writer_(core_->writer), lock_(core_->file.lock()), before_(core_->refreshed()),
          draft_(before_.tables), registration_(this, core_.get()) {}

    void put(Table table, std::string_view key, std::string_view value) override {
        if (!can_be_key(key)) {
            throw Error(Error::Source::refused, "invalid-value", "",
                        "a path is too long for the store: " + std::string(key));
        }
        if (tables().size + key.size() + value.size() > max_store_size) {
            core_->file.refuse_full("a line system has at most " + std::to_string(max_store_size >> 20) + " MB");
        }
        draft_.put(table, key, value);
        touched_.emplace(table, key);
    }

    bool erase(Table table, std::string_view key) override {
        static_cast<void>(tables());
        touched_.emplace(table, key);
        return draft_.erase(table, key);
    }

    std::size_t erase_all(Table table, std::string_view prefix) override {
        std::size_t count = 0;
        for (auto key = lower_bound(table, prefix); key && key->starts_with(prefix); key = lower_bound(table, prefix)) {
            erase(table, std::string(*key));
            ++count;
        }
        return count;
    }

    void commit() override {
        static_cast<void>(tables());
        const std::string changes = net_changes();
        ended_ = true;
        registration_.end();
        // The first commit of a new store makes its file, whatever is in it.
        if (!changes.empty() || before_.position.length == 0) {
            State after = core_->file.write(before_, std::move(draft_).take(), changes);
            const std::lock_guard guard(core_->state_lock);
            core_->state = std::move(after);
        }
        lock_ = Descriptor();
        writer_.unlock();
    }

protected:
    const Tables &tables() const override {
        if (ended_) {
            throw std::logic_error("a transaction is used that has been committed");
        }
        return draft_.tables();
    }

private:
    // What has been written over with the same is none.
    std::string net_changes() const {
        std::string changes;
        for (const auto &[table, key] : touched_) {
            const auto value_in = [&, which = table, &name = key](const Tables &state) {
                const std::string *const found = state.table(which).find(name);
                return found == nullptr ? std::nullopt : std::optional<std::string_view>(*found);
            };
            const auto value = value_in(tables());
            if (value != value_in(before_.tables)) {
                append_change(changes, table, key, value);
            }
        }
        return changes;
    }

    std::shared_ptr<Core> core_;
    std::unique_lock<std::mutex> writer_;
    Descriptor lock_;
    State before_;
    Draft draft_;
    std::set<std::pair<Table, std::string>> touched_;
    bool ended_ = false;
    Registration registration_;
};

// The stores of this process that are open.
class OpenStores {
public:
    static OpenStores &all() {
        static OpenStores stores;
        return stores;
    }

    void add(const std::shared_ptr<Core> &core) {
        const std::lock_guard guard(lock_);
        cores_.push_back(core);
    }

    void remove(const std::shared_ptr<Core> &core) {
        const std::lock_guard guard(lock_);
        std::erase(cores_, core);
    }

    std::shared_ptr<Core> only() {
        const std::lock_guard guard(lock_);
        return cores_.size() == 1 ? cores_.front() : nullptr;
    }

private:
    std::mutex lock_;
    std::vector<std::shared_ptr<Core>> cores_;
};

class FileStore final : public Store {
public:
    FileStore(const std::filesystem::path &directory, Mode mode) : core_(std::make_shared<Core>(directory, mode)) {
        static_cast<void>(core_->refreshed());
        OpenStores::all().add(core_);
    }
    ~FileStore() override { OpenStores::all().remove(core_); }

    std::unique_ptr<ReadTransaction> read() override {
        return std::make_unique<FileReadTransaction>(core_->refreshed().tables);
    }

    std::unique_ptr<WriteTransaction> write() override {
        // It would wait for itself.
        for (const Link *link = youngest; link != nullptr; link = link->older) {
            if (link->written != nullptr && link->written->file.same_directory(core_->file)) {
                throw std::logic_error("a thread begins a second write transaction");
            }
        }
        return std::make_unique<FileWriteTransaction>(core_);
    }

private:
    std::shared_ptr<Core> core_;
};

} // namespace

std::unique_ptr<Store> open_store(const std::filesystem::path &directory, Store::Mode mode) {
    return std::make_unique<FileStore>(directory, mode);
}

const ReadTransaction *youngest_transaction() {
    return youngest == nullptr ? nullptr : youngest->transaction;
}

std::unique_ptr<ReadTransaction> read_the_only_store() {
    const std::shared_ptr<Core> core = OpenStores::all().only();
    return core ? std::make_unique<FileReadTransaction>(core->refreshed().tables) : nullptr;
}

bool can_read() {
    return youngest != nullptr || OpenStores::all().only() != nullptr;
}

} // namespace ocpsm::sysdb

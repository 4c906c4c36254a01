#include "simulator/store/transaction.hpp"

#include <stdexcept>
#include <string>

#include "framework/error.hpp"

namespace ocpsm::sysdb {
namespace {

// One link per transaction of a thread; plain pointers, so that nothing has to be destroyed at the thread's end.
struct Link {
    const ReadTransaction *transaction;
    bool writes;
    Link *older;
};

thread_local Link *youngest = nullptr;

class Registration {
public:
    Registration(const ReadTransaction *transaction, bool writes, LiveCount &live)
        : live_(live), link_{transaction, writes, youngest} {
        youngest = &link_;
        ++live_;
    }
    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;

    ~Registration() { end(); }

    void end() {
        for (Link **link = &youngest; *link != nullptr; link = &(*link)->older) {
            if (*link == &link_) {
                *link = link_.older;
                --live_;
                return;
            }
        }
    }

private:
    LiveCount &live_;
    Link link_;
};

MDB_val as_value(std::string_view bytes) {
    return {bytes.size(), const_cast<char *>(bytes.data())};
}

std::string_view as_bytes(const MDB_val &value) {
    return {static_cast<const char *>(value.mv_data), value.mv_size};
}

bool can_be_key(std::string_view key) {
    return !key.empty() && key.size() <= max_key_size;
}

// What both interfaces share: everything that reads.
template <class Interface>
class LmdbTransaction : public Interface {
public:
    std::optional<std::string_view> get(Table table, std::string_view key) const override {
        if (!can_be_key(key)) {
            return std::nullopt;
        }
        MDB_val key_value = as_value(key);
        MDB_val value{};
        const int result = mdb_get(handle(), environment_.table(table), &key_value, &value);
        if (result == MDB_NOTFOUND) {
            return std::nullopt;
        }
        environment_.check(result);
        return as_bytes(value);
    }

    void for_each(Table table, std::string_view prefix, const ReadTransaction::Visitor &visit) const override {
        const auto cursor = open_cursor(table);
        MDB_val key{};
        MDB_val value{};
        bool more = seek(cursor.get(), prefix, key, value);
        while (more && as_bytes(key).starts_with(prefix) && visit(as_bytes(key), as_bytes(value))) {
            more = found(mdb_cursor_get(cursor.get(), &key, &value, MDB_NEXT));
        }
    }

    std::optional<std::string_view> lower_bound(Table table, std::string_view from) const override {
        const auto cursor = open_cursor(table);
        MDB_val key{};
        MDB_val value{};
        return seek(cursor.get(), from, key, value) ? std::optional(as_bytes(key)) : std::nullopt;
    }

protected:
    LmdbTransaction(Environment &environment, TransactionHandle transaction, bool writes, LiveCount &live)
        : environment_(environment), transaction_(std::move(transaction)), registration_(this, writes, live) {}

    MDB_txn *handle() const {
        if (!transaction_) {
            throw std::logic_error("a transaction is used that has been committed");
        }
        return transaction_.get();
    }

    Environment &environment() const { return environment_; }

    TransactionHandle take() {
        static_cast<void>(handle());
        registration_.end();
        return std::move(transaction_);
    }

private:
    CursorHandle open_cursor(Table table) const {
        MDB_cursor *cursor = nullptr;
        environment_.check(mdb_cursor_open(handle(), environment_.table(table), &cursor));
        return CursorHandle(cursor);
    }

    bool found(int result) const {
        if (result == MDB_NOTFOUND) {
            return false;
        }
        environment_.check(result);
        return true;
    }

    // The first record whose key is not below `from`.
    bool seek(MDB_cursor *cursor, std::string_view from, MDB_val &key, MDB_val &value) const {
        key = as_value(from);
        return found(mdb_cursor_get(cursor, &key, &value, from.empty() ? MDB_FIRST : MDB_SET_RANGE));
    }

    Environment &environment_;
    TransactionHandle transaction_;
    Registration registration_;
};

class LmdbReadTransaction final : public LmdbTransaction<ReadTransaction> {
public:
    LmdbReadTransaction(Environment &environment, LiveCount &live)
        : LmdbTransaction(environment, environment.begin_read(), false, live) {}
};

class LmdbWriteTransaction final : public LmdbTransaction<WriteTransaction> {
public:
    LmdbWriteTransaction(Environment &environment, LiveCount &live)
        : LmdbTransaction(environment, environment.begin_write(), true, live) {}

    void put(Table table, std::string_view key, std::string_view value) override {
        if (!can_be_key(key)) {
            throw Error(Error::Source::refused, "invalid-value", "",
                        "a path is too long for the store: " + std::string(key));
        }
        MDB_val key_value = as_value(key);
        MDB_val data = as_value(value);
        environment().check(mdb_put(handle(), environment().table(table), &key_value, &data, 0));
    }

    bool erase(Table table, std::string_view key) override {
        if (!can_be_key(key)) {
            return false;
        }
        MDB_val key_value = as_value(key);
        const int result = mdb_del(handle(), environment().table(table), &key_value, nullptr);
        if (result == MDB_NOTFOUND) {
            return false;
        }
        environment().check(result);
        return true;
    }

    std::size_t erase_all(Table table, std::string_view prefix) override {
        std::size_t count = 0;
        for (auto key = lower_bound(table, prefix); key && key->starts_with(prefix); key = lower_bound(table, prefix)) {
            erase(table, std::string(*key));
            ++count;
        }
        return count;
    }

    void commit() override { environment().commit(take()); }
};

bool this_thread_writes() {
    for (const Link *link = youngest; link != nullptr; link = link->older) {
        if (link->writes) {
            return true;
        }
    }
    return false;
}

} // namespace

const ReadTransaction *youngest_transaction() {
    return youngest == nullptr ? nullptr : youngest->transaction;
}

std::unique_ptr<ReadTransaction> make_read_transaction(Environment &environment, LiveCount &live) {
    return std::make_unique<LmdbReadTransaction>(environment, live);
}

std::unique_ptr<WriteTransaction> make_write_transaction(Environment &environment, LiveCount &live) {
    // It would wait for itself.
    if (this_thread_writes()) {
        throw std::logic_error("a thread begins a second write transaction");
    }
    return std::make_unique<LmdbWriteTransaction>(environment, live);
}

} // namespace ocpsm::sysdb

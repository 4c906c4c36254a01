#include <algorithm>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "framework/error.hpp"
#include "simulator/database/client_library.hpp"
#include "simulator/line_system.hpp"
#include "simulator/line_system/edit_lock.hpp"
#include "simulator/line_system/journal.hpp"
#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"
#include "simulator/line_system/temporary_state.hpp"
#include "simulator/line_system/view.hpp"

namespace ocpsm {

using line_system::Events;
using line_system::LineSystem;

static_assert(SimulatedLineSystem::step == line_system::tick_step);

struct SimulatedLineSystem::Parts {
    std::optional<line_system::TemporaryState> temporary;
    std::unique_ptr<sysdb::Store> kept;
    std::unique_ptr<line_system::EditLock> lock;

    sysdb::Store &store() const { return temporary ? temporary->store() : *kept; }

    template <class Change>
    LineTable change(Change how) const {
        return line_system::view(line_system::change(store(), how));
    }
};

namespace {

// What a line system that is there, or was about to be made, has left in its directory, with the locks of those who
// have worked on it.
bool is_own_file(std::string_view name) {
    return name.starts_with(sysdb::store_file) || name.ends_with(".lock");
}

bool holds_other_files(const std::filesystem::path &directory, std::error_code &failure) {
    std::filesystem::directory_iterator entry(directory, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        if (!is_own_file(entry->path().filename().string())) {
            return true;
        }
    }
    return false;
}

std::shared_ptr<const SimulatedLineSystem::Parts> keep(std::unique_ptr<sysdb::Store> store,
                                                       const std::filesystem::path &directory) {
    const auto parts = std::make_shared<SimulatedLineSystem::Parts>();
    parts->kept = std::move(store);
    parts->lock = std::make_unique<line_system::EditLock>(directory);
    return parts;
}

sysdb::Client load_client() {
    sysdb::Client client;
    if (!client.installed()) {
        throw Error(Error::Source::input, "", "",
                    "the system database's client library " + sysdb::client_library().string() +
                        " is not there, so no line system can be opened",
                    "install it or build it again");
    }
    return client;
}

line_system::Path path_of(Line line) {
    return line == Line::primary ? line_system::Path::primary : line_system::Path::secondary;
}

template <class Transaction>
class OwnedTransaction : public line_system::LineSystemDevice {
public:
    explicit OwnedTransaction(std::unique_ptr<Transaction> transaction)
        : LineSystemDevice(*transaction), transaction_(std::move(transaction)) {}

private:
    std::unique_ptr<Transaction> transaction_;
};

class Edit : public OwnedTransaction<sysdb::WriteTransaction> {
public:
    explicit Edit(std::shared_ptr<const SimulatedLineSystem::Parts> parts)
        : OwnedTransaction(parts->store().write()), parts_(std::move(parts)) {}

    void commit() override {
        parts_->lock->check();
        OwnedTransaction::commit();
    }

private:
    std::shared_ptr<const SimulatedLineSystem::Parts> parts_;
};

class SimulatedDevice : public Device {
public:
    explicit SimulatedDevice(std::shared_ptr<const SimulatedLineSystem::Parts> parts) : parts_(std::move(parts)) {}

    std::unique_ptr<DeviceTransaction> read() override {
        return std::make_unique<OwnedTransaction<sysdb::ReadTransaction>>(parts_->store().read());
    }
    std::unique_ptr<DeviceTransaction> write() override { return std::make_unique<Edit>(parts_); }

    // Within a transaction, so that no edit is under way.
    std::shared_ptr<void> lock() override {
        const auto transaction = parts_->store().write();
        return std::make_shared<Held>(parts_, parts_->lock->take());
    }
    std::optional<LockHolder> lock_holder() override { return parts_->lock->holder(); }

    std::vector<JournalEntry> journal(std::uint64_t after, std::size_t most) override {
        return line_system::read_journal(*parts_->store().read(), after, most);
    }
    std::uint64_t last_sequence() override { return line_system::last_sequence(*parts_->store().read()); }

private:
    // The lock is given back while what it is on is there.
    using Held = std::pair<std::shared_ptr<const SimulatedLineSystem::Parts>, std::shared_ptr<void>>;

    std::shared_ptr<const SimulatedLineSystem::Parts> parts_;
};

} // namespace

const std::vector<int> &SimulatedLineSystem::example_slots() {
    static const std::vector<int> slots = line_system::fitted_slots(line_system::example());
    return slots;
}

SimulatedLineSystem SimulatedLineSystem::make(const std::filesystem::path &directory, const std::vector<int> &slots) {
    const sysdb::Client client = load_client();
    const LineSystem made = line_system::example_in(slots);
    std::error_code failure;
    std::filesystem::create_directories(directory, failure);
    if (!failure && holds_other_files(directory, failure)) {
        throw Error(Error::Source::input, "", "", "the directory " + directory.string() + " holds other files",
                    "name one for the line system alone");
    }
    if (failure) {
        throw Error(Error::Source::input, "", "", "cannot make " + directory.string() + ": " + failure.message(),
                    "name another directory");
    }
    return SimulatedLineSystem(keep(line_system::create(client, directory, made), directory));
}

SimulatedLineSystem SimulatedLineSystem::open(const std::filesystem::path &directory) {
    return SimulatedLineSystem(keep(line_system::open(load_client(), directory), directory));
}

SimulatedLineSystem SimulatedLineSystem::temporary(const std::vector<int> &slots) {
    const auto parts = std::make_shared<Parts>();
    parts->temporary.emplace(load_client(), line_system::example_in(slots));
    parts->lock = std::make_unique<line_system::EditLock>(parts->temporary->directory());
    return SimulatedLineSystem(parts);
}

std::shared_ptr<Device> SimulatedLineSystem::device() const {
    return std::make_unique<SimulatedDevice>(parts_);
}

LineTable SimulatedLineSystem::view() const {
    return line_system::view(line_system::load(*parts_->store().read()));
}

LineTable SimulatedLineSystem::fit(int slot) const {
    return parts_->change(
        [=](const LineSystem &before, Events &events) { return line_system::fit(before, slot, &events); });
}

LineTable SimulatedLineSystem::pull(int slot) const {
    return parts_->change(
        [=](const LineSystem &before, Events &events) { return line_system::pull(before, slot, &events); });
}

LineTable SimulatedLineSystem::cut(int slot, Line line) const {
    return parts_->change([=](const LineSystem &before, Events &events) {
        return line_system::cut(before, slot, path_of(line), &events);
    });
}

LineTable SimulatedLineSystem::splice(int slot, Line line) const {
    return parts_->change([=](const LineSystem &before, Events &events) {
        return line_system::splice(before, slot, path_of(line), &events);
    });
}

LineTable SimulatedLineSystem::light(int slot, Line line, int hundredths_of_dbm) const {
    return parts_->change([=](const LineSystem &before, Events &events) {
        return line_system::light(before, slot, path_of(line), hundredths_of_dbm, &events);
    });
}

LineTable SimulatedLineSystem::tick(std::uint32_t milliseconds) const {
    return parts_->change(
        [=](const LineSystem &before, Events &events) { return line_system::tick(before, milliseconds, &events); });
}

} // namespace ocpsm

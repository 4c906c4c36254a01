#include "simulator/line_system/line_system_device.hpp"

#include <stdexcept>

#include "framework/text.hpp"
#include "simulator/line_system/journal.hpp"
#include "simulator/line_system/native_side.hpp"
#include "simulator/line_system/risks.hpp"
#include "simulator/line_system/storage.hpp"

namespace ocpsm::line_system {

native::NativeData LineSystemDevice::answer(const native::NetRequest &read) {
    return native::answer(native_data(system()), read);
}

std::vector<std::string> LineSystemDevice::apply(const native::NetRequest &edit) {
    if (transaction_ == nullptr) {
        throw std::logic_error("an edit needs a write transaction");
    }
    const Edited edited = carry_out(system(), edit);
    std::vector<std::string> dangers = risks(system(), edited.system);
    save(*transaction_, edited.system);
    system_ = load(*transaction_);
    require_kept(edited, *system_);
    return dangers;
}

const LineSystem &LineSystemDevice::system() {
    if (!system_) {
        system_ = load(snapshot_);
    }
    return *system_;
}

void LineSystemDevice::record(const std::string &user, const std::vector<Change> &changes) {
    if (transaction_ == nullptr) {
        throw std::logic_error("what is recorded needs a write transaction");
    }
    if (!changes.empty()) {
        append(*transaction_, {.time = now_(),
                               .clock = system().clock,
                               .kind = JournalKind::configured,
                               .user = user.size() > max_user_size ? one_line(user, max_user_size) : user,
                               .changes = changes});
    }
}

void LineSystemDevice::commit() {
    if (transaction_ == nullptr) {
        throw std::logic_error("only a write transaction is committed");
    }
    transaction_->commit();
}

LineSystem change(sysdb::Store &store, const LineSystemChange &how, TimeOfDay now) {
    const auto transaction = store.write();
    Events events;
    LineSystem after = how(load(*transaction), events);
    save(*transaction, after);
    for (JournalEntry &event : events) {
        event.time = now();
        append(*transaction, event);
    }
    transaction->commit();
    return after;
}

} // namespace ocpsm::line_system

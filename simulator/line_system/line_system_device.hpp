// A line system in a store, as the device behind the mapping framework and as what device commands change.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_LINE_SYSTEM_DEVICE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_LINE_SYSTEM_DEVICE_HPP

#include <cstdint>
#include <functional>
#include <optional>

#include "framework/device.hpp"
#include "simulator/line_system/line_system.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::line_system {

// Milliseconds since 1970 (UTC). The journal is the only thing that depends on it.
using TimeOfDay = std::int64_t (*)();

// Answers from a transaction of the caller's, and edits in it. It must not outlive the transaction, in which nobody
// else changes anything.
class LineSystemDevice : public DeviceTransaction {
public:
    // To answer only: an edit is a std::logic_error.
    explicit LineSystemDevice(const sysdb::ReadTransaction &snapshot) : snapshot_(snapshot) {}

    explicit LineSystemDevice(sysdb::WriteTransaction &transaction, TimeOfDay now = time_of_day)
        : snapshot_(transaction), transaction_(&transaction), now_(now) {}

    native::NativeData answer(const native::NetRequest &read) override;

    // Throws Error with the native path of the node that is refused, operation-failed for one whose value is not there
    // afterwards. After a refusal of that kind the transaction must not be committed; any other leaves it as it was.
    std::vector<std::string> apply(const native::NetRequest &edit) override;

    void record(const std::string &user, const std::vector<Change> &changes) override;

    void commit() override;

private:
    const LineSystem &system();

    const sysdb::ReadTransaction &snapshot_;
    sysdb::WriteTransaction *transaction_ = nullptr;
    TimeOfDay now_ = time_of_day;
    std::optional<LineSystem> system_; // as the transaction sees it; none: not read yet
};

// Changes the line system of an open store in one write transaction, enters in its journal what `how` says has
// happened, and returns it as it is then. When the change or the store fails, everything stays as it was and the
// exception goes on.
using LineSystemChange = std::function<LineSystem(const LineSystem &before, Events &events)>;
LineSystem change(sysdb::Store &store, const LineSystemChange &how, TimeOfDay now = time_of_day);

} // namespace ocpsm::line_system

#endif

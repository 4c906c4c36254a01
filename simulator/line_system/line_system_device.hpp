// A line system in a store, as the device behind the mapping framework and as what device commands change.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_LINE_SYSTEM_DEVICE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_LINE_SYSTEM_DEVICE_HPP

#include <functional>
#include <optional>

#include "framework/device.hpp"
#include "simulator/line_system/line_system.hpp"
#include "simulator/store/store.hpp"

namespace ocpsm::line_system {

// Answers from a transaction of the caller's, and edits in it. It must not outlive the transaction, in which nobody
// else changes anything.
class LineSystemDevice : public DeviceTransaction {
public:
    // To answer only: an edit is a std::logic_error.
    explicit LineSystemDevice(const sysdb::ReadTransaction &snapshot) : snapshot_(snapshot) {}

    explicit LineSystemDevice(sysdb::WriteTransaction &transaction)
        : snapshot_(transaction), transaction_(&transaction) {}

    native::NativeData answer(const native::NetRequest &read) override;

    // Throws Error with the native path of the node that is refused, operation-failed for one whose value is not there
    // afterwards. After a refusal of that kind the transaction must not be committed; any other leaves it as it was.
    std::vector<std::string> apply(const native::NetRequest &edit) override;

    void commit() override;

private:
    const LineSystem &system();

    const sysdb::ReadTransaction &snapshot_;
    sysdb::WriteTransaction *transaction_ = nullptr;
    std::optional<LineSystem> system_; // as the transaction sees it; none: not read yet
};

// Changes the line system of an open store in one write transaction, and returns it as it is then. When the change or
// the store fails, everything stays as it was and the exception goes on.
LineSystem change(sysdb::Store &store, const std::function<LineSystem(const LineSystem &)> &how);

} // namespace ocpsm::line_system

#endif

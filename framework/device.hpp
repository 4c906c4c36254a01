// A device, as the mapping framework sees it: native requests in, native answers out. It is all that the framework
// knows of what is below it.
#ifndef OCPSM_FRAMEWORK_DEVICE_HPP
#define OCPSM_FRAMEWORK_DEVICE_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "framework/journal.hpp"
#include "framework/lock.hpp"
#include "framework/native/native_data.hpp"
#include "framework/native/net_request.hpp"

namespace ocpsm {

// One state of a device, for one request. It is used and ends on the thread that began it; on that thread, what a
// plug-in reads straight from the system database is of the same state.
class DeviceTransaction {
public:
    DeviceTransaction() = default;
    DeviceTransaction(const DeviceTransaction &) = delete;
    DeviceTransaction &operator=(const DeviceTransaction &) = delete;
    virtual ~DeviceTransaction() = default;

    virtual native::NativeData answer(const native::NetRequest &read) = 0;

    // Carries out an edit that NetRequest::check has passed, whole or not at all; later answers show it. Returns what
    // its user should know before it is committed: a text for each danger, a few at most. Throws Error with the native
    // path of the node that is refused. A transaction that reads only takes none (std::logic_error).
    virtual std::vector<std::string> apply(const native::NetRequest &edit) = 0;

    // Says who asked for what was applied, and what has become of it, for the journal: before it is committed, and
    // once. What has changed nothing is not entered.
    virtual void record(const std::string &user, const std::vector<Change> &changes) = 0;

    // Makes what was applied last and ends the transaction; without it nothing has happened.
    virtual void commit() = 0;
};

// Its functions may be called on any thread.
class Device {
public:
    Device() = default;
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;
    virtual ~Device() = default;

    // Sees one state, whatever others change meanwhile.
    virtual std::unique_ptr<DeviceTransaction> read() = 0;

    // One at a time: others wait for its end, in this and any other process.
    virtual std::unique_ptr<DeviceTransaction> write() = 0;

    // See Service::lock. While another process holds it, a commit is refused (in-use, with the holder).
    virtual std::shared_ptr<void> lock() = 0;
    virtual std::optional<LockHolder> lock_holder() = 0;

    // See Service::journal and Service::last_sequence.
    virtual std::vector<JournalEntry> journal(std::uint64_t after, std::size_t most) = 0;
    virtual std::uint64_t last_sequence() = 0;
};

} // namespace ocpsm

#endif

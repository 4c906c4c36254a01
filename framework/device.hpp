// A device, as the mapping framework sees it: native requests in, native answers out.
#ifndef OCPSM_FRAMEWORK_DEVICE_HPP
#define OCPSM_FRAMEWORK_DEVICE_HPP

#include <string>
#include <vector>

#include "framework/native/native_data.hpp"
#include "framework/native/net_request.hpp"

namespace ocpsm::native {

class Device {
public:
    Device() = default;
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;
    virtual ~Device() = default;

    virtual NativeData answer(const NetRequest &read) = 0;

    // Carries out an edit that NetRequest::check has passed, whole or not at all. Throws NativeRefusal.
    virtual void apply(const NetRequest &edit) = 0;
};

// Why a device refuses an edit: a NETCONF error-tag, the native instance path of the node it refuses, one line.
struct NativeRefusal {
    std::string tag;
    std::string path;
    std::string message;
};

} // namespace ocpsm::native

#endif

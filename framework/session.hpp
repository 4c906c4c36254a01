// OpenConfig requests to a device, through the plug-in: what is asked is translated, what is answered is mapped back.
#ifndef OCPSM_FRAMEWORK_SESSION_HPP
#define OCPSM_FRAMEWORK_SESSION_HPP

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/answer/node.hpp"
#include "framework/device.hpp"
#include "framework/host/log_service.hpp"
#include "framework/host/plugin.hpp"
#include "framework/native/net_request.hpp"
#include "framework/refusal.hpp"
#include "framework/request/kind.hpp"

namespace ocpsm::framework {

struct SessionOptions {
    bool check_values = true; // check the values of an edit against the model before the plug-in sees them
    bool log = false;         // keep the debug log
    bool trace = false;       // keep the trace buffer
};

// What every request comes back with.
struct Outcome {
    std::vector<std::string> warnings;
    std::vector<LogLine> log;
    std::vector<TraceLine> trace;
    std::optional<Refusal> error; // none: the request was carried out
};

struct Answer : Outcome {
    std::vector<AnswerNode> tree; // top nodes, values canonical; empty when there is nothing to answer, or an error

    // The answer as XML or JSON (RFC 7951), in lines that are indented; an empty one is no text in XML and "{}" in
    // JSON.
    std::string to_xml() const;
    std::string to_json() const;
};

// A leaf that an edit has changed; a leaf that was or is not there has no value.
struct Change {
    std::string path; // OpenConfig instance path
    std::optional<std::string> before;
    std::optional<std::string> after;

    bool operator==(const Change &) const = default;
};

struct EditResult : Outcome {
    native::NetRequest native;   // what the device was asked to do; see NetRequest::operations
    std::vector<Change> changes; // of the configuration of the modules that were touched, in document order
};

/*
 * All of these throw ocpsm::Error for a request that never reaches the plug-in: `input` for one that cannot be read,
 * `refused` (with its OpenConfig path) for one that the model does not allow. What is refused later is in `error`.
 */

// Answers a read: `text` is a subtree filter in XML or JSON, as translate takes it. `kind` is get or get_config.
Answer read(const Plugin &plugin, std::string_view text, Kind kind, ocpsm::DeviceTransaction &device,
            const SessionOptions &options = {});

// The same for instance paths: /aps/aps-modules/aps-module[name=0/1-PSM-OM]/config, the value of a key with or without
// quotes. Without a path everything is read.
Answer read_paths(const Plugin &plugin, std::span<const std::string> paths, Kind kind, ocpsm::DeviceTransaction &device,
                  const SessionOptions &options = {});

/*
 * Carries out an edit on the device, which is the caller's transaction: without an `error` the caller may keep what has
 * been done to it, or show it and drop it; with one it has to drop it.
 */
EditResult edit(const Plugin &plugin, std::string_view text, ocpsm::DeviceTransaction &device,
                const SessionOptions &options = {});

// Merges one configuration leaf.
EditResult set_leaf(const Plugin &plugin, const std::string &path, const std::string &value, ocpsm::DeviceTransaction &device,
                    const SessionOptions &options = {});

// Deletes a leaf, a container or a list entry with all that is below it.
EditResult delete_node(const Plugin &plugin, const std::string &path, ocpsm::DeviceTransaction &device,
                       const SessionOptions &options = {});

} // namespace ocpsm::framework

#endif

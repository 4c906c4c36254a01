// Paths of gNMI, and the instance paths of the service that they stand for.
#ifndef OCPSM_SERVERS_GNMI_PATH_HPP
#define OCPSM_SERVERS_GNMI_PATH_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/model.hpp"
#include "gnmi.pb.h"

namespace ocpsm::gnmi {

namespace messages = ::gnmi;

inline constexpr std::size_t max_steps = 63;         // of a path with its prefix
inline constexpr std::size_t max_name_bytes = 1'024; // of a step's name, a key's name, a key's value

struct PathKey {
    std::string name;
    std::string value; // "*": any

    bool operator==(const PathKey &) const = default;
};

// A step by its name without prefix. The names "*" and "..." stand for any one step and for any number of steps.
struct PathStep {
    std::string name;
    std::vector<PathKey> keys = {}; // in the order of their names

    bool operator==(const PathStep &) const = default;
};

using Steps = std::vector<PathStep>; // none: the root

// ---- reading ----

// The prefix and the path behind it. Throws Refusal: INVALID_ARGUMENT for what is no path (the form without elems among
// it), an origin that is neither `openconfig` nor the model's name, and what exceeds the limits.
Steps read_path(const messages::Path &prefix, const messages::Path &path);

// The steps of an instance path as the service writes it.
Steps steps_of(std::string_view instance_path);

// ---- meaning ----

// Throws Refusal, NOT_FOUND, for a path that no node of the model can have.
void require_in_model(const Steps &path);

// The node of the model that a path without wildcards in its names leads to; null where there is none.
const ModelNode *node_of(const Steps &path);

// Whether a path is the one of a single node: without wildcards, every list on the way with all its keys.
bool names_one_node(const Steps &path);

// How many steps of an instance path the pattern matches at least, with or without all that is below; none: it matches
// neither the node nor a node around it.
std::optional<std::size_t> matched_steps(const Steps &pattern, const Steps &path);

// ---- writing ----

// The instance path as errors name it: /aps/aps-modules/aps-module[name='0/1-PSM-OM']; "/" for none.
std::string path_text(const Steps &path);

// The steps behind the first `from`.
void write_path(const Steps &path, std::size_t from, messages::Path &message);

} // namespace ocpsm::gnmi

#endif

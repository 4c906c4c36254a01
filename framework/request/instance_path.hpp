// Instance paths of OpenConfig nodes, as errors name them: /aps/aps-modules/aps-module[name='0/2-PSM-OM']/config.
#ifndef OCPSM_FRAMEWORK_REQUEST_INSTANCE_PATH_HPP
#define OCPSM_FRAMEWORK_REQUEST_INSTANCE_PATH_HPP

#include <string>
#include <string_view>
#include <vector>

#include "framework/models/models.hpp"
#include "framework/request_tree.hpp"
#include "yfw_map.h"

namespace ocpsm::framework {

// ---- paths that are made ----

// The key of an entry of a request: its first child of that name, in the entry's own namespace, if that has a value
// that is not empty; else null.
const RequestNode *find_key(const RequestNode &entry, std::string_view key);

// Whether nothing but keys of the list `schema` stands below its entry.
bool holds_only_keys(const RequestNode &entry, const lysc_node *schema);

// "/" and the node's tag, and, of an entry of a list, a predicate for each of its keys that has a value. `schema` is
// null for a node that the model does not know.
std::string path_step(const RequestNode &node, const lysc_node *schema);

// The same for a node of the platform's tree; `schema_path` is its path in `schema`. Null tags are empty.
std::string instance_step(const models::Schema &schema, const std::string &schema_path, const kidl_yfw_datatree &node);

// ---- paths that are read ----

inline constexpr std::string_view path_example = "for example /aps/aps-modules/aps-module[name=0/1-PSM-OM]/config";

struct PathKey {
    std::string name;
    std::string value;
    bool any = false; // [name=*]: every entry
};

// Names as they were written, with the name or prefix of a module or without.
struct PathStep {
    std::string name;
    std::vector<PathKey> keys;
};

// Reads an instance path: the value of a key is an XPath literal, a concat() of such, or whatever stands in front of
// the closing bracket, without the blanks around it. A slash at the end is left out. Throws ocpsm::Error (input,
// invalid-value) with the path, on one line, for one that is no path.
std::vector<PathStep> parse_instance_path(std::string_view path);

// The node of the OpenConfig model that an instance path names; null when there is none, or the path cannot be read.
const lysc_node *schema_of(std::string_view instance_path);

// A schema path without the prefixes of its steps: "/a:b/c" gives "/b/c".
std::string without_prefixes(std::string_view path);

} // namespace ocpsm::framework

#endif

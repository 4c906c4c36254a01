#include "framework/native/net_request.hpp"

#include <libyang/libyang.h>

#include "framework/native/native_path.hpp"
#include "framework/native/refuse.hpp"
#include "framework/native/scale.hpp"
#include "framework/text.hpp"

namespace ocpsm::native {
namespace {

void require_keys(const std::string &path, const NativeNode &node) {
    for (const NativeNode &key : keys(node)) {
        if (!key.value) {
            refuse("missing-element", path,
                   std::string("an entry of list ") + node.schema->name + " needs its key " + key.schema->name,
                   "name the entry by all of its keys");
        }
    }
}

void require_configuration(const std::string &path, const NativeNode &node) {
    if ((node.schema->flags & LYS_CONFIG_R) != 0) {
        refuse("operation-not-supported", path, "operational state cannot be edited");
    }
}

void require_valid(const std::string &path, const lysc_node &leaf, const std::string &text) {
    if (lyd_value_validate(nullptr, &leaf, text.data(), text.size(), nullptr, nullptr, nullptr) != LY_SUCCESS) {
        const std::string range = allowed(leaf);
        refuse("invalid-value", path, "'" + one_line(text) + "' is no value of this leaf",
               range.empty() ? range : "allowed: " + range);
    }
}

} // namespace

std::vector<NativeOperation> NetRequest::operations() const {
    std::vector<NativeOperation> list;
    for_each_node(*this, [&](const std::string &path, const NativeNode &node) {
        const bool selected = kind == RequestKind::read && others(node).empty();
        const bool changes = node.operation != Operation::merge || node.made || node.value;
        if (selected || changes) {
            list.push_back({path, node.schema, node.operation, node.value});
        }
    });
    return list;
}

void NetRequest::check() const {
    if (kind == RequestKind::read) {
        return;
    }
    for_each_node(*this, [](const std::string &path, const NativeNode &node) {
        require_configuration(path, node);
        require_keys(path, node);
    });
    for_each_text(*this, require_valid);
}

} // namespace ocpsm::native

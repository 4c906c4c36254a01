#include "framework/native/native_path.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <cstdint>

#include "framework/text.hpp"

namespace ocpsm::native {
namespace {

using NodeVisitor = std::function<void(const std::string &path, const NativeNode &node)>;

void visit_below(const std::string &parent, std::span<const NativeNode> nodes, const NodeVisitor &visit) {
    for (const NativeNode &node : nodes) {
        const std::string path = parent + "/" + path_step(node);
        visit(path, node);
        visit_below(path, others(node), visit);
    }
}

} // namespace

std::string path_step(const NativeNode &node) {
    std::string step = node.schema->name;
    for (const NativeNode &key : keys(node)) {
        if (key.value) {
            step += key_predicate(key.schema->name, *key.value);
        }
    }
    return step;
}

void for_each_node(const NetRequest &request, const NodeVisitor &visit) {
    visit_below("", request.roots, visit);
}

void for_each_text(
    const NetRequest &request,
    const std::function<void(const std::string &path, const lysc_node &leaf, const std::string &text)> &visit) {
    for_each_node(request, [&](const std::string &path, const NativeNode &node) {
        for (const NativeNode &key : keys(node)) {
            if (key.value) {
                visit(path + "/" + key.schema->name, *key.schema, *key.value);
            }
        }
        if (node.value) {
            visit(path, *node.schema, *node.value);
        }
    });
}

} // namespace ocpsm::native

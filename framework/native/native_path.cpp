#include "framework/native/native_path.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <cstdint>

namespace ocpsm::native {
namespace {

// An XPath literal. One that holds both quotes cannot be written as a single literal.
std::string literal(const std::string &text) {
    if (text.find('\'') == std::string::npos) {
        return "'" + text + "'";
    }
    if (text.find('"') == std::string::npos) {
        return "\"" + text + "\"";
    }
    std::string joined = "concat(";
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t quote = std::min(text.find('\'', start), text.size());
        joined.append(start == 0 ? "'" : ",\"'\",'").append(text, start, quote - start).append("'");
        start = quote + 1;
    }
    return joined.append(")");
}

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
            step.append("[").append(key.schema->name).append("=").append(literal(*key.value)).append("]");
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

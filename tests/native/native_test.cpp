#include "native/native_test.hpp"

#include <gtest/gtest.h>
#include <libyang/libyang.h>

#include <utility>

#include "framework/error.hpp"
#include "framework/text.hpp"

namespace native_test {
namespace {

using ocpsm::native::NativeNode;

void show(std::span<const NativeNode> nodes, const std::string &indent, std::string &out);

std::string operation_of(const NativeNode &node) {
    return node.operation == ocpsm::Operation::merge ? "" : "<" + std::string(operation_name(node.operation)) + ">";
}

void show_inner(const NativeNode &node, const std::string &indent, std::string &out) {
    out += node.schema->name;
    for (const NativeNode &key : keys(node)) {
        out.append(&key == &node.children.front() ? "[" : ",");
        out.append(key.selected ? "?" : key.value.value_or("-"));
    }
    out.append(keys(node).empty() ? "" : "]").append(node.made ? "+" : "").append(operation_of(node));
    const char *before = ": ";
    std::vector<NativeNode> inner;
    for (const NativeNode &child : others(node)) {
        if (child.schema->nodetype != LYS_LEAF) {
            inner.push_back(child);
            continue;
        }
        out.append(std::exchange(before, ", ")).append(child.schema->name);
        out.append(child.value ? "='" + *child.value + "'" : "").append(operation_of(child));
    }
    if (*before == ':' && inner.size() == 1) {
        show_inner(inner.front(), indent, out += "/");
    } else {
        show(inner, indent + "  ", out += "\n");
    }
}

void show(std::span<const NativeNode> nodes, const std::string &indent, std::string &out) {
    for (const NativeNode &node : nodes) {
        show_inner(node, indent, out += indent);
    }
}

} // namespace

void Request::put(const std::string &path, const char *namespace_uri, Value value, std::uint32_t operation, bool first,
                  ocpsm::native::Origin origin) {
    EXPECT_EQ(add(path, namespace_uri, value, operation, first, origin), KERR_SUCCESS) << path;
}

std::string error_of(const std::function<void()> &call) {
    try {
        call();
    } catch (const ocpsm::Error &error) {
        const char *source = error.source == ocpsm::Error::Source::refused ? "refused" : "input";
        return std::string(source) + " " + error.tag + (error.path.empty() ? "" : " of " + error.path) + " at " +
               ocpsm::one_line(error.native_path, 1'000'000) + ": " + error.what() +
               (error.advice.empty() ? "" : " | " + error.advice);
    }
    return "none";
}

std::string text_or_error(const std::function<std::string()> &make) {
    std::string text;
    const std::string error = error_of([&] { text = make(); });
    return error == "none" ? text : error + "\n";
}

std::string net_text(std::span<const NativeNode> roots) {
    std::string out;
    show(roots, "", out);
    return out;
}

std::string steps(const ocpsm::native::NativeRequest &request) {
    std::string out;
    for (const ocpsm::native::NativeOperation &step : request.net().operations()) {
        out.append(ocpsm::operation_name(step.operation)).append(" ").append(step.path);
        out.append(step.value ? " = " + *step.value : "").append("\n");
    }
    return out;
}

} // namespace native_test

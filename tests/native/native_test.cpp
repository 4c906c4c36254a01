#include "native/native_test.hpp"

#include <gtest/gtest.h>
#include <libyang/libyang.h>

#include <algorithm>
#include <sstream>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
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

// Reads what net_text writes of data.
class NetReader {
public:
    ocpsm::native::NativeData read(const std::string &text) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (!line.empty()) {
                add(line);
            }
        }
        return std::move(data_);
    }

private:
    void add(const std::string &line) {
        const std::size_t column = line.find_first_not_of(' ');
        while (!open_.empty() && open_.back().first >= column) {
            open_.pop_back();
        }
        const std::size_t colon = std::min(line.find(": "), line.size());
        for (std::size_t at = column; at < colon;) {
            const std::size_t keys = std::min(line.find_first_of("[/", at), colon);
            NativeNode &node = make(line.substr(at, keys - at));
            open_.emplace_back(column, &node);
            at = line[keys] == '[' ? add_keys(node, line, keys + 1) : keys;
            at += at < colon ? 1 : 0;
        }
        std::istringstream leaves(line.substr(std::min(colon + 1, line.size())));
        for (std::string leaf; std::getline(leaves, leaf, ',');) {
            const std::size_t equals = leaf.find("='");
            make(leaf.substr(1, equals - 1)).value = leaf.substr(equals + 2, leaf.size() - equals - 3);
        }
    }

    // Returns the position behind the keys.
    static std::size_t add_keys(NativeNode &node, const std::string &line, std::size_t at) {
        for (const lysc_node *key : ocpsm::models::key_leaves(*node.schema)) {
            const std::size_t end = line.find_first_of(",]", at);
            node.children.push_back({key, line.substr(at, end - at)});
            at = end + 1;
        }
        return at;
    }

    NativeNode &make(const std::string &name) {
        NativeNode *parent = open_.empty() ? nullptr : open_.back().second;
        const lysc_node *schema =
            ocpsm::models::Schema::native().child(parent == nullptr ? nullptr : parent->schema, name);
        if (schema == nullptr) {
            throw std::invalid_argument("no model has this: " + name);
        }
        return (parent == nullptr ? data_.roots : parent->children).emplace_back(NativeNode{schema});
    }

    ocpsm::native::NativeData data_;
    std::vector<std::pair<std::size_t, NativeNode *>> open_; // nodes that are open, each with the column of its line
};

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

ocpsm::native::NativeData read_net(const std::string &text) {
    return NetReader().read(text);
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

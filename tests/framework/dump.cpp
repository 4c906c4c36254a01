#include "dump.hpp"

#include <algorithm>
#include <optional>
#include <span>
#include <sstream>

namespace {

using ocpsm::Operation;
using ocpsm::RequestNode;

constexpr std::string_view model = "http://openconfig.net/yang/optical-transport-line-protection";

bool is_plain(const RequestNode &node) {
    return node.namespace_uri == model && !node.value && node.operation == Operation::merge;
}

// The value of a key that stands in front of everything else, and can stand in brackets.
std::optional<std::string> key_of(const RequestNode &node) {
    if (node.tag != "aps-module" || node.children.empty()) {
        return std::nullopt;
    }
    const RequestNode &key = node.children.front();
    const bool simple = key.tag == "name" && key.namespace_uri == model && key.operation == Operation::merge &&
                        key.children.empty() && key.value && key.value->find_first_of("[]=") == std::string::npos;
    return simple ? key.value : std::nullopt;
}

void dump_below(std::span<const RequestNode> nodes, std::size_t depth, std::string &text) {
    for (const RequestNode &node : nodes) {
        text.append(depth * 2, ' ');
        const RequestNode *last = &node;
        std::span<const RequestNode> children;
        for (bool goes_on = true; goes_on; last = goes_on ? children.data() : last) {
            text.append(last->tag);
            children = last->children;
            if (const auto key = key_of(*last)) {
                text.append("[").append(*key).append("]");
                children = children.subspan(1);
            }
            goes_on = is_plain(*last) && children.size() == 1;
            text.append(goes_on ? "/" : "");
        }
        if (last->namespace_uri != model) {
            text.append(" {").append(last->namespace_uri).append("}");
        }
        if (last->value) {
            text.append(" = ").append(*last->value);
        }
        if (last->operation != Operation::merge) {
            text.append(" ").append(operation_name(last->operation));
        }
        text.append("\n");
        dump_below(children, depth + 1, text);
    }
}

// Takes off a text what stands behind the last occurrence of `begin`, and that.
std::optional<std::string> take_behind(std::string &text, const std::string &begin) {
    const std::size_t at = text.rfind(begin);
    if (at == std::string::npos) {
        return std::nullopt;
    }
    std::string taken = text.substr(at + begin.size());
    text.erase(at);
    return taken;
}

RequestNode step_of(std::string_view step) {
    const std::size_t bracket = step.ends_with(']') ? step.find('[') : std::string_view::npos;
    RequestNode node{std::string(step.substr(0, bracket)), model};
    if (bracket != std::string_view::npos) {
        node.children.push_back({"name", model, std::string(step.substr(bracket + 1, step.size() - bracket - 2))});
    }
    return node;
}

// Adds the nodes of a line. Returns where those of the lines below it belong.
std::vector<RequestNode> *add_line(std::vector<RequestNode> *siblings, std::string line) {
    const auto operation = ocpsm::operation_named(line.substr(line.rfind(' ') + 1));
    if (operation) {
        take_behind(line, " ");
    }
    const auto value = take_behind(line, " = ");
    const auto space = take_behind(line, " {");
    std::string_view rest = line;
    for (bool last = false; !last;) {
        const std::size_t bracket = std::min(rest.find('['), rest.size());
        const std::size_t slash =
            rest.find('/') < bracket ? rest.find('/') : rest.find('/', std::min(rest.find(']'), rest.size()));
        RequestNode &node = siblings->emplace_back(step_of(rest.substr(0, slash)));
        last = slash == std::string_view::npos;
        rest.remove_prefix(last ? 0 : slash + 1);
        if (last) {
            node.operation = operation.value_or(Operation::merge);
            node.value = value;
            node.namespace_uri = space ? std::string_view(*space).substr(0, space->size() - 1) : model;
        }
        siblings = &node.children;
    }
    return siblings;
}

} // namespace

std::string dump(const std::vector<RequestNode> &nodes) {
    std::string text;
    dump_below(nodes, 0, text);
    return text;
}

std::vector<RequestNode> read_dump(const std::string &text) {
    RequestNode root;
    std::vector<std::vector<RequestNode> *> levels{&root.children};
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blanks = std::min(line.find_first_not_of(' '), line.size());
        levels.resize(std::min(levels.size(), blanks / 2 + 1));
        levels.push_back(add_line(levels.back(), line.substr(blanks)));
    }
    return std::move(root.children);
}

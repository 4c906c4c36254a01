#include "servers/gnmi/path.hpp"

#include <algorithm>
#include <bitset>

#include "servers/gnmi/refusal.hpp"

namespace ocpsm::gnmi {
namespace {

constexpr std::string_view any_step = "*";
constexpr std::string_view any_steps = "...";

Refusal no_path(const std::string &message) {
    return {grpc::StatusCode::INVALID_ARGUMENT, message};
}

std::string without_module(const std::string &name) {
    const std::string &module = Model::openconfig().name;
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos) {
        return name;
    }
    if (name.compare(0, colon, module) != 0) {
        throw no_path("the module " + name.substr(0, colon) + " is not served, only " + module);
    }
    return name.substr(colon + 1);
}

void require_size(const std::string &text) {
    if (text.size() > max_name_bytes) {
        throw no_path("a name or key of a path has more than " + std::to_string(max_name_bytes) + " bytes");
    }
}

PathStep read_step(const messages::PathElem &elem) {
    require_size(elem.name());
    PathStep step{without_module(elem.name())};
    if (step.name.empty()) {
        throw no_path("a step of a path has no name; the root is a path without steps");
    }
    for (const auto &[name, value] : elem.key()) {
        require_size(name);
        require_size(value);
        step.keys.push_back({without_module(name), value});
    }
    std::sort(step.keys.begin(), step.keys.end(),
              [](const PathKey &one, const PathKey &other) { return one.name < other.name; });
    return step;
}

void require_origin(const std::string &origin) {
    const std::string &module = Model::openconfig().name;
    if (!origin.empty() && origin != "openconfig" && origin != module) {
        throw no_path("the origin " + origin + " is not served, only openconfig and " + module);
    }
}

void append_steps(const messages::Path &message, Steps &steps) {
    require_origin(message.origin());
    if (message.element_size() != 0) {
        throw no_path("a path is made of elem; element has been given up by the protocol");
    }
    if (steps.size() + static_cast<std::size_t>(message.elem_size()) > max_steps) {
        throw no_path("a path has more than " + std::to_string(max_steps) + " steps");
    }
    std::transform(message.elem().begin(), message.elem().end(), std::back_inserter(steps), read_step);
}

// ---- instance paths ----

// An XPath literal, or a concat() of such; moves behind it.
std::string read_literal(std::string_view text, std::size_t &at) {
    std::string value;
    const bool parts = text.substr(at).starts_with("concat(");
    at += parts ? std::string_view("concat(").size() : 0;
    while (at < text.size() && (text[at] == '\'' || text[at] == '"')) {
        const std::size_t end = std::min(text.find(text[at], at + 1), text.size());
        value += text.substr(at + 1, end - at - 1);
        at = std::min(text.find_first_not_of(", ", end + 1), text.size());
    }
    at += parts ? 1 : 0;
    return value;
}

std::string literal(const std::string &text) {
    const char quote = text.find('\'') == std::string::npos ? '\'' : '"';
    return quote + text + quote;
}

// ---- patterns ----

// Where in a pattern a walk down a path may be: before each of its steps, or behind the last.
using Places = std::bitset<max_steps + 1>;

// Any number of steps may be none.
Places closed(const Steps &pattern, Places places) {
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        if (places[at] && pattern[at].name == any_steps) {
            places.set(at + 1);
        }
    }
    return places;
}

template <class Matches>
Places one_step_on(const Steps &pattern, const Places &places, Matches matches) {
    Places next;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        if (!places[at]) {
            continue;
        }
        if (pattern[at].name == any_steps) {
            next.set(at);
        } else if ((pattern[at].name == any_step || matches.name(pattern[at])) && matches.keys(pattern[at])) {
            next.set(at + 1);
        }
    }
    return closed(pattern, next);
}

struct InstanceMatches {
    const PathStep &step;

    bool name(const PathStep &pattern) const { return pattern.name == step.name; }
    bool keys(const PathStep &pattern) const {
        return std::all_of(pattern.keys.begin(), pattern.keys.end(), [this](const PathKey &wanted) {
            return std::any_of(step.keys.begin(), step.keys.end(), [&wanted](const PathKey &key) {
                return key.name == wanted.name && (wanted.value == any_step || wanted.value == key.value);
            });
        });
    }
};

struct SchemaMatches {
    const ModelNode &node;

    bool name(const PathStep &pattern) const { return pattern.name == node.name; }
    bool keys(const PathStep &pattern) const {
        return std::all_of(pattern.keys.begin(), pattern.keys.end(), [this](const PathKey &wanted) {
            return std::find(node.keys.begin(), node.keys.end(), wanted.name) != node.keys.end();
        });
    }
};

bool matches_below(const Steps &pattern, const Places &places, const ModelNode &node) {
    return places[pattern.size()] ||
           std::any_of(node.children.begin(), node.children.end(), [&](const ModelNode &child) {
               const Places next = one_step_on(pattern, places, SchemaMatches{child});
               return next.any() && matches_below(pattern, next, child);
           });
}

Places at_the_start(const Steps &pattern) {
    return closed(pattern, Places().set(0));
}

} // namespace

Steps read_path(const messages::Path &prefix, const messages::Path &path) {
    Steps steps;
    append_steps(prefix, steps);
    append_steps(path, steps);
    return steps;
}

Steps steps_of(std::string_view instance_path) {
    Steps steps;
    std::size_t at = 1;
    while (at < instance_path.size()) {
        std::size_t end = std::min(instance_path.find_first_of("/[", at), instance_path.size());
        PathStep &step = steps.emplace_back(PathStep{std::string(instance_path.substr(at, end - at))});
        while (end < instance_path.size() && instance_path[end] == '[') {
            const std::size_t sign = std::min(instance_path.find('=', end), instance_path.size() - 1);
            std::string name(instance_path.substr(end + 1, sign - end - 1));
            end = sign + 1;
            step.keys.push_back({std::move(name), read_literal(instance_path, end)});
            end += 1;
        }
        at = end + 1;
    }
    return steps;
}

void require_in_model(const Steps &path) {
    if (!matches_below(path, at_the_start(path), Model::openconfig().root)) {
        throw Refusal(grpc::StatusCode::NOT_FOUND, "the model has no such node", path_text(path));
    }
}

const ModelNode *node_of(const Steps &path) {
    const ModelNode *node = &Model::openconfig().root;
    for (const PathStep &step : path) {
        node = node == nullptr ? nullptr : node->child(step.name);
    }
    return node;
}

bool names_one_node(const Steps &path) {
    const ModelNode *node = &Model::openconfig().root;
    for (const PathStep &step : path) {
        node = node->child(step.name);
        if (node == nullptr || step.keys.size() != node->keys.size() ||
            std::any_of(step.keys.begin(), step.keys.end(), [](const PathKey &key) { return key.value == any_step; })) {
            return false;
        }
    }
    return true;
}

std::optional<std::size_t> matched_steps(const Steps &pattern, const Steps &path) {
    Places places = at_the_start(pattern);
    for (std::size_t count = 0;; ++count) {
        if (places[pattern.size()]) {
            return count;
        }
        if (count == path.size() || places.none()) {
            return std::nullopt;
        }
        places = one_step_on(pattern, places, InstanceMatches{path[count]});
    }
}

std::string path_text(const Steps &path) {
    std::string text;
    for (const PathStep &step : path) {
        text += "/" + step.name;
        for (const PathKey &key : step.keys) {
            text += "[" + key.name + "=" + literal(key.value) + "]";
        }
    }
    return text.empty() ? "/" : text;
}

void write_path(const Steps &path, std::size_t from, messages::Path &message) {
    for (std::size_t at = from; at < path.size(); ++at) {
        messages::PathElem &elem = *message.add_elem();
        elem.set_name(path[at].name);
        for (const PathKey &key : path[at].keys) {
            (*elem.mutable_key())[key.name] = key.value;
        }
    }
}

} // namespace ocpsm::gnmi

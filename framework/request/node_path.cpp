#include "framework/request/node_path.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/xpath.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

[[noreturn]] void refuse(const std::string &tag, std::string_view path, const std::string &message,
                         std::string advice) {
    throw Error(Error::Source::input, tag, one_line(path, 1000), message, std::move(advice));
}

struct Step {
    const lysc_node *schema;
    std::vector<PathKey> keys; // names without prefix
};

// Looks the steps of a path up in the model.
class PathLookup {
public:
    explicit PathLookup(std::string_view path) : path_(path) {}

    std::vector<Step> steps() const {
        std::vector<Step> steps;
        std::vector<PathStep> read_steps = parse_instance_path(path_);
        steps.reserve(read_steps.size());
        for (PathStep &read : read_steps) {
            steps.push_back(step(read, steps.empty() ? nullptr : steps.back().schema));
        }
        return steps;
    }

private:
    // A name without the name or prefix of its module.
    std::string plain(std::string_view name) const {
        const std::size_t colon = name.find(':');
        if (colon == std::string_view::npos) {
            return std::string(name);
        }
        const lys_module &module = *models::Schema::openconfig().top_nodes().front()->module;
        const std::string_view qualifier = name.substr(0, colon);
        if (qualifier != module.name && qualifier != module.prefix) {
            refuse("unknown-namespace", path_, "there is no module '" + one_line(qualifier) + "'",
                   "write " + std::string(module.name) + " or leave it out");
        }
        return std::string(name.substr(colon + 1));
    }

    Step step(PathStep &read, const lysc_node *parent) const {
        const std::string name = plain(read.name);
        const lysc_node *schema = models::Schema::openconfig().child(parent, name);
        if (schema == nullptr) {
            refuse("unknown-element", path_,
                   "the model has no node '" + one_line(name) + "' " +
                       (parent == nullptr ? "at the top" : "below " + std::string(parent->name)),
                   advice(parent));
        }
        check_keys(read.keys, *schema);
        return {schema, std::move(read.keys)};
    }

    static std::string advice(const lysc_node *parent) {
        std::string names;
        for (const lysc_node *child : models::Schema::openconfig().children(parent)) {
            names.append(names.empty() ? "there is " : ", ").append(child->name);
        }
        return names.empty() ? std::string(parent->name) + " is a leaf" : names;
    }

    // Takes the prefixes off the names; a key of any value says nothing.
    void check_keys(std::vector<PathKey> &keys, const lysc_node &schema) const {
        const auto names = models::key_names(schema);
        std::set<std::string> said;
        for (PathKey &key : keys) {
            key.name = plain(key.name);
            if (std::find(names.begin(), names.end(), key.name) == names.end()) {
                refuse("unknown-element", path_, "'" + one_line(key.name) + "' is no key of " + schema.name,
                       names.empty() ? "it is no list" : "its key is " + std::string(names.front()));
            }
            if (!said.insert(key.name).second) {
                refuse("invalid-value", path_, "the key " + key.name + " stands twice", "say it once");
            }
        }
        std::erase_if(keys, [](const PathKey &key) { return key.any; });
    }

    std::string_view path_;
};

RequestNode node_of(const Step &step) {
    RequestNode node{step.schema->name, step.schema->module->ns};
    for (const PathKey &key : step.keys) {
        node.children.push_back({key.name, node.namespace_uri, key.value});
    }
    return node;
}

// The nodes of a path, one below the other; `last` is what its last step becomes.
std::vector<RequestNode> nested(const std::vector<Step> &steps, RequestNode last) {
    for (auto step = std::next(steps.rbegin()); step != steps.rend(); ++step) {
        RequestNode around = node_of(*step);
        around.children.push_back(std::move(last));
        last = std::move(around);
    }
    return {std::move(last)};
}

// The steps of a path whose every entry is named, and which does not end in a key.
std::vector<Step> steps_to_edit(std::string_view path) {
    if (!is_instance_path(path) && xpath_of(path)) {
        refuse("invalid-value", path, "an edit names each node by its own path", std::string(path_example));
    }
    std::vector<Step> steps = PathLookup(path).steps();
    if (steps.empty()) {
        refuse("invalid-value", path, "the path names no node", std::string(path_example));
    }
    for (const Step &step : steps) {
        const auto keys = models::key_names(*step.schema);
        if (step.keys.size() < keys.size()) {
            refuse("missing-element", path, "an entry of " + std::string(step.schema->name) + " is not named",
                   "add [" + std::string(keys.front()) + "=...]");
        }
    }
    if (lysc_is_key(steps.back().schema)) {
        refuse("invalid-value", path, "the key of an entry cannot be changed", "name the entry");
    }
    return steps;
}

} // namespace

void check_number_of_paths(std::size_t number) {
    if (number > max_paths) {
        throw Error(Error::Source::input, "too-big", "",
                    "the request has more than " + std::to_string(max_paths) + " paths", "send it in pieces");
    }
}

std::vector<RequestNode> read_of(std::string_view path) {
    const std::vector<Step> steps = path == "/" ? std::vector<Step>() : PathLookup(path).steps();
    if (steps.empty()) {
        return {node_of({models::Schema::openconfig().top_nodes().front(), {}})};
    }
    return nested(steps, node_of(steps.back()));
}

std::vector<RequestNode> setting_of(std::string_view path, std::string_view value) {
    const std::vector<Step> steps = steps_to_edit(path);
    if (steps.back().schema->nodetype != LYS_LEAF) {
        refuse("invalid-value", path, std::string(steps.back().schema->name) + " is no leaf and has no value",
               "name one of the leaves below it");
    }
    if (value.find('\0') != std::string_view::npos) {
        refuse("invalid-value", path, "the value holds a byte 0", "leave it out");
    }
    RequestNode leaf = node_of(steps.back());
    leaf.value = value;
    return nested(steps, std::move(leaf));
}

std::vector<RequestNode> deletion_of(std::string_view path, Operation operation) {
    const std::vector<Step> steps = steps_to_edit(path);
    RequestNode node = node_of(steps.back());
    node.operation = operation;
    return nested(steps, std::move(node));
}

} // namespace ocpsm::framework

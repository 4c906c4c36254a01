#include "framework/request/node_path.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view example = "/aps/aps-modules/aps-module[name=0/1-PSM-OM]/config";

[[noreturn]] void refuse(const std::string &tag, std::string_view path, const std::string &message,
                         std::string advice) {
    throw Error(Error::Source::input, tag, one_line(path, 1000), message, std::move(advice));
}

struct Predicate {
    std::string key;
    std::string value;
};

struct Step {
    const lysc_node *schema;
    std::vector<Predicate> predicates;
};

// Takes a path to pieces, step by step, against the model.
class PathReader {
public:
    explicit PathReader(std::string_view path) : path_(path), rest_(path) {}

    std::vector<Step> steps() {
        std::vector<Step> steps;
        while (!rest_.empty()) {
            if (rest_.front() != '/') {
                refuse("invalid-value", path_, "a path begins with a slash, and so does each of its steps",
                       "for example " + std::string(example));
            }
            rest_.remove_prefix(1);
            steps.push_back(step(steps.empty() ? nullptr : steps.back().schema));
        }
        return steps;
    }

private:
    std::string_view take(std::string_view ends) {
        const std::string_view taken = rest_.substr(0, rest_.find_first_of(ends));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    // A name without the name or prefix of its module.
    std::string_view plain(std::string_view name) const {
        const std::size_t colon = name.find(':');
        if (colon == std::string_view::npos) {
            return name;
        }
        const lys_module &module = *models::Schema::openconfig().top_nodes().front()->module;
        const std::string_view qualifier = name.substr(0, colon);
        if (qualifier != module.name && qualifier != module.prefix) {
            refuse("unknown-namespace", path_, "there is no module '" + one_line(qualifier) + "'",
                   "write " + std::string(module.name) + " or leave it out");
        }
        return name.substr(colon + 1);
    }

    Step step(const lysc_node *parent) {
        const std::string_view name = plain(take("/["));
        if (name.empty()) {
            refuse("invalid-value", path_, "a step of the path has no name", "for example " + std::string(example));
        }
        const lysc_node *schema = models::Schema::openconfig().child(parent, name);
        if (schema == nullptr) {
            refuse("unknown-element", path_,
                   "the model has no node '" + one_line(name) + "' " +
                       (parent == nullptr ? "at the top" : "below " + std::string(parent->name)),
                   advice(parent));
        }
        Step step{schema, {}};
        while (!rest_.empty() && rest_.front() == '[') {
            rest_.remove_prefix(1);
            add_predicate(step);
        }
        return step;
    }

    static std::string advice(const lysc_node *parent) {
        std::string names;
        for (const lysc_node *child : models::Schema::openconfig().children(parent)) {
            names.append(names.empty() ? "there is " : ", ").append(child->name);
        }
        return names.empty() ? std::string(parent->name) + " is a leaf" : names;
    }

    void add_predicate(Step &step) {
        const auto keys = models::key_names(*step.schema);
        const std::string key(plain(take("=]/[")));
        if (rest_.empty() || rest_.front() != '=') {
            refuse("invalid-value", path_, "a predicate has the form [key=value]",
                   "for example " + std::string(example));
        }
        rest_.remove_prefix(1);
        if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
            refuse("unknown-element", path_, "'" + one_line(key) + "' is no key of " + std::string(step.schema->name),
                   keys.empty() ? "it is no list" : "its key is " + std::string(keys.front()));
        }
        const auto same = [&key](const Predicate &other) { return other.key == key; };
        if (std::any_of(step.predicates.begin(), step.predicates.end(), same)) {
            refuse("invalid-value", path_, "the key " + key + " stands twice", "say it once");
        }
        step.predicates.push_back({key, value()});
    }

    std::string value() {
        const bool quoted = !rest_.empty() && (rest_.front() == '\'' || rest_.front() == '"');
        std::string_view value;
        if (quoted) {
            const std::string_view quote = rest_.substr(0, 1);
            rest_.remove_prefix(1);
            value = take(quote);
            rest_.remove_prefix(rest_.empty() ? 0 : 1);
        } else {
            value = take("]");
        }
        if (rest_.empty() || rest_.front() != ']') {
            refuse("invalid-value", path_, "a predicate is not closed", "for example " + std::string(example));
        }
        rest_.remove_prefix(1);
        if (value.empty()) {
            refuse("invalid-value", path_, "a key has no value", "for example " + std::string(example));
        }
        return std::string(value);
    }

    std::string_view path_;
    std::string_view rest_;
};

WrittenNode element(const lysc_node &schema) {
    WrittenNode node;
    node.tag = schema.name;
    node.namespace_uri = schema.module->ns;
    node.form = ValueForm::empty_element;
    return node;
}

WrittenNode leaf(const lysc_node &schema, std::string_view value) {
    WrittenNode node = element(schema);
    node.form = ValueForm::text;
    node.value = value;
    return node;
}

void name_entry(WrittenNode &node, const Step &step) {
    for (const Predicate &predicate : step.predicates) {
        const lysc_node *key = models::Schema::openconfig().child(step.schema, predicate.key);
        node.children.push_back(leaf(*key, predicate.value));
    }
}

// The nodes of a path, one below the other; `last` is what its last step becomes.
WrittenNode nested(const std::vector<Step> &steps, WrittenNode last) {
    name_entry(last, steps.back());
    for (auto step = std::next(steps.rbegin()); step != steps.rend(); ++step) {
        WrittenNode around = element(*step->schema);
        name_entry(around, *step);
        around.children.push_back(std::move(last));
        last = std::move(around);
    }
    return last;
}

// The steps of a path whose every entry is named, and which does not end in a key.
std::vector<Step> steps_to_edit(std::string_view path) {
    std::vector<Step> steps = PathReader(path).steps();
    if (steps.empty()) {
        refuse("invalid-value", path, "the path names no node", "for example " + std::string(example));
    }
    for (const Step &step : steps) {
        const auto keys = models::key_names(*step.schema);
        if (step.predicates.size() < keys.size()) {
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

std::vector<WrittenNode> read_of(std::string_view path) {
    const std::vector<Step> steps = path == "/" ? std::vector<Step>() : PathReader(path).steps();
    if (steps.empty()) {
        return {element(*models::Schema::openconfig().top_nodes().front())};
    }
    if (steps.size() > 1 && lysc_is_key(steps.back().schema) && !steps[steps.size() - 2].predicates.empty()) {
        refuse("invalid-value", path, "the key of a named entry is known", "read the entry, or a leaf of it");
    }
    return {nested(steps, element(*steps.back().schema))};
}

std::vector<WrittenNode> setting_of(std::string_view path, std::string_view value) {
    const std::vector<Step> steps = steps_to_edit(path);
    if (steps.back().schema->nodetype != LYS_LEAF) {
        refuse("invalid-value", path, std::string(steps.back().schema->name) + " is no leaf and has no value",
               "name one of the leaves below it");
    }
    return {nested(steps, leaf(*steps.back().schema, value))};
}

std::vector<WrittenNode> deletion_of(std::string_view path) {
    const std::vector<Step> steps = steps_to_edit(path);
    WrittenNode last = element(*steps.back().schema);
    last.attributes.push_back({std::string(netconf_namespace), "operation", "delete"});
    return {nested(steps, std::move(last))};
}

} // namespace ocpsm::framework

#include "framework/request/instance_path.hpp"

#include <libyang/libyang.h>

#include <algorithm>

#include "framework/error.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view blanks = " \t\r\n";

// Takes a path to pieces, from the front.
class PathReader {
public:
    explicit PathReader(std::string_view path) : path_(path), rest_(path) {}

    std::vector<PathStep> steps() {
        if (path_.find('\0') != std::string_view::npos) {
            refuse("the path holds a byte 0", "leave it out");
        }
        std::vector<PathStep> steps;
        while (!rest_.empty()) {
            if (!take("/")) {
                refuse("a path begins with a slash, and so does each of its steps");
            }
            if (rest_.empty() && !steps.empty()) {
                break;
            }
            steps.push_back(step());
        }
        return steps;
    }

private:
    [[noreturn]] void refuse(const std::string &message, std::string_view advice = path_example) const {
        throw Error(Error::Source::input, "invalid-value", one_line(path_, 1000), message, std::string(advice));
    }

    bool take(std::string_view expected) {
        const bool there = rest_.starts_with(expected);
        rest_.remove_prefix(there ? expected.size() : 0);
        return there;
    }

    std::string take_until(std::string_view ends) {
        const std::string_view taken = rest_.substr(0, rest_.find_first_of(ends));
        rest_.remove_prefix(taken.size());
        return std::string(taken);
    }

    PathStep step() {
        PathStep step{take_until("/["), {}};
        if (step.name.empty()) {
            refuse("a step of the path has no name");
        }
        while (take("[")) {
            step.keys.push_back(key());
        }
        return step;
    }

    void skip_blanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size())); }

    std::string take_word_until(std::string_view ends) {
        skip_blanks();
        std::string word = take_until(ends);
        word.erase(word.find_last_not_of(blanks) + 1);
        return word;
    }

    PathKey key() {
        PathKey key{take_word_until("=]/["), {}};
        if (!take("=")) {
            refuse("a predicate has the form [key=value]");
        }
        skip_blanks();
        key.any = rest_.starts_with('*');
        key.value = value();
        key.any = key.any && key.value == "*";
        skip_blanks();
        if (!take("]")) {
            refuse("a predicate is not closed");
        }
        if (key.value.empty()) {
            refuse("a key has no value");
        }
        return key;
    }

    std::string value() {
        if (take("concat(")) {
            std::string joined;
            do {
                skip_blanks();
                joined += literal();
                skip_blanks();
            } while (take(","));
            if (!take(")")) {
                refuse("a predicate is not closed");
            }
            return joined;
        }
        return rest_.starts_with('\'') || rest_.starts_with('"') ? literal() : take_word_until("]");
    }

    std::string literal() {
        const std::string_view quote = rest_.substr(0, 1);
        if (quote != "'" && quote != "\"") {
            refuse("a predicate is not closed");
        }
        rest_.remove_prefix(1);
        std::string text = take_until(quote);
        if (!take(quote)) {
            refuse("a predicate is not closed");
        }
        return text;
    }

    std::string_view path_;
    std::string_view rest_;
};

} // namespace

const RequestNode *find_key(const RequestNode &entry, std::string_view key) {
    const auto found = std::find_if(entry.children.begin(), entry.children.end(), [&](const RequestNode &child) {
        return child.tag == key && child.namespace_uri == entry.namespace_uri;
    });
    const bool named = found != entry.children.end() && found->value && !found->value->empty();
    return named ? &*found : nullptr;
}

bool holds_only_keys(const RequestNode &entry, const lysc_node *schema) {
    return std::all_of(entry.children.begin(), entry.children.end(), [schema](const RequestNode &child) {
        const lysc_node *leaf = models::Schema::openconfig().child(schema, child.tag, child.namespace_uri);
        return lysc_is_key(leaf);
    });
}

std::string path_step(const RequestNode &node, const lysc_node *schema) {
    std::string step = "/" + node.tag;
    if (schema != nullptr) {
        for (const std::string_view key : models::key_names(*schema)) {
            if (const RequestNode *leaf = find_key(node, key)) {
                step += key_predicate(key, *leaf->value);
            }
        }
    }
    return step;
}

std::string instance_step(const models::Schema &schema, const std::string &schema_path, const kidl_yfw_datatree &node) {
    std::string step = "/";
    step += node.tag == nullptr ? "" : node.tag;
    const lysc_node *list = schema.find(schema_path);
    if (list == nullptr) {
        return step;
    }
    for (const std::string_view key : models::key_names(*list)) {
        const kidl_yfw_datatree *leaf = find_child(node, key);
        if (leaf == nullptr) {
            continue;
        }
        if (const auto value = value_of(*leaf)) {
            step += key_predicate(key, *value);
        }
    }
    return step;
}

std::vector<PathStep> parse_instance_path(std::string_view path) {
    return PathReader(path).steps();
}

const lysc_node *schema_of(std::string_view instance_path) {
    std::string path;
    try {
        for (const PathStep &step : parse_instance_path(instance_path)) {
            path.append("/").append(step.name);
        }
    } catch (const Error &) {
        return nullptr; // a name of the client's own may hold what a path takes for something else
    }
    return models::Schema::openconfig().find(path);
}

std::string without_prefixes(std::string_view path) {
    std::string plain;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        const std::string_view step = path.substr(0, end);
        plain.append(step.substr(step.find(':') + 1));
        plain.append(path.substr(end, 1));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return plain;
}

} // namespace ocpsm::framework

#include "framework/request/xpath.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <set>
#include <vector>

#include "framework/error.hpp"
#include "framework/library.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

[[noreturn]] void refuse(const std::string &tag, std::string_view path, const std::string &message,
                         const std::string &advice) {
    throw Error(Error::Source::input, tag, one_line(path, 1000), message, advice);
}

// Whether a step says what no name does.
bool is_expression(const PathStep &step) {
    return step.name.find_first_of("*()|@") != std::string::npos || step.name == "." || step.name == ".." ||
           step.name.find("::") != std::string::npos;
}

// The expression without the prefix of the module, which libyang does not take for its name; literals stay.
std::string without_module_prefix(std::string_view path) {
    const std::string prefix = models::Schema::openconfig().top_nodes().front()->module->prefix + std::string(":");
    std::string plain;
    char quote = '\0';
    while (!path.empty()) {
        if (quote == '\0' && path.starts_with(prefix)) {
            path.remove_prefix(prefix.size());
            continue;
        }
        const char c = path.front();
        if (c == quote) {
            quote = '\0';
        } else if (quote == '\0' && (c == '\'' || c == '"')) {
            quote = c;
        }
        plain += c;
        path.remove_prefix(1);
    }
    return plain;
}

void check_bounds(std::string_view path) {
    std::size_t depth = 0;
    std::size_t deepest = 0;
    for (std::size_t at = path.find_first_of("[]'\""); at != std::string_view::npos;
         at = path.find_first_of("[]'\"", at + 1)) {
        if (path[at] == '[') {
            deepest = std::max(deepest, ++depth);
        } else if (path[at] == ']') {
            depth -= depth == 0 ? 0 : 1;
        } else {
            at = std::min(path.find(path[at], at + 1), path.size());
        }
    }
    if (path.size() > max_xpath_size || deepest > max_predicate_depth) {
        refuse("too-big", path,
               "an XPath has at most " + std::to_string(max_xpath_size) + " bytes and no predicate within a predicate",
               "select more, or send several paths");
    }
}

// The key of a named entry: a request with it names the entry, and selects it whole.
std::optional<std::string> key_of_entry(std::string_view path) {
    const std::vector<PathStep> steps = parse_instance_path(path);
    std::string plain;
    std::string expression;
    bool named = false;
    for (const PathStep &step : steps) {
        const std::string name = without_prefixes(step.name);
        plain.append("/").append(name);
        expression.append("/").append(name);
        named = &step == &steps.back() ? named : !step.keys.empty();
        for (const PathKey &key : step.keys) {
            named = named && !key.any;
            expression += key.any ? std::string() : key_predicate(without_prefixes(key.name), key.value);
        }
    }
    const lysc_node *schema = models::Schema::openconfig().find(plain);
    return named && lysc_is_key(schema) ? std::optional(expression) : std::nullopt;
}

void add_names(const lysc_node *parent, std::set<std::string_view> &names) {
    for (const lysc_node *node : models::Schema::openconfig().children(parent)) {
        names.insert(node->name);
        add_names(node, names);
    }
}

bool is_name_of_the_model(std::string_view name) {
    static const std::set<std::string_view> names = [] {
        std::set<std::string_view> all{"and", "or", "div", "mod"};
        add_names(nullptr, all);
        return all;
    }();
    return names.contains(name);
}

// An unknown name selects nothing, and is mostly a text without quotes.
void check_names(std::string_view path, std::string_view expression) {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    constexpr std::string_view in_names = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789-.";
    while (!expression.empty()) {
        const char c = expression.front();
        if (c == '\'' || c == '"') {
            expression.remove_prefix(std::min(expression.find(c, 1), expression.size() - 1) + 1);
        } else if (letters.find(c) == std::string_view::npos) {
            expression.remove_prefix(1);
        } else {
            const std::size_t end = std::min(expression.find_first_not_of(in_names), expression.size());
            const std::string_view name = expression.substr(0, end);
            expression.remove_prefix(end);
            const bool called = expression.starts_with('(') || expression.starts_with(':'); // function, axis, module
            if (!called && !is_name_of_the_model(name)) {
                refuse("unknown-element", path, "the model has no node '" + one_line(name) + "'",
                       "a text stands in quotes: '" + one_line(name) + "'");
            }
        }
    }
}

} // namespace

bool is_instance_path(std::string_view path) {
    try {
        const std::vector<PathStep> steps = parse_instance_path(path);
        return std::none_of(steps.begin(), steps.end(), is_expression);
    } catch (const Error &) {
        return false;
    }
}

std::optional<std::string> xpath_of(std::string_view path) {
    if (!path.starts_with('/') || path == "/" || path.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    if (is_instance_path(path)) {
        return key_of_entry(path);
    }
    check_bounds(path);
    std::string expression = without_module_prefix(path);
    const QuietLibrary quiet;
    const ly_ctx *context = models::Schema::openconfig().context();
    ly_set *found = nullptr;
    const LY_ERR result = lys_find_xpath(context, nullptr, expression.c_str(), 0, &found);
    const OwnedSet nodes(found);
    if (result == LY_EMEM) {
        throw std::bad_alloc();
    }
    ly_err_clean(models::Schema::openconfig().context(), nullptr);
    if (result != LY_SUCCESS) {
        return std::nullopt;
    }
    check_names(path, expression);
    if (nodes == nullptr || nodes->count == 0) {
        refuse("unknown-element", path, "the XPath selects nothing of the model", std::string(path_example));
    }
    return expression;
}

} // namespace ocpsm::framework

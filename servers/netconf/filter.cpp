#include "servers/netconf/filter.hpp"

#include <algorithm>
#include <utility>

#include "framework/error.hpp"
#include "servers/netconf/xml.hpp"

namespace ocpsm::netconf {

namespace {

constexpr std::string_view quotes = "'\"";
constexpr std::string_view in_names = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.";

using Filters = std::vector<const RequestNode *>;

bool is_content_match(const RequestNode &filter) {
    return filter.value.has_value();
}

// In no namespace it is a node of any (RFC 6241, 6.2.1).
bool names(const RequestNode &filter, const RequestNode &node) {
    return filter.tag == node.tag && (filter.namespace_uri.empty() || filter.namespace_uri == node.namespace_uri);
}

bool has_content(const RequestNode &node, const RequestNode &match) {
    return std::any_of(node.children.begin(), node.children.end(), [&match](const RequestNode &child) {
        return names(match, child) && child.value && trimmed(*child.value) == trimmed(*match.value);
    });
}

// Whether all that a filter says of the content of a node is so.
bool has_all_content(const RequestNode &node, const RequestNode &filter) {
    return std::all_of(filter.children.begin(), filter.children.end(), [&node](const RequestNode &child) {
        return !is_content_match(child) || has_content(node, child);
    });
}

bool selects_all(const RequestNode &filter) {
    return std::all_of(filter.children.begin(), filter.children.end(), is_content_match);
}

Tree select(const Tree &data, const Filters &filters);

std::optional<RequestNode> select(const RequestNode &node, const Filters &filters) {
    Filters below;
    bool all = false;
    for (const RequestNode *filter : filters) {
        if (names(*filter, node) && !is_content_match(*filter) && has_all_content(node, *filter)) {
            all = all || selects_all(*filter);
            for (const RequestNode &child : filter->children) {
                below.push_back(&child);
            }
        }
    }
    if (all) {
        return node;
    }
    RequestNode cut = inner(node.namespace_uri, node.tag, select(node.children, below));
    return cut.children.empty() ? std::nullopt : std::optional(std::move(cut));
}

Tree select(const Tree &data, const Filters &filters) {
    Tree found;
    for (const RequestNode &node : data) {
        const bool matches = std::any_of(filters.begin(), filters.end(), [&node](const RequestNode *filter) {
            return is_content_match(*filter) && names(*filter, node);
        });
        if (matches) {
            found.push_back(node); // that it has the content was seen above
        } else if (auto cut = select(node, filters)) {
            found.push_back(std::move(*cut));
        }
    }
    return found;
}

bool asks_for_attributes(RequestNode &filter) {
    if (!filter.attributes.empty()) {
        return true;
    }
    const bool any = std::any_of(filter.children.begin(), filter.children.end(), [](RequestNode &child) {
        return is_content_match(child) && asks_for_attributes(child);
    });
    const bool all_before = selects_all(filter);
    std::erase_if(filter.children, asks_for_attributes);
    return any || (!all_before && selects_all(filter));
}

// ---- XPath ----

// Calls `take` with each part of an expression, a literal as one, anything else character by character.
template <typename Take>
void for_each_part(std::string_view expression, Take take) {
    while (!expression.empty()) {
        std::size_t size = 1;
        if (quotes.find(expression.front()) != std::string_view::npos) {
            size = std::min(expression.find(expression.front(), 1), expression.size() - 1) + 1;
        }
        take(expression.substr(0, size), expression.substr(size));
        expression.remove_prefix(size);
    }
}

class Prefixes {
public:
    Prefixes(const RequestAttribute &select, const std::vector<std::string_view> &served)
        : select_(select), served_(served) {}

    // Takes the name that a text ends in away when it is a prefix.
    void take_away(std::string &text) const {
        const std::size_t begin = text.find_last_not_of(in_names) + 1;
        const std::string_view name = std::string_view(text).substr(begin);
        for (const auto &[prefix, space] : select_.prefixes) {
            if (prefix != name) {
                continue;
            }
            if (std::find(served_.begin(), served_.end(), std::string_view(space)) == served_.end()) {
                throw Error(Error::Source::input, "invalid-value", "",
                            "the namespace " + space.str() + " of the prefix " + prefix + " is not served")
                    .of_attribute("select");
            }
            text.resize(begin);
            return;
        }
        text += ':';
    }

private:
    const RequestAttribute &select_;
    const std::vector<std::string_view> &served_;
};

// A predicate [NAME='VALUE'] or [NAME="VALUE"] with which a text begins, taken off it.
std::optional<RequestNode> take_predicate(std::string_view &text) {
    text.remove_prefix(1);
    const std::size_t end = text.find_first_not_of(in_names);
    if (end == 0 || end == std::string_view::npos || text[end] != '=' || end + 1 >= text.size() ||
        quotes.find(text[end + 1]) == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string tag(text.substr(0, end));
    const std::size_t close = text.find(text[end + 1], end + 2);
    if (close == std::string_view::npos || !text.substr(close + 1).starts_with(']')) {
        return std::nullopt;
    }
    RequestNode match = leaf({}, tag, std::string(text.substr(end + 2, close - end - 2)));
    text.remove_prefix(close + 2);
    return match;
}

} // namespace

Tree selected(const Tree &data, const Tree &filters) {
    Filters pointers;
    for (const RequestNode &filter : filters) {
        if (!is_content_match(filter)) {
            pointers.push_back(&filter);
        }
    }
    return select(data, pointers);
}

void leave_out_attributes(Tree &filters) {
    std::erase_if(filters, asks_for_attributes);
}

std::vector<std::string> expressions(const RequestAttribute &select, const std::vector<std::string_view> &served) {
    const Prefixes prefixes(select, served);
    std::vector<std::string> found(1);
    int depth = 0;
    for_each_part(select.value, [&](std::string_view part, std::string_view rest) {
        depth += part == "[" || part == "(" ? 1 : part == "]" || part == ")" ? -1 : 0;
        if (part == "|" && depth == 0) {
            found.emplace_back();
        } else if (part == ":" && !rest.starts_with(':') && !found.back().ends_with(':')) {
            prefixes.take_away(found.back());
        } else {
            found.back() += part;
        }
    });
    for (std::string &expression : found) {
        expression = trimmed(expression);
        expression.insert(0, expression.starts_with('/') ? "" : "/");
    }
    return found;
}

std::optional<RequestNode> filter_of(std::string_view path) {
    if (!path.starts_with('/')) {
        return std::nullopt;
    }
    path.remove_prefix(1);
    const std::size_t end = std::min(path.find_first_not_of(in_names), path.size());
    if (end == 0) {
        return std::nullopt;
    }
    RequestNode filter = inner({}, std::string(path.substr(0, end)), {});
    path.remove_prefix(end);
    while (path.starts_with('[')) {
        auto match = take_predicate(path);
        if (!match) {
            return std::nullopt;
        }
        filter.children.push_back(std::move(*match));
    }
    if (!path.empty()) {
        auto below = filter_of(path);
        if (!below) {
            return std::nullopt;
        }
        filter.children.push_back(std::move(*below));
    }
    return filter;
}

} // namespace ocpsm::netconf

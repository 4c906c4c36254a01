#include "framework/request/selection.hpp"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_map>
#include <utility>

namespace ocpsm::framework {

namespace {

// Without anything but content matches below it a node is selected with all that is below it.
bool selects_all(const RequestNode &node) {
    return std::all_of(node.children.begin(), node.children.end(), is_content_match);
}

// A name or value, told from what follows it by its length.
void append(std::string &text, std::string_view part) {
    text.append(std::to_string(part.size())).append(":").append(part);
}

std::string name_of(const RequestNode &node) {
    std::string name;
    append(name, node.namespace_uri);
    append(name, node.tag);
    return name;
}

// What two selections have in common that can be joined.
std::string identity(const RequestNode &node) {
    std::vector<std::string> matches;
    for (const RequestNode &child : node.children) {
        if (is_content_match(child)) {
            append(matches.emplace_back(name_of(child)), *child.value);
        }
    }
    std::sort(matches.begin(), matches.end());
    std::string text = name_of(node);
    for (const std::string &match : matches) {
        text += match;
    }
    return text;
}

void join_into(RequestNode &first, RequestNode &&more) {
    if (selects_all(first)) {
        return;
    }
    if (selects_all(more)) {
        std::erase_if(first.children, [](const RequestNode &child) { return !is_content_match(child); });
        return;
    }
    std::copy_if(std::make_move_iterator(more.children.begin()), std::make_move_iterator(more.children.end()),
                 std::back_inserter(first.children), [](const RequestNode &child) { return !is_content_match(child); });
}

} // namespace

void join_selections(std::vector<RequestNode> &siblings) {
    std::unordered_map<std::string, std::size_t> known; // where the first selection of each identity is kept
    std::vector<RequestNode> kept;
    kept.reserve(siblings.size());
    for (RequestNode &node : siblings) {
        if (!is_content_match(node)) {
            const auto [position, is_first] = known.try_emplace(identity(node), kept.size());
            if (!is_first) {
                join_into(kept[position->second], std::move(node));
                continue;
            }
        }
        kept.push_back(std::move(node));
    }
    siblings = std::move(kept);
    for (RequestNode &node : siblings) {
        join_selections(node.children);
    }
}

} // namespace ocpsm::framework

#include "framework/native_origin.hpp"

namespace ocpsm::framework {

namespace {

enum class Relation { none, above, below, same };

bool lies_below(std::string_view path, std::string_view above) {
    return path.size() > above.size() && path.starts_with(above) &&
           (path[above.size()] == '/' || path[above.size()] == '[');
}

// How an added node stands to the node that a text begins with.
Relation relation(std::string_view added, std::string_view text) {
    if (text == added || (text.starts_with(added) && text[added.size()] == ':')) {
        return Relation::same;
    }
    if (lies_below(added, text.substr(0, text.find(": ")))) {
        return Relation::below;
    }
    return lies_below(text, added) ? Relation::above : Relation::none;
}

} // namespace

std::string openconfig_origin(const HandedOver &edit, std::string_view text) {
    std::string origin;
    Relation best = Relation::none;
    std::size_t longest = 0;
    for (const AddRecord &add : edit.adds) {
        if (!add.node) {
            continue;
        }
        const std::string path = edit.native.instance_path(*add.node);
        const Relation found = relation(path, text);
        const bool nearer = found > best || (found == best && (found != Relation::above || path.size() >= longest));
        if (found != Relation::none && nearer) {
            origin = add.location;
            best = found;
            longest = path.size();
        }
    }
    return origin;
}

} // namespace ocpsm::framework

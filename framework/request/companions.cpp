#include "framework/request/companions.hpp"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <vector>

#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"
#include "native_models.hpp"

namespace ocpsm::framework {

namespace {

struct Node {
    std::string_view suffix;
    std::string_view parent;
    std::string_view tag;
    bool refused;
};

constexpr Node nodes[] = {
#define YMAP_CONTAINER(suffix, parent, tag, access) {#suffix, #parent, tag, false},
#define YMAP_LIST(suffix, parent, tag, access, conversion) {#suffix, #parent, tag, false},
#define YMAP_KEY(suffix, parent, tag, access, conversion) {#suffix, #parent, tag, false},
#define YMAP_LEAF(suffix, parent, tag, access, conversion) {#suffix, #parent, tag, false},
#define YMAP_REFUSED(suffix, parent, tag, access) {#suffix, #parent, tag, true},
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_nodes.def"
#undef YMAP_CONTAINER
#undef YMAP_LIST
#undef YMAP_KEY
#undef YMAP_LEAF
#undef YMAP_REFUSED
};

// What one conversion writes; `answer` is the reader of the leaf whose own value it has got.
struct Written {
    std::string_view path;
    std::string_view reader;
};
using Together = std::vector<Written>;

std::vector<Together> conversions() {
    std::vector<Together> all;
#define YMAP_WRITES(path, source, reader, value, kinds, manner) {YMAP_MODULE path, #reader},
#define YMAP_TO_HIGH(conversion, steps, key_list, others, ...) all.push_back({__VA_ARGS__});
#include "to_high_tables.inc"
#undef YMAP_WRITES
    return all;
}

std::vector<std::string> refused_leaves() {
    std::map<std::string_view, std::string> paths; // by suffix; a parent stands before its children
    std::vector<std::string> refused;
    for (const Node &node : nodes) {
        const std::string path = paths[node.parent] + "/" + std::string(node.tag);
        paths[node.suffix] = path;
        if (node.refused) {
            refused.push_back(path);
        }
    }
    return refused;
}

std::string_view common_node(std::string_view one, std::string_view other) {
    const auto end = std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first;
    return one.substr(0, one.substr(0, static_cast<std::size_t>(end - one.begin())).rfind('/'));
}

// Asking for a leaf has the conversion run that gets its value: all that this writes comes along.
std::vector<Companion> make_companions() {
    const models::Schema &schema = models::Schema::openconfig();
    const std::vector<std::string> refused = refused_leaves();
    const auto is_refused = [&refused](std::string_view path) {
        return std::find(refused.begin(), refused.end(), path) != refused.end();
    };
    std::vector<Companion> found;
    for (const std::string &leaf : refused) {
        std::string_view around;
        for (const Together &together : conversions()) {
            const bool writes_it = std::any_of(together.begin(), together.end(),
                                               [&leaf](const Written &written) { return written.path == leaf; });
            for (const Written &other : together) {
                if (writes_it && other.reader == "answer" && !is_refused(other.path)) {
                    const std::string_view common = common_node(leaf, other.path);
                    around = common.size() > around.size() ? common : around;
                }
            }
        }
        if (!around.empty()) {
            found.push_back({schema.find(leaf), schema.find(around), leaf.substr(around.size())});
        }
    }
    return found;
}

} // namespace

std::span<const Companion> companions() {
    static const std::vector<Companion> all = make_companions();
    return all;
}

std::string read_with(std::string_view leaf_path) {
    const lysc_node *leaf = schema_of(leaf_path);
    for (const Companion &companion : companions()) {
        if (companion.leaf == leaf && leaf_path.ends_with(companion.below)) {
            return std::string(leaf_path.substr(0, leaf_path.size() - companion.below.size()));
        }
    }
    return {};
}

} // namespace ocpsm::framework

#include "framework/kept.hpp"

#include <libyang/libyang.h>

#include <charconv>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/native/native_path.hpp"
#include "framework/native/scale.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

// A number as the request has it.
struct Asked {
    const lysc_node *leaf;
    const std::string *value;
};

using AskedByPath = std::map<std::string, Asked>;

// A number on its way: `number` stands in the native leaf.
struct Kept {
    const std::string &native_path;
    const lysc_node &native_leaf;
    std::int64_t number;
    const std::string &location;
    std::string asked; // canonical, where it is a number
    bool cut;
};

void add_decimals(const RequestNode &node, const lysc_node *parent, const std::string &above, AskedByPath &decimals) {
    const lysc_node *schema = models::Schema::openconfig().child(parent, node.tag, node.namespace_uri);
    if (schema == nullptr) {
        return;
    }
    const std::string path = above + path_step(node, schema);
    const bool leaf = schema->nodetype == LYS_LEAF;
    if (leaf && node.value && reinterpret_cast<const lysc_node_leaf &>(*schema).type->basetype == LY_TYPE_DEC64) {
        decimals.insert_or_assign(path, Asked{schema, &*node.value});
    }
    for (const RequestNode &child : node.children) {
        add_decimals(child, schema, path, decimals);
    }
}

std::optional<std::int64_t> number_of(const std::optional<std::string> &text) {
    std::int64_t number = 0;
    if (!text || text->empty()) {
        return std::nullopt;
    }
    const auto [end, failure] = std::from_chars(text->data(), text->data() + text->size(), number);
    return failure == std::errc{} && end == text->data() + text->size() ? std::optional(number) : std::nullopt;
}

// Calls `visit` for every native leaf whose number comes from a decimal of the request.
void for_each_kept(const HandedOver &handed, const native::NetRequest &net,
                   const std::function<void(const Kept &kept)> &visit) {
    AskedByPath decimals;
    add_decimals(handed.request, nullptr, "", decimals);
    if (decimals.empty()) {
        return;
    }
    native::for_each_node(net, [&](const std::string &path, const native::NativeNode &node) {
        const auto number = number_of(node.value);
        if (!number || node.origin == native::no_origin) {
            return;
        }
        const std::string &location = handed.origins.at(node.origin).location;
        const auto found = decimals.find(location);
        if (found == decimals.end()) {
            return;
        }
        const auto &[leaf, value] = found->second;
        const std::string kept = native::decimal(*number, native::scale_of(*node.schema));
        const std::optional<std::string> asked = models::canonical(*leaf, *value);
        const bool cut = asked && models::canonical(*leaf, kept) != asked;
        visit({path, *node.schema, *number, location, asked.value_or(*value), cut});
    });
}

// What was cut towards zero has been further from it.
bool is_out_of(const models::Range &range, const Kept &kept) {
    const bool negative = kept.asked.starts_with('-');
    const bool cut_to_minimum = kept.cut && negative && kept.number == range.minimum;
    const bool cut_to_maximum = kept.cut && !negative && kept.number == range.maximum;
    return kept.number < range.minimum || kept.number > range.maximum || cut_to_minimum || cut_to_maximum;
}

} // namespace

std::vector<std::string> cut_numbers(const HandedOver &handed, const native::NetRequest &net) {
    FirstTexts cut;
    for_each_kept(handed, net, [&cut](const Kept &kept) {
        if (kept.cut) {
            cut.add([&kept] {
                const native::Scale scale = native::scale_of(kept.native_leaf);
                return one_line(kept.asked) + " is kept in " + std::string(scale.step).append(scale.unit) + ": " +
                       native::decimal(kept.number, scale) + " at " + kept.location;
            });
        }
    });
    std::vector<std::string> texts = cut.kept();
    if (cut.more() != 0) {
        texts.push_back(std::to_string(cut.more()) + " more numbers are cut");
    }
    return texts;
}

void require_in_range(const HandedOver &handed, const native::NetRequest &net) {
    for_each_kept(handed, net, [](const Kept &kept) {
        const auto range = models::describe(kept.native_leaf).range;
        if (range && is_out_of(*range, kept)) {
            throw Error(Error::Source::refused, "invalid-value", "", one_line(kept.asked) + " is out of range",
                        "allowed: " + native::allowed(kept.native_leaf))
                .at_native(kept.native_path);
        }
    });
}

} // namespace ocpsm::framework

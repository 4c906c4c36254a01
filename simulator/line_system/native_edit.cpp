#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "framework/native/native_path.hpp"
#include "framework/native/refuse.hpp"
#include "framework/text.hpp"
#include "simulator/line_system/native_side.hpp"
#include "simulator/line_system/native_table.hpp"

namespace ocpsm::line_system {
namespace {

using native::NativeNode;
using native::refuse;

// An edit on its way through a line system.
class Edit {
public:
    explicit Edit(const LineSystem &system) : system_(system) {}

    void apply(std::span<const NativeNode> nodes, const Place &place, const std::string &parent) {
        for (const NativeNode &node : nodes) {
            const std::string path = parent + "/" + native::path_step(node);
            if (node.schema->nodetype == LYS_LIST) {
                apply_entry(node, place, path);
            } else {
                apply_single(node, place, path);
            }
        }
    }

    LineSystem take() { return std::move(system_); }
    std::vector<SetLeaf> take_set() { return std::move(set_); }

private:
    void apply_single(const NativeNode &node, const Place &place, const std::string &path) {
        settle(node.operation, exists(*node.schema, place), path);
        if (node.operation == Operation::replace || takes_away(node.operation)) {
            clear(*node.schema, place);
        }
        if (takes_away(node.operation)) {
            return;
        }
        if (node.schema->nodetype == LYS_LEAF) {
            set(node, place, path);
        }
        apply(others(node), place, path);
    }

    void apply_entry(const NativeNode &node, const Place &place, const std::string &path) {
        const ListKind kind = table_.list(*node.schema).kind;
        const std::vector<std::string> keys = canonical_keys(node, path);
        const std::optional<ListEntry> entry = find(kind, keys, place);
        if (kind == ListKind::thresholds) {
            apply_threshold(node, {place.slot, place.port, keys.at(0)}, entry.has_value(), path);
            return;
        }
        if (!entry && node.operation == Operation::remove) {
            return;
        }
        if (!entry || !entry->fitted) {
            refuse("data-missing", path, "the hardware is not fitted");
        }
        settle(node.operation, true, path);
        if (node.operation == Operation::replace || takes_away(node.operation)) {
            clear_below(*node.schema, entry->place);
        }
        if (!takes_away(node.operation)) {
            apply(others(node), entry->place, path);
        }
    }

    // A threshold needs no hardware of its own: its entry is there as soon as it is named.
    void apply_threshold(const NativeNode &node, const Place &place, bool found, const std::string &path) {
        settle(node.operation, found, path);
        auto &all = slot(system_, place.slot).lines.at(place.port - 1).rx_thresholds;
        if (node.operation == Operation::replace || takes_away(node.operation)) {
            all.erase(place.threshold);
        }
        if (takes_away(node.operation)) {
            return;
        }
        if (node.made) {
            all.try_emplace(place.threshold);
        }
        apply(others(node), place, path);
    }

    static void settle(Operation operation, bool exists, const std::string &path) {
        if (operation == Operation::create && exists) {
            refuse("data-exists", path, "it is there already");
        }
        if (operation == Operation::delete_existing && !exists) {
            refuse("data-missing", path, "it is not there");
        }
    }

    void set(const NativeNode &node, const Place &place, const std::string &path) {
        if (!node.value) {
            return;
        }
        const LeafRow &row = table_.leaf(*node.schema);
        const std::optional<std::string> value = models::canonical(*node.schema, *node.value);
        if (!value) {
            refuse("invalid-value", path, "'" + one_line(*node.value) + "' is no value of this leaf");
        }
        require_known_line(row, *value, path);
        set_value(row.field, system_, place, value);
        set_.push_back({path, row.field, place, *value});
    }

    static void require_known_line(const LeafRow &row, const std::string &value, const std::string &path) {
        const SettingMember *setting = std::get_if<SettingMember>(&row.field);
        const bool names_a_line = setting != nullptr && *setting == SettingMember(&SlotSettings::lockout_from);
        if (names_a_line && value != "working" && value != "protected" && !value.empty()) {
            refuse("invalid-value", path,
                   "'" + one_line(value) + "' is none of 'working', 'protected' and the empty text");
        }
    }

    std::optional<ListEntry> find(ListKind kind, const std::vector<std::string> &keys, const Place &place) const {
        for (ListEntry &entry : entries(kind, system_, place)) {
            if (entry.keys == keys) {
                return std::move(entry);
            }
        }
        return std::nullopt;
    }

    static std::vector<std::string> canonical_keys(const NativeNode &node, const std::string &path) {
        std::vector<std::string> keys;
        for (const NativeNode &key : native::keys(node)) {
            const auto value = key.value ? models::canonical(*key.schema, *key.value) : std::nullopt;
            if (!value) {
                refuse("invalid-value", path,
                       std::string("the key ") + key.schema->name + " has no value that it can hold");
            }
            keys.push_back(*value);
        }
        return keys;
    }

    // Of a list: whether it has entries.
    bool exists(const lysc_node &schema, const Place &place) const {
        if (schema.nodetype == LYS_LEAF) {
            return !is_key(schema) && value_of(table_.leaf(schema).field, system_, place);
        }
        if (schema.nodetype == LYS_LIST) {
            return !entries(table_.list(schema).kind, system_, place).empty();
        }
        const std::vector<const lysc_node *> children = table_.schema().children(&schema);
        return std::any_of(children.begin(), children.end(),
                           [&](const lysc_node *child) { return exists(*child, place); });
    }

    void clear(const lysc_node &schema, const Place &place) {
        if (schema.nodetype == LYS_LEAF) {
            if (!is_key(schema)) {
                set_value(table_.leaf(schema).field, system_, place, std::nullopt);
            }
        } else if (schema.nodetype == LYS_LIST) {
            clear_entries(schema, place);
        } else {
            clear_below(schema, place);
        }
    }

    // The entries of hardware stay, without their settings, as long as the hardware is fitted.
    void clear_entries(const lysc_node &list, const Place &place) {
        const ListKind kind = table_.list(list).kind;
        if (kind == ListKind::thresholds) {
            slot(system_, place.slot).lines.at(place.port - 1).rx_thresholds.clear();
            return;
        }
        for (const ListEntry &entry : entries(kind, system_, place)) {
            clear_below(list, entry.place);
        }
    }

    void clear_below(const lysc_node &schema, const Place &place) {
        for (const lysc_node *child : table_.schema().children(&schema)) {
            clear(*child, place);
        }
    }

    LineSystem system_;
    std::vector<SetLeaf> set_;
    const NativeTable &table_ = NativeTable::device();
};

// An attenuator moves when its setting has changed.
void move_attenuators(LineSystem &after, const LineSystem &before) {
    for (const int number : fitted_slots(after)) {
        Slot &now = slot(after, number);
        for (std::size_t line = 0; line < line_count; ++line) {
            const LineSettings &settings = now.lines.at(line);
            const LineSettings &old = slot(before, number).lines.at(line);
            Attenuators &attenuators = now.module->attenuators.at(line);
            if (settings.rx_attenuation != old.rx_attenuation) {
                attenuators.rx = attenuation(settings.rx_attenuation);
            }
            if (settings.tx_attenuation != old.tx_attenuation) {
                attenuators.tx = attenuation(settings.tx_attenuation);
            }
        }
    }
}

} // namespace

Edited carry_out(const LineSystem &system, const native::NetRequest &edit) {
    Edit run(system);
    run.apply(edit.roots, {}, "");
    Edited edited{run.take(), run.take_set()};
    move_attenuators(edited.system, system);
    return edited;
}

LineSystem apply(const LineSystem &system, const native::NetRequest &edit) {
    return carry_out(system, edit).system;
}

void require_kept(const Edited &edited, const LineSystem &stored) {
    for (const SetLeaf &leaf : edited.set) {
        if (value_of(leaf.field, stored, leaf.place) != leaf.value) {
            refuse("operation-failed", leaf.path, "the device has not kept the value");
        }
    }
    if (stored != edited.system) {
        refuse("operation-failed", "", "the device has not kept the edit");
    }
}

} // namespace ocpsm::line_system

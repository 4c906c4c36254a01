#include "simulator/line_system/native_table.hpp"

#include <libyang/libyang.h>

#include <array>
#include <charconv>
#include <stdexcept>

#include "simulator/line_system/database_items.hpp"

namespace ocpsm::line_system {
namespace {

#define PORT_HISTORY                                                                                                   \
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
#define SECOND30_HISTORY                                                                                               \
    PORT_HISTORY "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history"
#define TIME_LINE                                                                                                      \
    SECOND30_HISTORY "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance"

constexpr std::array list_table{
    ListRow{"/active-nodes/active-node", ListKind::nodes_with_modules},
    ListRow{"/active-nodes/active-node/slot", ListKind::fitted_slots},
    ListRow{"/preconfigured-nodes/preconfigured-node", ListKind::nodes_without_modules},
    ListRow{"/preconfigured-nodes/preconfigured-node/slot", ListKind::pulled_slots},
    ListRow{"/interface-configurations/interface-configuration", ListKind::interfaces},
    ListRow{"/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold",
            ListKind::thresholds},
    ListRow{"/ots-oper/ots-ports/ots-port", ListKind::line_ports},
    ListRow{"/optics-oper/optics-ports/optics-port", ListKind::line_ports},
    ListRow{PORT_HISTORY, ListKind::line_histories},
    ListRow{SECOND30_HISTORY, ListKind::latest},
    ListRow{TIME_LINE, ListKind::latest},
};

constexpr char node_name[] = "0/RP0/CPU0";

template <class Visit>
void for_each_slot(const LineSystem &system, bool fitted, Visit visit) {
    for (int number = 1; number <= slot_count; ++number) {
        const Slot &each = slot(system, number);
        if (fitted ? each.module.has_value() : each.provisioned && !each.module) {
            visit(number, each);
        }
    }
}

std::vector<ListEntry> slots(const LineSystem &system, bool fitted) {
    std::vector<ListEntry> list;
    for_each_slot(system, fitted, [&](int number, const Slot &) {
        list.push_back({{std::to_string(number)}, {.slot = number}, fitted});
    });
    return list;
}

// The node itself is always there; in advance it is configured only together with one of its slots.
std::vector<ListEntry> nodes(const LineSystem &system, bool fitted) {
    if (!fitted && slots(system, false).empty()) {
        return {};
    }
    return {{{node_name}, {}, fitted}};
}

std::vector<ListEntry> interfaces(const LineSystem &system) {
    std::vector<ListEntry> list;
    for (const bool fitted : {true, false}) {
        for_each_slot(system, fitted, [&](int number, const Slot &) {
            for (std::size_t port = 1; port < port_count; ++port) {
                list.push_back(
                    {{fitted ? "act" : "pre", controller_name(number, port)}, {.slot = number, .port = port}, fitted});
            }
        });
    }
    return list;
}

bool has_history(const Slot &slot, std::size_t port) {
    const Readings all = readings(slot, port);
    return all.received || all.transmitted;
}

std::vector<ListEntry> line_ports(const LineSystem &system, bool with_history_only) {
    std::vector<ListEntry> list;
    for_each_slot(system, true, [&](int number, const Slot &each) {
        for (std::size_t port = 1; port < port_count; ++port) {
            if (!with_history_only || has_history(each, port)) {
                list.push_back({{controller_name(number, port)}, {.slot = number, .port = port}});
            }
        }
    });
    return list;
}

std::vector<ListEntry> thresholds(const LineSystem &system, const Place &place) {
    std::vector<ListEntry> list;
    for (const auto &[type, value] : slot(system, place.slot).lines.at(place.port - 1).rx_thresholds) {
        list.push_back({{type}, {place.slot, place.port, type}});
    }
    return list;
}

std::string text_of(bool value) {
    return value ? "true" : "false";
}

std::string text_of(const std::string &value) {
    return value;
}

template <class Number>
std::string text_of(Number value) {
    return std::to_string(value);
}

template <class Value>
std::optional<std::string> text_of(const std::optional<Value> &value) {
    return value ? std::optional(text_of(*value)) : std::nullopt;
}

void parse(const std::string &text, bool &value) {
    value = text == "true";
}

void parse(const std::string &text, std::string &value) {
    value = text;
}

template <class Number>
void parse(const std::string &text, Number &value) {
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc{} || end != text.data() + text.size()) {
        throw std::logic_error("no canonical number: " + text);
    }
}

template <class Value>
void assign(std::optional<Value> &setting, const std::optional<std::string> &text) {
    setting.reset();
    if (text) {
        parse(*text, setting.emplace());
    }
}

struct Get {
    const LineSystem &system;
    const Place &place;

    std::optional<std::string> operator()(const SettingMember &member) const { return std::visit(*this, member); }
    std::optional<std::string> operator()(const ReadingMember &member) const { return std::visit(*this, member); }

    template <class Value>
    std::optional<std::string> operator()(std::optional<Value> SlotSettings::*field) const {
        return text_of(slot(system, place.slot).settings.*field);
    }
    std::optional<std::string> operator()(std::optional<int> LineSettings::*field) const {
        return text_of(slot(system, place.slot).lines.at(place.port - 1).*field);
    }
    std::optional<std::string> operator()(Thresholds LineSettings::*field) const {
        const Thresholds &all = slot(system, place.slot).lines.at(place.port - 1).*field;
        const auto entry = all.find(place.threshold);
        return entry == all.end() ? std::nullopt : text_of(entry->second);
    }
    std::optional<std::string> operator()(std::optional<int> Readings::*field) const {
        return text_of(readings(slot(system, place.slot), place.port).*field);
    }
    std::optional<std::string> operator()(PortStatus) const {
        const Slot &each = slot(system, place.slot);
        const bool active = each.module && line_of(each.module->protection.active) == place.port - 1;
        return active ? "active" : "standby";
    }
    std::optional<std::string> operator()(const History &field) const {
        const Readings all = readings(slot(system, place.slot), place.port);
        const std::optional<Statistics> &statistics = all.*field.power;
        return statistics ? std::optional(history_text(*statistics.*field.value)) : std::nullopt;
    }
};

struct Set {
    LineSystem &system;
    const Place &place;
    const std::optional<std::string> &text;

    template <class Value>
    void operator()(std::optional<Value> SlotSettings::*field) const {
        assign(slot(system, place.slot).settings.*field, text);
    }
    void operator()(std::optional<int> LineSettings::*field) const {
        assign(slot(system, place.slot).lines.at(place.port - 1).*field, text);
    }
    void operator()(Thresholds LineSettings::*field) const {
        Thresholds &all = slot(system, place.slot).lines.at(place.port - 1).*field;
        if (text || all.contains(place.threshold)) {
            assign(all[place.threshold], text);
        }
    }
};

std::vector<LeafRow> make_leaf_rows() {
    std::vector<LeafRow> rows;
    for (const SettingRow &row : setting_rows) {
        rows.push_back({row.native, row.member});
    }
    for (const ReadingRow &row : reading_rows) {
        rows.push_back({row.native, row.member});
    }
    return rows;
}

// The row that a path belongs to; there must be one and no other.
template <class Row, class Matches>
const Row *only_row(std::span<const Row> rows, const std::string &path, Matches matches) {
    const Row *found = nullptr;
    for (const Row &row : rows) {
        if (matches(row.path)) {
            if (found != nullptr) {
                throw std::logic_error("two rows of the native table are for " + path);
            }
            found = &row;
        }
    }
    if (found == nullptr) {
        throw std::logic_error("the native table has no row for " + path);
    }
    return found;
}

template <class Row>
void require_used(std::span<const Row> rows, const std::map<const lysc_node *, const Row *> &used) {
    for (const Row &row : rows) {
        bool found = false;
        for (const auto &[node, other] : used) {
            found = found || other == &row;
        }
        if (!found) {
            throw std::logic_error("no node for the row of the native table for " + std::string(row.path));
        }
    }
}

} // namespace

bool is_key(const lysc_node &node) {
    const lysc_node *leaf = &node;
    return lysc_is_key(leaf);
}

std::span<const LeafRow> leaf_rows() {
    static const std::vector<LeafRow> rows = make_leaf_rows();
    return rows;
}

std::span<const ListRow> list_rows() {
    return list_table;
}

const NativeTable &NativeTable::device() {
    static const NativeTable table(models::Schema::native(), leaf_rows(), list_table);
    return table;
}

NativeTable::NativeTable(const models::Schema &schema, std::span<const LeafRow> leaves, std::span<const ListRow> lists)
    : schema_(&schema) {
    add_below(nullptr, leaves, lists);
    require_used(leaves, leaves_);
    require_used(lists, lists_);
}

void NativeTable::add_below(const lysc_node *parent, std::span<const LeafRow> leaves, std::span<const ListRow> lists) {
    for (const lysc_node *node : schema_->children(parent)) {
        add(*node, leaves, lists);
    }
}

void NativeTable::add(const lysc_node &node, std::span<const LeafRow> leaves, std::span<const ListRow> lists) {
    const std::string path = models::schema_path(node);
    if (node.nodetype == LYS_LEAF) {
        if (!is_key(node)) {
            leaves_[&node] = only_row(leaves, path, [&](std::string_view end) { return path.ends_with(end); });
        }
        return;
    }
    if (node.nodetype == LYS_LIST) {
        lists_[&node] = only_row(lists, path, [&](std::string_view whole) { return path == whole; });
    }
    add_below(&node, leaves, lists);
}

std::vector<ListEntry> entries(ListKind kind, const LineSystem &system, const Place &place) {
    switch (kind) {
    case ListKind::nodes_with_modules:
        return nodes(system, true);
    case ListKind::fitted_slots:
        return slots(system, true);
    case ListKind::nodes_without_modules:
        return nodes(system, false);
    case ListKind::pulled_slots:
        return slots(system, false);
    case ListKind::interfaces:
        return interfaces(system);
    case ListKind::thresholds:
        return thresholds(system, place);
    case ListKind::line_ports:
        return line_ports(system, false);
    case ListKind::line_histories:
        return line_ports(system, true);
    case ListKind::latest:
        return {{{"1"}, place}};
    }
    return {};
}

std::optional<std::string> value_of(const Field &field, const LineSystem &system, const Place &place) {
    return std::visit(Get{system, place}, field);
}

void set_value(const Field &field, LineSystem &system, const Place &place, const std::optional<std::string> &value) {
    const SettingMember *setting = std::get_if<SettingMember>(&field);
    if (setting == nullptr) {
        throw std::logic_error("operational state is not set");
    }
    std::visit(Set{system, place, value}, *setting);
}

} // namespace ocpsm::line_system

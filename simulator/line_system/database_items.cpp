#include "simulator/line_system/database_items.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "simulator/bag/encoder.hpp"
#include "simulator/line_system.hpp"
#include "simulator/line_system/settings.hpp"

namespace ocpsm::line_system {
namespace {

constexpr std::string_view operational = "/oper/ots/if/";
constexpr std::string_view configuration = "/cfg/if/act/";
constexpr std::string_view history = "/oper/perfmgmt/gl/periodic/optics/interface/";
constexpr std::string_view inventory = "/oper/inventory/gl/entity/";

// The width to which a device pads the values of its history.
constexpr std::size_t history_text_width = 10;

template <class Visit>
void for_each_field(RecordPart part, Visit visit) {
    for (const ReadingRow &row : reading_rows) {
        if (row.part == part) {
            visit(row);
        }
    }
}

struct IsThere {
    const Readings &port;

    bool operator()(std::optional<int> Readings::*value) const { return (port.*value).has_value(); }
    bool operator()(const History &field) const { return (port.*field.power).has_value(); }
    bool operator()(PortStatus) const { return false; }
};

bool any(RecordPart part, const Readings &port) {
    bool found = false;
    for_each_field(part, [&](const ReadingRow &row) { found = found || std::visit(IsThere{port}, row.member); });
    return found;
}

struct PutField {
    bag::Encoder &encoder;
    std::string_view name;
    const Readings &port;

    void operator()(std::optional<int> Readings::*value) const { encoder.int32(name, (port.*value).value()); }
    void operator()(const History &field) const {
        encoder.text(name, history_text((port.*field.power).value().*field.value));
    }
    void operator()(PortStatus) const {}
};

void put_fields(bag::Encoder &encoder, RecordPart part, const Readings &port) {
    for_each_field(part, [&](const ReadingRow &row) {
        if (std::visit(IsThere{port}, row.member)) {
            std::visit(PutField{encoder, row.field, port}, row.member);
        }
    });
}

// What a setting of a line is set to; a slot's settings are no controller's.
struct Configured {
    const LineSettings &line;

    std::optional<int> operator()(std::optional<int> LineSettings::*member) const { return line.*member; }
    std::optional<int> operator()(Thresholds LineSettings::*member) const { return low_threshold_of(line.*member); }
    template <class Member>
    std::optional<int> operator()(Member) const {
        return std::nullopt;
    }
};

std::string join(std::string_view subtree, std::string_view key, std::string_view item) {
    return std::string(subtree).append(key).append(item);
}

// "Ots0_1_0_2": a controller's name with its slashes replaced, which would be steps of the path.
std::string controller_key(int slot, std::size_t port) {
    return "Ots0_" + std::to_string(slot) + "_0_" + std::to_string(port);
}

// "0%2f1-PSM-OM".
std::string inventory_key(int slot) {
    std::string name = module_name(slot);
    return name.replace(name.find('/'), 1, "%2f");
}

void put_struct(bag::Encoder &encoder, std::string_view name, RecordPart part, const Readings &port) {
    if (any(part, port)) {
        encoder.begin_struct(name);
        put_fields(encoder, part, port);
        encoder.end_struct();
    }
}

class Items {
public:
    void add_readings(const std::string &key, const Readings &port) {
        add_optics_info(key, port);
        add_ots_info(key, port);
        add_history(key, port);
    }

    // A configured value is an item of its own.
    void add_configuration(const std::string &key, const LineSettings &line) {
        for (const SettingRow &row : setting_rows) {
            const std::optional<int> value = std::visit(Configured{line}, row.member);
            if (value && !row.item.empty()) {
                add(join(configuration, key, row.item), SYSDB_ITEM_INT32, sysdb::int32_data(*value));
            }
        }
    }

    void add_inventory(int slot, const std::string &name) {
        bag::Encoder encoder("inv_basic_bag", 1, 0);
        encoder.begin_struct("inv_phy_entity_basic_info").text("Name", name).end_struct();
        add(join(inventory, inventory_key(slot), "/attrib/inv_basic_bag"), SYSDB_ITEM_BAG, encoder.finish());
    }

    std::vector<sysdb::Item> take() { return std::move(items_); }

private:
    void add(std::string path, sysdb_item_datatype_td type, std::string data) {
        items_.push_back({std::move(path), type, std::move(data)});
    }

    void add_optics_info(const std::string &key, const Readings &port) {
        if (!any(RecordPart::thresholds, port)) {
            return;
        }
        bag::Encoder encoder("optics_info", 1, 0);
        put_struct(encoder, "optics_edm_info", RecordPart::thresholds, port);
        add(join(operational, key, "/optics_info"), SYSDB_ITEM_BAG, encoder.finish());
    }

    // The record names the part with the attenuations with a capital letter.
    void add_ots_info(const std::string &key, const Readings &port) {
        if (!any(RecordPart::lane, port) && !any(RecordPart::attenuators, port)) {
            return;
        }
        bag::Encoder encoder("ots_info", 1, 0);
        if (any(RecordPart::lane, port)) {
            encoder.begin_struct("ots_edm_info").begin_array("LaneData").begin_struct(bag::unnamed);
            put_fields(encoder, RecordPart::lane, port);
            encoder.end_struct().end_array().end_struct();
        }
        put_struct(encoder, "Ots_edm_info", RecordPart::attenuators, port);
        add(join(operational, key, "/ots_info"), SYSDB_ITEM_BAG, encoder.finish());
    }

    void add_history(const std::string &key, const Readings &port) {
        if (!any(RecordPart::received, port) && !any(RecordPart::transmitted, port)) {
            return;
        }
        bag::Encoder encoder("pm_optics_paras", 1, 0);
        encoder.begin_struct("pm_optics_paras");
        put_struct(encoder, "OPR", RecordPart::received, port);
        put_struct(encoder, "OPT", RecordPart::transmitted, port);
        encoder.end_struct();
        add(join(history, key, "/30sec/optics/1/timeline_rev/0x1"), SYSDB_ITEM_BAG, encoder.finish());
    }

    std::vector<sysdb::Item> items_;
};

} // namespace

std::string history_text(int hundredths_of_dbm) {
    const std::string text = hundredths(hundredths_of_dbm) + " ";
    return std::string(history_text_width - std::min(history_text_width, text.size()), ' ') + text;
}

std::vector<sysdb::Item> port_items(int slot, std::size_t port, const Readings &readings) {
    Items items;
    items.add_readings(controller_key(slot, port), readings);
    return items.take();
}

std::vector<sysdb::Item> database_items(const LineSystem &system) {
    Items items;
    for (const int number : fitted_slots(system)) {
        const Slot &fitted = slot(system, number);
        for (std::size_t port = 0; port < port_count; ++port) {
            const std::string key = controller_key(number, port);
            items.add_readings(key, readings(fitted, port));
            if (port != 0) {
                items.add_configuration(key, fitted.lines.at(port - 1));
            }
        }
        items.add_inventory(number, module_name(number));
    }
    return items.take();
}

} // namespace ocpsm::line_system

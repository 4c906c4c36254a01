#include "simulator/line_system/database_items.hpp"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/bag/encoder.hpp"

namespace ocpsm::line_system {
namespace {

constexpr std::string_view operational = "/oper/ots/if/";
constexpr std::string_view configuration = "/cfg/if/act/";
constexpr std::string_view history = "/oper/perfmgmt/gl/periodic/optics/interface/";
constexpr std::string_view inventory = "/oper/inventory/gl/entity/";

// The width to which a device pads the values of its history.
constexpr std::size_t history_text_width = 10;

using Reading = std::optional<int> Readings::*;

// An integer field of a bag.
struct FieldRow {
    std::string_view name;
    Reading value;
};

constexpr std::array threshold_fields{FieldRow{"RxLowThreshold", &Readings::rx_low_threshold}};

constexpr std::array lane_fields{
    FieldRow{"ReceivePower", &Readings::receive_power},
    FieldRow{"ReceivePowerDbm", &Readings::receive_power},
    FieldRow{"TransmitPower", &Readings::transmit_power},
    FieldRow{"TransmitPowerDbm", &Readings::transmit_power},
};

constexpr std::array attenuation_fields{
    FieldRow{"RxVoaAttenuation", &Readings::rx_attenuation},
    FieldRow{"TxVoaAttenuation", &Readings::tx_attenuation},
};

// A configured value is an item of its own.
constexpr std::array configured_items{
    FieldRow{"/Optics/rx_attenuation", &Readings::configured_rx_attenuation},
    FieldRow{"/Optics/tx_attenuation", &Readings::configured_tx_attenuation},
    FieldRow{"/Optics/rx_threshold/0x1", &Readings::configured_rx_threshold},
};

struct StatisticsRow {
    std::string_view name;
    int Statistics::*value;
};

constexpr std::array statistics_fields{
    StatisticsRow{"Average", &Statistics::average},
    StatisticsRow{"Minimum", &Statistics::minimum},
    StatisticsRow{"Maximum", &Statistics::maximum},
};

template <class Rows>
bool any(const Rows &rows, const Readings &port) {
    for (const FieldRow &row : rows) {
        if (port.*row.value) {
            return true;
        }
    }
    return false;
}

template <class Rows>
void put_fields(bag::Encoder &encoder, const Rows &rows, const Readings &port) {
    for (const FieldRow &row : rows) {
        if (const auto value = port.*row.value) {
            encoder.int32(row.name, *value);
        }
    }
}

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

void put_statistics(bag::Encoder &encoder, std::string_view name, const std::optional<Statistics> &statistics) {
    if (!statistics) {
        return;
    }
    encoder.begin_struct(name);
    for (const StatisticsRow &row : statistics_fields) {
        encoder.text(row.name, history_text(*statistics.*row.value));
    }
    encoder.end_struct();
}

class Items {
public:
    void add_port(const std::string &key, const Readings &port) {
        add_optics_info(key, port);
        add_ots_info(key, port);
        add_configuration(key, port);
        add_history(key, port);
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
        if (!any(threshold_fields, port)) {
            return;
        }
        bag::Encoder encoder("optics_info", 1, 0);
        encoder.begin_struct("optics_edm_info");
        put_fields(encoder, threshold_fields, port);
        encoder.end_struct();
        add(join(operational, key, "/optics_info"), SYSDB_ITEM_BAG, encoder.finish());
    }

    // The record names the part with the attenuations with a capital letter.
    void add_ots_info(const std::string &key, const Readings &port) {
        if (!any(lane_fields, port) && !any(attenuation_fields, port)) {
            return;
        }
        bag::Encoder encoder("ots_info", 1, 0);
        if (any(lane_fields, port)) {
            encoder.begin_struct("ots_edm_info").begin_array("LaneData").begin_struct(bag::unnamed);
            put_fields(encoder, lane_fields, port);
            encoder.end_struct().end_array().end_struct();
        }
        if (any(attenuation_fields, port)) {
            encoder.begin_struct("Ots_edm_info");
            put_fields(encoder, attenuation_fields, port);
            encoder.end_struct();
        }
        add(join(operational, key, "/ots_info"), SYSDB_ITEM_BAG, encoder.finish());
    }

    void add_configuration(const std::string &key, const Readings &port) {
        for (const FieldRow &row : configured_items) {
            if (const auto value = port.*row.value) {
                add(join(configuration, key, row.name), SYSDB_ITEM_INT32, sysdb::int32_data(*value));
            }
        }
    }

    void add_history(const std::string &key, const Readings &port) {
        if (!port.received && !port.transmitted) {
            return;
        }
        bag::Encoder encoder("pm_optics_paras", 1, 0);
        encoder.begin_struct("pm_optics_paras");
        put_statistics(encoder, "OPR", port.received);
        put_statistics(encoder, "OPT", port.transmitted);
        encoder.end_struct();
        add(join(history, key, "/30sec/optics/1/timeline_rev/0x1"), SYSDB_ITEM_BAG, encoder.finish());
    }

    std::vector<sysdb::Item> items_;
};

} // namespace

std::string history_text(int hundredths_of_dbm) {
    const long long magnitude = std::llabs(hundredths_of_dbm);
    const long long places = magnitude % 100;
    std::string text = hundredths_of_dbm < 0 ? "-" : "";
    text += std::to_string(magnitude / 100) + (places < 10 ? ".0" : ".") + std::to_string(places) + " ";
    if (text.size() < history_text_width) {
        text.insert(0, history_text_width - text.size(), ' ');
    }
    return text;
}

std::vector<sysdb::Item> port_items(int slot, std::size_t port, const Readings &readings) {
    Items items;
    items.add_port(controller_key(slot, port), readings);
    return items.take();
}

std::vector<sysdb::Item> database_items(const LineSystem &system) {
    Items items;
    for (const int number : fitted_slots(system)) {
        for (std::size_t port = 0; port < port_count; ++port) {
            items.add_port(controller_key(number, port), readings(slot(system, number), port));
        }
        items.add_inventory(number, module_name(number));
    }
    return items.take();
}

} // namespace ocpsm::line_system

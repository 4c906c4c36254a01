#include "bench/line_system/storage.hpp"

#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "bench/error.hpp"
#include "bench/line_system/database_items.hpp"
#include "bench/sysdb/item.hpp"

namespace bench::line_system {
namespace {

using sysdb::Table;

// The record that tells a line system from any other store. The number rises when older programs cannot read the
// records.
constexpr std::string_view marker = "format";
constexpr std::string_view marker_text = "optical line system 1";
constexpr std::string_view marker_name = "optical line system ";

// A fitted slot has the record "slot/1"; the module's values stand below it, those of a port below "slot/1/port/2/".
constexpr std::string_view inventory_record = "/inventory-name";

struct NumberRow {
    std::string_view record;
    std::optional<int> Port::*value;
};

constexpr std::array numbers{
    NumberRow{"receive-power", &Port::receive_power},
    NumberRow{"transmit-power", &Port::transmit_power},
    NumberRow{"rx-attenuation", &Port::rx_attenuation},
    NumberRow{"tx-attenuation", &Port::tx_attenuation},
    NumberRow{"rx-low-threshold", &Port::rx_low_threshold},
    NumberRow{"configured-rx-attenuation", &Port::configured_rx_attenuation},
    NumberRow{"configured-tx-attenuation", &Port::configured_tx_attenuation},
    NumberRow{"configured-rx-threshold", &Port::configured_rx_threshold},
};

struct StatisticsRow {
    std::string_view record;
    std::optional<Statistics> Port::*value;
};

constexpr std::array statistics{
    StatisticsRow{"received", &Port::received},
    StatisticsRow{"transmitted", &Port::transmitted},
};

std::string slot_record(std::size_t index) {
    return "slot/" + std::to_string(index + 1);
}

std::string port_record(std::size_t index, std::size_t port, std::string_view record) {
    return slot_record(index) + "/port/" + std::to_string(port) + "/" + std::string(record);
}

[[noreturn]] void refuse_damaged(const std::string &record) {
    throw Error(Error::Source::input, "operation-failed", "",
                "the line system is damaged: its record " + record + " cannot be understood",
                "restore the directory from a copy or create a new line system");
}

// Numbers separated by one blank, as many as asked for.
template <std::size_t count>
std::array<int, count> parse_numbers(const std::string &record, std::string_view text) {
    std::array<int, count> values{};
    const char *position = text.data();
    const char *const end = position + text.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i != 0 && (position == end || *position++ != ' ')) {
            refuse_damaged(record);
        }
        const auto [next, failure] = std::from_chars(position, end, values.at(i));
        if (failure != std::errc{}) {
            refuse_damaged(record);
        }
        position = next;
    }
    if (position != end) {
        refuse_damaged(record);
    }
    return values;
}

Port load_port(const sysdb::ReadTransaction &transaction, std::size_t index, std::size_t number) {
    Port port;
    for (const NumberRow &row : numbers) {
        const std::string record = port_record(index, number, row.record);
        if (const auto text = transaction.get(Table::line_system, record)) {
            port.*row.value = parse_numbers<1>(record, *text)[0];
        }
    }
    for (const StatisticsRow &row : statistics) {
        const std::string record = port_record(index, number, row.record);
        if (const auto text = transaction.get(Table::line_system, record)) {
            const auto [average, minimum, maximum] = parse_numbers<3>(record, *text);
            port.*row.value = Statistics{average, minimum, maximum};
        }
    }
    return port;
}

void save_port(sysdb::WriteTransaction &transaction, std::size_t index, std::size_t number, const Port &port) {
    for (const NumberRow &row : numbers) {
        if (const auto value = port.*row.value) {
            transaction.put(Table::line_system, port_record(index, number, row.record), std::to_string(*value));
        }
    }
    for (const StatisticsRow &row : statistics) {
        if (const auto value = port.*row.value) {
            const std::string text = std::to_string(value->average) + " " + std::to_string(value->minimum) + " " +
                                     std::to_string(value->maximum);
            transaction.put(Table::line_system, port_record(index, number, row.record), text);
        }
    }
}

void require_marker(const sysdb::ReadTransaction &transaction) {
    const auto text = transaction.get(Table::line_system, marker);
    if (text == marker_text) {
        return;
    }
    if (text && text->starts_with(marker_name)) {
        throw Error(Error::Source::input, "operation-failed", "",
                    "the line system was made by another version of this program",
                    "use that version, or create a new line system");
    }
    throw Error(Error::Source::input, "operation-failed", "", "the directory holds no line system",
                "create one there first");
}

// Closes the store again unless all went well.
class OpenScope {
public:
    OpenScope(sysdb::Store &store, const std::filesystem::path &directory, sysdb::Store::Mode mode) : store_(store) {
        store.open(directory, mode);
    }
    OpenScope(const OpenScope &) = delete;
    OpenScope &operator=(const OpenScope &) = delete;
    ~OpenScope() {
        if (!keep_) {
            store_.close();
        }
    }
    void keep() { keep_ = true; }

private:
    sysdb::Store &store_;
    bool keep_ = false;
};

} // namespace

void create(sysdb::Store &store, const std::filesystem::path &directory, const LineSystem &system) {
    OpenScope scope(store, directory, sysdb::Store::Mode::create);
    const auto transaction = store.write();
    save(*transaction, system);
    transaction->commit();
    scope.keep();
}

LineSystem open(sysdb::Store &store, const std::filesystem::path &directory) {
    OpenScope scope(store, directory, sysdb::Store::Mode::existing);
    LineSystem system = load(*store.read());
    scope.keep();
    return system;
}

LineSystem load(const sysdb::ReadTransaction &transaction) {
    require_marker(transaction);
    LineSystem system;
    for (std::size_t index = 0; index < system.slots.size(); ++index) {
        const std::string record = slot_record(index);
        if (!transaction.get(Table::line_system, record)) {
            continue;
        }
        Module &module = system.slots.at(index).emplace();
        if (const auto name = transaction.get(Table::line_system, record + std::string(inventory_record))) {
            module.inventory_name = *name;
        }
        for (std::size_t port = 0; port < module.ports.size(); ++port) {
            module.ports.at(port) = load_port(transaction, index, port);
        }
    }
    return system;
}

void save(sysdb::WriteTransaction &transaction, const LineSystem &system) {
    transaction.erase_all(Table::line_system, "");
    transaction.erase_all(Table::items, "");
    transaction.put(Table::line_system, marker, marker_text);
    for (std::size_t index = 0; index < system.slots.size(); ++index) {
        const auto &module = system.slots.at(index);
        if (!module) {
            continue;
        }
        transaction.put(Table::line_system, slot_record(index), "");
        if (module->inventory_name) {
            transaction.put(Table::line_system, slot_record(index) + std::string(inventory_record),
                            *module->inventory_name);
        }
        for (std::size_t port = 0; port < module->ports.size(); ++port) {
            save_port(transaction, index, port, module->ports.at(port));
        }
    }
    for (const sysdb::Item &item : database_items(system)) {
        sysdb::put_item(transaction, item);
    }
}

} // namespace bench::line_system

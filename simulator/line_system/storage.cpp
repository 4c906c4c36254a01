#include "simulator/line_system/storage.hpp"

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <variant>

#include "framework/error.hpp"
#include "simulator/database/item.hpp"
#include "simulator/line_system/database_items.hpp"
#include "simulator/line_system/settings.hpp"

namespace ocpsm::line_system {
namespace {

using sysdb::Table;

// The record that tells a line system from any other store. The number rises when older programs cannot read the
// records.
constexpr std::string_view marker = "format";
constexpr std::string_view marker_text = "optical line system 2";
constexpr std::string_view marker_name = "optical line system ";

[[noreturn]] void refuse_damaged(const std::string &record) {
    throw Error(Error::Source::input, "operation-failed", "",
                "the line system is damaged: its record " + record + " cannot be understood",
                "restore the directory from a copy or create a new line system");
}

template <class Number>
void parse_number(const std::string &record, std::string_view &text, Number &value) {
    const char *const end = text.data() + text.size();
    const auto [next, failure] = std::from_chars(text.data(), end, value);
    if (failure != std::errc{}) {
        refuse_damaged(record);
    }
    text.remove_prefix(static_cast<std::size_t>(next - text.data()));
}

void parse_number(const std::string &record, std::string_view &text, bool &value) {
    int number = 0;
    parse_number(record, text, number);
    if (number != 0 && number != 1) {
        refuse_damaged(record);
    }
    value = number == 1;
}

template <class Number>
std::string number_text(Number value) {
    return std::to_string(value);
}

std::string number_text(bool value) {
    return value ? "1" : "0";
}

// Writes what the transfer functions below name.
class Saver {
public:
    explicit Saver(sysdb::WriteTransaction &transaction) : transaction_(transaction) {}

    // Numbers separated by one blank.
    template <class First, class... Rest>
    void numbers(const std::string &record, const First &first, const Rest &...rest) {
        std::string text = number_text(first);
        ((text += " " + number_text(rest)), ...);
        put(record, text);
    }

    template <class Number>
    void setting(const std::string &record, const std::optional<Number> &value) {
        if (value) {
            numbers(record, *value);
        }
    }

    void setting(const std::string &record, const std::optional<std::string> &value) {
        if (value) {
            put(record, *value);
        }
    }

    // A record for each: the number, or "-" for none, a blank, and the name, which can be of any kind.
    void setting(const std::string &record, const Thresholds &values) {
        std::size_t index = 0;
        for (const auto &[name, value] : values) {
            put(record + "/" + std::to_string(index++), (value ? std::to_string(*value) : "-") + " " + name);
        }
    }

    // Transfers something that may be absent; `record` is among what is written of it.
    template <class Value, class Transfer>
    void when_there(const std::string & /*record*/, const std::optional<Value> &value, Transfer transfer) {
        if (value) {
            transfer(*value);
        }
    }

private:
    void put(const std::string &record, std::string_view text) { transaction_.put(Table::line_system, record, text); }

    sysdb::WriteTransaction &transaction_;
};

// Reads it back.
class Loader {
public:
    explicit Loader(const sysdb::ReadTransaction &transaction) : transaction_(transaction) {}

    template <class First, class... Rest>
    void numbers(const std::string &record, First &first, Rest &...rest) const {
        const auto text = transaction_.get(Table::line_system, record);
        if (!text) {
            refuse_damaged(record);
        }
        std::string_view left = *text;
        parse_number(record, left, first);
        (parse_next(record, left, rest), ...);
        if (!left.empty()) {
            refuse_damaged(record);
        }
    }

    template <class Number>
    void setting(const std::string &record, std::optional<Number> &value) const {
        if (transaction_.get(Table::line_system, record)) {
            numbers(record, value.emplace());
        }
    }

    void setting(const std::string &record, std::optional<std::string> &value) const {
        if (const auto text = transaction_.get(Table::line_system, record)) {
            value = *text;
        }
    }

    template <class Value, class Transfer>
    void when_there(const std::string &record, std::optional<Value> &value, Transfer transfer) const {
        if (transaction_.get(Table::line_system, record)) {
            transfer(value.emplace());
        }
    }

    void setting(const std::string &records, Thresholds &values) const {
        transaction_.for_each(Table::line_system, records + "/", [&](std::string_view record, std::string_view text) {
            add_threshold(std::string(record), text, values);
            return true;
        });
    }

private:
    template <class Number>
    static void parse_next(const std::string &record, std::string_view &text, Number &value) {
        skip_blank(record, text);
        parse_number(record, text, value);
    }

    static void skip_blank(const std::string &record, std::string_view &text) {
        if (text.empty() || text.front() != ' ') {
            refuse_damaged(record);
        }
        text.remove_prefix(1);
    }

    static void add_threshold(const std::string &record, std::string_view text, Thresholds &values) {
        std::optional<int> value;
        if (text.substr(0, 2) == "- ") {
            text.remove_prefix(1);
        } else {
            parse_number(record, text, value.emplace());
        }
        skip_blank(record, text);
        if (!values.emplace(text, value).second) {
            refuse_damaged(record);
        }
    }

    const sysdb::ReadTransaction &transaction_;
};

// The records, for both directions: those of a slot stand below "slot/1/". Of a slot's or a line's settings, those of
// the rows that belong to it.
template <class Archive, class Settings>
void transfer_settings(Archive &archive, const std::string &records, Settings &settings) {
    for (const SettingRow &row : setting_rows) {
        const auto transfer_one = [&](auto member) {
            if constexpr (std::is_invocable_v<decltype(member), Settings &>) {
                archive.setting(records + std::string(row.record), settings.*member);
            }
        };
        std::visit(transfer_one, row.member);
    }
}

template <class Archive, class History>
void transfer_history(Archive &archive, const std::string &records, History &history) {
    auto &running = history.running;
    archive.numbers(records + "running", running.count, running.sum, running.minimum, running.maximum);
    archive.when_there(records + "last", history.last, [&](auto &last) {
        archive.numbers(records + "last", last.average, last.minimum, last.maximum);
    });
}

template <class Archive, class Protection>
void transfer_protection(Archive &archive, const std::string &records, Protection &protection) {
    bool on_secondary = protection.active == Path::secondary;
    archive.numbers(records + "on-secondary", on_secondary);
    if constexpr (!std::is_const_v<Protection>) {
        protection.active = on_secondary ? Path::secondary : Path::primary;
    }
    archive.setting(records + "restorable-since", protection.restorable_since);
}

template <class Archive, class Fitted>
void transfer_module(Archive &archive, const std::string &records, Fitted &module) {
    archive.numbers(records + "fitted-at", module.fitted_at);
    transfer_protection(archive, records, module.protection);
    for (std::size_t line = 0; line < line_count; ++line) {
        auto &attenuators = module.attenuators.at(line);
        archive.numbers(records + "attenuators/" + std::to_string(line), attenuators.rx, attenuators.tx);
    }
    for (std::size_t port = 0; port < port_count; ++port) {
        const std::string below = records + "port/" + std::to_string(port) + "/";
        transfer_history(archive, below + "received/", module.histories.at(port).received);
        transfer_history(archive, below + "transmitted/", module.histories.at(port).transmitted);
    }
}

template <class Archive, class Plugged>
void transfer_cabling(Archive &archive, const std::string &records, Plugged &cabling) {
    archive.numbers(records + "client-light", cabling.client_light);
    for (std::size_t line = 0; line < line_count; ++line) {
        auto &fibre = cabling.fibres.at(line);
        archive.numbers(records + "fibre/" + std::to_string(line), fibre.light, fibre.cut);
    }
    for (std::size_t port = 0; port < port_count; ++port) {
        archive.numbers(records + "transmit-offset/" + std::to_string(port), cabling.transmit_offsets.at(port));
    }
}

template <class Archive, class Place>
void transfer_slot(Archive &archive, const std::string &records, Place &slot) {
    archive.numbers(records + "provisioned", slot.provisioned);
    transfer_settings(archive, records + "settings/", slot.settings);
    for (std::size_t line = 0; line < line_count; ++line) {
        transfer_settings(archive, records + "line/" + std::to_string(line) + "/", slot.lines.at(line));
    }
    transfer_cabling(archive, records + "cabling/", slot.cabling);
    archive.when_there(records + "module/fitted-at", slot.module,
                       [&](auto &module) { transfer_module(archive, records + "module/", module); });
}

template <class Archive, class System>
void transfer(Archive &archive, System &system) {
    archive.numbers("clock", system.clock);
    for (std::size_t index = 0; index < system.slots.size(); ++index) {
        transfer_slot(archive, "slot/" + std::to_string(index + 1) + "/", system.slots.at(index));
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
    throw Error(Error::Source::input, "data-missing", "", "the directory holds no line system",
                "create one there first");
}

} // namespace

std::unique_ptr<sysdb::Store> create(const sysdb::Client &client, const std::filesystem::path &directory,
                                     const LineSystem &system) {
    auto store = client.open(directory, sysdb::Store::Mode::create);
    const auto transaction = store->write();
    save(*transaction, system);
    transaction->commit();
    return store;
}

std::unique_ptr<sysdb::Store> open(const sysdb::Client &client, const std::filesystem::path &directory) {
    auto store = client.open(directory, sysdb::Store::Mode::existing);
    require_marker(*store->read());
    return store;
}

LineSystem load(const sysdb::ReadTransaction &transaction) {
    require_marker(transaction);
    LineSystem system;
    Loader loader(transaction);
    transfer(loader, system);
    return system;
}

void save(sysdb::WriteTransaction &transaction, const LineSystem &system) {
    transaction.erase_all(Table::line_system, "");
    transaction.erase_all(Table::items, "");
    transaction.put(Table::line_system, marker, marker_text);
    Saver saver(transaction);
    transfer(saver, system);
    for (const sysdb::Item &item : database_items(system)) {
        sysdb::put_item(transaction, item);
    }
}

} // namespace ocpsm::line_system

// Items of the system database as records of the store: the type in four bytes, little-endian, then the data.
#ifndef OCPSM_SIMULATOR_DATABASE_ITEM_HPP
#define OCPSM_SIMULATOR_DATABASE_ITEM_HPP

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/store/store.hpp"
#include "sysdb_client.h"

namespace ocpsm::sysdb {

// An item with its full path, e.g. "/oper/ots/if/Ots0_1_0_2/ots_info".
struct Item {
    std::string path;
    sysdb_item_datatype_td type = 0;
    std::string data;

    bool operator==(const Item &) const = default;
};

struct ItemView {
    sysdb_item_datatype_td type = 0;
    std::string_view data;
};

inline constexpr std::size_t item_type_size = 4;

inline std::string item_record(sysdb_item_datatype_td type, std::string_view data) {
    std::string record;
    record.reserve(item_type_size + data.size());
    for (unsigned shift = 0; shift < 32; shift += 8) {
        record.push_back(static_cast<char>(type >> shift & 0xffu));
    }
    return record.append(data);
}

// Nothing when the record is too short for an item.
inline std::optional<ItemView> parse_item_record(std::string_view record) {
    if (record.size() < item_type_size) {
        return std::nullopt;
    }
    ItemView item{0, record.substr(item_type_size)};
    for (unsigned i = 0; i < item_type_size; ++i) {
        item.type |= static_cast<sysdb_item_datatype_td>(static_cast<unsigned char>(record[i])) << 8 * i;
    }
    return item;
}

// The data of an item of type SYSDB_ITEM_INT32: host byte order, as the interface has it.
inline std::string int32_data(std::int32_t value) {
    std::array<char, sizeof value> bytes{};
    std::memcpy(bytes.data(), &value, sizeof value);
    return {bytes.data(), bytes.size()};
}

inline void put_item(WriteTransaction &transaction, const Item &item) {
    transaction.put(Table::items, item.path, item_record(item.type, item.data));
}

} // namespace ocpsm::sysdb

#endif

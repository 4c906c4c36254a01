#include "simulator/store/records.hpp"

#include <cstring>

namespace ocpsm::sysdb {
namespace {

// In front of the key and the value. Numbers stand in the byte order of the machine: a store stays on it.
struct ChangeHead {
    std::uint8_t table;
    std::uint8_t erases;
    std::uint16_t key_size;
    std::uint32_t value_size;
};
static_assert(sizeof(ChangeHead) == 8 && max_key_size <= UINT16_MAX && max_store_size <= UINT32_MAX);

} // namespace

Draft::Draft() {
    tables_.tables.fill(std::make_shared<Records>());
}

Records &Draft::own(Table which) {
    const auto index = static_cast<std::size_t>(which);
    if (!own_.at(index)) {
        own_.at(index) = std::make_shared<Records>(tables_.table(which));
        tables_.tables.at(index) = own_.at(index);
    }
    return *own_.at(index);
}

void Draft::put(Table which, std::string_view key, std::string_view value) {
    Records &records = own(which);
    const auto [record, is_new] = records.try_emplace(std::string(key));
    tables_.size += is_new ? key.size() : 0;
    tables_.size += value.size() - record->second.size();
    record->second = value;
}

bool Draft::erase(Table which, std::string_view key) {
    if (!tables_.table(which).contains(key)) {
        return false;
    }
    Records &records = own(which);
    const auto found = records.find(key);
    tables_.size -= found->first.size() + found->second.size();
    records.erase(found);
    return true;
}

void append_change(std::string &bytes, Table table, std::string_view key, std::optional<std::string_view> value) {
    const ChangeHead head{static_cast<std::uint8_t>(table), static_cast<std::uint8_t>(value ? 0 : 1),
                          static_cast<std::uint16_t>(key.size()),
                          static_cast<std::uint32_t>(value ? value->size() : 0)};
    std::array<char, sizeof head> raw{};
    std::memcpy(raw.data(), &head, sizeof head);
    bytes.append(raw.data(), raw.size()).append(key).append(value.value_or(""));
}

std::string image_of(const Tables &tables) {
    std::string bytes;
    for (std::size_t index = 0; index < table_count; ++index) {
        const auto table = static_cast<Table>(index);
        for (const auto &[key, value] : tables.table(table)) {
            append_change(bytes, table, key, value);
        }
    }
    return bytes;
}

bool apply_changes(Draft &draft, std::string_view bytes) {
    while (!bytes.empty()) {
        ChangeHead head{};
        if (bytes.size() < sizeof head) {
            return false;
        }
        std::memcpy(&head, bytes.data(), sizeof head);
        bytes.remove_prefix(sizeof head);
        const std::size_t size = std::size_t{head.key_size} + head.value_size;
        if (head.table >= table_count || head.key_size == 0 || head.key_size > max_key_size || size > bytes.size()) {
            return false;
        }
        const std::string_view key = bytes.substr(0, head.key_size);
        const auto table = static_cast<Table>(head.table);
        if (head.erases != 0) {
            draft.erase(table, key);
        } else {
            draft.put(table, key, bytes.substr(head.key_size, head.value_size));
        }
        bytes.remove_prefix(size);
    }
    return true;
}

std::uint64_t hash_of(std::string_view bytes, std::uint64_t hash) {
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    }
    return hash;
}

} // namespace ocpsm::sysdb

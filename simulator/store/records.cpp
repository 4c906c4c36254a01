#include "simulator/store/records.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>

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

// Of a block that is full, half goes to a new one; at its end the new one begins, for keys that rise.
constexpr std::size_t block_size = 64;

} // namespace

Records::Records(const Records &other) : blocks_(other.blocks_) {
    for (Block &block : blocks_) {
        block.shared = true;
    }
}

Records::Place Records::place_of(std::string_view key) const {
    if (blocks_.empty()) {
        return {0, 0};
    }
    // Where a file is read, keys come in their order.
    if (const std::vector<Record> &last = *blocks_.back().records; last.back().key < key) {
        return {blocks_.size() - 1, last.size()};
    }
    const auto begins_behind = [](std::string_view wanted, const Block &block) {
        return wanted < block.records->front().key;
    };
    const auto behind = std::upper_bound(blocks_.begin(), blocks_.end(), key, begins_behind);
    const auto block = behind == blocks_.begin() ? behind : std::prev(behind);
    const std::vector<Record> &records = *block->records;
    const auto record = std::lower_bound(records.begin(), records.end(), key,
                                         [](const Record &one, std::string_view wanted) { return one.key < wanted; });
    return {static_cast<std::size_t>(block - blocks_.begin()), static_cast<std::size_t>(record - records.begin())};
}

bool Records::holds(const Place &place, std::string_view key) const {
    return place.block < blocks_.size() && place.record < blocks_[place.block].records->size() &&
           (*blocks_[place.block].records)[place.record].key == key;
}

const std::string *Records::find(std::string_view key) const {
    const Place place = place_of(key);
    return holds(place, key) ? &(*blocks_[place.block].records)[place.record].value : nullptr;
}

void Records::for_each(std::string_view from, const ReadTransaction::Visitor &visit) const {
    const Place begin = place_of(from);
    for (std::size_t block = begin.block; block < blocks_.size(); ++block) {
        const std::vector<Record> &records = *blocks_[block].records;
        for (std::size_t at = block == begin.block ? begin.record : 0; at < records.size(); ++at) {
            if (!visit(records[at].key, records[at].value)) {
                return;
            }
        }
    }
}

std::vector<Records::Record> &Records::own(std::size_t block) {
    Block &own = blocks_[block];
    if (own.shared) {
        own = {std::make_shared<std::vector<Record>>(*own.records)};
    }
    return *own.records;
}

std::optional<std::size_t> Records::put(std::string_view key, std::string_view value) {
    const Place place = place_of(key);
    if (!holds(place, key)) {
        insert(place, {std::string(key), std::string(value)});
        return std::nullopt;
    }
    std::string &kept = own(place.block)[place.record].value;
    const std::size_t size = kept.size();
    kept = value;
    return size;
}

void Records::insert(const Place &place, Record &&record) {
    const auto begin_block = [this](std::size_t at, std::vector<Record> &&records) {
        blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(at),
                       {std::make_shared<std::vector<Record>>(std::move(records))});
    };
    if (blocks_.empty()) {
        begin_block(0, {});
    }
    const bool is_full = blocks_[place.block].records->size() >= block_size;
    if (is_full && place.record == block_size) {
        begin_block(place.block + 1, {});
        own(place.block + 1).push_back(std::move(record));
        return;
    }
    std::vector<Record> &records = own(place.block);
    records.insert(records.begin() + static_cast<std::ptrdiff_t>(place.record), std::move(record));
    if (is_full) {
        const auto half = records.begin() + block_size / 2;
        std::vector<Record> rest(std::make_move_iterator(half), std::make_move_iterator(records.end()));
        records.erase(half, records.end());
        begin_block(place.block + 1, std::move(rest));
    }
}

void Records::erase(std::string_view key) {
    const Place place = place_of(key);
    std::vector<Record> &records = own(place.block);
    records.erase(records.begin() + static_cast<std::ptrdiff_t>(place.record));
    if (records.empty()) {
        blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(place.block));
    }
}

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
    const std::optional<std::size_t> replaced = own(which).put(key, value);
    tables_.size += value.size() + (replaced ? 0 : key.size());
    tables_.size -= replaced.value_or(0);
}

bool Draft::erase(Table which, std::string_view key) {
    const std::string *const before = tables_.table(which).find(key);
    if (before == nullptr) {
        return false;
    }
    tables_.size -= key.size() + before->size();
    own(which).erase(key);
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
        tables.table(table).for_each("", [&](std::string_view key, std::string_view value) {
            append_change(bytes, table, key, value);
            return true;
        });
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

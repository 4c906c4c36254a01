// The records of a store in memory and as bytes.
#ifndef OCPSM_SIMULATOR_STORE_RECORDS_HPP
#define OCPSM_SIMULATOR_STORE_RECORDS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/store/store.hpp"

namespace ocpsm::sysdb {

// An ordered map from keys to values. A copy shares all blocks of records with what it is a copy of; what is changed
// in it costs it a block, however many there are. What has been copied is not changed any more.
class Records {
public:
    Records() = default;
    Records(const Records &other);
    Records &operator=(const Records &) = delete;

    // The value; null: none.
    const std::string *find(std::string_view key) const;

    // Visits the records from the first whose key is not below `from` on, until the visitor returns false.
    void for_each(std::string_view from, const ReadTransaction::Visitor &visit) const;

    // In place of the value that there may be, whose size it returns.
    std::optional<std::size_t> put(std::string_view key, std::string_view value);

    // The record must be there.
    void erase(std::string_view key);

private:
    struct Record {
        std::string key;
        std::string value;
    };
    struct Block {
        std::shared_ptr<std::vector<Record>> records; // never none
        bool shared = false;                          // and not to be changed
    };
    struct Place {
        std::size_t block; // of no blocks 0
        std::size_t record;
    };

    // Where the first record stands whose key is not below this one, or behind the last one of a block.
    Place place_of(std::string_view key) const;
    bool holds(const Place &place, std::string_view key) const;
    std::vector<Record> &own(std::size_t block);
    void insert(const Place &place, Record &&record);

    std::vector<Block> blocks_;
};

// One state of all tables; copies share them, and nobody changes them.
struct Tables {
    std::array<std::shared_ptr<const Records>, table_count> tables;
    std::size_t size = 0; // of all keys and values, bytes

    const Records &table(Table which) const { return *tables.at(static_cast<std::size_t>(which)); }
};

// A state on its way to the next one.
class Draft {
public:
    Draft(); // from the empty state
    explicit Draft(Tables begin) : tables_(std::move(begin)) {}
    Draft(const Draft &) = delete;
    Draft &operator=(const Draft &) = delete;

    const Tables &tables() const { return tables_; }

    void put(Table which, std::string_view key, std::string_view value);
    bool erase(Table which, std::string_view key); // whether there was such a record

    // The draft must not be used any more.
    Tables take() && { return std::move(tables_); }

private:
    Records &own(Table which);

    Tables tables_;
    std::array<std::shared_ptr<Records>, table_count> own_;
};

// A change of one record as it stands in the file; no value: it is erased.
void append_change(std::string &bytes, Table table, std::string_view key, std::optional<std::string_view> value);

// A whole state as changes to an empty one.
std::string image_of(const Tables &tables);

// Carries out a sequence of changes. False when the bytes are no such sequence.
bool apply_changes(Draft &draft, std::string_view bytes);

// FNV-1a, 64 bits: for each change of a single byte the hash is another one. `hash` is that of what stands before.
inline constexpr std::uint64_t hash_of_nothing = 0xcbf29ce484222325;
std::uint64_t hash_of(std::string_view bytes, std::uint64_t hash = hash_of_nothing);

} // namespace ocpsm::sysdb

#endif

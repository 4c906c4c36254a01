// The records of a store in memory and as bytes.
#ifndef OCPSM_SIMULATOR_STORE_RECORDS_HPP
#define OCPSM_SIMULATOR_STORE_RECORDS_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/store/store.hpp"

namespace ocpsm::sysdb {

using Records = std::map<std::string, std::string, std::less<>>;

// One state of all tables; copies share them, and nobody changes them.
struct Tables {
    std::array<std::shared_ptr<const Records>, table_count> tables;
    std::size_t size = 0; // of all keys and values, bytes

    const Records &table(Table which) const { return *tables.at(static_cast<std::size_t>(which)); }
};

// A state on its way to the next one. A table is copied when it is changed for the first time.
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

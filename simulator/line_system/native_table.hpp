// Which node of the native models stands for what of a line system: one row for each leaf and each list, for answers
// and edits alike.
#ifndef OCPSM_SIMULATOR_LINE_SYSTEM_NATIVE_TABLE_HPP
#define OCPSM_SIMULATOR_LINE_SYSTEM_NATIVE_TABLE_HPP

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "framework/models/models.hpp"
#include "simulator/line_system/line_system.hpp"
#include "simulator/line_system/settings.hpp"

namespace ocpsm::line_system {

// Which instance a node belongs to, as far as the list entries around it say.
struct Place {
    int slot = 0;
    std::size_t port = 0;
    std::string threshold = {}; // type of an rx-threshold
};

// What a leaf shows. Settings can be edited, the rest is operational state.
using Field = std::variant<SettingMember, ReadingMember>;

struct LeafRow {
    std::string_view path; // the schema paths of its leaves end so
    Field field;
};

enum class ListKind {
    nodes_with_modules, // the node that holds the slots, with modules fitted
    fitted_slots,
    nodes_without_modules, // the same, for what is configured in advance
    pulled_slots,
    interfaces,
    thresholds,
    line_ports,
    line_histories,
    latest, // the one entry of a history
};

struct ListRow {
    std::string_view path; // a schema path
    ListKind kind;
};

// An entry of a list.
struct ListEntry {
    std::vector<std::string> keys; // in the order of the key statement, canonical
    Place place;
    bool fitted = true; // its hardware is there; only then it can be edited
};

class NativeTable {
public:
    // The table of the device's own models.
    static const NativeTable &device();

    // Throws std::logic_error unless every leaf other than a key and every list has exactly one row, and every row a
    // node.
    NativeTable(const models::Schema &schema, std::span<const LeafRow> leaves, std::span<const ListRow> lists);

    const models::Schema &schema() const { return *schema_; }

    // The row of a leaf or list of the schema (std::out_of_range).
    const LeafRow &leaf(const lysc_node &node) const { return *leaves_.at(&node); }
    const ListRow &list(const lysc_node &node) const { return *lists_.at(&node); }

private:
    void add(const lysc_node &node, std::span<const LeafRow> leaves, std::span<const ListRow> lists);
    void add_below(const lysc_node *parent, std::span<const LeafRow> leaves, std::span<const ListRow> lists);

    const models::Schema *schema_;
    std::map<const lysc_node *, const LeafRow *> leaves_;
    std::map<const lysc_node *, const ListRow *> lists_;
};

// Whether a node is a key leaf.
bool is_key(const lysc_node &node);

// The rows of the device's own models; those of leaves are made from the settings and readings.
std::span<const LeafRow> leaf_rows();
std::span<const ListRow> list_rows();

// The entries of a list at a place, as they stand.
std::vector<ListEntry> entries(ListKind kind, const LineSystem &system, const Place &place);

// The canonical value of a leaf at a place, or nothing when it is absent.
std::optional<std::string> value_of(const Field &field, const LineSystem &system, const Place &place);

// Sets a setting to a canonical value, or deletes it. A field that is operational state is a std::logic_error.
void set_value(const Field &field, LineSystem &system, const Place &place, const std::optional<std::string> &value);

} // namespace ocpsm::line_system

#endif

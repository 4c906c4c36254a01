#include "framework/mapping/request_table.hpp"

#include <algorithm>
#include <array>

#include "native_models.hpp"

namespace ocpsm {
namespace {

// The access of a row, in a scope where nothing else bears these names.
namespace access {
inline constexpr bool configuration = true;
inline constexpr bool state = false;
} // namespace access

constexpr NodeRow node_table[] = {
#define YMAP_CONTAINER(suffix, parent, tag, access_of_row)                                                             \
    {NodeKind::container, false, access::access_of_row, #suffix, #parent, tag, {}},
#define YMAP_LIST(suffix, parent, tag, access_of_row, conversion)                                                      \
    {NodeKind::list, false, access::access_of_row, #suffix, #parent, tag, #conversion},
#define YMAP_KEY(suffix, parent, tag, access_of_row, conversion)                                                       \
    {NodeKind::leaf, true, access::access_of_row, #suffix, #parent, tag, #conversion},
#define YMAP_LEAF(suffix, parent, tag, access_of_row, conversion)                                                      \
    {NodeKind::leaf, false, access::access_of_row, #suffix, #parent, tag, #conversion},
#define YMAP_REFUSED(suffix, parent, tag, access_of_row)                                                               \
    {NodeKind::leaf, false, access::access_of_row, #suffix, #parent, tag, {}},
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_nodes.def"
#undef YMAP_CONTAINER
#undef YMAP_LIST
#undef YMAP_KEY
#undef YMAP_LEAF
#undef YMAP_REFUSED
};

constexpr ConversionRow conversion_table[] = {
#define YMAP_TO_LOW(conversion, steps, value, port, model, path)                                                       \
    {#conversion, #steps, #value, #port, module_name(ymap::model), path},
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man_leaves.def"
#undef YMAP_TO_LOW
};

constexpr std::string_view name_prefix = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_";

} // namespace

std::span<const NodeRow> node_rows() {
    return node_table;
}

std::span<const ConversionRow> conversion_rows() {
    return conversion_table;
}

std::string schema_path(std::span<const NodeRow> rows, const NodeRow &row) {
    // A parent stands before its children, so that a row can never be above itself.
    const auto above = rows.first(static_cast<size_t>(&row - rows.data()));
    const auto parent =
        std::find_if(above.begin(), above.end(), [&](const NodeRow &r) { return r.suffix == row.parent; });
    std::string path = parent == above.end() ? std::string() : schema_path(above, *parent);
    return path.append("/").append(row.tag);
}

std::vector<std::string> exported_names(const NodeRow &row) {
    const auto name = [&](std::string_view kind, std::string_view ending = {}) {
        return std::string(name_prefix).append(kind).append(row.suffix).append(ending);
    };
    constexpr std::array<std::string_view, 3> callback_kinds = {"cont_", "list_", "leaf_"};
    std::vector<std::string> names = {name({}), name(callback_kinds.at(static_cast<size_t>(row.kind)))};
    if (row.kind != NodeKind::leaf) {
        names.push_back(name({}, "_parse_augments"));
    }
    if (!row.conversion.empty()) {
        names.emplace_back(row.conversion);
    }
    return names;
}

const ConversionRow *find_conversion(std::span<const ConversionRow> rows, std::string_view conversion) {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const ConversionRow &r) { return r.conversion == conversion; });
    return row == rows.end() ? nullptr : &*row;
}

} // namespace ocpsm

#include "framework/mapping/answer_table.hpp"

#include <algorithm>
#include <initializer_list>

#include "native_models.hpp"
#include "native_names.hpp"

namespace ocpsm {
namespace {

// ---- the nodes of the native models ----

#define OCPSM_TEXT(...) #__VA_ARGS__
#define OCPSM_EXPANDED_TEXT(...) OCPSM_TEXT(__VA_ARGS__)

// A leaf callback that is written by hand stands in front of a conversion.
#undef YMAP_MAN_LEAF
#define YMAP_MAN_LEAF(suffix, conversion) conversion

// A list's callback may be a conversion, or what is done with an entry that is not translated.
constexpr std::string_view list_conversion(std::string_view callback) {
    return callback.ends_with("_to_high") ? callback : "";
}

constexpr std::string_view leaf_conversion(std::string_view conversion) {
    return conversion == "none" ? "" : conversion;
}

#define OCPSM_ROW(kind, suffix, parent, tag, conversion, augmented)                                                    \
    {ymap::native_model(OCPSM_EXPANDED_TEXT(YMAP_NATIVE_MODULE)).module,                                               \
     OCPSM_EXPANDED_TEXT(YMAP_NATIVE_MODULE),                                                                          \
     NativeKind::kind,                                                                                                 \
     #suffix,                                                                                                          \
     parent,                                                                                                           \
     tag,                                                                                                              \
     conversion,                                                                                                       \
     augmented},

constexpr NativeRow native_table[] = {
#define YMAP_AUGMENT(suffix, list) OCPSM_ROW(augment, suffix, "none", "", "", list)
#define YMAP_CONTAINER(suffix, parent, tag) OCPSM_ROW(container, suffix, #parent, tag, "", "")
#define YMAP_LIST(suffix, parent, tag, callback, keys, path)                                                           \
    OCPSM_ROW(list, suffix, #parent, tag, list_conversion(#callback), "")
#define YMAP_LEAF(suffix, parent, tag, conversion)                                                                     \
    OCPSM_ROW(leaf, suffix, #parent, tag, leaf_conversion(OCPSM_EXPANDED_TEXT(conversion)), "")
#include "native_nodes.inc"
};

// ---- what the conversions write ----

std::vector<AnswerRow> make_answer_rows() {
    std::vector<AnswerRow> rows;
    const auto add = [&rows](std::string_view conversion, std::string_view others,
                             std::initializer_list<AnswerRow> written) {
        for (AnswerRow row : written) {
            row.conversion = conversion;
            row.others = others;
            rows.push_back(row);
        }
    };
#define YMAP_WRITES(path, source, reader, value, kinds, manner)                                                        \
    {{}, YMAP_MODULE path, #source, #reader, #value, #kinds, #manner, {}},
#define YMAP_TO_HIGH(conversion, steps, key_list, others, ...) add(#conversion, #others, {__VA_ARGS__});
#include "to_high_tables.inc"
#undef YMAP_WRITES
    return rows;
}

std::string exported_name(const NativeRow &row, std::string_view kind) {
    return std::string("ymap_n2o_oc_opt_psm_").append(row.module).append("_").append(kind).append(row.suffix);
}

} // namespace

std::span<const NativeRow> native_rows() {
    return native_table;
}

std::span<const AnswerRow> answer_rows() {
    static const std::vector<AnswerRow> rows = make_answer_rows();
    return rows;
}

std::string native_path(std::span<const NativeRow> rows, const NativeRow &row) {
    if (row.kind == NativeKind::augment) {
        return std::string(row.augmented);
    }
    // A parent stands before its children, so that a row can never be above itself.
    const auto above = rows.first(static_cast<std::size_t>(&row - rows.data()));
    const auto parent = std::find_if(above.begin(), above.end(), [&](const NativeRow &other) {
        return other.module == row.module && other.suffix == row.parent;
    });
    std::string path = parent == above.end() ? std::string() : native_path(above, *parent);
    return path.append("/").append(row.tag);
}

std::string callback_name(const NativeRow &row) {
    return exported_name(row, row.kind == NativeKind::leaf   ? "leaf_"
                              : row.kind == NativeKind::list ? "list_"
                                                             : "cont_");
}

std::vector<std::string> exported_names(const NativeRow &row) {
    std::vector<std::string> names = {exported_name(row, ""), exported_name(row, "") + "_parse_augments"};
    if (row.kind != NativeKind::augment) {
        names.push_back(callback_name(row));
    }
    if (!row.conversion.empty()) {
        names.emplace_back(row.conversion);
    }
    return names;
}

} // namespace ocpsm

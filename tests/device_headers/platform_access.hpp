// The plug-in's header of the same name with the members and constants of this device; the roles are explained there.
#ifndef OC_PSM_PLATFORM_ACCESS_HPP
#define OC_PSM_PLATFORM_ACCESS_HPP

#include "accessor_rows.hpp"
#include "bag_generic.h"
#include "sysdb_client.h"
#include "yfw_map.h"

namespace ymap {

using Node = kidl_yfw_datatree;

inline constexpr std::uint32_t operation_merge = NC_MERGE;
inline constexpr std::uint32_t operation_replace = NC_REPLACE;
inline constexpr std::uint32_t operation_delete = NC_DELETE;
inline constexpr std::uint32_t operation_remove = NC_REMOVE;

inline constexpr std::uint32_t flag_in_use = DT_LIVE;
inline constexpr std::uint32_t flag_has_value = DT_WITH_CONTENT;
inline constexpr std::uint32_t flag_operation_rewritten = DT_REWRITTEN;
inline constexpr std::uint32_t flag_children_valid = DT_WITH_SUBTREES;
inline constexpr std::uint32_t flag_key_consumed = DT_KEY_TAKEN;
inline constexpr std::uint32_t second_flag_kind_set = DT_SORT_KNOWN;

inline constexpr std::uint32_t kind_leaf = DT_SORT_LEAF;
inline constexpr std::uint32_t kind_container = DT_SORT_CONTAINER;
inline constexpr std::uint32_t kind_list = DT_SORT_LIST;
inline constexpr std::uint32_t kind_xpath_error = DT_SORT_ERROR;
inline constexpr std::uint32_t kind_content_match = DT_SORT_MATCH;

YMAP_GET(tag_of, const Node &node, const char *, node.label)
YMAP_GET(namespace_of, const Node &node, const char *, node.xmlns)
YMAP_GET(held_value_of, const Node &node, const char *, node.content)
YMAP_GET(held_children_of, const Node &node, Node *, node.subtrees)
YMAP_SET(hold_children, Node &node, Node *, node.subtrees)
YMAP_GET(child_count_of, const Node &node, std::int32_t, node.subtree_count)
YMAP_SET(set_child_count, Node &node, std::int32_t, node.subtree_count)
YMAP_GET(operation_of, const Node &node, std::uint32_t, node.nc_operation)
YMAP_SET(set_operation, Node &node, std::uint32_t, node.nc_operation)
YMAP_BITS(flag, Node &node, node.state_bits)
YMAP_BITS(second_flag, Node &node, node.more_bits)
YMAP_GET(hierarchy_kind_of, const Node &node, std::uint32_t, node.sort)
YMAP_SET(set_hierarchy_kind, Node &node, std::uint32_t, node.sort)
YMAP_SET(set_consumed_mark, Node &node, std::uint8_t, node.taken)

using StackEntry = ym_saved;

YMAP_GET(held_children_of, const StackEntry &entry, const Node *, entry.array)

using Request = ym_request;
using ReplaceFlags = decltype(Request::replace_bits);

inline constexpr std::uint32_t kind_get_config = RPC_GET_CONFIG;
inline constexpr std::uint32_t kind_get = RPC_GET;

inline constexpr std::uint32_t read_content_match_only = SELECT_MATCHES;
inline constexpr std::uint32_t read_selection_leaf = SELECT_LEAF;
inline constexpr std::uint32_t read_content_match_leaf = SELECT_MATCH;
inline constexpr std::uint32_t read_content_match_anywhere = SELECT_MATCH_SEEN;

inline constexpr std::uint32_t replace_remove_pass = PASS_REMOVES;
inline constexpr std::uint32_t replace_merge_pass = PASS_MERGES;

YMAP_GET(request_of, yfw_map_ctx ctx, Request *, ctx->current)
YMAP_GET(operation_kind_of, const Request &request, std::uint32_t, request.client->rpc)
YMAP_GET(whole_subtree_walk_of, const Request &request, bool, request.spreads)
YMAP_SET(set_whole_subtree_walk, Request &request, bool, request.spreads)
YMAP_GET(delete_walk_of, const Request &request, std::uint32_t, request.deletes)
YMAP_SET(set_delete_walk, Request &request, std::uint32_t, request.deletes)
YMAP_GET(replace_flags_of, const Request &request, ReplaceFlags, request.replace_bits)
YMAP_SET(set_replace_flags, Request &request, ReplaceFlags, request.replace_bits)
YMAP_BITS(replace_flag, Request &request, request.replace_bits)
YMAP_GET(replace_marker_of, const Request &request, std::uint32_t, request.replaces)
YMAP_SET(set_replace_marker, Request &request, std::uint32_t, request.replaces)
YMAP_BITS(read_selection, Request &request, request.selection_bits)
YMAP_GET(selection_mode_of, const Request &request, std::uint32_t, request.selects)
YMAP_GET(leaf_selection_of, const Request &request, std::uint32_t, request.selected_leaves)
YMAP_SET(set_xpath_error, Request &request, std::uint32_t, request.holds_error)
YMAP_GET(error_node_name_of, const Request &request, char *, request.refused)
YMAP_SET(set_error_node_name, Request &request, char *, request.refused)
YMAP_GET(output_depth_of, const Request &request, std::uint32_t, request.open_outputs)
YMAP_GET(list_node_of, const Request &request, const Node *, request.entry)
YMAP_GET(request_root_of, const Request &request, const Node *, request.whole_request)
YMAP_GET(answer_root_of, const Request &request, const Node *, request.native_answer)
YMAP_GET(module_list_of, const Request &request, ym_entries *, request.entries)

using HierarchyLevel = ym_level;

YMAP_GET(hierarchy_length_of, const Request &request, std::uint32_t, request.level_count)
YMAP_GET(hierarchy_of, const Request &request, const HierarchyLevel *, request.levels)
YMAP_GET(node_of, const HierarchyLevel &level, const Node *, level.at)

YMAP_GET(log_filter_of, yfw_map_ctx ctx, const yfw_debug_filter *, &ctx->filter)
YMAP_GET(error_log_of, yfw_map_ctx ctx, hvs_dt_handle, ctx->errors_to)
YMAP_GET(trace_log_of, yfw_map_ctx ctx, hvs_dt_handle, ctx->traces_to)
YMAP_GET(trace_buffer_of, yfw_map_ctx ctx, hvs_trace_handle, ctx->trace)
YMAP_GET(is_traced, yfw_map_ctx ctx, bool, ctx->traces)
YMAP_SET(set_list_operation, yfw_map_ctx ctx, std::uint32_t, ctx->entry_operation)
YMAP_SET(set_data_printed, yfw_map_ctx ctx, std::uint32_t, ctx->dumped)
YMAP_GET(root_node_of, yfw_map_ctx ctx, const Node *, ctx->top)
YMAP_GET(parent_node_of, yfw_map_ctx ctx, const Node *, ctx->above)
YMAP_GET(current_node_of, yfw_map_ctx ctx, const Node *, ctx->inner)
YMAP_GET(pending_list_of, yfw_map_ctx ctx, const Node *, ctx->waiting)
YMAP_GET(xpath_count_of, yfw_map_ctx ctx, std::uint32_t, ctx->schema_path_count)
YMAP_GET(xpaths_of, yfw_map_ctx ctx, const char *const *, ctx->schema_paths)

using OutputEntry = ym_output;

YMAP_GET(output_count_of, yfw_map_ctx ctx, std::uint32_t, ctx->output_total)
YMAP_GET(output_of, yfw_map_ctx ctx, const OutputEntry *, ctx->outputs)
YMAP_GET(node_of, const OutputEntry &entry, const Node *, entry.entry)
YMAP_GET(key_of, const OutputEntry &entry, const Node *, entry.key_leaf)

using StitchEntry = ym_stitch;

inline constexpr std::uint32_t stitch_value_text = STITCH_IS_TEXT;
inline constexpr std::size_t stitch_path_size = STITCH_PATH;

YMAP_SET(set_in_use, StitchEntry &entry, std::uint32_t, entry.valid)
YMAP_SET(set_destination, StitchEntry &entry, Node *, entry.into)
YMAP_SET(set_value_kind, StitchEntry &entry, std::uint32_t, entry.text_kind)
YMAP_GET(namespace_of, StitchEntry &entry, std::span<char>, entry.xmlns)
YMAP_GET(value_of, StitchEntry &entry, std::span<char>, entry.text)
YMAP_GET(instance_path_of, StitchEntry &entry, std::span<char>, entry.instance)
YMAP_GET(schema_path_of, StitchEntry &entry, std::span<char>, entry.schema)

namespace item_type {
inline constexpr sysdb_item_datatype_td int32 = SYSDB_ITEM_INT32;
inline constexpr sysdb_item_datatype_td bag = SYSDB_ITEM_BAG;
} // namespace item_type

namespace token_type {
inline constexpr bag_token_type_td int8 = BAG_I8;
inline constexpr bag_token_type_td uint8 = BAG_U8;
inline constexpr bag_token_type_td int16 = BAG_I16;
inline constexpr bag_token_type_td uint16 = BAG_U16;
inline constexpr bag_token_type_td int32 = BAG_I32;
inline constexpr bag_token_type_td uint32 = BAG_U32;
inline constexpr bag_token_type_td ipv4 = BAG_ADDRESS;
inline constexpr bag_token_type_td enumeration = BAG_WORD;
inline constexpr bag_token_type_td boolean = BAG_TRUTH;
inline constexpr bag_token_type_td text = BAG_STRING;
inline constexpr bag_token_type_td second_text = BAG_OTHER_STRING;
inline constexpr bag_token_type_td array_start = BAG_OPEN_ARRAY;
inline constexpr bag_token_type_td array_end = BAG_CLOSE_ARRAY;
inline constexpr bag_token_type_td end = BAG_OVER;
} // namespace token_type

YMAP_GET(type_name_of, const bag_header_td &header, const char *, header.record)
YMAP_GET(version_major_of, const bag_header_td &header, std::int32_t, header.major)
YMAP_GET(version_minor_of, const bag_header_td &header, std::int32_t, header.minor)

YMAP_GET(type_of, const bag_token_td &token, bag_token_type_td, token.is)
YMAP_GET(name_of, const bag_token_td &token, const char *, token.field)
YMAP_GET(int8_of, const bag_token_td &token, std::int8_t, token.as.i8)
YMAP_GET(uint8_of, const bag_token_td &token, std::uint8_t, token.as.u8)
YMAP_GET(int16_of, const bag_token_td &token, std::int16_t, token.as.i16)
YMAP_GET(uint16_of, const bag_token_td &token, std::uint16_t, token.as.u16)
YMAP_GET(int32_of, const bag_token_td &token, std::int32_t, token.as.i32)
YMAP_GET(uint32_of, const bag_token_td &token, std::uint32_t, token.as.u32)
YMAP_GET(ipv4_of, const bag_token_td &token, std::uint32_t, token.as.address)
YMAP_GET(enumeration_of, const bag_token_td &token, std::int32_t, token.as.word)
YMAP_GET(boolean_of, const bag_token_td &token, bool, token.as.truth)
YMAP_GET(text_of, const bag_token_td &token, const char *, token.as.string)
YMAP_GET(second_text_of, const bag_token_td &token, const char *, token.other_string)

// What the framework keeps in bits beyond those that the plug-in knows stays as it is.
static_assert([] {
    Node node{};
    node.state_bits = 1ull << 40 | DT_WITH_SUBTREES;
    clear_flag(node, flag_children_valid);
    add_flag(node, flag_key_consumed);
    return node.state_bits == (1ull << 40 | DT_KEY_TAKEN);
}());

} // namespace ymap

#endif

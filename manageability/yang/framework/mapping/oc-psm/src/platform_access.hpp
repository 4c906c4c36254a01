// The platform's structures by role. This header alone names their members, and the constants of the platform's headers
// but for the error codes. Where a device's headers name, order or size them otherwise, it has a header of its own in
// place of this one, and no other source changes (docs/device-build.md).
#ifndef OC_PSM_PLATFORM_ACCESS_HPP
#define OC_PSM_PLATFORM_ACCESS_HPP

#include "accessor_rows.hpp"
#include "bag_generic.h"
#include "sysdb_client.h"
#include "yfw_map.h"

namespace ymap {

// ---- nodes of a data tree ----

using Node = kidl_yfw_datatree;

// Operations (RFC 6241, 7.2), flags, the flag of the second word, hierarchy kinds.
inline constexpr std::uint32_t operation_merge = YFW_OPERATION_MERGE;
inline constexpr std::uint32_t operation_replace = YFW_OPERATION_REPLACE;
inline constexpr std::uint32_t operation_delete = YFW_OPERATION_DELETE;
inline constexpr std::uint32_t operation_remove = YFW_OPERATION_REMOVE;

inline constexpr std::uint32_t flag_in_use = YFW_NODE_IN_USE;
inline constexpr std::uint32_t flag_has_value = YFW_NODE_HAS_VALUE;
inline constexpr std::uint32_t flag_operation_rewritten = YFW_NODE_OPERATION_REWRITTEN;
inline constexpr std::uint32_t flag_children_valid = YFW_NODE_CHILDREN_VALID;
inline constexpr std::uint32_t flag_key_consumed = YFW_NODE_KEY_CONSUMED;
inline constexpr std::uint32_t second_flag_kind_set = YFW_NODE2_KIND_SET;

inline constexpr std::uint32_t kind_leaf = YFW_KIND_LEAF;
inline constexpr std::uint32_t kind_container = YFW_KIND_CONTAINER;
inline constexpr std::uint32_t kind_list = YFW_KIND_LIST;
inline constexpr std::uint32_t kind_xpath_error = YFW_KIND_XPATH_ERROR;
inline constexpr std::uint32_t kind_content_match = YFW_KIND_CONTENT_MATCH;

// The three texts may be null. Value and children are what the node holds, whatever its flags say about them: see
// value_of and children_of.
YMAP_GET(tag_of, const Node &node, const char *, node.tag)
YMAP_GET(namespace_of, const Node &node, const char *, node.namespace_uri)
YMAP_GET(held_value_of, const Node &node, const char *, node.value)
YMAP_GET(held_children_of, const Node &node, Node *, node.children)
YMAP_SET(hold_children, Node &node, Node *, node.children)
YMAP_GET(child_count_of, const Node &node, std::int32_t, node.child_count)
YMAP_SET(set_child_count, Node &node, std::int32_t, node.child_count)
YMAP_GET(operation_of, const Node &node, std::uint32_t, node.operation)
YMAP_SET(set_operation, Node &node, std::uint32_t, node.operation)
YMAP_BITS(flag, Node &node, node.flags)
YMAP_BITS(second_flag, Node &node, node.second_flags)
YMAP_GET(hierarchy_kind_of, const Node &node, std::uint32_t, node.hierarchy_kind)
YMAP_SET(set_hierarchy_kind, Node &node, std::uint32_t, node.hierarchy_kind)
YMAP_SET(set_consumed_mark, Node &node, std::uint8_t, node.consumed_mark)

// An entry of the instance-tree stack; null when it is empty.
using StackEntry = yfw_map_itree_entry;

YMAP_GET(held_children_of, const StackEntry &entry, const Node *, entry.children)

// ---- the request ----

using Request = yfw_map_request;
using ReplaceFlags = decltype(Request::replace_flags);

// Operation kinds, bits of the read selection, bits of the replace flags.
inline constexpr std::uint32_t kind_get_config = YFW_KIND_GET_CONFIG;
inline constexpr std::uint32_t kind_get = YFW_KIND_GET;

inline constexpr std::uint32_t read_content_match_only = YFW_READ_CONTENT_MATCH_ONLY;
inline constexpr std::uint32_t read_selection_leaf = YFW_READ_SELECTION_LEAF;
inline constexpr std::uint32_t read_content_match_leaf = YFW_READ_CONTENT_MATCH_LEAF;
inline constexpr std::uint32_t read_content_match_anywhere = YFW_READ_CONTENT_MATCH_ANYWHERE;

inline constexpr std::uint32_t replace_remove_pass = YFW_REPLACE_REMOVE_PASS;
inline constexpr std::uint32_t replace_merge_pass = YFW_REPLACE_MERGE_PASS;

// The request may be null, as may its error-node name, by yfw_strdup, and the three nodes. The delete walk is 0, 1
// while a delete is being spread over a subtree, 2 while the callback of a keyed entry runs.
YMAP_GET(request_of, yfw_map_ctx ctx, Request *, ctx->request)
YMAP_GET(operation_kind_of, const Request &request, std::uint32_t, request.registration->operation_kind)
YMAP_GET(whole_subtree_walk_of, const Request &request, bool, request.whole_subtree_walk)
YMAP_SET(set_whole_subtree_walk, Request &request, bool, request.whole_subtree_walk)
YMAP_GET(delete_walk_of, const Request &request, std::uint32_t, request.delete_walk)
YMAP_SET(set_delete_walk, Request &request, std::uint32_t, request.delete_walk)
YMAP_GET(replace_flags_of, const Request &request, ReplaceFlags, request.replace_flags)
YMAP_SET(set_replace_flags, Request &request, ReplaceFlags, request.replace_flags)
YMAP_BITS(replace_flag, Request &request, request.replace_flags)
YMAP_GET(replace_marker_of, const Request &request, std::uint32_t, request.replace_marker)
YMAP_SET(set_replace_marker, Request &request, std::uint32_t, request.replace_marker)
YMAP_BITS(read_selection, Request &request, request.read_selection)
YMAP_GET(selection_mode_of, const Request &request, std::uint32_t, request.selection_mode)
YMAP_GET(leaf_selection_of, const Request &request, std::uint32_t, request.leaf_selection)
YMAP_SET(set_xpath_error, Request &request, std::uint32_t, request.xpath_error)
YMAP_GET(error_node_name_of, const Request &request, char *, request.error_node_name)
YMAP_SET(set_error_node_name, Request &request, char *, request.error_node_name)
YMAP_GET(output_depth_of, const Request &request, std::uint32_t, request.output_depth)
YMAP_GET(list_node_of, const Request &request, const Node *, request.list_node)
YMAP_GET(request_root_of, const Request &request, const Node *, request.request_root)
YMAP_GET(answer_root_of, const Request &request, const Node *, request.answer_root)
YMAP_GET(module_list_of, const Request &request, yfw_map_module_list *, request.module_list)

// The node hierarchy, outermost level first.
using HierarchyLevel = yfw_map_hierarchy_level;

YMAP_GET(hierarchy_length_of, const Request &request, std::uint32_t, request.hierarchy_length)
YMAP_GET(hierarchy_of, const Request &request, const HierarchyLevel *, request.hierarchy)
YMAP_GET(node_of, const HierarchyLevel &level, const Node *, level.node)

// ---- the context ----

// Where messages go, the current entry's rewritten operation, and what a dump shows and marks.
YMAP_GET(log_filter_of, yfw_map_ctx ctx, const yfw_debug_filter *, &ctx->debug_log_filter)
YMAP_GET(error_log_of, yfw_map_ctx ctx, hvs_dt_handle, ctx->error_log)
YMAP_GET(trace_log_of, yfw_map_ctx ctx, hvs_dt_handle, ctx->trace_log)
YMAP_GET(trace_buffer_of, yfw_map_ctx ctx, hvs_trace_handle, ctx->trace_buffer)
YMAP_GET(is_traced, yfw_map_ctx ctx, bool, ctx->trace_enabled)
YMAP_SET(set_list_operation, yfw_map_ctx ctx, std::uint32_t, ctx->list_operation)
YMAP_SET(set_data_printed, yfw_map_ctx ctx, std::uint32_t, ctx->data_printed)
YMAP_GET(root_node_of, yfw_map_ctx ctx, const Node *, ctx->root_node)
YMAP_GET(parent_node_of, yfw_map_ctx ctx, const Node *, ctx->parent_node)
YMAP_GET(current_node_of, yfw_map_ctx ctx, const Node *, ctx->current_node)
YMAP_GET(pending_list_of, yfw_map_ctx ctx, const Node *, ctx->pending_list)
YMAP_GET(xpath_count_of, yfw_map_ctx ctx, std::uint32_t, ctx->xpath_count)
YMAP_GET(xpaths_of, yfw_map_ctx ctx, const char *const *, ctx->xpaths)

using OutputEntry = yfw_map_output_entry;

YMAP_GET(output_count_of, yfw_map_ctx ctx, std::uint32_t, ctx->output_count)
YMAP_GET(output_of, yfw_map_ctx ctx, const OutputEntry *, ctx->output)
YMAP_GET(node_of, const OutputEntry &entry, const Node *, entry.node)
YMAP_GET(key_of, const OutputEntry &entry, const Node *, entry.key)

// ---- leaves that are written by instance path ----

using StitchEntry = yfw_map_stitch_entry;

inline constexpr std::uint32_t stitch_value_text = YFW_STITCH_VALUE_TEXT;
inline constexpr std::size_t stitch_path_size = YFW_STITCH_PATH_SIZE;

// The four texts are buffers of the entry's own; the instance path has key predicates, the schema path has none.
YMAP_SET(set_in_use, StitchEntry &entry, std::uint32_t, entry.in_use)
YMAP_SET(set_destination, StitchEntry &entry, Node *, entry.destination)
YMAP_SET(set_value_kind, StitchEntry &entry, std::uint32_t, entry.value_kind)
YMAP_GET(namespace_of, StitchEntry &entry, std::span<char>, entry.namespace_uri)
YMAP_GET(value_of, StitchEntry &entry, std::span<char>, entry.value)
YMAP_GET(instance_path_of, StitchEntry &entry, std::span<char>, entry.instance_path)
YMAP_GET(schema_path_of, StitchEntry &entry, std::span<char>, entry.schema_path)

// ---- the system database and its bags ----

namespace item_type {
inline constexpr sysdb_item_datatype_td int32 = SYSDB_ITEM_INT32;
inline constexpr sysdb_item_datatype_td bag = SYSDB_ITEM_BAG;
} // namespace item_type

namespace token_type {
inline constexpr bag_token_type_td int8 = BAG_TOKEN_INT8;
inline constexpr bag_token_type_td uint8 = BAG_TOKEN_UINT8;
inline constexpr bag_token_type_td int16 = BAG_TOKEN_INT16;
inline constexpr bag_token_type_td uint16 = BAG_TOKEN_UINT16;
inline constexpr bag_token_type_td int32 = BAG_TOKEN_INT32;
inline constexpr bag_token_type_td uint32 = BAG_TOKEN_UINT32;
inline constexpr bag_token_type_td ipv4 = BAG_TOKEN_IPV4;
inline constexpr bag_token_type_td enumeration = BAG_TOKEN_ENUM;
inline constexpr bag_token_type_td boolean = BAG_TOKEN_BOOL;
inline constexpr bag_token_type_td text = BAG_TOKEN_TEXT;
inline constexpr bag_token_type_td second_text = BAG_TOKEN_TEXT2;
inline constexpr bag_token_type_td array_start = BAG_TOKEN_ARRAY_START;
inline constexpr bag_token_type_td array_end = BAG_TOKEN_ARRAY_END;
inline constexpr bag_token_type_td end = BAG_TOKEN_END;
} // namespace token_type

YMAP_GET(type_name_of, const bag_header_td &header, const char *, header.type_name)
YMAP_GET(version_major_of, const bag_header_td &header, std::int32_t, header.version_major)
YMAP_GET(version_minor_of, const bag_header_td &header, std::int32_t, header.version_minor)

// Name and texts may be null; of the values only that of the token's type is there.
YMAP_GET(type_of, const bag_token_td &token, bag_token_type_td, token.type)
YMAP_GET(name_of, const bag_token_td &token, const char *, token.name)
YMAP_GET(int8_of, const bag_token_td &token, std::int8_t, token.value.int8)
YMAP_GET(uint8_of, const bag_token_td &token, std::uint8_t, token.value.uint8)
YMAP_GET(int16_of, const bag_token_td &token, std::int16_t, token.value.int16)
YMAP_GET(uint16_of, const bag_token_td &token, std::uint16_t, token.value.uint16)
YMAP_GET(int32_of, const bag_token_td &token, std::int32_t, token.value.int32)
YMAP_GET(uint32_of, const bag_token_td &token, std::uint32_t, token.value.uint32)
YMAP_GET(ipv4_of, const bag_token_td &token, std::uint32_t, token.value.ipv4) // in network byte order
YMAP_GET(enumeration_of, const bag_token_td &token, std::int32_t, token.value.enumeration)
YMAP_GET(boolean_of, const bag_token_td &token, bool, token.value.boolean)
YMAP_GET(text_of, const bag_token_td &token, const char *, token.value.text)
YMAP_GET(second_text_of, const bag_token_td &token, const char *, token.second_text)

} // namespace ymap

#endif

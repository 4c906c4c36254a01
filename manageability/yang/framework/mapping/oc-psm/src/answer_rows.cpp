#include "answer_rows.hpp"

#include <algorithm>
#include <cstring>

namespace ymap {

namespace {

// Traffic that is locked out from one path is forced to the other.
const char *forced_port(const char *locked_out) {
    if (std::strcmp(locked_out, "working") == 0) {
        return "SECONDARY";
    }
    return std::strcmp(locked_out, "protected") == 0 ? "PRIMARY" : "NONE";
}

const char *active_path(const char *primary_status) {
    return std::strcmp(primary_status, "active") == 0 ? "PRIMARY" : "SECONDARY";
}

// The read is one that the row is written in.
bool is_answered(yfw_map_ctx ctx, Kinds kinds) {
    constexpr std::uint32_t selects_leaves = 2;
    switch (kinds) {
    case Kinds::unless_state_only:
        return selection_mode_of(*request_of(ctx)) != selects_leaves || leaf_selection_of(*request_of(ctx)) == 0;
    case Kinds::with_state:
        return is_operational_read(ctx);
    case Kinds::without_state:
        return operation_kind(ctx) == kind_get_config;
    default:
        return true;
    }
}

kerrno write_leaf(const Target &target, const AnswerLeaf &leaf, const char *text, kerrno result) {
    const bool stitched = leaf.manner == Manner::stitched;
    if (target.trace == ModuleTrace::all || (target.trace == ModuleTrace::stitched && stitched)) {
        trace_module(target.row.function, target.ctx, target.module);
    }
    if (stitched) {
        stitch_module_leaf(target.ctx, target.destination, target.module, leaf.path, text);
        return result;
    }
    return add_module_leaf(target.ctx, target.destination, leaf.path, text);
}

inline kerrno write_leaves(const Target &target, AnswerLeaves leaves, const char *text, kerrno result) {
    for (const AnswerLeaf &leaf : leaves) {
        if (is_answered(target.ctx, leaf.kinds)) {
            result = write_leaf(target, leaf, text, result);
        }
    }
    return result;
}

} // namespace

AnswerLeaves first_group(AnswerLeaves leaves) {
    const auto end = std::find_if(leaves.begin(), leaves.end(), [&](const AnswerLeaf &leaf) {
        return leaf.source != leaves.front().source || leaf.reader != leaves.front().reader;
    });
    return leaves.first(static_cast<std::size_t>(end - leaves.begin()));
}

AnswerLeaves rows_of(AnswerLeaves leaves, Source source) {
    while (!leaves.empty() && leaves.front().source != source) {
        leaves = leaves.subspan(1);
    }
    return leaves.empty() ? leaves : first_group(leaves);
}

Source line_source(int port) {
    if (port == 1) {
        return Source::primary;
    }
    return port == 2 ? Source::secondary : Source::common;
}

AnswerValue::AnswerValue(Value value, const char *native) : text_(native != nullptr ? native : "") {
    if (native == nullptr) {
        return;
    }
    switch (value) {
    case Value::tenths:
        scale(native, 10);
        break;
    case Value::hundredths:
        scale(native, 100);
        break;
    case Value::units:
        scale(native, 1);
        break;
    case Value::lockout:
        text_ = forced_port(native);
        break;
    case Value::status:
        text_ = active_path(native);
        break;
    default:
        break;
    }
}

void AnswerValue::scale(const char *native, int divisor) {
    convert_data_to_high(native, buffer_, static_cast<int>(sizeof buffer_), divisor);
    text_ = buffer_;
}

kerrno answer_for_others(Others others, yfw_map_ctx ctx, const char *controller, kerrno lookup) {
    char module[psm_key_size] = {};
    switch (others) {
    case Others::keep:
        return lookup;
    case Others::keep_secondary:
        return check_controller_name_ots_is_good_by_port(ctx, controller, module, 2) == 1 ? lookup : YMAP_ERR_SKIP;
    default:
        return YMAP_ERR_SKIP;
    }
}

kerrno write_text(const Target &target, AnswerLeaves leaves, const char *text, kerrno result) {
    return write_leaves(target, leaves, text, result);
}

kerrno write_native(const Target &target, AnswerLeaves leaves, const char *native, kerrno result) {
    if (leaves.empty()) {
        return result;
    }
    const AnswerValue value(leaves.front().value, native);
    return write_leaves(target, leaves, value.text(), result);
}

} // namespace ymap

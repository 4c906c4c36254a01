#include "framework/host/codes.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

#include "framework/host/service_codes.hpp"
#include "framework/native/native_request.hpp"

namespace ocpsm::framework {

namespace {

struct Code {
    kerrno code;
    const char *name;
    const char *text; // null: another service has it
};

constexpr std::array codes{
    Code{KERR_SUCCESS, "KERR_SUCCESS", "success"},
    Code{YMAP_ERR_BAD_TREE, "YMAP_ERR_BAD_TREE", "the request tree is not well formed"},
    Code{YMAP_ERR_INVALID_ARGS, "YMAP_ERR_INVALID_ARGS", "invalid arguments, or a delete with content below it"},
    Code{YMAP_ERR_UNSUPPORTED, "YMAP_ERR_UNSUPPORTED", "the node is not supported"},
    Code{YMAP_ERR_LIST_KEY, "YMAP_ERR_LIST_KEY", "the key of a list entry is empty, missing or doubled"},
    Code{YMAP_ERR_KEY_DELETE, "YMAP_ERR_KEY_DELETE", "the key of a list entry carries a delete"},
    Code{YMAP_ERR_SKIP, "YMAP_ERR_SKIP", "the node is passed over"},
    Code{YMAP_ERR_AUGMENT_UNSUPPORTED, "YMAP_ERR_AUGMENT_UNSUPPORTED", "data of an augmenting model is not supported"},
    Code{leafref_mismatch, "YFW_ERR_LEAFREF", "a list key differs from the leaf that it refers to"},
    Code{invalid_arguments, "YFW_ERR_INVALID_ARGS", "invalid argument of a framework operation"},
    Code{not_served, "YFW_ERR_NOT_SERVED", "the framework does not serve this operation here"},
    Code{unknown_answer_node, "YFW_ERR_UNKNOWN_NODE", "the OpenConfig model has no node with this path and namespace"},
    Code{unexpected_answer_value, "YFW_ERR_UNEXPECTED_VALUE", "an OpenConfig container or list was given a value"},
    Code{out_of_memory, "YFW_ERR_NO_MEMORY", "out of memory"},
    Code{native::add_unknown_path, "NATIVE_ERR_UNKNOWN_PATH", nullptr},
    Code{native::add_wrong_namespace, "NATIVE_ERR_WRONG_NAMESPACE", nullptr},
    Code{native::add_unexpected_value, "NATIVE_ERR_UNEXPECTED_VALUE", nullptr},
    Code{native::add_unknown_operation, "NATIVE_ERR_UNKNOWN_OPERATION", nullptr},
};

const Code *find(kerrno code) {
    const auto *const found =
        std::find_if(codes.begin(), codes.end(), [code](const Code &row) { return row.code == code; });
    return found == codes.end() ? nullptr : found;
}

} // namespace

std::string name_of(kerrno code) {
    if (const Code *row = find(code)) {
        return row->name;
    }
    std::array<char, 11> number{};
    (void)std::snprintf(number.data(), number.size(), "0x%08x", code);
    return number.data();
}

const char *text_of(kerrno code) {
    const Code *row = find(code);
    if (row != nullptr && row->text != nullptr) {
        return row->text;
    }
    if (const auto text = native::add_error_text(code); !text.empty()) {
        return text.data();
    }
    const auto *const service = std::find_if(kerr_service_texts.begin(), kerr_service_texts.end(),
                                             [code](const KerrText &entry) { return entry.code == code; });
    return service == kerr_service_texts.end() ? "unknown error" : service->text;
}

} // namespace ocpsm::framework

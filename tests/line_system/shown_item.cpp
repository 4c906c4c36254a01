#include "shown_item.hpp"

#include <cstdint>
#include <cstring>

#include "bag_generic.h"
#include "simulator/bag/format.hpp"

namespace {

std::string shown_token(const bag_token_td &token) {
    const std::string name = token.name == nullptr ? "" : token.name;
    switch (token.type) {
    case BAG_TOKEN_INT32:
        return name + "=" + std::to_string(token.value.int32);
    case BAG_TOKEN_TEXT:
        return name + "='" + (token.value.text == nullptr ? "(null)" : token.value.text) + "'";
    case BAG_TOKEN_ARRAY_START:
        return name + "[";
    case BAG_TOKEN_ARRAY_END:
        return "]";
    case BAG_TOKEN_STRUCT_START:
        return name + "{";
    case BAG_TOKEN_STRUCT_END:
        return "}";
    default:
        return name + " of type " + std::to_string(token.type);
    }
}

std::string shown_tokens(bag_generic_state_td state) {
    std::string text;
    for (;;) {
        bag_token_td token{};
        if (const kerrno code = bag_generic_token(state, &token); code != KERR_SUCCESS) {
            return text + " failed with " + std::to_string(code);
        }
        const bool ended = token.type == BAG_TOKEN_END;
        if (!ended) {
            text.append(" ").append(shown_token(token));
        }
        bag_generic_free_token_allocations(&token);
        if (ended) {
            return text;
        }
    }
}

std::string shown_bag(std::string_view data) {
    std::string padded(data);
    padded.resize(padded.size() + ocpsm::bag::max_header_size);
    bag_header_td header{};
    bag_generic_state_td state = nullptr;
    if (bag_header_info(padded.data(), &header) != KERR_SUCCESS ||
        bag_generic_init(data.data(), static_cast<std::uint32_t>(data.size()), &state) != KERR_SUCCESS) {
        return "no bag";
    }
    std::string text = std::string(header.type_name) + " " + std::to_string(header.version_major) + "." +
                       std::to_string(header.version_minor) + shown_tokens(state);
    bag_generic_destroy(state);
    return text;
}

} // namespace

std::string shown_data(sysdb_item_datatype_td type, std::string_view data) {
    if (type == SYSDB_ITEM_BAG) {
        return shown_bag(data);
    }
    std::int32_t number = 0;
    if (type != SYSDB_ITEM_INT32 || data.size() != sizeof number) {
        return "data of type " + std::to_string(type);
    }
    std::memcpy(&number, data.data(), sizeof number);
    return std::to_string(number);
}

std::vector<std::string> shown(const std::vector<ocpsm::sysdb::Item> &items) {
    std::vector<std::string> lines;
    lines.reserve(items.size());
    for (const ocpsm::sysdb::Item &item : items) {
        lines.push_back(item.path + ": " + shown_data(item.type, item.data));
    }
    return lines;
}

// Fields of a bag as text.
#include "utility_bounded.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "hvs_libc.h"

using namespace ymap;

namespace ymap {

void Output::write(std::string_view text) const {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(data, text.data(), length);
    data[length] = '\0';
}

} // namespace ymap

namespace {

constexpr kerrno no_field = 0xffffffff;

constexpr Function render_function{"convert_bag_value_to_str",
                                   "void convert_bag_value_to_str(yfw_map_ctx, const bag_token_td *, char *)",
                                   YMAP_SOURCE("utility")};
constexpr Function search_function{
    "get_value_in_bag",
    "kerrno get_value_in_bag(yfw_map_ctx, const char *, bag_token_type_td, const void *, "
    "uint32_t, char *)",
    YMAP_SOURCE("utility")};

template <typename Number>
void write_number(const Output &out, const char *format, Number number) {
    char text[16] = {};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text, sizeof text, format, number);
#pragma GCC diagnostic pop
    out.write(text);
}

void write_text(const Output &out, const char *text) {
    if (text != nullptr) {
        out.write(text);
    }
}

// The names of a field path, taken apart at the dots.
class FieldPath {
public:
    explicit FieldPath(const char *path) {
        yfw_strcpy_s(buffer_, sizeof buffer_, path);
        std::string_view rest(buffer_);
        for (;;) {
            const std::size_t dot = rest.find('.');
            if (count_ == names_.size()) {
                too_long_ = true;
                return;
            }
            names_[count_++] = rest.substr(0, dot);
            if (dot == std::string_view::npos) {
                return;
            }
            rest.remove_prefix(dot + 1);
        }
    }
    FieldPath(const FieldPath &) = delete;
    FieldPath &operator=(const FieldPath &) = delete;

    bool is_too_long() const { return too_long_; }

    // Takes note of a token's name, by sequence and not by nesting; true when it completes the path.
    bool completes(const bag_token_td &token) {
        const std::string_view name = name_of(token) != nullptr ? name_of(token) : "";
        if (name == names_[matched_]) {
            ++matched_;
        }
        return matched_ == count_;
    }

private:
    char buffer_[200] = {};
    std::array<std::string_view, 10> names_;
    std::size_t count_ = 0;
    std::size_t matched_ = 0;
    bool too_long_ = false;
};

class Bag {
public:
    Bag(yfw_map_ctx ctx, bag_generic_state_td state) : ctx_(ctx), state_(state) {}
    ~Bag() { bag_generic_destroy(state_); }
    Bag(const Bag &) = delete;
    Bag &operator=(const Bag &) = delete;

    // A failure gives no token.
    kerrno next(bag_token_td &token) {
        const kerrno result = bag_generic_token(state_, &token);
        if (result != KERR_SUCCESS) {
            YMAP_TRACE(search_function, ctx_, "bag_generic_token failed: %s", kerr_strerror(result));
        }
        return result;
    }

private:
    yfw_map_ctx ctx_;
    bag_generic_state_td state_;
};

// Renders the first element of the wanted type of the array that has been opened.
kerrno render_element(yfw_map_ctx ctx, Bag &bag, bag_token_type_td wanted, const Output &out) {
    for (;;) {
        bag_token_td element{};
        const kerrno result = bag.next(element);
        if (result != KERR_SUCCESS) {
            return result;
        }
        const bool found = type_of(element) == wanted;
        const bool ends = type_of(element) == token_type::array_end || type_of(element) == token_type::end;
        if (found) {
            render_token(ctx, element, out);
        }
        bag_generic_free_token_allocations(&element);
        if (found || ends) {
            return KERR_SUCCESS;
        }
    }
}

kerrno search(yfw_map_ctx ctx, Bag &bag, FieldPath &path, bag_token_type_td wanted, const Output &out) {
    for (;;) {
        bag_token_td token{};
        kerrno result = bag.next(token);
        if (result != KERR_SUCCESS) {
            return result;
        }
        const bool found = path.completes(token);
        if (found && type_of(token) == token_type::array_start) {
            result = render_element(ctx, bag, wanted, out);
        } else if (found) {
            render_token(ctx, token, out);
        }
        const bool ends = type_of(token) == token_type::end;
        bag_generic_free_token_allocations(&token);
        if (found || ends) {
            return result;
        }
    }
}

} // namespace

namespace ymap {

void render_token(yfw_map_ctx ctx, const bag_token_td &token, Output out) {
    switch (type_of(token)) {
    case token_type::int8:
        return write_number(out, "%d", int8_of(token));
    case token_type::uint8:
        return write_number(out, "%u", uint8_of(token));
    case token_type::int16:
        return write_number(out, "%d", int16_of(token));
    case token_type::uint16:
        return write_number(out, "%u", uint16_of(token));
    case token_type::int32:
        return write_number(out, "%d", int32_of(token));
    case token_type::uint32:
        return write_number(out, "%u", uint32_of(token));
    case token_type::ipv4: {
        char address[16] = {};
        return out.write(inet_ntoa_r(ipv4_of(token), address, sizeof address));
    }
    case token_type::enumeration:
        return write_number(out, "%d", enumeration_of(token));
    case token_type::boolean:
        return out.write(boolean_of(token) ? "TRUE" : "FALSE");
    case token_type::text:
        return write_text(out, text_of(token));
    case token_type::second_text:
        return write_text(out, second_text_of(token));
    default:
        YMAP_ASSERT_CONTEXT(render_function, ctx);
        YMAP_TRACE(render_function, ctx, "UNKNOWN TOKEN TYPE %d - ERROR]\n", static_cast<int>(type_of(token)));
    }
}

kerrno find_in_bag(yfw_map_ctx ctx, const char *path, bag_token_type_td wanted, const void *bag, std::uint32_t length,
                   Output out) {
    start(search_function, ctx);
    FieldPath names(path);
    if (bag == nullptr) {
        YMAP_TRACE(search_function, ctx, "NULL == bag_data");
        return no_field;
    }
    if (names.is_too_long()) {
        return no_field;
    }
    bag_header_td header{};
    const kerrno headed = bag_header_info(bag, &header);
    if (headed != KERR_SUCCESS) {
        YMAP_TRACE(search_function, ctx, "bag_header_info failed: %s", kerr_strerror(headed));
        return headed;
    }
    YMAP_TRACE(search_function, ctx, "[bag (len %u)] \t (%s v%d.%d)", length, type_name_of(header),
               version_major_of(header), version_minor_of(header));
    bag_generic_state_td state = nullptr;
    const kerrno begun = bag_generic_init(bag, length, &state);
    if (begun != KERR_SUCCESS) {
        YMAP_TRACE(search_function, ctx, "bag_generic_init failed: %s", kerr_strerror(begun));
        return begun;
    }
    Bag decoder(ctx, state);
    const kerrno result = search(ctx, decoder, names, wanted, out);
    YMAP_TRACE(search_function, ctx, "bag_generic_destroy");
    return result;
}

} // namespace ymap

extern "C" {

void convert_bag_value_to_str(yfw_map_ctx ctx, const bag_token_td *token, char *out) {
    render_token(ctx, *token, Output::unbounded(out));
}

kerrno get_value_in_bag(yfw_map_ctx ctx, const char *path, bag_token_type_td wanted, const void *bag,
                        std::uint32_t length, char *out) {
    return find_in_bag(ctx, path, wanted, bag, length, Output::unbounded(out));
}

} // extern "C"

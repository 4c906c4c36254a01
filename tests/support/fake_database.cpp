// The system database client, the bag decoder and the small C library additions, fed by the test's script.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <bag_generic.h>
#include <hvs_libc.h>
#include <kerr.h>
#include <sysdb_client.h>

#include "fake_platform.hpp"

namespace fake {
namespace {

char *kept(GivenToken &given, const std::optional<std::string> &text) {
    if (!text) {
        return nullptr;
    }
    auto copy = std::make_unique<char[]>(text->size() + 1);
    std::copy(text->begin(), text->end(), copy.get());
    given.texts.push_back(std::move(copy));
    return given.texts.back().get();
}

// Of the value only the bytes of the type are set.
void set_number(bag_token_td &token, std::int64_t number) {
    static_assert(std::endian::native == std::endian::little);
    constexpr std::array<std::size_t, 11> widths{1, 1, 2, 2, 4, 4, 8, 8, 4, 4, 4}; // from BAG_TOKEN_INT8 on
    std::memcpy(&token.value, &number, token.type < widths.size() ? widths.at(token.type) : sizeof number);
}

} // namespace

Token text_token(std::string name, std::optional<std::string> text) {
    return {BAG_TOKEN_TEXT, std::move(name), 0, std::move(text)};
}

Token mark_token(bag_token_type_td type, std::optional<std::string> name) {
    return {type, std::move(name), 0, std::nullopt};
}

Item integer_item(std::int32_t value) {
    Item item;
    item.bytes.resize(sizeof value);
    std::memcpy(item.bytes.data(), &value, sizeof value);
    return item;
}

Item bag_item(Bag bag) {
    Item item;
    item.bag = std::move(bag);
    item.bytes = "bag";
    return item;
}

GivenToken given_token(const Token &token) {
    GivenToken given;
    given.token.type = token.type;
    given.token.name = kept(given, token.name);
    if (token.type == BAG_TOKEN_TEXT) {
        given.token.value.text = kept(given, token.text);
    } else if (token.type == BAG_TOKEN_TEXT2) {
        given.token.second_text = kept(given, token.text);
    } else {
        set_number(given.token, token.number);
    }
    return given;
}

void Platform::bag_at(const void *data, Bag bag) {
    bags_[data] = std::move(bag);
}

} // namespace fake

namespace {

using fake::Platform;
using fake::quoted;

// The least that the client guarantees behind an item, so that a bag's header can be read.
constexpr std::size_t header_room = 128;

constexpr kerrno missing_item = 0x0a0b0c00;
constexpr kerrno exhausted_bag = 0x1badba60;
constexpr kerrno no_bag = 0x1badba61;

std::string text_of(std::uint64_t number) {
    return std::to_string(number);
}

std::string handle_name(const void *handle) {
    const Platform &platform = Platform::current();
    const auto found = platform.handles_.find(handle);
    return "handle " + (found == platform.handles_.end() ? "unknown" : text_of(found->second->number));
}

void *data_of(const fake::Item &item) {
    const std::size_t size = std::max(item.bytes.size(), header_room);
    // The caller releases it with free.
    void *const data = std::calloc(1, size); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    if (data != nullptr) {
        std::copy(item.bytes.begin(), item.bytes.end(), static_cast<char *>(data));
    }
    Platform::current().hand_out(data);
    return data;
}

std::string bag_name(const void *bag) {
    const Platform &platform = Platform::current();
    const auto found = platform.bags_.find(bag);
    return "bag " + (found == platform.bags_.end() ? "unknown" : quoted(found->second.type_name.c_str()));
}

// The texts tell tokens apart; a token that has none is known by type and value.
bool is_same(const bag_token_td &given, const bag_token_td &token) {
    if (given.type != token.type || given.name != token.name) {
        return false;
    }
    switch (given.type) {
    case BAG_TOKEN_TEXT:
        return given.value.text == token.value.text;
    case BAG_TOKEN_TEXT2:
        return given.second_text == token.second_text;
    default:
        return given.value.uint64 == token.value.uint64;
    }
}

} // namespace

extern "C" {

kerrno _sysdb_bind(sysdb_handle_td *handle, const char *bind_path, uint32_t flags) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Database, "sysdb_bind", quoted(bind_path) + ", " + text_of(flags));
    *handle = nullptr;
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    if (platform.bind_gives_handle) {
        auto bound = std::make_unique<Platform::Numbered>();
        bound->number = platform.next_number++;
        bound->text = bind_path;
        *handle = reinterpret_cast<sysdb_handle_td>(bound.get());
        const void *const key = bound.get();
        platform.handles_[key] = std::move(bound);
    }
    return KERR_SUCCESS;
}

kerrno _sysdb_unbind(sysdb_handle_td handle) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Database, "sysdb_unbind", handle_name(handle));
    if (platform.handles_.erase(handle) == 0) {
        platform.fault("a database handle was released that is not bound");
    }
    return scripted.value_or(KERR_SUCCESS);
}

kerrno sysdb_item_get(sysdb_handle_td handle, const char *item_path, sysdb_item_datatype_td *type, void **data,
                      uint32_t *length, uint32_t flags) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Database, "sysdb_item_get",
                                          handle_name(handle) + ", " + quoted(item_path) + ", type " + text_of(*type) +
                                              ", " + text_of(flags));
    const auto bound = platform.handles_.find(handle);
    if (bound == platform.handles_.end()) {
        platform.fault("an item was fetched through a handle that is not bound");
        return missing_item;
    }
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    const auto found = platform.items.find(bound->second->text + item_path);
    if (found == platform.items.end()) {
        return missing_item;
    }
    const fake::Item &item = found->second;
    if (item.result == KERR_SUCCESS || item.data_on_failure) {
        *type = item.updated_type.value_or(*type);
        if (data != nullptr) {
            *data = item.no_data ? nullptr : data_of(item);
        }
        if (length != nullptr) {
            *length = item.length.value_or(item.no_data ? 0 : static_cast<std::uint32_t>(item.bytes.size()));
        }
        if (item.bag && data != nullptr && *data != nullptr) {
            platform.bag_at(*data, *item.bag);
        }
    }
    return item.result;
}

kerrno sysdb_list(sysdb_handle_td handle, const char *path, const char *pattern, int32_t *count, sysdb_list_td *list,
                  uint32_t flags) {
    Platform &platform = Platform::current();
    const auto scripted =
        platform.record(fake::Database, "sysdb_list",
                        handle_name(handle) + ", " + quoted(path) + ", " + quoted(pattern) + ", " + text_of(flags));
    const auto bound = platform.handles_.find(handle);
    if (bound == platform.handles_.end()) {
        platform.fault("a listing was asked through a handle that is not bound");
        return missing_item;
    }
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    auto listing = std::make_unique<Platform::Listing>();
    const auto found = platform.listings.find(bound->second->text + path + pattern);
    if (found != platform.listings.end()) {
        listing->names = found->second;
    }
    *count = static_cast<std::int32_t>(listing->names.size());
    *list = reinterpret_cast<sysdb_list_td>(listing.get());
    const void *const key = listing.get();
    platform.lists_[key] = std::move(listing);
    return KERR_SUCCESS;
}

kerrno sysdb_list_next(sysdb_list_td list, const char **name, sysdb_item_datatype_td *type, uint32_t flags) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Database, "sysdb_list_next", text_of(flags));
    const auto found = platform.lists_.find(list);
    if (found == platform.lists_.end()) {
        platform.fault("the next name of a listing that is not there");
        return missing_item;
    }
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    Platform::Listing &listing = *found->second;
    *name = listing.next < listing.names.size() ? listing.names[listing.next++].c_str() : nullptr;
    *type = SYSDB_ITEM_BAG;
    return KERR_SUCCESS;
}

void sysdb_list_free(sysdb_list_td list) {
    Platform &platform = Platform::current();
    platform.record(fake::Database, "sysdb_list_free", "");
    if (platform.lists_.erase(list) == 0) {
        platform.fault("a listing was freed that is not there");
    }
}

kerrno bag_header_info(const void *bag, bag_header_td *header) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Bags, "bag_header_info", bag_name(bag));
    const auto found = platform.bags_.find(bag);
    if (found == platform.bags_.end()) {
        platform.fault("the header of something that is no bag");
        return no_bag;
    }
    if (const kerrno result = scripted.value_or(found->second.header_result); result != KERR_SUCCESS) {
        return result;
    }
    *header = {};
    const std::string &type_name = found->second.type_name;
    std::copy_n(type_name.data(), std::min<std::size_t>(type_name.size(), BAG_TYPE_NAME_SIZE - 1), header->type_name);
    header->version_major = found->second.version_major;
    header->version_minor = found->second.version_minor;
    return KERR_SUCCESS;
}

kerrno bag_generic_init(const void *bag, uint32_t length, bag_generic_state_td *state) {
    Platform &platform = Platform::current();
    const auto scripted = platform.record(fake::Bags, "bag_init", bag_name(bag) + ", " + text_of(length));
    const auto found = platform.bags_.find(bag);
    if (found == platform.bags_.end()) {
        platform.fault("a decoder for something that is no bag");
        return no_bag;
    }
    if (const kerrno result = scripted.value_or(found->second.init_result); result != KERR_SUCCESS) {
        return result;
    }
    auto decoder = std::make_unique<Platform::Decoder>();
    decoder->bag = found->second;
    *state = reinterpret_cast<bag_generic_state_td>(decoder.get());
    const void *const key = decoder.get();
    platform.decoders_[key] = std::move(decoder);
    return KERR_SUCCESS;
}

kerrno bag_generic_token(bag_generic_state_td state, bag_token_td *token) {
    Platform &platform = Platform::current();
    const auto found = platform.decoders_.find(state);
    if (found == platform.decoders_.end()) {
        platform.fault("a token of a decoder that is not there");
        return no_bag;
    }
    Platform::Decoder &decoder = *found->second;
    const std::size_t position = decoder.next++;
    const auto scripted = platform.record(fake::Bags, "bag_token", "#" + text_of(position + 1));
    if (scripted.value_or(0) != 0) {
        return *scripted;
    }
    const auto failing = decoder.bag.token_results.find(position);
    if (failing != decoder.bag.token_results.end()) {
        return failing->second;
    }
    if (position >= decoder.bag.tokens.size()) {
        return exhausted_bag;
    }
    fake::GivenToken given = fake::given_token(decoder.bag.tokens[position]);
    given.number = position + 1;
    *token = given.token;
    platform.tokens_.push_back(std::move(given));
    return KERR_SUCCESS;
}

void bag_generic_free_token_allocations(bag_token_td *token) {
    Platform &platform = Platform::current();
    const auto found = std::find_if(platform.tokens_.begin(), platform.tokens_.end(),
                                    [&](const fake::GivenToken &given) { return is_same(given.token, *token); });
    if (found == platform.tokens_.end()) {
        platform.record(fake::Bags, "bag_free_token", "unknown");
        platform.fault("a token was released a second time, or was never given");
        return;
    }
    platform.record(fake::Bags, "bag_free_token", "#" + text_of(found->number));
    platform.tokens_.erase(found);
}

void bag_generic_destroy(bag_generic_state_td state) {
    Platform &platform = Platform::current();
    platform.record(fake::Bags, "bag_destroy", "");
    if (!platform.tokens_.empty()) {
        platform.fault("a decoder was destroyed while tokens were out");
    }
    if (platform.decoders_.erase(state) == 0) {
        platform.fault("a decoder was destroyed that is not there");
    }
}

const char *kerr_strerror(kerrno code) {
    Platform::current().record(fake::Texts, "strerror", fake::hex(code));
    static std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "error 0x%08x", code);
    return text.data();
}

int memset_s(void *dest, size_t room, int byte, size_t count) {
    Platform::current().record(fake::Texts, "memset_s",
                               text_of(room) + ", " + std::to_string(byte) + ", " + text_of(count));
    if (dest == nullptr) {
        return 1;
    }
    std::memset(dest, byte, std::min(room, count));
    return count <= room ? 0 : 1;
}

char *inet_ntoa_r(uint32_t address, char *buffer, size_t size) {
    std::array<std::uint8_t, 4> octets{};
    std::memcpy(octets.data(), &address, sizeof address);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%u.%u.%u.%u", octets[0], octets[1], octets[2], octets[3]);
    Platform::current().record(fake::Texts, "inet_ntoa_r", std::string(text.data()) + ", " + text_of(size));
    if (size != 0) {
        std::snprintf(buffer, size, "%s", text.data());
    }
    return buffer;
}

// Stands in front of the C library's: the presence of the client library is the test's to say.
int access(const char *path, // NOLINT(readability-inconsistent-declaration-parameter-name): the header's are reserved
           int mode) noexcept {
    if (!std::string_view(path).ends_with("/libsysdb_client.so")) {
        return ::faccessat(AT_FDCWD, path, mode, 0);
    }
    Platform &platform = Platform::current();
    platform.record(fake::Database, "access", mode == R_OK ? "client library" : "client library, not for reading");
    return platform.client_library_present ? 0 : -1;
}

} // extern "C"

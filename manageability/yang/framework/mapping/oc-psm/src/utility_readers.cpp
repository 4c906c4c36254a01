// The values that are read straight from the system database: one item, one field of it, as text.
#include "utility_bounded.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace ymap;

namespace {

constexpr std::size_t item_path_size = 256;
constexpr kerrno no_data = 0xffffffff;

// What was fetched; the system's allocator made it.
class Item {
public:
    Item() = default;
    ~Item() { std::free(data_); } // NOLINT(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)
    Item(const Item &) = delete;
    Item &operator=(const Item &) = delete;

    kerrno fetch(yfw_map_ctx ctx, const char *bind_path, const char *item_path, sysdb_item_datatype_td type) {
        return sysdb_get_data(ctx, bind_path, item_path, &data_, &length_, type);
    }

    const void *data() const { return data_; }
    std::uint32_t length() const { return length_; }

private:
    void *data_ = nullptr;
    std::uint32_t length_ = 0;
};

// The path of an item: the key and what stands behind it, cut to the buffer.
class ItemPath {
public:
    ItemPath(const char *key, const char *item) { std::snprintf(text_, sizeof text_, "%s%s", key, item); }
    const char *text() const { return text_; }

private:
    char text_[item_path_size] = {};
};

void trace_key(const Function &function, yfw_map_ctx ctx, const char *key) {
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_TRACE(function, ctx, "controller_key %s", key);
}

// A field of a bag.
struct Field {
    const char *bind_path;
    const char *item;
    const char *name;
    bag_token_type_td type;
};

kerrno read_field(const Function &function, yfw_map_ctx ctx, const Field &field, const char *key, Output out) {
    trace_key(function, ctx, key);
    Item item;
    const kerrno result = item.fetch(ctx, field.bind_path, ItemPath(key, field.item).text(), item_type::bag);
    if (result != KERR_SUCCESS) {
        return result;
    }
    return find_in_bag(ctx, field.name, field.type, item.data(), item.length(), out);
}

kerrno read_integer(const Function &function, yfw_map_ctx ctx, const char *bind_path, const char *item_name,
                    const char *key, Output out) {
    trace_key(function, ctx, key);
    Item item;
    const kerrno result = item.fetch(ctx, bind_path, ItemPath(key, item_name).text(), item_type::int32);
    if (result != KERR_SUCCESS) {
        return result;
    }
    std::int32_t number = 0;
    if (item.data() == nullptr || item.length() < sizeof number) {
        return no_data;
    }
    std::memcpy(&number, item.data(), sizeof number);
    char text[16] = {};
    std::snprintf(text, sizeof text, "%d", number);
    out.write(text);
    return KERR_SUCCESS;
}

kerrno read_history(yfw_map_ctx ctx, const char *field, bag_token_type_td type, const char *key, Output out) {
    static constexpr Function function{
        "sysdb_get_pm_30sec_power",
        "kerrno sysdb_get_pm_30sec_power(yfw_map_ctx, const char *, bag_token_type_td, const char *, char *)",
        YMAP_SOURCE("utility")};
    return read_field(function, ctx,
                      {"/oper/perfmgmt/gl/periodic/optics/interface/", "/30sec/optics/1/timeline_rev/0x1", field, type},
                      key, out);
}

} // namespace

namespace ymap {

kerrno read_module_name(yfw_map_ctx ctx, const char *psm_key, Output out) {
    static constexpr Function function{"sysdb_get_psm_name_from_inventory",
                                       "kerrno sysdb_get_psm_name_from_inventory(yfw_map_ctx, const char *, char *)",
                                       YMAP_SOURCE("utility")};
    YMAP_ASSERT_CONTEXT(function, ctx);
    YMAP_TRACE(function, ctx, "psm_name_key %s", psm_key);
    char key[200] = {};
    yfw_strcpy_s(key, sizeof key, psm_key);
    const ItemPath path(replace_str(key, "/", "%2f"), "/attrib/inv_basic_bag"); // a slash would end the key
    Item item;
    const kerrno result = item.fetch(ctx, "/oper/inventory/gl/entity/", path.text(), item_type::bag);
    if (result != KERR_SUCCESS) {
        YMAP_TRACE(function, ctx, "rc != KERR_SUCCESS");
        return result;
    }
    return find_in_bag(ctx, "inv_phy_entity_basic_info.Name", token_type::text, item.data(), item.length(), out);
}

namespace bounded {

#define YMAP_READER_FUNCTION(reader)                                                                                   \
    static constexpr Function function {                                                                               \
#reader, "kerrno " #reader "(yfw_map_ctx, const char *, char *)", YMAP_SOURCE("utility")                       \
    }
#define YMAP_BAG_READER(reader, bind_path, item, field, type)                                                          \
    kerrno reader(yfw_map_ctx ctx, const char *key, Output out) {                                                      \
        YMAP_READER_FUNCTION(reader);                                                                                  \
        return read_field(function, ctx, {bind_path, item, field, token_type::type}, key, out);                        \
    }
#define YMAP_INTEGER_READER(reader, bind_path, item)                                                                   \
    kerrno reader(yfw_map_ctx ctx, const char *key, Output out) {                                                      \
        YMAP_READER_FUNCTION(reader);                                                                                  \
        return read_integer(function, ctx, bind_path, item, key, out);                                                 \
    }
#define YMAP_HISTORY_READER(reader, field)                                                                             \
    kerrno reader(yfw_map_ctx ctx, const char *key, Output out) {                                                      \
        return read_history(ctx, field, token_type::text, key, out);                                                   \
    }
#include "utility_readers.inc"

} // namespace bounded

} // namespace ymap

extern "C" {

kerrno sysdb_get_psm_name_from_inventory(yfw_map_ctx ctx, const char *psm_key, char *out) {
    return read_module_name(ctx, psm_key, Output::unbounded(out));
}

kerrno sysdb_get_pm_30sec_power(yfw_map_ctx ctx, const char *field, bag_token_type_td type, const char *key,
                                char *out) {
    return read_history(ctx, field, type, key, Output::unbounded(out));
}

#define YMAP_BAG_READER(reader, bind_path, item, field, type)                                                          \
    kerrno reader(yfw_map_ctx ctx, const char *key, char *out) {                                                       \
        return bounded::reader(ctx, key, Output::unbounded(out));                                                      \
    }
#define YMAP_INTEGER_READER(reader, bind_path, item) YMAP_BAG_READER(reader, bind_path, item, field, type)
#define YMAP_HISTORY_READER(reader, field) YMAP_BAG_READER(reader, bind_path, item, field, type)
#include "utility_readers.inc"

} // extern "C"

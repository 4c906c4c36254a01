// The bounded forms of utilities whose exported signature has no size.
#ifndef OC_PSM_UTILITY_BOUNDED_HPP
#define OC_PSM_UTILITY_BOUNDED_HPP

#include <string_view>

#include "utility.hpp"

namespace ymap {

// A caller's text buffer.
struct Output {
    char *data;
    std::size_t size;

    // A buffer that its owner vouches for.
    static Output unbounded(char *data) { return {data, static_cast<std::size_t>(-1)}; }

    // Writes a text, cut to the buffer and terminated.
    void write(std::string_view text) const;
};

// snprintf of a caller's format with one "%d".
int format_number(char *out, std::size_t size, const char *format, int number);

// True when the database client's library file is there; asks the file system until it is.
bool is_sysdb_client_present();

void render_token(yfw_map_ctx ctx, const bag_token_td &token, Output out);
kerrno find_in_bag(yfw_map_ctx ctx, const char *path, bag_token_type_td wanted, const void *bag, std::uint32_t length,
                   Output out);
kerrno read_module_name(yfw_map_ctx ctx, const char *psm_key, Output out);

// A direct read.
using Reader = kerrno(yfw_map_ctx, const char *key, Output);

namespace bounded {

#define YMAP_BAG_READER(reader, bind_path, item, field, type) Reader reader;
#define YMAP_INTEGER_READER(reader, bind_path, item) Reader reader;
#define YMAP_HISTORY_READER(reader, field) Reader reader;
#include "utility_readers.inc"

} // namespace bounded

} // namespace ymap

#endif

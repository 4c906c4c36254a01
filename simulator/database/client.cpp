// The platform's operations on the system database, read from the store.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "framework/host/service_codes.hpp"
#include "simulator/bag/format.hpp"
#include "simulator/database/item.hpp"
#include "simulator/store/file_store.hpp"
#include "simulator/store/store.hpp"
#include "sysdb_client.h"

using namespace ocpsm::sysdb;

struct sysdb_handle {
    std::string path; // ends in a slash
};

struct sysdb_names {
    struct Entry {
        std::string name;
        sysdb_item_datatype_td type;
    };
    std::vector<Entry> entries;
    std::size_t next = 0;
};

namespace {

// What the listing of a subtree gives as its type: it has no data.
constexpr sysdb_item_datatype_td no_data_type = 0;

// No exception may reach a caller in C.
template <class Operation>
kerrno guarded(Operation operation) {
    try {
        return operation();
    } catch (const std::bad_alloc &) {
        return error_no_memory;
    } catch (const std::exception &) {
        return error_storage;
    }
}

// Within a request its own transaction, so that everything it reads is of one moment.
template <class Operation>
kerrno with_transaction(Operation operation) {
    if (const ReadTransaction *current = youngest_transaction()) {
        return operation(*current);
    }
    const auto transaction = read_the_only_store();
    return transaction ? operation(*transaction) : error_not_open;
}

std::string ending_in_slash(std::string path) {
    if (!path.empty() && path.back() != '/') {
        path.push_back('/');
    }
    return path;
}

kerrno copy_data(std::string_view data, void **copy, std::uint32_t *length) {
    if (data.empty()) {
        return KERR_SUCCESS;
    }
    // The caller releases it with free.
    void *memory =
        std::calloc(1, std::max(data.size(), ocpsm::bag::max_header_size)); // NOLINT(cppcoreguidelines-no-malloc)
    if (memory == nullptr) {
        return error_no_memory;
    }
    data.copy(static_cast<char *>(memory), data.size());
    *copy = memory;
    *length = static_cast<std::uint32_t>(data.size());
    return KERR_SUCCESS;
}

kerrno get_item(const ReadTransaction &transaction, const std::string &path, sysdb_item_datatype_td &type, void **data,
                std::uint32_t *length) {
    const auto record = transaction.get(Table::items, path);
    if (!record) {
        return error_not_found;
    }
    const auto item = parse_item_record(*record);
    if (!item) {
        return error_storage;
    }
    const bool expected = type == item->type;
    type = item->type;
    return expected ? copy_data(item->data, data, length) : error_wrong_type;
}

// The entry that the path `key` stands for in the listing of `prefix`.
sysdb_names::Entry entry_of(const ReadTransaction &transaction, std::string_view key, std::string_view prefix) {
    const std::string_view below = key.substr(prefix.size());
    if (const std::size_t slash = below.find('/'); slash != std::string_view::npos) {
        return {std::string(below.substr(0, slash + 1)), no_data_type};
    }
    const auto item = parse_item_record(transaction.get(Table::items, key).value_or(""));
    return {std::string(below), item ? item->type : no_data_type};
}

std::vector<sysdb_names::Entry> names_below(const ReadTransaction &transaction, const std::string &prefix,
                                            std::string_view pattern) {
    std::vector<sysdb_names::Entry> entries;
    const std::string wanted = prefix + std::string(pattern);
    std::string from = wanted;
    for (auto key = transaction.lower_bound(Table::items, from); key && key->starts_with(wanted);
         key = transaction.lower_bound(Table::items, from)) {
        auto entry = entry_of(transaction, *key, prefix);
        from = prefix + entry.name;
        if (entry.name.ends_with('/')) {
            from.back() = '/' + 1; // behind everything in the subtree
        } else {
            from.push_back('\0'); // the next key that there can be
        }
        if (entry.name.starts_with(pattern)) {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

} // namespace

Store *sysdb_client_open(const std::filesystem::path &directory, Store::Mode mode) {
    return open_store(directory, mode).release();
}

kerrno _sysdb_bind(sysdb_handle_td *handle, const char *bind_path, uint32_t) {
    if (handle == nullptr) {
        return error_invalid_argument;
    }
    *handle = nullptr;
    if (bind_path == nullptr || *bind_path != '/') {
        return error_invalid_argument;
    }
    if (!can_read()) {
        return error_not_open;
    }
    return guarded([&] {
        auto bound = std::make_unique<sysdb_handle>();
        bound->path = ending_in_slash(bind_path);
        *handle = bound.release();
        return KERR_SUCCESS;
    });
}

kerrno _sysdb_unbind(sysdb_handle_td handle) {
    const std::unique_ptr<sysdb_handle> owner(handle);
    return owner ? KERR_SUCCESS : error_invalid_argument;
}

kerrno sysdb_item_get(sysdb_handle_td handle, const char *item_path, sysdb_item_datatype_td *type, void **data,
                      uint32_t *length, uint32_t) {
    if (handle == nullptr || item_path == nullptr || type == nullptr || data == nullptr || length == nullptr) {
        return error_invalid_argument;
    }
    *data = nullptr;
    *length = 0;
    return guarded([&] {
        return with_transaction([&](const ReadTransaction &transaction) {
            return get_item(transaction, handle->path + item_path, *type, data, length);
        });
    });
}

kerrno sysdb_list(sysdb_handle_td handle, const char *path, const char *pattern, int32_t *count, sysdb_list_td *list,
                  uint32_t) {
    if (handle == nullptr || path == nullptr || pattern == nullptr || count == nullptr || list == nullptr) {
        return error_invalid_argument;
    }
    *list = nullptr;
    return guarded([&] {
        return with_transaction([&](const ReadTransaction &transaction) {
            auto names = std::make_unique<sysdb_names>();
            names->entries = names_below(transaction, handle->path + ending_in_slash(path), pattern);
            *count = static_cast<std::int32_t>(names->entries.size());
            *list = names.release();
            return KERR_SUCCESS;
        });
    });
}

kerrno sysdb_list_next(sysdb_list_td list, const char **name, sysdb_item_datatype_td *type, uint32_t) {
    if (list == nullptr || name == nullptr || type == nullptr) {
        return error_invalid_argument;
    }
    *name = nullptr;
    *type = no_data_type;
    if (list->next < list->entries.size()) {
        const auto &entry = list->entries[list->next++];
        *name = entry.name.c_str();
        *type = entry.type;
    }
    return KERR_SUCCESS;
}

void sysdb_list_free(sysdb_list_td list) {
    const std::unique_ptr<sysdb_names> owner(list);
}

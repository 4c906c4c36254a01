// The platform's operations on the system database where its client is not installed: a host that loads this one can
// still load a plug-in, and every operation says why there is nothing to read.
#include "framework/host/service_codes.hpp"
#include "sysdb_client.h"

using ocpsm::sysdb::error_not_installed;

kerrno _sysdb_bind(sysdb_handle_td *, const char *, uint32_t) {
    return error_not_installed;
}

kerrno _sysdb_unbind(sysdb_handle_td) {
    return error_not_installed;
}

kerrno sysdb_item_get(sysdb_handle_td, const char *, sysdb_item_datatype_td *, void **, uint32_t *, uint32_t) {
    return error_not_installed;
}

kerrno sysdb_list(sysdb_handle_td, const char *, const char *, int32_t *, sysdb_list_td *, uint32_t) {
    return error_not_installed;
}

kerrno sysdb_list_next(sysdb_list_td, const char **, sysdb_item_datatype_td *, uint32_t) {
    return error_not_installed;
}

void sysdb_list_free(sysdb_list_td) {}

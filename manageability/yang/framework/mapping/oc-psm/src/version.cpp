// What strings(1) and what(1) show of the library, and a host reads in its file: its version, and the file whose
// presence tells it that there is a system database, a relative one beside itself.
namespace {

[[gnu::used]] const char version_text[] = "@(#) oc-psm " OC_PSM_VERSION ", database client " SYSDB_CLIENT_LIBRARY;

} // namespace

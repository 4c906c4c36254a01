# Writes OUTPUT, a source file that holds the texts of the YANG modules TEXTS in NAMESPACE, as HEADER declares them.
set(rows "")
foreach(text IN LISTS TEXTS)
  get_filename_component(name "${text}" NAME_WE)
  file(READ "${text}" content)
  string(APPEND rows "    {\"${name}\", R\"yang(${content})yang\"},\n")
endforeach()
file(WRITE "${OUTPUT}" "#include \"${HEADER}\"

namespace ${NAMESPACE} {
namespace {

constexpr ModuleText texts[] = {
${rows}};

} // namespace

std::span<const ModuleText> embedded_modules() { return texts; }

} // namespace ${NAMESPACE}
")

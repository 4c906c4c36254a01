# Writes OUTPUT, a source file that holds the texts of the YANG modules TEXTS.
set(rows "")
foreach(text IN LISTS TEXTS)
  get_filename_component(name "${text}" NAME_WE)
  file(READ "${text}" content)
  string(APPEND rows "    {\"${name}\", R\"yang(${content})yang\"},\n")
endforeach()
file(WRITE "${OUTPUT}" "#include \"framework/models/models.hpp\"

namespace ocpsm::models {
namespace {

constexpr ModuleText modules[] = {
${rows}};

} // namespace

std::span<const ModuleText> embedded_modules() { return modules; }

} // namespace ocpsm::models
")

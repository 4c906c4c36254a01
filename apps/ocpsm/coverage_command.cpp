#include "commands.hpp"

#include <ostream>

#include "coverage.hpp"
#include "device.hpp"
#include "framework/host/plugin.hpp"
#include "messages.hpp"
#include "openconfig_model.hpp"

namespace ocpsm {

int coverage_command(const std::filesystem::path &plugin_file, std::ostream &output, std::ostream &errors) {
    // The plug-in's wants are bound when it is loaded, those for the database too.
    const ocpsm::sysdb::Client database = load_database_client();
    const ocpsm::framework::Plugin plugin(plugin_file);
    const std::vector<SchemaNode> model = read_openconfig_model();
    const CoverageResult result =
        check_coverage({model, node_rows(), conversion_rows(), unsupported_rows(), native_rows(), answer_rows(),
                        [&](const std::string &name) { return plugin.find(name) != nullptr; }, is_native_node});

    for (const Finding &finding : result.findings) {
        print_error(errors, {Error::Source::refused, {}, {}, finding.path + " " + finding.problem});
    }
    output << model.size() << " nodes in the model: " << result.mapped << " mapped both ways, " << result.refused
           << " refused, " << result.unsupported << " unsupported; " << result.native << " native nodes; "
           << result.callbacks << " functions looked up in " << plugin_file.filename().string() << "; "
           << result.findings.size() << " findings\n";
    return result.findings.empty() ? exit_done : exit_refused;
}

} // namespace ocpsm

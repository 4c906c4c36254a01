#include "commands.hpp"

#include <ostream>

#include "conversion_check.hpp"
#include "coverage.hpp"
#include "libraries.hpp"
#include "line_system_service.hpp"
#include "messages.hpp"
#include "openconfig_model.hpp"
#include "plugin_host.hpp"

namespace ocpsm {

int coverage_command(const std::filesystem::path &plugin_file, std::ostream &output, std::ostream &errors) {
    RequestOptions options;
    options.plugin = plugin_file;
    const Service service = open_service_to_translate(options, errors);
    const std::vector<SchemaNode> model = read_openconfig_model();
    const CoverageInput input{model,
                              node_rows(),
                              conversion_rows(),
                              unsupported_rows(),
                              native_rows(),
                              answer_rows(),
                              [&](const std::string &name) { return service.find(name) != nullptr; },
                              is_native_node};
    CoverageResult result = check_coverage(input);
    if (missing_database(plugin_file).empty()) {
        PluginHost host(service);
        check_conversions(input, host, result);
    } else {
        print_warning(errors, "the conversions are not run: they need the system database");
    }

    for (const Finding &finding : result.findings) {
        print_error(errors, {Error::Source::refused, {}, {}, finding.path + " " + finding.problem});
    }
    output << model.size() << " nodes in the model: " << result.mapped << " mapped both ways, " << result.refused
           << " refused, " << result.unsupported << " unsupported; " << result.native << " native nodes; "
           << result.callbacks << " functions looked up in " << plugin_file.filename().string() << "; " << result.runs
           << " runs of conversions; " << result.findings.size() << " findings\n";
    return result.findings.empty() ? exit_done : exit_refused;
}

} // namespace ocpsm

// The options of translate, explain and coverage.
#include <memory>

#include "command_line.hpp"
#include "commands.hpp"

namespace ocpsm {
namespace {

constexpr char request_footer[] =
    "The request is the content of a NETCONF <filter> or <config>, with or without the message around it, or JSON (RFC "
    "7951).\n"
    "A <filter> is taken for --get and a <config> for --edit; what no element says needs one of the three options.\n"
    "Values are in the units of the OpenConfig model: dBm, dB, milliseconds.";

// A subcommand that takes a request, as its options leave it.
struct RequestLine {
    RequestOptions options;
    bool get = false;
    bool get_config = false;
    bool edit = false;
    bool unchecked = false;
    bool table = false;
    std::string format;

    RequestOptions finished(const Program &program) const {
        if (options.file.empty()) {
            throw CLI::RequiredError("FILE (a request, or - for standard input)");
        }
        RequestOptions finished = options;
        if (get || get_config || edit) {
            finished.kind = get ? Kind::get : get_config ? Kind::get_config : Kind::edit;
        }
        finished.request.check_values = !unchecked;
        finished.plugin = program.plugin_file();
        return finished;
    }
};

void add_request_options(CLI::App &command, RequestLine &line) {
    RequestOptions &request = line.options;
    command.footer(request_footer);
    command.add_option("file", request.file, "The request; - for standard input")->type_name("FILE");
    CLI::Option *get = command.add_flag("--get", line.get, "A read of configuration and operational state");
    CLI::Option *get_config = command.add_flag("--get-config", line.get_config, "A read of configuration only");
    CLI::Option *edit = command.add_flag("--edit", line.edit, "A change of configuration");
    get->excludes(get_config)->excludes(edit);
    get_config->excludes(edit);
    command.add_flag("--log", request.request.log, "Show the plug-in's debug log on standard error");
    command.add_flag("--trace", request.request.trace, "Show the plug-in's trace buffer on standard error");
    command.add_flag("--no-check", line.unchecked, "Hand over the values of an edit without checking them first");
    command.add_option("--state", request.state, "The directory of a line system, else the built-in example answers")
        ->type_name("DIR");
}

void add_translate(CLI::App &app, Program &program) {
    CLI::App *command = app.add_subcommand("translate", "Print the native requests that an OpenConfig request becomes");
    const auto line = std::make_shared<RequestLine>();
    add_request_options(*command, *line);
    command->add_option("--format", line->format, "Print native requests, result and warnings as one document")
        ->type_name("xml|json")
        ->check(one_of({"xml", "json"}));
    command->callback([line, &program] {
        RequestOptions request = line->finished(program);
        request.format = format_named(line->format);
        program.chosen = [request](std::ostream &output, std::ostream &errors) {
            return translate_command(request, output, errors);
        };
    });
}

void add_explain(CLI::App &app, Program &program) {
    CLI::App *command =
        app.add_subcommand("explain", "Print a line per native node that is added: walker -> conversion -> native "
                                      "path = value [unit, scaling] (operation, source, flags)");
    const auto line = std::make_shared<RequestLine>();
    add_request_options(*command, *line);
    CLI::Option *table = command->add_flag(
        "--table", line->table, "Print the mapping of every node of the model instead, with units and scaling");
    table->excludes("file");
    command->add_option("--format", line->format, "Print the table as text or markdown")
        ->type_name("text|markdown")
        ->needs(table)
        ->check(one_of({"text", "markdown"}));
    command->callback([line, &program] {
        if (line->table) {
            const TableFormat format = line->format == "markdown" ? TableFormat::markdown : TableFormat::text;
            program.chosen = [format](std::ostream &output, std::ostream &) { return table_command(format, output); };
            return;
        }
        program.chosen = [request = line->finished(program)](std::ostream &output, std::ostream &errors) {
            return explain_command(request, output, errors);
        };
    });
}

} // namespace

void add_mapping_commands(CLI::App &app, Program &program) {
    add_translate(app, program);
    add_explain(app, program);
    CLI::App *coverage =
        app.add_subcommand("coverage", "Prove that model, mapping tables and plug-in agree, node by node");
    coverage->callback([&program] {
        program.chosen = [plugin = program.plugin_file()](std::ostream &output, std::ostream &errors) {
            return coverage_command(plugin, output, errors);
        };
    });
}

} // namespace ocpsm

#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "bench/error.hpp"
#include "commands.hpp"
#include "device.hpp"
#include "messages.hpp"

namespace ocpsm {
namespace {

using bench::framework::Kind;

constexpr char description[] =
    "From OpenConfig line protection requests to native requests of an optical line system.\n"
    "Thresholds and powers are in dBm; hysteresis, relative thresholds, offsets and attenuations in dB, with two\n"
    "decimal places; times in milliseconds. Native values are integers in tenths (x10) or hundredths (x100) of these.";

constexpr char request_footer[] =
    "The request is the content of a NETCONF <filter> or <config>, with or without that element, or JSON (RFC 7951).\n"
    "A <filter> is taken for --get and a <config> for --edit; anything else needs one of the three options.\n"
    "Values are in the units of the OpenConfig model: dBm, dB, milliseconds.";

struct CommandLine {
    CLI::App app{description, "ocpsm"};
    CLI::App *translate = nullptr;
    CLI::App *explain = nullptr;
    CLI::App *coverage = nullptr;
    RequestOptions request;
    bool get = false;
    bool get_config = false;
    bool edit = false;
    bool unchecked = false;
    bool table = false;
    std::string format;

    CommandLine();
    int run(std::ostream &output, std::ostream &errors);
    std::string usage_error(const CLI::ParseError &error) const;

private:
    void add_request_options(CLI::App &command);
    int explain_or_table(std::ostream &output, std::ostream &errors) const;
};

// The type name in the help says already what is allowed.
CLI::Validator one_of(const std::vector<std::string> &values) {
    return CLI::IsMember(values).description("");
}

CommandLine::CommandLine() {
    app.require_subcommand(1);
    app.set_help_all_flag("--help-all", "Print the help of every subcommand and exit");
    app.footer("Exit codes: 0 done, 1 refused (nothing has changed), 2 bad usage or unreadable input.");
    app.add_option("--plugin", request.plugin, "The mapping plug-in, else oc-psm.so beside the program's libraries")
        ->type_name("FILE");
    app.fallthrough();

    translate = app.add_subcommand("translate", "Print the native requests that an OpenConfig request becomes");
    add_request_options(*translate);
    translate->add_option("--format", format, "Print native requests as xml or json, else as the request came")
        ->type_name("xml|json")
        ->check(one_of({"xml", "json"}));

    explain =
        app.add_subcommand("explain", "Print a line per native node that is added: walker -> conversion -> native "
                                      "path = value [unit, scaling] (operation, source, flags)");
    add_request_options(*explain);
    CLI::Option *table_flag = explain->add_flag(
        "--table", table, "Print the mapping of every node of the model instead, with units and scaling");
    table_flag->excludes("file");
    explain->add_option("--format", format, "Print the table as text or markdown")
        ->type_name("text|markdown")
        ->needs(table_flag)
        ->check(one_of({"text", "markdown"}));

    coverage = app.add_subcommand("coverage", "Prove that model, mapping tables and plug-in agree, node by node");
}

void CommandLine::add_request_options(CLI::App &command) {
    command.footer(request_footer);
    command.add_option("file", request.file, "The request; - for standard input")->type_name("FILE");
    CLI::Option *get_flag = command.add_flag("--get", get, "A read of configuration and operational state");
    CLI::Option *get_config_flag = command.add_flag("--get-config", get_config, "A read of configuration only");
    CLI::Option *edit_flag = command.add_flag("--edit", edit, "A change of configuration");
    get_flag->excludes(get_config_flag)->excludes(edit_flag);
    get_config_flag->excludes(edit_flag);
    command.add_flag("--log", request.log, "Show the plug-in's debug log on standard error");
    command.add_flag("--trace", request.trace, "Show the plug-in's trace buffer on standard error");
    command.add_flag("--no-check", unchecked, "Hand over the values of an edit without checking them first");
    command.add_option("--state", request.state, "The directory of a line system, else the built-in example answers")
        ->type_name("DIR");
}

int CommandLine::explain_or_table(std::ostream &output, std::ostream &errors) const {
    if (!table) {
        return explain_command(request, output, errors);
    }
    return table_command(format == "markdown" ? TableFormat::markdown : TableFormat::text, output);
}

int CommandLine::run(std::ostream &output, std::ostream &errors) {
    if (request.plugin.empty()) {
        request.plugin = library_directory() / "oc-psm.so";
    }
    if (coverage->parsed()) {
        return coverage_command(request.plugin, output, errors);
    }
    if (get || get_config || edit) {
        request.kind = get ? Kind::get : get_config ? Kind::get_config : Kind::edit;
    }
    request.check_values = !unchecked;
    if (!table && request.file.empty()) {
        throw CLI::RequiredError("FILE (a request, or - for standard input)");
    }
    if (explain->parsed()) {
        return explain_or_table(output, errors);
    }
    if (!format.empty()) {
        request.format = format == "json" ? Format::json : Format::xml;
    }
    return translate_command(request, output, errors);
}

// A misspelt subcommand is to be named: the parser only says that there is none.
std::string CommandLine::usage_error(const CLI::ParseError &error) const {
    const std::vector<std::string> remaining = app.remaining();
    if (!app.get_subcommands().empty() || remaining.empty() || remaining.front().empty()) {
        return error.what();
    }
    return (remaining.front().front() == '-' ? "there is no option " : "there is no subcommand ") + remaining.front() +
           "; the subcommands are translate, explain and coverage";
}

int run_program(int argc, char **argv) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
        return line.run(std::cout, std::cerr);
    } catch (const CLI::Success &help) {
        return line.app.exit(help);
    } catch (const CLI::ParseError &error) {
        print_error(std::cerr, {{}, line.usage_error(error), {}, {}, "ocpsm --help tells the usage"});
    } catch (const bench::Error &error) {
        print_error(std::cerr, {error.tag, error.what(), error.path, {}, error.advice});
        return error.source == bench::Error::Source::refused ? exit_refused : exit_bad_input;
    } catch (const std::exception &error) {
        print_error(std::cerr, {"operation-failed", error.what(), {}, {}, {}});
    }
    return exit_bad_input;
}

} // namespace
} // namespace ocpsm

int main(int argc, char **argv) {
    return ocpsm::run_program(argc, argv);
}

// A request as far as the native side: what it becomes, whole, and call by call.
#include <algorithm>
#include <iostream>

#include "commands.hpp"
#include "framework/mapping/request_table.hpp"
#include "framework/models/models.hpp"
#include "line_system_service.hpp"
#include "result_document.hpp"
#include "table_words.hpp"

namespace ocpsm {
namespace {

struct Run {
    Kind kind;
    Format format; // of the request, or the one that is named
    TranslateResult result;
};

Kind kind_of_request(const RequestOptions &options, const Text &request) {
    const std::optional<Kind> kind = options.kind ? options.kind : Service::kind_of(request);
    if (!kind && !looks_like_request(request.text)) {
        return Kind::get; // the parser says what is wrong with it
    }
    if (!kind) {
        throw Error(Error::Source::input, {}, {}, "the request does not say whether it is a read or an edit",
                    "add --get, --get-config or --edit");
    }
    return *kind;
}

// `traced`: the additions are to bear the names of the functions that made them.
Run run(const RequestOptions &options, bool traced, std::ostream &errors) {
    const Text request{read_request(options.file, std::cin)};
    const Kind kind = kind_of_request(options, request);
    const Service service = open_service_to_translate(options, errors);
    Options with = static_cast<const Options &>(options.request);
    with.trace = with.trace || traced;
    TranslateResult result = service.translate(request, kind, with);
    if (!options.request.trace) {
        result.trace.clear();
    }
    return {kind, options.format.value_or(format_of(request.text)), std::move(result)};
}

// Why it was refused. The two streams may be the same terminal, and the error is to be the last line there.
int error_code(const TranslateResult &result, std::ostream &output, std::ostream &errors) {
    output.flush();
    return result.error ? print_error(errors, *result.error) : exit_done;
}

int print_result(const TranslateResult &result, std::ostream &output, std::ostream &errors) {
    output << "result: " << result.result << '\n';
    return error_code(result, output, errors);
}

constexpr std::string_view walker_prefix = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_";

std::string_view short_walker(std::string_view walker) {
    if (walker.substr(0, walker_prefix.size()) == walker_prefix) {
        walker.remove_prefix(walker_prefix.size());
    }
    return walker.empty() ? "?" : walker;
}

// A value as it can stand in a line: in quotes where it would not be seen or could be mistaken for something else.
std::string printed_value(const Addition &add) {
    if (!add.value) {
        return "no value";
    }
    const std::string line = on_one_line(*add.value);
    const bool is_plain = !line.empty() && line.find_first_of(" \"[(") == std::string::npos;
    return is_plain ? line : "\"" + line + "\"";
}

// Unit and scaling of the leaf that the conversion is there for; empty for the keys and types that stand around it.
std::string printed_scaling(const Addition &add) {
    const ConversionRow *row = find_conversion(conversion_rows(), add.conversion);
    if (row == nullptr || (add.path != row->path && add.path != std::string(row->path) + "-dbm")) {
        return {};
    }
    const auto leaf = std::find_if(node_rows().begin(), node_rows().end(),
                                   [&](const NodeRow &node) { return node.conversion == add.conversion; });
    if (leaf == node_rows().end()) {
        return {};
    }
    const auto info = models::Schema::openconfig().describe(schema_path(node_rows(), *leaf));
    return " [" + describe_value(*row, info ? info->units : std::string_view()) + "]";
}

std::string printed_operation(const Addition &add, Kind kind) {
    std::string text = "read";
    if (kind == Kind::edit) {
        // Without a source the new node carries none, which is merge.
        text = operation_name(add.source_operation.value_or(Operation::merge));
    }
    text.append(add.source_operation ? ", source" : ", no source");
    return text + ", flags " + std::to_string(add.first_flag) + " " + std::to_string(add.second_flag);
}

void print_add(std::ostream &output, const Addition &add, Kind kind) {
    output << short_walker(add.walker) << " -> " << (add.conversion.empty() ? "walk" : add.conversion) << " -> ";
    if (add.relative) {
        output << on_one_line(add.path);
    } else {
        output << module_name(add.namespace_uri) << ":" << on_one_line(add.path);
    }
    output << " = " << printed_value(add) << printed_scaling(add) << " (" << printed_operation(add, kind) << ")";
    if (add.result != "KERR_SUCCESS") {
        output << " failed: " << add.result;
    }
    output << '\n';
}

} // namespace

int translate_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const Run made = run(options, false, errors);
    print_log(made.result, errors);
    if (options.format) {
        output << document(made.result, made.format);
        return error_code(made.result, output, errors);
    }
    print_warnings(made.result, errors);
    // A refused request changes nothing, so what had been added to it by then says nothing either.
    if (!made.result.error) {
        for (const DeviceRequest &request : made.result.requests) {
            output << request.print(made.format);
        }
    }
    return print_result(made.result, output, errors);
}

int explain_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const Run made = run(options, true, errors);
    print_messages(made.result, errors);
    for (const Addition &add : made.result.additions) {
        print_add(output, add, made.kind);
    }
    return print_result(made.result, output, errors);
}

} // namespace ocpsm

// What a management client does with a line system: reads and edits in OpenConfig.
#include <algorithm>
#include <iostream>

#include "commands.hpp"
#include "framework/text.hpp"
#include "line_system_service.hpp"

namespace ocpsm {
namespace {

std::string shown(const std::optional<std::string> &value) {
    if (!value) {
        return "not set";
    }
    return value->empty() ? "\"\"" : on_one_line(*value);
}

void print_native(const DeviceRequest &native, std::optional<Format> format, std::ostream &output) {
    if (format) {
        output << native.print(*format);
        return;
    }
    output << "native operations:\n";
    for (const DeviceOperation &operation : native.operations()) {
        output << "  " << operation_name(operation.operation) << " " << on_one_line(operation.path);
        if (operation.value) {
            output << " = " << shown(operation.value);
        }
        output << '\n';
    }
}

void print_changes(const std::vector<Change> &changes, std::string_view indent, std::ostream &output) {
    for (const Change &change : changes) {
        output << indent << on_one_line(change.path) << ": " << shown(change.before) << " -> " << shown(change.after)
               << '\n';
    }
    if (changes.empty()) {
        output << indent << "nothing changes\n";
    }
}

int run_edit(const RequestOptions &options, const Edit &edit, std::ostream &output, std::ostream &errors) {
    const EditResult result = open_service(options).edit(edit, options.request);
    print_messages(result, errors);
    if (result.error) {
        return print_error(errors, *result.error);
    }
    if (options.request.dry_run) {
        print_native(result.native, options.format, output);
        output << "OpenConfig changes:\n";
    }
    print_changes(result.changes, options.request.dry_run ? "  " : "", output);
    return options.request.dry_run || result.changes.empty() ? exit_done : exit_changed;
}

} // namespace

int get_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    if (std::find(options.paths.begin(), options.paths.end(), "") != options.paths.end()) {
        throw Error(Error::Source::input, {}, {}, "a path is empty", "name a path, or none to read everything");
    }
    Selection selection = Paths{options.paths};
    Format format = Format::json;
    if (!options.file.empty()) {
        Text filter{read_request(options.file, std::cin)};
        format = format_of(filter.text);
        selection = std::move(filter);
    }
    const ReadResult result = open_service(options).read(selection, *options.kind, options.request);
    print_messages(result, errors);
    if (result.error) {
        return print_error(errors, *result.error);
    }
    if (result.answer.empty() && result.warnings.empty()) {
        print_warning(errors, "the line system has nothing of what is selected");
    }
    output << result.answer.print(options.format.value_or(format));
    return exit_done;
}

int edit_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    return run_edit(options, Text{read_request(options.file, std::cin)}, output, errors);
}

int set_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    return run_edit(options, PathEdits{{options.path, Operation::merge, options.value}}, output, errors);
}

int delete_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const Operation operation = options.if_there ? Operation::remove : Operation::delete_existing;
    return run_edit(options, PathEdits{{options.path, operation}}, output, errors);
}

} // namespace ocpsm

#include "client_command.hpp"

#include <algorithm>
#include <functional>
#include <iostream>
#include <string_view>

#include "framework/error.hpp"
#include "framework/session.hpp"
#include "messages.hpp"
#include "open_line_system.hpp"
#include "simulator/line_system/line_system_device.hpp"

namespace ocpsm {
namespace {

namespace framework = ocpsm::framework;
using framework::Plugin;
using ocpsm::line_system::LineSystemDevice;

framework::SessionOptions session_options(const ClientOptions &options) {
    framework::SessionOptions session;
    session.log = options.log;
    session.trace = options.trace;
    return session;
}

// The channels and the warnings; they come before the result.
void print_messages(const framework::Outcome &outcome, const ClientOptions &options, std::ostream &errors) {
    if (options.log) {
        print_lines(outcome.log, errors);
    }
    if (options.trace) {
        print_lines(outcome.trace, errors);
    }
    for (const std::string &warning : outcome.warnings) {
        print_warning(errors, warning);
    }
}

int print_refusal(const framework::Refusal &refusal, std::ostream &errors) {
    print_error(errors, {refusal.tag, refusal.message, refusal.location, refusal.offending_node, refusal.advice});
    return exit_refused;
}

std::string shown(const std::optional<std::string> &value) {
    if (!value) {
        return "not set";
    }
    return value->empty() ? "\"\"" : on_one_line(*value);
}

void print_native(const ocpsm::native::NetRequest &native, std::optional<Format> format, std::ostream &output) {
    if (format) {
        output << (*format == Format::json ? native.to_json() : native.to_xml());
        return;
    }
    output << "native operations:\n";
    for (const ocpsm::native::NativeOperation &operation : native.operations()) {
        output << "  " << ocpsm::operation_name(operation.operation) << " " << on_one_line(operation.path);
        if (operation.value) {
            output << " = " << shown(operation.value);
        }
        output << '\n';
    }
}

void print_changes(const std::vector<framework::Change> &changes, std::string_view indent, std::ostream &output) {
    for (const framework::Change &change : changes) {
        output << indent << on_one_line(change.path) << ": " << shown(change.before) << " -> " << shown(change.after)
               << '\n';
    }
    if (changes.empty()) {
        output << indent << "nothing changes\n";
    }
}

using Edit = std::function<framework::EditResult(const Plugin &plugin, ocpsm::DeviceTransaction &device)>;

int run_edit(const ClientOptions &options, const Edit &edit, std::ostream &output, std::ostream &errors) {
    const OpenLineSystem opened(options.state);
    const Plugin plugin(options.plugin);
    const auto transaction = opened.store().write();
    LineSystemDevice device(*transaction);
    const framework::EditResult result = edit(plugin, device);
    print_messages(result, options, errors);
    if (result.error) {
        return print_refusal(*result.error, errors);
    }
    if (options.dry_run) {
        print_native(result.native, options.format, output);
        output << "OpenConfig changes:\n";
        print_changes(result.changes, "  ", output);
    } else {
        transaction->commit();
        print_changes(result.changes, "", output);
    }
    return exit_done;
}

} // namespace

int get_command(const ClientOptions &options, std::ostream &output, std::ostream &errors) {
    if (std::find(options.paths.begin(), options.paths.end(), "") != options.paths.end()) {
        throw ocpsm::Error(ocpsm::Error::Source::input, {}, {}, "a path is empty",
                           "name a path, or none to read everything");
    }
    const std::string filter = options.filter.empty() ? std::string() : read_request(options.filter, std::cin);
    const auto kind = options.configuration_only ? framework::Kind::get_config : framework::Kind::get;
    const OpenLineSystem opened(options.state);
    const Plugin plugin(options.plugin);
    const auto transaction = opened.store().read();
    LineSystemDevice device(*transaction);
    const framework::Answer answer =
        options.filter.empty() ? framework::read_paths(plugin, options.paths, kind, device, session_options(options))
                               : framework::read(plugin, filter, kind, device, session_options(options));
    print_messages(answer, options, errors);
    if (answer.error) {
        return print_refusal(*answer.error, errors);
    }
    if (answer.tree.empty() && answer.warnings.empty()) {
        print_warning(errors, "the line system has nothing of what is selected");
    }
    const Format format = options.format.value_or(filter.empty() ? Format::json : format_of(filter));
    output << (format == Format::json ? answer.to_json() : answer.to_xml());
    return exit_done;
}

int edit_command(const ClientOptions &options, std::ostream &output, std::ostream &errors) {
    const std::string text = read_request(options.file, std::cin);
    return run_edit(
        options,
        [&](const Plugin &plugin, ocpsm::DeviceTransaction &device) {
            return framework::edit(plugin, text, device, session_options(options));
        },
        output, errors);
}

int set_command(const ClientOptions &options, std::ostream &output, std::ostream &errors) {
    return run_edit(
        options,
        [&](const Plugin &plugin, ocpsm::DeviceTransaction &device) {
            return framework::set_leaf(plugin, options.path, options.value, device, session_options(options));
        },
        output, errors);
}

int delete_command(const ClientOptions &options, std::ostream &output, std::ostream &errors) {
    return run_edit(
        options,
        [&](const Plugin &plugin, ocpsm::DeviceTransaction &device) {
            return framework::delete_node(plugin, options.path, device, session_options(options));
        },
        output, errors);
}

} // namespace ocpsm

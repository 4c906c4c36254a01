#include "request_run.hpp"

#include <iostream>

#include "device.hpp"
#include "framework/error.hpp"
#include "messages.hpp"

namespace ocpsm {
namespace {

using ocpsm::framework::Kind;
using ocpsm::framework::Translation;

Kind kind_of_request(const RequestOptions &options, std::string_view text) {
    const std::optional<Kind> kind = options.kind ? options.kind : kind_of(text);
    if (!kind && !looks_like_request(text)) {
        return Kind::get; // the parser says what is wrong with it
    }
    if (!kind) {
        throw ocpsm::Error(ocpsm::Error::Source::input, {}, {},
                           "the request does not say whether it is a read or an edit",
                           "add --get, --get-config or --edit");
    }
    return *kind;
}

} // namespace

RequestRun run_request(const RequestOptions &options, bool keep_trace, std::ostream &errors) {
    const std::string text = read_request(options.file, std::cin);
    const Kind kind = kind_of_request(options, text);
    const Device device(options.state, errors);
    const ocpsm::framework::Plugin plugin(options.plugin);

    ocpsm::framework::TranslationOptions translation_options;
    translation_options.check_values = options.check_values;
    translation_options.log = options.log;
    translation_options.trace = options.trace || keep_trace;
    translation_options.fitted_modules = device.fitted_modules();
    Translation translation = ocpsm::framework::translate(plugin.callback(ocpsm::framework::openconfig_root_walker),
                                                          text, kind, translation_options);

    if (options.log) {
        print_lines(translation.log, errors);
    }
    if (options.trace) {
        print_lines(translation.trace, errors);
    }
    for (const std::string &warning : translation.warnings) {
        print_warning(errors, warning);
    }
    return {kind, options.format.value_or(format_of(text)), std::move(translation)};
}

int print_result(const Translation &translation, std::ostream &output, std::ostream &errors) {
    output << "result: " << translation.result_name << '\n';
    if (!translation.error) {
        return exit_done;
    }
    // The two streams may be the same terminal, and the error is to be the last line there.
    output.flush();
    const auto &error = *translation.error;
    print_error(errors, {error.tag, error.message, error.location, error.offending_node, error.advice});
    return exit_refused;
}

} // namespace ocpsm

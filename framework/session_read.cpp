// Reads: from the request to the answer.
#include <iterator>
#include <utility>

#include "framework/answer/cut.hpp"
#include "framework/answer/print.hpp"
#include "framework/answer/walk.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/session_parts.hpp"

namespace ocpsm::framework {

namespace {

// Has the device answer what was handed over, and the plug-in map it back.
std::vector<AnswerNode> answer_one(const Plugin &plugin, Kind kind, const HandedOver &handed, ocpsm::DeviceTransaction &device,
                                   Channels &channels, const SessionOptions &options) {
    const native::NativeData data = device.answer(handed.native.net());
    return cut(walk_answer(plugin, kind, handed.request, data, channels, {options.log, options.trace}),
               {handed.request});
}

} // namespace

std::string Answer::to_xml() const {
    return print_answer(tree, AnswerFormat::xml);
}

std::string Answer::to_json() const {
    return print_answer(tree, AnswerFormat::json);
}

Refusal refusal_from(const Error &error) {
    Refusal refusal;
    refusal.tag = error.tag;
    refusal.message = error.what();
    refusal.location = error.path;
    refusal.advice = error.advice;
    return refusal;
}

TranslationOptions translation_options(const SessionOptions &options) {
    TranslationOptions translation;
    translation.check_values = options.check_values;
    translation.log = options.log;
    translation.trace = options.trace;
    return translation;
}

void take_messages(Outcome &outcome, Translation &translation) {
    outcome.warnings = std::move(translation.warnings);
    outcome.log = std::move(translation.log);
    outcome.trace = std::move(translation.trace);
    outcome.error = std::move(translation.error);
}

Answer answer_read(const Plugin &plugin, const std::vector<RequestNode> &tops, Kind kind, ocpsm::DeviceTransaction &device,
                   const SessionOptions &options) {
    Translation translation = translate_trees(plugin.callback(openconfig_root_walker), hand_over_read(tops), kind,
                                              translation_options(options));
    Answer answer;
    take_messages(answer, translation);
    if (answer.error) {
        return answer;
    }
    Channels channels;
    try {
        for (const HandedOver &handed : translation.handed_over) {
            if (!handed.nothing_supported) {
                join(answer.tree, answer_one(plugin, kind, handed, device, channels, options));
            }
        }
    } catch (const Error &error) {
        answer.error = refusal_from(error);
        answer.tree.clear();
    }
    answer.log.insert(answer.log.end(), channels.log().begin(), channels.log().end());
    answer.trace.insert(answer.trace.end(), channels.trace().begin(), channels.trace().end());
    return answer;
}

Answer read(const Plugin &plugin, std::string_view text, Kind kind, ocpsm::DeviceTransaction &device,
            const SessionOptions &options) {
    return answer_read(plugin, type_request(parse_request(text, kind), kind, options.check_values), kind, device,
                       options);
}

Answer read_paths(const Plugin &plugin, std::span<const std::string> paths, Kind kind, ocpsm::DeviceTransaction &device,
                  const SessionOptions &options) {
    std::vector<WrittenNode> tops;
    for (const std::string &path : paths) {
        std::vector<WrittenNode> selected = read_of(path);
        std::move(selected.begin(), selected.end(), std::back_inserter(tops));
    }
    if (paths.empty()) {
        tops = read_of("/");
    }
    return answer_read(plugin, type_request(tops, kind, options.check_values), kind, device, options);
}

} // namespace ocpsm::framework

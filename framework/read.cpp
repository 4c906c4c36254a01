// Reads: from the request to the answer.
#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "framework/answer/cut.hpp"
#include "framework/answer/left_out.hpp"
#include "framework/answer/walk.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/instance_read.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/requests.hpp"

namespace ocpsm::framework {

namespace {

// The nodes of a selection as it was written.
struct Written {
    Kind kind;

    Tree operator()(const Paths &selection) const {
        check_number_of_paths(selection.paths.size());
        Tree tops;
        for (const std::string &path : selection.paths) {
            Tree selected = read_of(path);
            std::move(selected.begin(), selected.end(), std::back_inserter(tops));
        }
        return selection.paths.empty() ? read_of("/") : tops;
    }
    Tree operator()(const Text &text) const { return parse_request(text.text, kind); }
    Tree operator()(const Tree &tree) const { return tree; }
};

void append_texts(std::vector<LogLine> lines, std::vector<std::string> &texts) {
    for (LogLine &line : lines) {
        texts.push_back(std::move(line.text));
    }
}

// Has the device answer what was handed over, and the plug-in map it back.
AnswerTree answer_one(const Plugin &plugin, Kind kind, const HandedOver &handed, DeviceTransaction &device,
                      Channels &channels, const Options &options) {
    const native::NativeData data = device.answer(handed.native.net());
    return cut(walk_answer(plugin, kind, handed.request, data, channels, options), {handed.request});
}

void answer_all(const Plugin &plugin, Kind kind, const Translation &translation, DeviceTransaction &device,
                const Options &options, ReadResult &result) {
    Channels channels;
    std::vector<AnswerTree> parts;
    try {
        for (const HandedOver &handed : translation.handed_over) {
            if (!handed.nothing_supported) {
                parts.push_back(answer_one(plugin, kind, handed, device, channels, options));
            }
        }
        AnswerTree tree = join(std::move(parts));
        for (std::string &warning : left_out(translation.handed_over, tree, kind)) {
            result.warnings.push_back(std::move(warning));
        }
        if (!tree.empty()) {
            result.answer = Answer(std::make_shared<Answer::Data>(std::move(tree)));
        }
    } catch (const Error &error) {
        result.error = error;
    }
    append_texts(channels.take_log(), result.log);
    append_texts(channels.take_trace(), result.trace);
}

} // namespace

Tree typed(const Selection &selection, Kind kind) {
    return type_request(std::visit(Written{kind}, selection), kind, true);
}

void take_messages(Outcome &outcome, Translation &translation) {
    outcome.warnings = std::move(translation.warnings);
    append_texts(std::move(translation.log), outcome.log);
    append_texts(std::move(translation.trace), outcome.trace);
    outcome.error = std::move(translation.error);
}

ReadResult answer_read(const Plugin &plugin, Tree tops, Kind kind, DeviceTransaction &device, const Options &options) {
    Translation translation = translate_trees(plugin.callback(openconfig_root_walker), hand_over_read(std::move(tops)),
                                              kind, options, Adds::dropped);
    ReadResult result;
    take_messages(result, translation);
    if (!result.error) {
        answer_all(plugin, kind, translation, device, options, result);
    }
    return result;
}

Answer configuration(const Plugin &plugin, DeviceTransaction &device,
                     const std::optional<std::vector<std::string>> &modules) {
    Tree selected;
    if (modules) {
        std::transform(modules->begin(), modules->end(), std::back_inserter(selected), read_of_instance);
    } else {
        selected = typed(Paths{}, Kind::get_config);
    }
    ReadResult result = answer_read(plugin, std::move(selected), Kind::get_config, device, {});
    if (result.error) {
        throw Error(*result.error);
    }
    return std::move(result.answer);
}

const AnswerTree &tree_of(const Answer &answer) {
    static const AnswerTree nothing;
    return answer.empty() ? nothing : answer.data().tree;
}

} // namespace ocpsm::framework

// Reads: from the request to the answer.
#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "framework/answer/cut.hpp"
#include "framework/answer/defaults.hpp"
#include "framework/answer/left_out.hpp"
#include "framework/answer/walk.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/instance_read.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/request/xpath.hpp"
#include "framework/requests.hpp"

namespace ocpsm::framework {

namespace {

// What is selected, as it was written.
struct Written {
    Kind kind;
    std::vector<std::string> &xpaths;

    Content operator()(const Paths &selection) const {
        check_number_of_paths(selection.paths.size());
        Content content{{}, kind};
        for (const std::string &path : selection.paths) {
            if (auto xpath = xpath_of(path)) {
                xpaths.push_back(std::move(*xpath));
                continue;
            }
            Tree selected = read_of(path);
            std::move(selected.begin(), selected.end(), std::back_inserter(content.tops));
        }
        content.whole = selection.paths.empty();
        return content;
    }
    Content operator()(const Text &text) const { return parse_request(text.text, kind); }
    Content operator()(const Tree &tree) const { return {tree, kind}; }
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
    AnswerTree answer = walk_answer(plugin, kind, handed.request, data, channels, options);
    if (options.defaults == Defaults::all) {
        answer = with_defaults(std::move(answer));
    }
    return cut(std::move(answer), {handed.request});
}

struct Answered {
    std::vector<HandedOver> handed_over;
    AnswerTree tree;
};

// Has the plug-in translate a read, and answers it; no tree, with an error in `result`, when that fails.
Answered answer_all(const Plugin &plugin, Tree tops, Kind kind, DeviceTransaction &device, const Options &options,
                    ReadResult &result) {
    Translation translation = translate_trees(plugin.callback(openconfig_root_walker), hand_over_read(std::move(tops)),
                                              kind, options, Adds::dropped);
    take_messages(result, translation);
    Channels channels;
    Answered answered{std::move(translation.handed_over), {}};
    try {
        std::vector<AnswerTree> parts;
        for (const HandedOver &handed : answered.handed_over) {
            if (!result.error && !handed.nothing_supported) {
                parts.push_back(answer_one(plugin, kind, handed, device, channels, options));
            }
        }
        answered.tree = join(std::move(parts));
    } catch (const Error &error) {
        result.error = error;
    }
    append_texts(channels.take_log(), result.log);
    append_texts(channels.take_trace(), result.trace);
    return answered;
}

// Expressions are applied to the answer that has everything.
AnswerTree answer_xpaths(const Plugin &plugin, const TypedRead &read, DeviceTransaction &device, const Options &options,
                         ReadResult &result) {
    AnswerTree all = answer_all(plugin, typed(Paths{}, read.kind).tops, read.kind, device, options, result).tree;
    try {
        return cut_to_xpaths(std::move(all), read.xpaths);
    } catch (const Error &error) {
        result.error = error;
        return {};
    }
}

} // namespace

TypedRead typed(const Selection &selection, Kind kind) {
    TypedRead read{{}, kind};
    Content content = std::visit(Written{kind, read.xpaths}, selection);
    if (content.whole) {
        content.tops = read_of("/");
    }
    read.kind = content.kind;
    read.warnings = leave_out_other_models(content.tops);
    read.tops = type_request(std::move(content.tops), content.kind, true);
    return read;
}

void take_messages(Outcome &outcome, Translation &translation) {
    std::move(translation.warnings.begin(), translation.warnings.end(), std::back_inserter(outcome.warnings));
    append_texts(std::move(translation.log), outcome.log);
    append_texts(std::move(translation.trace), outcome.trace);
    outcome.error = std::move(translation.error);
}

ReadResult answer_read(const Plugin &plugin, TypedRead read, DeviceTransaction &device, const Options &options) {
    ReadResult result;
    result.warnings = std::move(read.warnings);
    Answered selected;
    std::vector<AnswerTree> parts;
    if (!read.tops.empty() || read.xpaths.empty()) {
        selected = answer_all(plugin, std::move(read.tops), read.kind, device, options, result);
        parts.push_back(std::move(selected.tree));
    }
    if (!read.xpaths.empty() && !result.error) {
        parts.push_back(answer_xpaths(plugin, read, device, options, result));
    }
    if (result.error) {
        return result;
    }
    AnswerTree tree = join(std::move(parts));
    std::vector<std::string> missing = left_out(selected.handed_over, tree, read.kind);
    std::move(missing.begin(), missing.end(), std::back_inserter(result.warnings));
    if (options.defaults == Defaults::trimmed) {
        tree = without_defaults(std::move(tree));
    }
    if (!tree.empty()) {
        result.answer = Answer(std::make_shared<Answer::Data>(std::move(tree)));
    }
    return result;
}

Answer configuration(const Plugin &plugin, DeviceTransaction &device,
                     const std::optional<std::vector<std::string>> &modules) {
    Tree selected;
    if (modules) {
        std::transform(modules->begin(), modules->end(), std::back_inserter(selected), read_of_instance);
    } else {
        selected = typed(Paths{}, Kind::get_config).tops;
    }
    ReadResult result = answer_read(plugin, {std::move(selected), Kind::get_config}, device, {});
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

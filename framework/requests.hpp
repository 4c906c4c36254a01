// Requests within one transaction of a device.
#ifndef OCPSM_FRAMEWORK_REQUESTS_HPP
#define OCPSM_FRAMEWORK_REQUESTS_HPP

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "framework/answer/tree.hpp"
#include "framework/device.hpp"
#include "framework/host/plugin.hpp"
#include "framework/request_tree.hpp"
#include "framework/service.hpp"
#include "framework/translation.hpp"

namespace ocpsm {

// What an answer holds.
struct Answer::Data {
    explicit Data(framework::AnswerTree answered) : tree(std::move(answered)) {}

    framework::AnswerTree tree; // not empty
};

namespace framework {

// What a read selects.
struct TypedRead {
    Tree tops;
    Kind kind; // get_config also where the text says so
    std::vector<std::string> warnings = {};
    std::vector<std::string> xpaths = {}; // beside `tops`, which are none where nothing else is selected
};

// The typed nodes of a read, and of an edit. Throw Error for what cannot be read and what the model does not allow.
TypedRead typed(const Selection &selection, Kind kind);
Tree typed(const Edit &edit, const EditOptions &options);

// Answers a typed read.
ReadResult answer_read(const Plugin &plugin, TypedRead read, DeviceTransaction &device, const Options &options);

// Carries out a typed edit in a transaction: without an error the caller may commit it, or show it and drop it; with
// one it has to drop it.
EditResult carry_out(const Plugin &plugin, Tree tops, DeviceTransaction &device, const EditOptions &options);

// The configuration of the named modules, without names of all. Throws Error when it cannot be read.
Answer configuration(const Plugin &plugin, DeviceTransaction &device,
                     const std::optional<std::vector<std::string>> &modules);

// What an answer holds; an empty tree when it is empty.
const AnswerTree &tree_of(const Answer &answer);

// Takes over what a translation says, behind the warnings that are there, but not its result.
void take_messages(Outcome &outcome, Translation &translation);

} // namespace framework
} // namespace ocpsm

#endif

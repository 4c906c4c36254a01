#include "session_fixture.hpp"

#include <algorithm>

using ocpsm::EditResult;
using ocpsm::Outcome;
using ocpsm::ReadResult;
using ocpsm::framework::Plugin;

namespace requests {
namespace {

ocpsm::Text whole(const std::string &text) {
    return {text.starts_with("<aps ") || text.starts_with("{") ? text : modules_text(text)};
}

EditResult edit(const Plugin &plugin, const ocpsm::Edit &edit, DeviceTransaction &device, const EditOptions &options) {
    return carry_out(plugin, ocpsm::framework::typed(edit, options), device, options);
}

} // namespace

ReadResult read(const Plugin &plugin, const std::string &text, Kind kind, DeviceTransaction &device,
                const Options &options) {
    return answer_read(plugin, ocpsm::framework::typed(whole(text), kind), device, options);
}

ReadResult read_paths(const Plugin &plugin, const std::vector<std::string> &paths, Kind kind, DeviceTransaction &device,
                      const Options &options) {
    return answer_read(plugin, ocpsm::framework::typed(ocpsm::Paths{paths}, kind), device, options);
}

EditResult edit(const Plugin &plugin, const std::string &text, DeviceTransaction &device, const EditOptions &options) {
    return edit(plugin, ocpsm::Edit(whole(text)), device, options);
}

EditResult set_leaf(const Plugin &plugin, const std::string &path, const std::string &value,
                    DeviceTransaction &device) {
    return edit(plugin, ocpsm::Edit(ocpsm::PathEdits{{path, ocpsm::Operation::merge, value}}), device, {});
}

EditResult delete_node(const Plugin &plugin, const std::string &path, DeviceTransaction &device) {
    return edit(plugin, ocpsm::Edit(ocpsm::PathEdits{{path, ocpsm::Operation::delete_existing}}), device, {});
}

} // namespace requests

std::string short_path(const std::string &path) {
    const std::string begin = "/aps/aps-modules/aps-module[name='0/";
    const std::string end = "-PSM-OM']";
    const auto at = path.find(end);
    if (!path.starts_with(begin) || at == std::string::npos) {
        return path;
    }
    return path.substr(begin.size(), at - begin.size()) + path.substr(at + end.size());
}

Lines grouped(const std::vector<ocpsm::Leaf> &leaves) {
    Lines lines;
    std::string around;
    for (const ocpsm::Leaf &leaf : leaves) {
        const std::string path = short_path(leaf.path);
        const std::size_t slash = path.rfind('/');
        const std::string said = path.substr(slash + 1) + " = " + leaf.value;
        if (lines.empty() || path.substr(0, slash) != around) {
            around = path.substr(0, slash);
            lines.push_back(around + ": " + said);
        } else {
            lines.back() += ", " + said;
        }
    }
    return lines;
}

Lines leaves_of(const ocpsm::Answer &answer) {
    return grouped(answer.leaves());
}

std::string refusal_of(const Outcome &outcome) {
    if (!outcome.error) {
        return "none";
    }
    const ocpsm::Error &error = *outcome.error;
    const std::string native = error.native_path.empty() ? "" : " (native: " + error.native_path + ")";
    return error.tag + "|" + error.path + "|" + error.message() + native + "|" + error.advice + "|" + error.node;
}

int root_walks(const Outcome &outcome) {
    return static_cast<int>(std::count_if(outcome.trace.begin(), outcome.trace.end(), [](const std::string &text) {
        const auto line = ocpsm::framework::parse_trace_line(text);
        return line.message == "Start" && line.function == ocpsm::framework::openconfig_root_walker;
    }));
}

Lines changes_of(const EditResult &result) {
    Lines lines;
    for (const auto &change : result.changes) {
        lines.push_back(short_path(change.path) + ": " + change.before.value_or("-") + " -> " +
                        change.after.value_or("-"));
    }
    return lines;
}

const Plugin &SessionFixture::plugin() {
    static const auto *const loaded = new Plugin(PLUGIN); // NOLINT(cppcoreguidelines-owning-memory)
    return *loaded;
}

void SessionFixture::use(const LineSystem &system) {
    TearDown();
    client_.emplace();
    state_.emplace(*client_, system);
    transaction_ = state_->store().write();
    device_.emplace(*transaction_);
}

void SessionFixture::TearDown() {
    device_.reset();
    transaction_.reset();
    state_.reset();
}

Lines SessionFixture::answered(const ReadResult &answer) {
    EXPECT_EQ(refusal_of(answer), "none");
    EXPECT_THAT(answer.warnings, testing::IsEmpty());
    return leaves_of(answer.answer);
}

ReadResult SessionFixture::read(const std::string &what, Kind kind, const ocpsm::Options &options) {
    if (what.empty() || what.front() == '<') {
        return requests::read(plugin(), what, kind, device(), options);
    }
    const std::string path = what.front() == '/' ? what : module_path(what.front() - '0', what.substr(1));
    return requests::read_paths(plugin(), {path}, kind, device(), options);
}

std::string SessionFixture::refused(const std::string &text) {
    const LineSystem before = system();
    const EditResult result = edit(text);
    EXPECT_EQ(system(), before);
    EXPECT_THAT(result.changes, testing::IsEmpty());
    return refusal_of(result);
}

void SessionFixture::expect_nothing_done(const std::string &text) {
    const LineSystem before = system();
    EXPECT_THAT(changes(text), testing::IsEmpty());
    EXPECT_EQ(system(), before);
}

EditResult SessionFixture::successful(EditResult result) {
    EXPECT_EQ(refusal_of(result), "none");
    EXPECT_THAT(result.warnings, testing::IsEmpty());
    return result;
}

ocpsm::native::NativeData HeldDevice::answer(const ocpsm::native::NetRequest &read) {
    return answers_everything ? held_ : ocpsm::native::answer(held_, read);
}

std::vector<std::string> HeldDevice::apply(const ocpsm::native::NetRequest &edit) {
    if (refusal) {
        throw ocpsm::Error(*refusal);
    }
    for (const auto &operation : edit.operations()) {
        edits.push_back(operation.path);
    }
    return {};
}

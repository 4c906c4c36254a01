#include "scene.hpp"

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "exports.hpp"

namespace cases {
namespace {

constexpr std::string_view gap = "..."; // any lines, or none

std::string joined(const std::vector<std::string> &lines) {
    std::string all;
    for (const std::string &line : lines) {
        all += "\n    " + line;
    }
    return all.empty() ? "\n    (nothing)" : all;
}

// Whether the lines are as expected, where "..." stands for any of them.
bool fits(const std::vector<std::string> &expected, const std::vector<std::string> &actual) {
    std::vector<bool> reached(actual.size() + 1, false); // so many lines are explained
    reached[0] = true;
    for (const std::string &line : expected) {
        std::vector<bool> next(actual.size() + 1, false);
        bool any = false;
        for (std::size_t i = 0; i <= actual.size(); ++i) {
            any = any || reached[i];
            next[i] = line == gap ? any : i > 0 && reached[i - 1] && actual[i - 1] == line;
        }
        reached = std::move(next);
    }
    return reached.back();
}

// An exported function by its whole name, or by what stands behind the prefix of its model.
std::string whole_name(const Line &line, const std::string &name) {
    static const std::vector<std::string> prefixes{"",
                                                   fake::callback_prefix,
                                                   "ymap_n2o_oc_opt_psm_vexloorbittlm2200otscfg_",
                                                   "ymap_n2o_oc_opt_psm_vexloorbitcontrolleropticscfg_",
                                                   "ymap_n2o_oc_opt_psm_vexloorbitpmengineoper_",
                                                   "ymap_n2o_oc_opt_psm_vexloorbitcontrolleropticsoper_",
                                                   "ymap_n2o_oc_opt_psm_vexloorbitcontrollertlm2200otsoper_",
                                                   "ymap_n2o_oc_opt_psm_vexloorbitconfigmdacfg_",
                                                   "ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_"};
    for (const std::string &prefix : prefixes) {
        if (::dlsym(RTLD_DEFAULT, (prefix + name).c_str()) != nullptr) {
            return prefix + name;
        }
    }
    throw Malformed(line, "the plug-in does not export " + name);
}

// The result of the last of these adds where they are numbered (Scene::numbered_adds); zero without one.
kerrno last_add(const std::vector<std::string> &expected) {
    const auto adds = std::count_if(expected.begin(), expected.end(),
                                    [](const std::string &line) { return line.compare(0, 4, "add(") == 0; });
    return adds == 0 ? KERR_SUCCESS : 0x5a000000u + static_cast<kerrno>(adds);
}

// What a child process that makes the call writes to its standard error, and whether it aborts.
template <class Action>
std::string last_words(const Action &action) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        return "no pipe";
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDERR_FILENO);
        static_cast<void>(action());
        ::_exit(0);
    }
    ::close(ends[1]);
    std::string text;
    std::array<char, 512> buffer{};
    for (ssize_t got = 0; (got = ::read(ends[0], buffer.data(), buffer.size())) > 0;) {
        text.append(buffer.data(), static_cast<std::size_t>(got));
    }
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT ? text : "it did not abort: " + text;
}

} // namespace

std::vector<Failure> play(const File &file, const Case &whole) {
    std::vector<Failure> all;
    for (const Run &run : whole.runs) {
        std::vector<Failure> some = Scene(file, run).play(whole.steps);
        for (Failure &failure : some) {
            if (!run.row.empty()) {
                failure.text =
                    "row of line " + std::to_string(run.line) + ": " + run.row.substr(0, 300) + "\n" + failure.text;
            }
            all.push_back(std::move(failure));
        }
        if (all.size() >= 20) {
            break; // the others say the same
        }
    }
    return all;
}

std::vector<Failure> Scene::play(const Block &steps) {
    try {
        for (const Block *block : {&file_.setup(), &steps}) {
            const Block expanded = file_.expanded(*block, run_.variables);
            for (const Line &line : expanded) {
                kept_.push_back(std::make_unique<Line>(line));
                take(*kept_.back());
            }
        }
        settle();
        if (last_call_ == nullptr) {
            throw Malformed(*kept_.back(), "a case without a call");
        }
        for (const std::string &complaint : stage_.complaints()) {
            fail(*last_call_, complaint);
        }
    } catch (const std::exception &error) {
        failures_.push_back({kept_.empty() ? "" : *kept_.back()->file, run_.line, error.what()});
    }
    return std::move(failures_);
}

void Scene::play_below(const Line &line) {
    for (const Line &below : line.block) {
        take(below);
    }
}

void Scene::take(const Line &line) {
    std::string head = line.text;
    const Words all = words(line, head);
    const auto step = steps().find(all.front());
    if (step == steps().end()) {
        throw Malformed(line, "no step: " + line.text);
    }
    (this->*step->second)(line, all);
}

void Scene::fail(const Line &at, const std::string &text) {
    failures_.push_back({*at.file, at.number, text});
}

void Scene::compare(const Line &at, const std::string &what, const std::vector<std::string> &expected,
                    const std::vector<std::string> &actual) {
    if (!fits(expected, actual)) {
        const auto [wanted, found] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
        fail(at, what + " differs at its line " + std::to_string(wanted - expected.begin() + 1) + ": expected" +
                     joined({wanted, expected.end()}) + "\nbut found" + joined({found, actual.end()}));
    }
}

kidl_yfw_datatree *Scene::node_at(const Line &line, const std::string &path) {
    if (path == "null") {
        return nullptr;
    }
    if (path == "dest") {
        return stage_.dest;
    }
    const std::size_t slash = path.find('/');
    const auto tree = trees_.find(path.substr(0, slash));
    if (tree == trees_.end()) {
        throw Malformed(line, "no tree " + path);
    }
    return tree->second->at(slash == std::string::npos ? "" : path.substr(slash + 1));
}

// ---- calls ----

// "function(argument, ...) -> result"; without arguments those of a leaf of the tree "source".
Scene::Call Scene::parsed_call(const Line &line, const std::string &text) {
    Call call;
    const std::size_t arrow = text.rfind(" -> ");
    std::string head = text.substr(0, arrow);
    call.result = arrow == std::string::npos ? "" : text.substr(arrow + 4);
    const std::size_t open = head.find('(');
    call.function = head.substr(0, open);
    if (open == std::string::npos) {
        call.arguments = {"source", "dest"};
        return call;
    }
    if (head.back() != ')') {
        throw Malformed(line, "arguments that do not end");
    }
    std::string inside = head.substr(open + 1, head.size() - open - 2);
    std::replace(inside.begin(), inside.end(), ',', ' ');
    call.arguments = words(line, inside);
    return call;
}

kerrno Scene::run(const Line &line, const Call &call) {
    const std::string function = whole_name(line, call.function);
    Words arguments = call.arguments;
    yfw_map_ctx ctx = stage_.request.ctx();
    if (!arguments.empty() && arguments.front() == "no-ctx") {
        ctx = nullptr;
        arguments.erase(arguments.begin());
    }
    if (arguments.size() == 2) {
        return fake::function<fake::Callback>(function)(ctx, node_at(line, arguments[0]), node_at(line, arguments[1]));
    }
    if (arguments.size() == 3) {
        return fake::function<fake::ContainerCallback>(function)(ctx, node_at(line, arguments[0]),
                                                                 static_cast<unsigned>(number(line, arguments[1])),
                                                                 node_at(line, arguments[2]));
    }
    throw Malformed(line, "two or three arguments");
}

// call FUNCTION -> RESULT, or traced FUNCTION -> RESULT, which says Start before everything else and End behind it.
void Scene::call(const Line &line, const Words &all) {
    settle();
    last_call_ = &line;
    const Call call = parsed_call(line, line.text.substr(line.text.find(' ') + 1));
    std::vector<std::string> expected;
    for (const Line &below : line.block) {
        std::string text = below.text;
        for (const char *own : {"@", "+@", "-@", "ERR @"}) {
            if (text.compare(0, std::string_view(own).size(), own) == 0) {
                text.replace(text.find('@'), 1, short_name(call.function));
                break;
            }
        }
        expected.push_back(std::move(text));
    }
    if (all.front() == "traced") {
        expected.insert(expected.begin(), "+" + short_name(call.function));
        expected.push_back("-" + short_name(call.function));
    }
    stage_.platform.forget();
    const fake::Checker checker(stage_.platform, stage_.request.ctx(), tolerance_);
    const kerrno result = run(line, call);
    left_ = checker.differences();
    compare(line, "what happened", expected, story_of(stage_.platform, view_));
    const kerrno wanted =
        call.result == "last-add" ? last_add(expected) : static_cast<kerrno>(number(line, call.result));
    if (wanted != result) {
        fail(line, "the result is " + fake::hex(result) + ", expected " + fake::hex(wanted));
    }
}

void Scene::left(const Line &line, const Words & /*all*/) {
    std::vector<std::string> expected;
    for (const Line &below : line.block) {
        expected.push_back(below.text);
    }
    compare(line, "what the call left behind", expected, left_);
    left_.clear();
}

void Scene::settle() {
    if (!left_.empty()) {
        fail(*last_call_, "the call left behind" + joined(left_));
        left_.clear();
    }
}

// on-every-channel CALL: what it does, but for the messages, does not depend on who listens. A source that it changes
// is put back in between.
void Scene::on_every_channel(const Line &line, const Words & /*all*/) {
    settle();
    last_call_ = &line;
    const Call call = parsed_call(line, line.text.substr(line.text.find(' ') + 1));
    kidl_yfw_datatree *const source = node_at(line, call.arguments.front());
    const kidl_yfw_datatree before = *source;
    View view = view_;
    view.groups &= ~static_cast<unsigned>(fake::Channels);
    std::vector<std::string> first;
    for (const auto &[log_on, trace_on] : {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
        stage_.request.set_channels(log_on, trace_on);
        stage_.platform.forget();
        const kerrno result = run(line, call);
        std::vector<std::string> done = story_of(stage_.platform, view);
        done.push_back("result " + fake::hex(result));
        compare(line, "what was done with other channels open", first.empty() ? done : first, done);
        first = done;
        if (stage_.platform.logged().empty() == log_on || stage_.platform.traced().empty() == trace_on ||
            stage_.platform.count("trace_index") != stage_.platform.traced().size()) {
            fail(line, "a channel that is closed speaks, or one that is open is silent");
        }
        *source = before;
    }
    stage_.request.set_channels(true, true);
}

// same FUNCTION OTHER: both do the same with a source that is put back in between, and both do something.
void Scene::same(const Line &line, const Words &all) {
    settle();
    last_call_ = &line;
    std::vector<std::vector<std::string>> done;
    for (std::size_t i = 1; i < all.size(); ++i) {
        const Call call = parsed_call(line, all[i]);
        kidl_yfw_datatree *const source = node_at(line, call.arguments.front());
        const kidl_yfw_datatree before = *source;
        stage_.platform.forget();
        const kerrno result = run(line, call);
        done.push_back(story_of(stage_.platform, view_));
        done.back().push_back("result " + fake::hex(result));
        if (stage_.platform.calls(fake::Everything).empty()) {
            fail(line, all[i] + " does nothing");
        }
        *source = before;
    }
    if (done.size() != 2) {
        throw Malformed(line, "same FUNCTION OTHER");
    }
    compare(line, "what " + all[1] + " does", done[1], done[0]);
}

// The formats of the last call's log lines, behind the level and the context.
void Scene::formats(const Line &line, const Words & /*all*/) {
    std::vector<std::string> expected;
    for (const Line &below : line.block) {
        expected.push_back(below.text);
    }
    std::vector<std::string> actual;
    for (const fake::LogRecord &record : stage_.platform.logged()) {
        actual.push_back(record.format);
    }
    compare(line, "the formats", expected, actual);
}

// dies f(no-ctx, source, dest) in FILE [by FUNCTION]: the assertion on the context fails.
void Scene::dies(const Line &line, const Words &all) {
    settle();
    last_call_ = &line;
    const std::size_t in = line.text.find(" in ");
    const Call call = parsed_call(line, line.text.substr(5, in - 5));
    const auto word = std::find(all.begin(), all.end(), "in");
    if (std::distance(word, all.end()) != 2 && std::distance(word, all.end()) != 4) {
        throw Malformed(line, "dies CALL in FILE, or dies CALL in FILE by FUNCTION");
    }
    const std::string function = whole_name(line, std::distance(word, all.end()) == 4 ? *(word + 3) : call.function);
    const char *const counted = call.arguments.size() == 4 ? "unsigned int, " : "";
    const std::string text = last_words([&] { return run(line, call); });
    const bool any_file = *(word + 1) == "any";
    for (const std::string &wanted :
         {": manageability/yang/framework/mapping/oc-psm/src/" + (any_file ? "" : *(word + 1) + ":"),
          ": kerrno " + function + "(yfw_map_ctx, const struct kidl_yfw_datatree *, " + counted +
              "struct kidl_yfw_datatree *): Assertion `((void *)0) != ctx' failed."}) {
        if (text.find(wanted) == std::string::npos) {
            fail(line, "expected the last words to hold " + wanted + "\nbut found " + text);
        }
    }
}

} // namespace cases

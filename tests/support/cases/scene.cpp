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
#include "records.hpp"

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

// What a child process that does this writes to its standard error, and its status.
template <class Action>
std::pair<std::string, int> in_child(const Action &action) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        return {"no pipe", -1};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDERR_FILENO);
        action();
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
    return {text, status};
}

// In a process of its own, where the plug-in remembers nothing. Its failures come back as one.
std::vector<Failure> play_apart(const File &file, const Run &run, const Block &steps) {
    const auto [text, status] = in_child([&] {
        for (const Failure &failure : Scene(file, run).play(steps)) {
            const std::string line = std::to_string(failure.line) + ": " + failure.text + "\n";
            static_cast<void>(::write(STDERR_FILENO, line.data(), line.size()));
        }
    });
    return text.empty() && status == 0 ? std::vector<Failure>{}
                                       : std::vector<Failure>{{*steps.front().file, steps.front().number, text}};
}

} // namespace

std::vector<Failure> play(const File &file, const Case &whole) {
    std::vector<Failure> all;
    const bool apart = whole.steps.front().text == "apart";
    for (const Run &run : whole.runs) {
        std::vector<Failure> some = apart ? play_apart(file, run, {whole.steps.begin() + 1, whole.steps.end()})
                                          : Scene(file, run).play(whole.steps);
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
        if (stage_.platform.items_outstanding() != 0) { // seen where the plug-in stands in the program itself
            fail(*last_call_, "an item of the database was not released");
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
    const bool is_call = line.text.compare(0, 5, "call ") == 0; // quotes stand within its words
    const Words all = is_call ? Words{"call"} : words(line, line.text);
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
    if (arrow != std::string::npos) {
        call.written = words(line, std::string_view(text).substr(arrow + 4));
        call.result = call.written.at(0);
        call.written.erase(call.written.begin());
    }
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
    bool quoted = false;
    for (std::size_t i = 0; i < inside.size(); ++i) {
        quoted = quoted != (inside[i] == '"' && (i == 0 || inside[i - 1] != '\\'));
        inside[i] = inside[i] == ',' && !quoted ? ' ' : inside[i];
    }
    call.arguments = words(line, inside);
    return call;
}

kerrno Scene::run(const Line &line, const Call &call) {
    const bool without_context = !call.arguments.empty() && call.arguments.front() == "no-ctx";
    const Words given(call.arguments.begin() + (without_context ? 1 : 0), call.arguments.end());
    const auto found = utilities().find(call.function);
    const std::string name = found == utilities().end() ? whole_name(line, call.function) : "";
    const Utility function = found != utilities().end() ? found->second
                             : given.size() == 3        ? utility(fake::function<fake::ContainerCallback>(name))
                                                        : utility(fake::function<fake::Callback>(name));
    Arguments arguments(line, given, call.written,
                        {without_context ? nullptr : stage_.request.ctx(),
                         [&](const std::string &path) { return node_at(line, path); }, bag_.data()});
    const kerrno result = function(arguments);
    for (const std::string &difference : arguments.differences()) {
        fail(line, difference);
    }
    return result;
}

Scene::Call Scene::next_call(const Line &line, const std::string &text) {
    settle();
    last_call_ = &line;
    return parsed_call(line, text);
}

// call FUNCTION -> RESULT, or traced FUNCTION -> RESULT, which says Start before everything else and End behind it.
void Scene::call(const Line &line, const Words &all) {
    const Call call = next_call(line, line.text.substr(line.text.find(' ') + 1));
    std::vector<std::string> expected = texts_below(line);
    for (std::string &text : expected) {
        for (const char *own : {"@", "+@", "-@", "ERR @"}) {
            if (text.compare(0, std::string_view(own).size(), own) == 0) {
                text.replace(text.find('@'), 1, short_name(call.function));
                break;
            }
        }
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
    compare(line, "what the call left behind", texts_below(line), left_);
    left_.clear();
}

void Scene::settle() {
    if (!left_.empty()) {
        fail(*last_call_, "the call left behind" + joined(left_));
        left_.clear();
    }
}

// The story of a call and its result. A source that it changes is put back.
std::vector<std::string> Scene::done_by(const Line &line, const Call &call, const View &view) {
    const bool has_source = trees_.contains(call.arguments.front());
    kidl_yfw_datatree unused{};
    kidl_yfw_datatree &source = has_source ? *node_at(line, call.arguments.front()) : unused;
    const kidl_yfw_datatree before = source;
    stage_.platform.forget();
    const kerrno result = run(line, call);
    source = before;
    std::vector<std::string> done = story_of(stage_.platform, view);
    done.push_back("result " + fake::hex(result));
    return done;
}

// on-every-channel CALL: what it does, but for the messages, does not depend on who listens.
void Scene::on_every_channel(const Line &line, const Words & /*all*/) {
    const Call call = next_call(line, line.text.substr(line.text.find(' ') + 1));
    View view = view_;
    view.groups &= ~static_cast<unsigned>(fake::Channels);
    std::vector<std::string> first;
    for (const auto &[log_on, trace_on] : {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
        stage_.request.set_channels(log_on, trace_on);
        const std::vector<std::string> done = done_by(line, call, view);
        compare(line, "what was done with other channels open", first.empty() ? done : first, done);
        first = done;
        if (stage_.platform.logged().empty() == log_on || stage_.platform.traced().empty() == trace_on ||
            stage_.platform.count("trace_index") != stage_.platform.traced().size()) {
            fail(line, "a channel that is closed speaks, or one that is open is silent");
        }
    }
    stage_.request.set_channels(true, true);
}

// same FUNCTION OTHER: both do the same with a source that is put back in between, and both do something.
void Scene::same(const Line &line, const Words &all) {
    demand(all.size() == 3, line, "same FUNCTION OTHER");
    std::vector<std::vector<std::string>> done;
    for (std::size_t i = 1; i < all.size(); ++i) {
        done.push_back(done_by(line, next_call(line, all[i]), view_));
        if (stage_.platform.calls(fake::Everything).empty()) {
            fail(line, all[i] + " does nothing");
        }
    }
    compare(line, "what " + all[1] + " does", done[1], done[0]);
}

// The formats of the last call's log lines, behind the level and the context.
void Scene::formats(const Line &line, const Words & /*all*/) {
    std::vector<std::string> actual;
    for (const fake::LogRecord &record : stage_.platform.logged()) {
        actual.push_back(record.format);
    }
    compare(line, "the formats", texts_below(line), actual);
}

// dies f(no-ctx, source, dest) in FILE [by FUNCTION]: the assertion on the context fails. A utility tells its
// prototype: dies f(no-ctx) in FILE as PROTOTYPE.
void Scene::dies(const Line &line, const Words &all) {
    const Call call = next_call(line, line.text.substr(5, line.text.find(" in ") - 5));
    const auto word = std::find(all.begin(), all.end(), "in");
    const auto rest = std::distance(word, all.end());
    if (rest != 2 && !(rest == 4 && (word[2] == "by" || word[2] == "as"))) {
        throw Malformed(line, "dies CALL in FILE, or dies CALL in FILE by FUNCTION, or as PROTOTYPE");
    }
    const auto [text, status] = in_child([&] { static_cast<void>(run(line, call)); });
    const std::string prototype = rest == 4 && word[2] == "as"
                                      ? text_of(line, word[3])
                                      : "kerrno " + whole_name(line, rest == 4 ? word[3] : call.function) +
                                            "(yfw_map_ctx, const struct kidl_yfw_datatree *, " +
                                            (call.arguments.size() == 4 ? "unsigned int, " : "") +
                                            "struct kidl_yfw_datatree *)";
    const bool any_file = *(word + 1) == "any";
    for (const std::string &wanted :
         {": manageability/yang/framework/mapping/oc-psm/src/" + (any_file ? "" : *(word + 1) + ":"),
          ": " + prototype + ": Assertion `((void *)0) != ctx' failed."}) {
        if (text.find(wanted) == std::string::npos || !WIFSIGNALED(status) || WTERMSIG(status) != SIGABRT) {
            fail(line, "expected the last words to hold " + wanted + "\nbut found " + text);
        }
    }
}

} // namespace cases

#include "story.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "exports.hpp"

namespace cases {
namespace {

constexpr std::string_view native_prefix = "ymap_n2o_oc_opt_psm_";
constexpr std::size_t longest_trace = 249; // longer ones are cut

bool begins(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

bool begins_with_one_of(const std::string &text, const std::vector<std::string> &prefixes) {
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](const std::string &prefix) { return begins(text, prefix); });
}

std::string escaped(const std::string &text) {
    std::string all;
    for (const char byte : text) {
        if (byte >= 0 && byte < ' ') {
            std::array<char, 5> code{};
            std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned>(byte));
            all += byte == '\n' ? "\\n" : byte == '\t' ? "\\t" : code.data();
        } else {
            all += byte;
        }
    }
    return all;
}

std::string call_line(std::string line) {
    if (const std::size_t found = line.find("(ctx"); found != std::string::npos) {
        line.erase(found + 1, line.compare(found, 6, "(ctx, ") == 0 ? 5 : 3);
    }
    const std::size_t handle = line.find("(handle ");
    if (begins(line, "sysdb_") && handle != std::string::npos) {
        const std::size_t digits = handle + 7;
        line.erase(digits, line.find_first_not_of("0123456789", digits + 1) - digits);
    }
    return line;
}

std::string message_line(const std::string &level, const std::string &function, const std::string &text) {
    if (level == "TRC" && (text == "Start" || text == "End")) {
        return (text == "Start" ? "+" : "-") + function;
    }
    return (level == "TRC" ? "" : level + " ") + function + ": " + text;
}

class Teller {
public:
    Teller(const fake::Platform &platform, const View &view)
        : platform_(platform), view_(view), lines_(platform.calls(view.groups | fake::Channels)) {}

    std::vector<std::string> tell() {
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            const std::string &line = lines_[i];
            if (begins(line, "log ") && i + 1 < lines_.size() && begins(lines_[i + 1], "trace ")) {
                both(line, platform_.traced().at(traced_++));
                ++i;
            } else if (begins(line, "trace ")) {
                const fake::TraceRecord &trace = platform_.traced().at(traced_++);
                message("trace " + trace.level + " " + short_name(trace.function) + ": " + trace.text, trace);
            } else if (begins(line, "log ")) {
                if ((view_.groups & fake::Channels) != 0) {
                    say(line);
                }
            } else {
                say(call_line(line));
            }
        }
        return std::move(told_);
    }

private:
    void both(const std::string &log, const fake::TraceRecord &trace) {
        const std::string level = log.substr(4, 3);
        const std::string text = log.substr(8);
        const bool same = trace.whole.size() < longest_trace ? text == trace.text : begins(text, trace.text);
        if (trace.level != level || !same) {
            message("the channels differ: " + log + " | " + trace.whole, trace);
            return;
        }
        message(message_line(level, short_name(trace.function), text), trace);
    }

    void message(const std::string &line, const fake::TraceRecord &trace) {
        if ((view_.groups & fake::Channels) == 0) {
            return;
        }
        const std::string function = short_name(trace.function);
        const bool muted =
            trace.level == "TRC" && std::find(view_.muted.begin(), view_.muted.end(), function) != view_.muted.end();
        if (!muted && (view_.heard.empty() || begins_with_one_of(function, view_.heard))) {
            say(line);
        }
    }

    void say(const std::string &line) {
        if (!begins_with_one_of(line, view_.hidden)) {
            told_.push_back(escaped(line));
        }
    }

    const fake::Platform &platform_;
    const View &view_;
    std::vector<std::string> lines_;
    std::vector<std::string> told_;
    std::size_t traced_ = 0;
};

} // namespace

std::string short_name(const std::string &function) {
    if (begins(function, fake::callback_prefix)) {
        return function.substr(std::string_view(fake::callback_prefix).size());
    }
    if (begins(function, native_prefix)) {
        const std::size_t model = function.find('_', native_prefix.size());
        return function.substr(std::min(model, function.size() - 1) + 1);
    }
    return function;
}

std::vector<std::string> story_of(const fake::Platform &platform, const View &view) {
    return Teller(platform, view).tell();
}

} // namespace cases

// Bytes to messages. Each line of the input is what comes at once, bytes written as \n and \xNN; "chunked" and "end
// marks" say how messages are framed from there on, "NUMBER times TEXT" is a text that often. Expected are the
// "messages", each in a line as it was read, and what is told of one that cannot be read or is not whole. Whatever the
// pieces in which the bytes come, it must be the same.
#include <charconv>

#include "cases/runner.hpp"
#include "framework/error.hpp"
#include "framework/text.hpp"
#include "servers/netconf/frames.hpp"

namespace {

using case_runner::Case;
using ocpsm::netconf::FrameReader;
using ocpsm::netconf::Framing;

std::string shown(const std::string &message) {
    return message.size() > 100 ? std::to_string(message.size()) + " bytes" : ocpsm::quoted(message, 200);
}

std::string bytes_in(const std::string &line) {
    const std::size_t times = line.find(" times ");
    std::size_t number = 0;
    if (times == std::string::npos ||
        std::from_chars(line.data(), line.data() + times, number).ptr != line.data() + times) {
        return case_runner::unescaped(line);
    }
    const std::string text = case_runner::unescaped(line.substr(times + 7));
    std::string all;
    while (number-- > 0) {
        all += text;
    }
    return all;
}

class Reading {
public:
    explicit Reading(std::size_t piece) : piece_(piece) {}

    std::string run(const Case &test) {
        for (const case_runner::Line &line : test.find_input("")->lines) {
            if (line.text == "chunked" || line.text == "end marks") {
                reader_.use(line.text == "chunked" ? Framing::chunked : Framing::end_mark);
            } else if (!take(bytes_in(line.text))) {
                return told_;
            }
        }
        return told_ + (reader_.within_message() ? "not whole\n" : "");
    }

private:
    bool take(const std::string &bytes) {
        try {
            for (std::size_t at = 0; at < bytes.size(); at += piece_) {
                reader_.feed(std::string_view(bytes).substr(at, piece_));
                while (const auto message = reader_.next()) {
                    told_ += shown(*message) + "\n";
                }
            }
            return true;
        } catch (const ocpsm::Error &error) {
            told_ += error.tag + ": " + error.message() + "\n";
            return false;
        }
    }

    std::size_t piece_;
    FrameReader reader_;
    std::string told_;
};

std::string answer(const Case &test, const std::string &) {
    const std::string whole = Reading(std::size_t{1} << 30U).run(test);
    const bool large = test.find_input("")->text().find(" times ") != std::string::npos;
    for (const std::size_t piece : large ? std::vector<std::size_t>{65536} : std::vector<std::size_t>{1, 3, 65536}) {
        if (const std::string other = Reading(piece).run(test); other != whole) {
            return "in pieces of " + std::to_string(piece) + ":\n" + other;
        }
    }
    return whole;
}

const bool registered = case_runner::register_cases(CASES_DIRECTORY, answer);

} // namespace

// A gNMI server over a line system of its own, driven by lines on standard input, each answered by one line: what
// happens to the line system, what time it is for subscribers, and when they look for what is new.
//   gnmi_test_server [ADDRESS [CERTIFICATE KEY [CLIENT_AUTHORITY]]]
#include <atomic>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "servers/gnmi/server.hpp"
#include "simulator/line_system.hpp"

namespace {

using ocpsm::Line;
using ocpsm::SimulatedLineSystem;

std::string text_of(const std::string &file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

ocpsm::gnmi::Options options_of(const std::vector<std::string> &words) {
    ocpsm::gnmi::Options options;
    options.address = words.empty() ? "127.0.0.1:0" : words[0];
    if (words.size() > 2) {
        options.tls = ocpsm::gnmi::Tls{text_of(words[1]), text_of(words[2])};
        options.tls->client_authority = words.size() > 3 ? text_of(words[3]) : "";
    }
    return options;
}

class Driven {
public:
    explicit Driven(ocpsm::gnmi::Options options) : server_(service_, with_clock(std::move(options))) {}

    const std::string &address() const { return server_.address(); }

    std::string carry_out(const std::string &command) {
        std::istringstream words(command);
        std::string verb;
        int slot = 0;
        std::string line;
        words >> verb;
        if (verb == "news") {
            news_ = true;
        } else if (verb == "pass") {
            std::int64_t milliseconds = 0;
            words >> milliseconds;
            now_ += milliseconds * 1'000'000;
            server_.wake();
        } else if (verb == "tick") {
            std::uint32_t milliseconds = 0;
            words >> milliseconds;
            system_.tick(milliseconds);
        } else if (verb == "burst") {
            int count = 0;
            words >> count;
            burst(count);
        } else if (verb == "memory") {
            return resident();
        } else {
            words >> slot >> line;
            change(verb, slot, line == "primary" ? Line::primary : Line::secondary);
        }
        return "done";
    }

private:
    // Edits, one after the other, while the server does what it does.
    void burst(int count) {
        for (int value = 1; value <= count; ++value) {
            static_cast<void>(service_.edit(
                ocpsm::PathEdits{{"/aps/aps-modules/aps-module[name=0/1-PSM-OM]/config/wait-to-restore-time",
                                  ocpsm::Operation::merge, std::to_string(value)}}));
            news_ = true;
        }
    }

    void change(const std::string &verb, int slot, Line line) {
        if (verb == "cut") {
            system_.cut(slot, line);
        } else if (verb == "splice") {
            system_.splice(slot, line);
        } else if (verb == "pull") {
            system_.pull(slot);
        } else if (verb == "fit") {
            system_.fit(slot);
        } else {
            throw std::runtime_error("unknown: " + verb);
        }
    }

    // Kilobytes.
    static std::string resident() {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("VmRSS:")) {
                return line.substr(line.find_first_of("0123456789"),
                                   line.find(" kB") - line.find_first_of("0123456789"));
            }
        }
        return "0";
    }

    ocpsm::gnmi::Options with_clock(ocpsm::gnmi::Options options) {
        options.now = [this] { return std::chrono::nanoseconds(now_.load()); };
        options.is_news = [this] { return news_.exchange(false); };
        return options;
    }

    SimulatedLineSystem system_ = SimulatedLineSystem::temporary();
    ocpsm::Service service_{PLUGIN, system_.device()};
    std::atomic<std::int64_t> now_ = 0;
    std::atomic<bool> news_ = false;
    ocpsm::gnmi::GnmiServer server_;
};

} // namespace

int main(int argc, char **argv) {
    try {
        Driven driven(options_of({argv + 1, argv + argc}));
        std::cout << driven.address() << std::endl;
        for (std::string line; std::getline(std::cin, line);) {
            std::cout << driven.carry_out(line) << std::endl;
        }
    } catch (const ocpsm::Error &error) {
        std::cout << "refused: " << error.message() << "; " << error.advice << std::endl;
        return 1;
    }
}

// Runs the cases of this directory and of modules/: adds to a native request, and what the request says then.
//
// Input: "edit" or "read", then adds, parted by "; " or the end of a line:
//   [open] PATH [OPERATION] [in NAMESPACE] [= VALUE]
// PATH begins with "/" ("" is the empty one) or with a place below. OPERATION is merge when left out, NAMESPACE that of
// the node. A lone "=" gives the empty text, none gives no value; \xNN, \n and \\ stand for bytes. An add must succeed
// unless the case expects "adds"; its origin is its number, from 1.
//   controller NAME    three adds that open the interface entry of a controller
// Further input:
//   --- held   data that a device holds, as "net" shows it
//
// Expected sections:
//   net      the net request, as net_text shows it
//   steps    its operations: OPERATION PATH [= VALUE]
//   xml, json, check   what these make of it, or the error; check: "fine" when there is none
//   adds     the adds that fail: NUMBER: text of the code
//   answer   what a device that holds "held" answers, as "net" shows it
//   origins  PATH: the number of the add that the node comes from, or "none"
#include <gtest/gtest.h>
#include <libyang/libyang.h>

#include <algorithm>
#include <array>
#include <sstream>

#include "cases/runner.hpp"
#include "framework/native/native_data.hpp"
#include "native/native_test.hpp"

namespace native_test {
namespace {

using case_runner::BadCase;
using case_runner::Case;
using case_runner::Line;
using case_runner::Section;
using ocpsm::models::Schema;
using ocpsm::native::NativeNode;
using ocpsm::native::NativeRequest;
using ocpsm::native::Origin;
using ocpsm::native::RequestKind;

const std::array<std::pair<std::string_view, std::string>, 12> places{{{"node", node_path},
                                                                       {"slot", slot_path},
                                                                       {"psm", psm_path},
                                                                       {"interface", interface_path},
                                                                       {"optics", optics_path},
                                                                       {"thresholds", optics_path + "/rx-thresholds"},
                                                                       {"threshold", threshold_path},
                                                                       {"port", port_path},
                                                                       {"info", info_path},
                                                                       {"history", history_path},
                                                                       {"second30", second30_path},
                                                                       {"time-line", time_line_path}}};

std::string full_path(const std::string &path) {
    const std::string word = path.substr(0, path.find('/'));
    const auto *const place =
        std::find_if(places.begin(), places.end(), [&](const auto &row) { return row.first == word; });
    return path == "\"\"" ? "" : place == places.end() ? path : place->second + path.substr(word.size());
}

// The request of a case, add by add.
class Maker {
public:
    explicit Maker(const Case &test) : test_(test) {
        for (const Line &line : test.input.front().lines) {
            for (std::string text = line.text + "; "; !text.empty(); text.erase(0, text.find("; ") + 2)) {
                step(line, text.substr(0, text.find("; ")));
            }
        }
        if (!request_) {
            throw BadCase(test.file, test.line, "no request");
        }
    }

    const NativeRequest &request() const { return *request_; }
    const std::string &failed() const { return failed_; }

private:
    void step(const Line &line, const std::string &text) {
        if (text.empty()) {
            return;
        }
        if (!request_) {
            if (text != "edit" && text != "read") {
                throw BadCase(test_.file, line.number, "a request begins with 'edit' or 'read'");
            }
            request_.emplace(text == "edit" ? RequestKind::edit : RequestKind::read);
        } else if (text.starts_with("controller ")) {
            add(line, "open interface");
            add(line, "interface/interface-name = " + text.substr(text.find(' ') + 1));
            add(line, "interface/active = act");
        } else {
            add(line, text);
        }
    }

    void add(const Line &line, const std::string &text) {
        const std::string padded = text + " ";
        const std::size_t equals = padded.find(" = ");
        Value value;
        std::string bytes;
        if (equals != std::string::npos) {
            bytes = case_runner::unescaped(text.substr(std::min(equals + 3, text.size())));
            value = bytes;
        }
        std::istringstream words(text.substr(0, equals));
        std::string word;
        words >> word;
        const bool opens = word == "open";
        if (opens) {
            words >> word;
        }
        const std::string path = full_path(word);
        const lysc_node *schema = Schema::native().find(path);
        std::string namespace_uri = schema == nullptr ? mda : schema->module->ns;
        std::uint32_t operation = merge;
        while (words >> word) {
            if (word == "in") {
                std::getline(words >> std::ws, namespace_uri);
            } else {
                operation = number_of(line, word);
            }
        }
        const kerrno code = request_->add(path, namespace_uri, value, operation, opens, ++number_);
        if (code != KERR_SUCCESS) {
            fail(line, text, code);
        }
    }

    std::uint32_t number_of(const Line &line, const std::string &operation) const {
        const auto named = ocpsm::operation_named(operation);
        if (!named && operation != "unknown") {
            throw BadCase(test_.file, line.number, "no operation: " + operation);
        }
        return named ? static_cast<std::uint32_t>(*named) : remove + 1;
    }

    void fail(const Line &line, const std::string &text, kerrno code) {
        const std::string why(ocpsm::native::add_error_text(code));
        if (std::none_of(test_.expected.begin(), test_.expected.end(),
                         [](const Section &section) { return section.name == "adds"; })) {
            throw BadCase(test_.file, line.number, why + ": " + text);
        }
        failed_ += std::to_string(number_) + ": " + why + "\n";
    }

    const Case &test_;
    std::optional<NativeRequest> request_;
    Origin number_ = 0;
    std::string failed_;
};

std::string held_text(const Case &test) {
    const Section *held = test.find_input("held");
    return held == nullptr ? "" : held->text();
}

// The expected lines, each with the origin that its path has.
std::string origins_of(const Case &test, const NativeRequest &request) {
    std::string out;
    std::istringstream expected(test.find_expected("origins")->text());
    for (std::string line; std::getline(expected, line);) {
        const std::string path = line.substr(0, line.rfind(": "));
        const Origin origin = request.net().origin_of(path);
        out += path + ": " + (origin == ocpsm::native::no_origin ? "none" : std::to_string(origin)) + "\n";
    }
    return out;
}

std::string answer(const Case &test, const std::string &wanted) {
    const Maker maker(test);
    const ocpsm::native::NetRequest net = maker.request().net();
    const std::pair<const char *, std::function<std::string()>> sections[] = {
        {"net", [&] { return net_text(net.roots); }},
        {"steps", [&] { return steps(maker.request()); }},
        {"xml", [&] { return text_or_error([&] { return net.to_xml(); }); }},
        {"json", [&] { return text_or_error([&] { return net.to_json(); }); }},
        {"check", [&] { return text_or_error([&] { return net.check(), "fine\n"; }); }},
        {"adds", [&] { return maker.failed(); }},
        {"answer", [&] { return net_text(ocpsm::native::answer(read_net(held_text(test)), net).roots); }},
        {"origins", [&] { return origins_of(test, maker.request()); }},
    };
    for (const auto &[name, make] : sections) {
        if (wanted == name) {
            return make();
        }
    }
    throw BadCase(test.file, test.line, "no such section: " + wanted);
}

const bool registered =
    case_runner::register_cases(NATIVE_CASES, answer) && case_runner::register_cases(NATIVE_CASES "/modules", answer);

} // namespace
} // namespace native_test

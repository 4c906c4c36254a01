// Sessions, a fresh line system each. The input is what the client sends behind its hello, messages with a blank line
// between them; "rpc CONTENT" is <rpc> with the next message-id around the content. Section "client" has the
// capabilities of the client's hello (else base:1.1), "escaped" bytes that follow as they are (\n, \xNN), "journal"
// what has happened, an entry in a line:
//   SEQUENCE TIME KIND module=M line=L before=B after=A reason=R user=U change=PATH,BEFORE,AFTER
// Expected are the "replies", the messages that come back behind the server's hello, the "hello", the "failure" for
// which the session has ended, or the "leaves" of the configuration that then differ from the example's. The number of
// the session is ID, a time of day TIME.
#include <unistd.h>

#include <filesystem>
#include <regex>
#include <sstream>

#include "cases/runner.hpp"
#include "framework/device.hpp"
#include "framework/service.hpp"
#include "servers/netconf/session.hpp"
#include "servers/netconf/times.hpp"
#include "simulator/line_system.hpp"

namespace {

using case_runner::Case;
using ocpsm::JournalEntry;
using ocpsm::JournalKind;
using ocpsm::Kind;
using ocpsm::Paths;
using ocpsm::Service;
using ocpsm::SimulatedLineSystem;
using ocpsm::netconf::FrameReader;
using ocpsm::netconf::Framing;

constexpr std::int64_t now = 1795305600000; // 2026-11-22T00:00:00Z

// A device with a journal of its own.
class Journalled : public ocpsm::Device {
public:
    Journalled(std::shared_ptr<ocpsm::Device> behind, std::vector<JournalEntry> entries)
        : behind_(std::move(behind)), entries_(std::move(entries)) {}
    std::unique_ptr<ocpsm::DeviceTransaction> read() override { return behind_->read(); }
    std::unique_ptr<ocpsm::DeviceTransaction> write() override { return behind_->write(); }
    std::shared_ptr<void> lock() override { return behind_->lock(); }
    std::optional<ocpsm::LockHolder> lock_holder() override { return behind_->lock_holder(); }
    std::vector<JournalEntry> journal(std::uint64_t after, std::size_t most) override {
        std::vector<JournalEntry> found;
        for (const JournalEntry &entry : entries_) {
            if (entry.sequence > after && found.size() < most) {
                found.push_back(entry);
            }
        }
        return found;
    }
    std::uint64_t last_sequence() override { return entries_.empty() ? 0 : entries_.back().sequence; }

private:
    std::shared_ptr<ocpsm::Device> behind_;
    std::vector<JournalEntry> entries_;
};

std::vector<std::string> split(const std::string &text, char at) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == at) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

JournalKind kind_named(const std::string &name) {
    const auto &names = ocpsm::journal_kind_names;
    return static_cast<JournalKind>(std::find(names.begin(), names.end(), name) - names.begin());
}

void set(JournalEntry &entry, const std::string &name, const std::string &value) {
    if (name == "change") {
        const std::vector<std::string> parts = split(value, ',');
        const auto optional = [](const std::string &text) { return text == "-" ? std::nullopt : std::optional(text); };
        entry.changes.push_back({parts.at(0), optional(parts.at(1)), optional(parts.at(2))});
        return;
    }
    (name == "module"   ? entry.module
     : name == "line"   ? entry.line
     : name == "before" ? entry.before
     : name == "after"  ? entry.after
     : name == "reason" ? entry.reason
                        : entry.user) = value;
}

std::vector<JournalEntry> journal_of(const Case &test) {
    std::vector<JournalEntry> entries;
    const auto *section = test.find_input("journal");
    for (const case_runner::Line &line : section == nullptr ? std::vector<case_runner::Line>() : section->lines) {
        const std::vector<std::string> words = split(line.text, ' ');
        JournalEntry entry;
        entry.sequence = std::stoull(words.at(0));
        entry.time = ocpsm::netconf::milliseconds_of(words.at(1)).value();
        entry.clock = entry.sequence * 100;
        entry.kind = kind_named(words.at(2));
        for (std::size_t word = 3; word < words.size(); ++word) {
            const std::size_t sign = words[word].find('=');
            set(entry, words[word].substr(0, sign), words[word].substr(sign + 1));
        }
        entries.push_back(entry);
    }
    return entries;
}

struct Directory {
    Directory() {
        std::string name = std::filesystem::temp_directory_path() / "ocpsm-netconf-XXXXXX";
        path = mkdtemp(name.data());
    }
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;
    ~Directory() { std::filesystem::remove_all(path); }
    std::filesystem::path path;
};

std::string part(const Case &test, const std::string &name) {
    const auto *section = test.find_input(name);
    return section == nullptr ? "" : section->text();
}

std::string shown(std::string text) {
    const std::string id = std::to_string(getpid());
    for (const std::string tag : {"session-id", "locked-by-session"}) {
        text = std::regex_replace(text, std::regex("<" + tag + ">" + id + "<"), "<" + tag + ">ID<");
    }
    text = std::regex_replace(text, std::regex("process " + id + "\\b"), "process ID");
    return std::regex_replace(text, std::regex("(login|locked)-time>[0-9T:.Z-]+<"), "$1-time>TIME<");
}

class Client {
public:
    explicit Client(const Case &test)
        : sessions_(directory_.path / "netconf.lock"),
          service_(PLUGIN, std::make_shared<Journalled>(line_system_.device(), journal_of(test))),
          session_(service_, sessions_), test_(test) {}

    std::string answer(const std::string &wanted) {
        const std::string before = leaves();
        const std::string hello = receive();
        send_all();
        return wanted == "hello"     ? shown(hello) + "\n"
               : wanted == "failure" ? end()
               : wanted == "leaves"  ? case_runner::difference(before, leaves())
                                     : shown(replies_);
    }

private:
    std::string end() const {
        const std::string &failure = session_.failure();
        return !session_.ended() ? "the session goes on\n" : failure.empty() ? "none\n" : failure + "\n";
    }

    void send_all() {
        std::string client = part(test_, "client");
        client = client.empty() ? "urn:ietf:params:netconf:base:1.1\n" : client;
        std::string list;
        for (const std::string &line : split(client.substr(0, client.size() - 1), '\n')) {
            list += "<capability>" + line + "</capability>";
        }
        if (test_.find_input("no hello") == nullptr) {
            send("<hello xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><capabilities>" + list +
                 "</capabilities></hello>");
            framing_ = list.find("base:1.1<") != std::string::npos ? Framing::chunked : Framing::end_mark;
            replies_reader_.use(framing_);
        }
        std::string message;
        for (const case_runner::Line &line : test_.find_input("")->lines) {
            if (line.text.empty()) {
                send(message);
                message.clear();
            } else {
                message += (message.empty() ? "" : "\n") + line.text;
            }
        }
        if (!message.empty()) {
            send(message);
        }
        if (const auto *bytes = test_.find_input("escaped")) {
            std::string text;
            for (const case_runner::Line &line : bytes->lines) {
                text += case_runner::unescaped(line.text);
            }
            session_.feed(text);
            take_replies();
        }
        if (test_.find_input("end") != nullptr) {
            session_.end_input();
            take_replies();
        }
    }

    void send(std::string message) {
        if (message.starts_with("rpc ")) {
            message = "<rpc xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\" message-id=\"" + std::to_string(++id_) +
                      "\">" + message.substr(4) + "</rpc>";
        }
        session_.feed(ocpsm::netconf::framed(message, framing_));
        take_replies();
    }

    std::string receive() { return session_.next(now).value_or(""); }

    void take_replies() {
        while (const auto text = session_.next(now)) {
            replies_reader_.feed(*text);
            while (const auto message = replies_reader_.next()) {
                replies_ += message->substr(message->find_first_not_of('\n')) + "\n";
            }
        }
    }

    std::string leaves() const {
        std::string text;
        for (const ocpsm::Leaf &leaf : service_.read(Paths{}, Kind::get_config).answer.leaves()) {
            text += leaf.path + ": " + leaf.value + "\n";
        }
        return text;
    }

    Directory directory_;
    SimulatedLineSystem line_system_ = SimulatedLineSystem::temporary();
    ocpsm::netconf::Sessions sessions_;
    Service service_;
    ocpsm::netconf::Session session_;
    const Case &test_;
    Framing framing_ = Framing::end_mark;
    FrameReader replies_reader_;
    std::string replies_;
    int id_ = 0;
};

std::string answer(const Case &test, const std::string &wanted) {
    return Client(test).answer(wanted);
}

const bool registered = case_runner::register_cases(CASES_DIRECTORY, answer);

} // namespace

// Edits that are killed: whenever that happens, the line system is as it was or as it was to become. The build
// names the program's file, OCPSM_PROGRAM, and the directory with the examples, OCPSM_EXAMPLES.
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "simulator/database/client_library.hpp"
#include "simulator/line_system/storage.hpp"

namespace {

namespace sysdb = ocpsm::sysdb;
using Words = std::vector<std::string>;
using Records = std::map<std::string, std::string>; // every record of every table, by table and key

// A child that stops at each of its system calls, before and after.
class TracedChild {
public:
    explicit TracedChild(const Words &command) {
        Words words = command;
        std::vector<char *> arguments;
        arguments.reserve(words.size() + 1);
        for (std::string &word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        child_ = fork();
        if (child_ == 0) {
            // A leak check cannot be made under a tracer.
            setenv("ASAN_OPTIONS", "detect_leaks=0:exitcode=99", 1);
            const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
            dup2(nowhere, STDOUT_FILENO);
            if (ptrace(PTRACE_TRACEME, 0, 0, 0) == 0) {
                execv(arguments.front(), arguments.data());
            }
            _exit(127);
        }
        wait();
        if (!running_) {
            throw std::runtime_error("cannot trace " + command.front());
        }
        ptrace(PTRACE_SETOPTIONS, child_, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    }
    TracedChild(const TracedChild &) = delete;
    TracedChild &operator=(const TracedChild &) = delete;
    ~TracedChild() { kill_now(); }

    // Goes on to the beginning of the next system call. False when the child has ended instead.
    bool next_call() {
        while (running_) {
            ptrace(PTRACE_SYSCALL, child_, 0, 0);
            wait();
            if (running_ && WIFSTOPPED(status_) && WSTOPSIG(status_) == (SIGTRAP | 0x80)) {
                inside_ = !inside_;
                if (inside_) {
                    return true;
                }
            }
        }
        return false;
    }

    // Whether the call at whose beginning the child stands names a file or directory whose name begins so.
    bool names(const std::string &begin) const {
        __ptrace_syscall_info call{};
        ptrace(PTRACE_GET_SYSCALL_INFO, child_, sizeof call, &call);
        switch (call.entry.nr) {
        case SYS_openat:
        case SYS_newfstatat:
            return text_at(call.entry.args[1]).starts_with(begin);
        case SYS_mkdir:
            return text_at(call.entry.args[0]).starts_with(begin);
        default:
            return false;
        }
    }

    void kill_now() {
        if (running_) {
            kill(child_, SIGKILL);
            while (running_) {
                wait();
            }
        }
    }

    int exit_code() const { return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1; }

private:
    void wait() { running_ = waitpid(child_, &status_, 0) == child_ && WIFSTOPPED(status_); }

    std::string text_at(std::uint64_t address) const {
        std::string text;
        for (; text.size() < 4096; address += sizeof(long)) {
            errno = 0;
            const long word = ptrace(PTRACE_PEEKDATA, child_, address, 0);
            std::array<char, sizeof word> bytes{};
            std::memcpy(bytes.data(), &word, sizeof word);
            const std::size_t length = strnlen(bytes.data(), bytes.size());
            text.append(bytes.data(), errno == 0 ? length : 0);
            if (errno != 0 || length < bytes.size()) {
                break;
            }
        }
        return text;
    }

    pid_t child_ = -1;
    int status_ = 0;
    bool running_ = true;
    bool inside_ = false;
};

class Crash : public testing::Test {
public:
    ~Crash() override { std::filesystem::remove_all(directory); }

protected:
    Crash() {
        std::string name = (std::filesystem::temp_directory_path() / "crash-XXXXXX").string();
        directory = mkdtemp(name.data());
        ocpsm::line_system::create(client, directory / "template", ocpsm::line_system::example());
        restore();
    }

    std::filesystem::path state() const { return directory / "system"; }

    void restore() const {
        std::filesystem::remove_all(state());
        std::filesystem::copy(directory / "template", state());
    }

    Words command(const Words &arguments) const {
        Words words = {OCPSM_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        words.insert(words.end(), {"--state", state().string()});
        return words;
    }

    // Everything that is stored. A writer can begin, too: the one that was killed does not hold it up.
    Records records() const {
        Records all;
        const auto store = ocpsm::line_system::open(client, state());
        const auto transaction = store->write();
        for (std::size_t table = 0; table < sysdb::table_count; ++table) {
            transaction->for_each(static_cast<sysdb::Table>(table), "",
                                  [&](std::string_view key, std::string_view value) {
                                      all[std::to_string(table) + " " + std::string(key)] = value;
                                      return true;
                                  });
        }
        ocpsm::line_system::load(*transaction);
        return all;
    }

    // Kills the command at the beginning of each of its system calls in turn, from the first that concerns the state
    // on. Crashes pile up on the same directory for as long as it stays as it was. Returns their number.
    int crash_everywhere(const Words &arguments) {
        const Records before = records();
        {
            TracedChild whole(command(arguments));
            while (whole.next_call()) {
            }
            EXPECT_EQ(whole.exit_code(), 0);
        }
        const Records after = records();
        EXPECT_NE(before, after);
        restore();

        int calls = 0;
        int unchanged = 0;
        bool changed_once = false;
        for (bool ended = false; !ended && !HasFailure(); calls += ended ? 0 : 1) {
            TracedChild child(command(arguments));
            ended = !stop_at_call(child, calls);
            child.kill_now();
            const Records now = records();
            const bool changed = now == after;
            EXPECT_TRUE(changed || now == before) << "killed at call " << calls;
            EXPECT_TRUE(changed || !changed_once) << "killed at call " << calls;
            changed_once = changed;
            unchanged += changed ? 0 : 1;
            if (changed) {
                restore();
            }
            if (ended) {
                EXPECT_EQ(child.exit_code(), 0);
                EXPECT_TRUE(changed);
            }
        }
        // Crashes on both sides of the moment in which it becomes valid.
        EXPECT_GT(unchanged, 10);
        EXPECT_GT(calls - unchanged, 3);
        RecordProperty("crashes", calls);
        return calls;
    }

    // Goes on to the call with this number, from 0, counted from the first that concerns the state on.
    bool stop_at_call(TracedChild &child, int number) const {
        do {
            if (!child.next_call()) {
                return false;
            }
        } while (!child.names(state().string()));
        for (; number > 0; --number) {
            if (!child.next_call()) {
                return false;
            }
        }
        return true;
    }

    const sysdb::Client client;
    std::filesystem::path directory;
};

TEST_F(Crash, LeavesOneSettingAsItWasOrAsItIsToBe) {
    EXPECT_GE(crash_everywhere(
                  {"set", "/aps/aps-modules/aps-module[name=0/1-PSM-OM]/config/primary-switch-threshold", "-18.5"}),
              60);
}

TEST_F(Crash, LeavesAWholeContainerAsItWasOrAsItIsToBe) {
    EXPECT_GE(crash_everywhere({"edit", OCPSM_EXAMPLES "/replace-config.xml"}), 120);
}

TEST_F(Crash, LeavesTheLineSystemAsItWasOrAMomentLater) {
    EXPECT_GE(crash_everywhere({"device", "tick", "30000"}), 30);
}

// What is in the directory beside the line system: what its owner keeps there.
class CrashAtTheBeginning : public Crash, public testing::WithParamInterface<bool> {
protected:
    std::filesystem::path owners_file() const { return state() / "notes.txt"; }

    void start_over() const {
        std::filesystem::remove_all(state());
        if (GetParam()) {
            std::filesystem::create_directory(state());
            std::ofstream(owners_file()) << "mine";
        }
    }

    void expect_owners_file() const {
        if (GetParam()) {
            std::string text;
            std::ifstream(owners_file()) >> text;
            EXPECT_EQ(text, "mine");
        }
    }

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto &entry : std::filesystem::directory_iterator(state())) {
            if (entry.path() != owners_file()) {
                found.push_back(entry.path().filename());
            }
        }
        return found;
    }
};

// Crashes pile up on a directory without a line system. The next command that makes one is not stopped by any of them,
// and nothing of them stays.
TEST_P(CrashAtTheBeginning, LeavesNoLineSystemOrAWholeOne) {
    const Records whole = records();
    const Words init = command({"device", "init"});
    start_over();
    int without = 0;
    int with = 0;
    for (bool ended = false; !ended && !HasFailure();) {
        TracedChild child(init);
        ended = !stop_at_call(child, without + with);
        child.kill_now();
        expect_owners_file();
        if (std::filesystem::exists(state() / sysdb::store_file)) {
            EXPECT_EQ(records(), whole) << "killed at call " << without + with;
            EXPECT_EQ(names(), std::vector<std::string>{sysdb::store_file});
            start_over();
            with += ended ? 0 : 1;
        } else {
            EXPECT_FALSE(ended);
            ++without;
        }
    }
    EXPECT_GT(without, 10);
    EXPECT_GT(with, 3);
    RecordProperty("crashes", without + with);
}

INSTANTIATE_TEST_SUITE_P(, CrashAtTheBeginning, testing::Bool());

} // namespace

// Edits whose process is killed, at the beginning of each of its system calls in turn: the line system is what it was
// or what it was to become, and the next edit is carried out as if nothing had happened.
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answers.hpp"
#include "line_system.hpp"

namespace {

using circle::Records;
using ocpsm::Operation;
using ocpsm::PathEdits;
using ocpsm::Text;

// An edit in a process of its own, which stops at each of its system calls, before and after. It has all that this one
// has loaded, so that its calls are those of the edit.
class TracedEdit {
public:
    TracedEdit(const std::filesystem::path &directory, const ocpsm::Edit &edit) : child_(fork()) {
        if (child_ == 0) {
            if (ptrace(PTRACE_TRACEME, 0, 0, 0) == 0 && raise(SIGSTOP) == 0) {
                _exit(circle::edit_in(directory, edit).error ? 1 : 0);
            }
            _exit(2);
        }
        wait();
        EXPECT_TRUE(running_);
        ptrace(PTRACE_SETOPTIONS, child_, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    }
    TracedEdit(const TracedEdit &) = delete;
    TracedEdit &operator=(const TracedEdit &) = delete;
    ~TracedEdit() { kill_now(); }

    // Goes on to the beginning of the call with this number, from 0. False when the process has ended before.
    bool go_to_call(int number) {
        for (int stops = 2 * number + 1; running_ && stops > 0; stops -= is_call() ? 1 : 0) {
            ptrace(PTRACE_SYSCALL, child_, 0, 0);
            wait();
        }
        return running_;
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
    bool is_call() const { return running_ && WSTOPSIG(status_) == (SIGTRAP | 0x80); }

    pid_t child_;
    int status_ = 0;
    bool running_ = true;
};

Text modules(const std::string &content) {
    return {"<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
            "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules>" +
            content + "</aps-modules></aps>"};
}

struct Row {
    std::string what;
    ocpsm::Edit edit;
};

const std::vector<Row> rows{
    {"a threshold", PathEdits{{circle::module_path(1, "/config/primary-switch-threshold"), Operation::merge, "-18.5"}}},
    {"a setting that is deleted", PathEdits{{circle::module_path(1, "/config/revertive"), Operation::delete_existing}}},
    {"a configuration that is replaced",
     modules("<aps-module><name>0/1-PSM-OM</name><config nc:operation=\"replace\"><force-to-port>SECONDARY"
             "</force-to-port></config></aps-module>")},
    {"a module that is deleted", modules("<aps-module nc:operation=\"delete\"><name>0/3-PSM-OM</name></aps-module>")},
    {"attenuators of both modules",
     modules("<aps-module><name>0/1-PSM-OM</name><ports><line-secondary-out><config><target-attenuation>3.5"
             "</target-attenuation></config></line-secondary-out></ports></aps-module>"
             "<aps-module><name>0/3-PSM-OM</name><ports><line-primary-in><config><target-attenuation>12"
             "</target-attenuation></config></line-primary-in></ports></aps-module>")},
    {"thresholds of both lines",
     modules("<aps-module><name>0/3-PSM-OM</name><config><primary-switch-threshold nc:operation=\"remove\"/>"
             "<secondary-switch-threshold>-31</secondary-switch-threshold></config></aps-module>")},
};

// What none of them touches.
const PathEdits next_edit{
    {circle::module_path(1, "/ports/line-primary-in/config/target-attenuation"), Operation::merge, "7.7"}};

class Kills : public testing::Test {
protected:
    Kills() {
        circle::make_example(directory.path / "example");
        restore();
    }

    std::filesystem::path state() const { return directory.path / "system"; }

    void restore() const {
        std::filesystem::remove_all(state());
        std::filesystem::copy(directory.path / "example", state());
    }

    // As it is, and as the next edit makes it.
    struct Outcome {
        Records now;
        Records next;

        bool operator==(const Outcome &) const = default;
    };

    Outcome outcome() const {
        Outcome found{circle::records(state()), {}};
        const ocpsm::EditResult next = circle::edit_in(state(), next_edit);
        EXPECT_EQ(next.error ? next.error->message() : "", "");
        EXPECT_THAT(next.changes,
                    testing::ElementsAre(ocpsm::Change{next_edit.front().path, "2.5", next_edit.front().value}));
        found.next = circle::records(state());
        restore();
        return found;
    }

    // Returns the number of kills.
    int kill_everywhere(const ocpsm::Edit &edit) const {
        const Outcome before = outcome();
        EXPECT_EQ(circle::edit_in(state(), edit).error, std::nullopt);
        const Outcome after = outcome();
        EXPECT_NE(before.now, after.now);
        int kills = 0;
        int unchanged = 0;
        for (; !HasFailure(); ++kills) {
            TracedEdit child(state(), edit);
            const bool ended = !child.go_to_call(kills);
            child.kill_now();
            const Outcome found = outcome();
            EXPECT_TRUE(found == after || (!ended && found == before)) << "killed at call " << kills;
            if (ended) {
                EXPECT_EQ(child.exit_code(), 0);
                break;
            }
            unchanged += found == before ? 1 : 0;
        }
        // On both sides of the moment in which the edit becomes valid.
        EXPECT_GE(unchanged, 10);
        EXPECT_GE(kills - unchanged, 1);
        return kills;
    }

    const circle::Directory directory;
};

TEST_F(Kills, LeaveTheLineSystemAsItWasOrAsItIsToBe) {
    int kills = 0;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        kills += kill_everywhere(row.edit);
    }
    RecordProperty("kills", kills);
    EXPECT_GE(kills, 200);
}

} // namespace

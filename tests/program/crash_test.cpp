// Edits that are killed: whenever that happens, the line system is as it was or as it was to become. The build
// names the program's file, OCPSM_PROGRAM, and the directory with the examples, OCPSM_EXAMPLES.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "simulator/store/store.hpp"
#include "traced_process.hpp"

namespace {

using circle::Records;
using circle::TracedProcess;
using ocpsm::sysdb::store_file;
using Words = std::vector<std::string>;

class Crash : public circle::RestoredExample {
protected:
    Words command(const Words &arguments) const {
        Words words = {OCPSM_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        words.insert(words.end(), {"--state", state().string()});
        return words;
    }

    // Runs it, as seen at each of its system calls.
    static TracedProcess traced(const Words &command) {
        return TracedProcess([&] {
            std::vector<char *> arguments;
            for (const std::string &word : command) {
                arguments.push_back(const_cast<char *>(word.c_str())); // NOLINT(cppcoreguidelines-pro-type-const-cast)
            }
            arguments.push_back(nullptr);
            // A leak check cannot be made under a tracer.
            setenv("ASAN_OPTIONS", "detect_leaks=0:exitcode=99", 1);
            dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
            return execv(arguments.front(), arguments.data());
        });
    }

    // Everything that is stored. A writer can begin, too: the one that was killed does not hold it up.
    Records records() const { return circle::records(state()); }

    // Kills the command at the beginning of each of its system calls in turn, from the first that concerns the state
    // on. Crashes pile up on the same directory for as long as it stays as it was. Returns their number.
    int crash_everywhere(const Words &arguments) {
        const Records before = records();
        {
            TracedProcess whole = traced(command(arguments));
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
            TracedProcess child = traced(command(arguments));
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
    bool stop_at_call(TracedProcess &child, int number) const {
        do {
            if (!child.next_call()) {
                return false;
            }
        } while (!child.names(state().string()));
        return number == 0 || child.next_call(number - 1);
    }
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

// What has happened is in the journal when it has happened, and only then.
TEST_F(Crash, LeavesTheJournalInStepWithTheLineSystem) {
    const auto run = [this](const Words &arguments) {
        TracedProcess process = traced(command(arguments));
        while (process.next_call()) {
        }
        EXPECT_EQ(process.exit_code(), 0);
    };
    const auto journal_of = [](const Records &records) {
        std::vector<std::string> entries;
        for (int number = 1; records.contains("journal " + std::to_string(number)); ++number) {
            entries.push_back(records.at("journal " + std::to_string(number)));
        }
        return entries;
    };
    const std::string cut = "0 cut 0/1-PSM-OM primary   ";
    const std::string switched =
        "100 switched 0/1-PSM-OM  PRIMARY SECONDARY loss of primary: -40.00 dBm, below -25.00 dBm";
    run({"device", "cut", "1", "primary"});
    const Records before = records();
    EXPECT_EQ(journal_of(before), Words{cut});
    int calls = 0;
    int unchanged = 0;
    for (bool ended = false; !ended && !HasFailure(); ++calls) {
        TracedProcess child = traced(command({"device", "tick", "500"}));
        ended = !stop_at_call(child, calls);
        child.kill_now();
        const Records now = records();
        const bool on_secondary = now.at("1 slot/1/module/on-secondary") == "1";
        EXPECT_EQ(journal_of(now), on_secondary ? (Words{cut, switched}) : Words{cut}) << "killed at call " << calls;
        EXPECT_TRUE(on_secondary || now == before) << "killed at call " << calls;
        unchanged += on_secondary ? 0 : 1;
        if (on_secondary) {
            restore();
            run({"device", "cut", "1", "primary"});
        }
    }
    EXPECT_GT(unchanged, 10);
    EXPECT_GT(calls - unchanged, 3);
}

// Crashes pile up on a directory without a line system. The next command that makes one is not stopped by any of them,
// and nothing of them stays.
TEST_F(Crash, AtTheBeginningLeavesNoLineSystemOrAWholeOne) {
    const auto start_over = [this] { std::filesystem::remove_all(state()); };
    const auto names = [this] {
        std::vector<std::string> found;
        for (const auto &entry : std::filesystem::directory_iterator(state())) {
            found.push_back(entry.path().filename());
        }
        return found;
    };
    const Records whole = records();
    const Words init = command({"device", "init"});
    start_over();
    int without = 0;
    int with = 0;
    for (bool ended = false; !ended && !HasFailure();) {
        TracedProcess child = traced(init);
        ended = !stop_at_call(child, without + with);
        child.kill_now();
        if (std::filesystem::exists(state() / store_file)) {
            EXPECT_EQ(records(), whole) << "killed at call " << without + with;
            EXPECT_EQ(names(), std::vector<std::string>{store_file});
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

} // namespace

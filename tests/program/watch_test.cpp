// Watching a line system in a terminal. The build names the program's file, OCPSM_PROGRAM.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pseudo_terminal.hpp"
#include "sysdb/temporary_directory.hpp"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Watch : public testing::Test {
protected:
    Watch() { run("device init"); }

    std::string state() const { return (directory.path / "system").string(); }
    static std::string program() { return OCPSM_PROGRAM; }

    // What a command prints on both streams, and its exit code in a last line when it is not 0.
    std::string run(const std::string &arguments) const {
        const std::string command = "'" + program() + "' " + arguments + " --state '" + state() + "' 2>&1";
        std::FILE *pipe = popen(command.c_str(), "r");
        std::string printed;
        for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe)) {
            printed.push_back(static_cast<char>(character));
        }
        const int status = pclose(pipe);
        return status == 0 ? printed : printed + "[" + std::to_string(WEXITSTATUS(status)) + "]";
    }

    std::vector<std::string> command() const { return {program(), "watch", "--state", state()}; }

    static bool shows(const Screen &screen, const std::string &text) {
        return testing::Matches(testing::Contains(HasSubstr(text)))(screen.rows());
    }

    // Whether all of these are to be seen together, now or soon.
    static bool sees(TerminalChild &child, const std::vector<std::string> &texts) {
        return child.wait_until([&](const Screen &screen) {
            return std::all_of(texts.begin(), texts.end(), [&](const auto &text) { return shows(screen, text); });
        });
    }
    static bool sees_highlighted(TerminalChild &child, const std::string &row) {
        return child.wait_until([&](const Screen &screen) { return screen.highlighted() == std::vector{row}; });
    }
    static bool has_printed(TerminalChild &child, const std::string &text) {
        return child.wait_until([&](const Screen &) { return child.output().find(text) != std::string::npos; });
    }

    static void quit(TerminalChild &child) {
        child.type("q");
        EXPECT_EQ(child.wait_for_end(), 0);
    }

    // The terminal is as it was before: neither the screen nor a setting is left changed.
    static void expect_untouched(const TerminalChild &child, const termios &before) {
        const termios after = child.settings();
        EXPECT_EQ(after.c_iflag, before.c_iflag);
        EXPECT_EQ(after.c_oflag, before.c_oflag);
        EXPECT_EQ(after.c_cflag, before.c_cflag);
        EXPECT_EQ(after.c_lflag, before.c_lflag);
        EXPECT_THAT(after.c_cc, testing::ElementsAreArray(before.c_cc));
        EXPECT_FALSE(child.screen().alternate());
        EXPECT_TRUE(child.screen().cursor_shown());
    }

    const TemporaryDirectory directory;
};

// All of the screen but the time, which runs.
TEST_F(Watch, ShowsTheTableAndTheKeys) {
    TerminalChild child(command());
    ASSERT_TRUE(sees(child, {"q quit"}));
    EXPECT_TRUE(child.screen().alternate());
    EXPECT_FALSE(child.screen().cursor_shown());
    std::vector<std::string> rows = child.screen().rows();
    EXPECT_THAT(rows.front(), testing::MatchesRegex("time [0-9]+\\.[0-9] s"));
    rows.erase(rows.begin());
    EXPECT_THAT(rows, ElementsAre("", "              receive     switch      receive  transmit     transmit",
                                  "                power  threshold  attenuation     power  attenuation",
                                  "                  dBm        dBm           dB       dBm           dB  fibre", "",
                                  "0/1-PSM-OM  active path PRIMARY; reverts after 10.0 s",
                                  "* primary      -12.34     -25.00         2.50     -2.15         1.00  whole",
                                  "  secondary    -15.87     -28.00         1.50     -2.23         1.00  whole", "",
                                  "0/3-PSM-OM  active path SECONDARY; relative threshold 3.00 dB, offset 0.50 dB",
                                  "  primary      -40.00     -26.50         0.00     -2.51         0.00  cut",
                                  "* secondary    -16.59     -30.00         0.75     -2.48         0.00  whole", "", "",
                                  "up/down choose a line   c cut its fibre   s splice it   l set its light",
                                  "p pause   < slower   > faster   q quit", "", "", "", "", "", "", ""));
    EXPECT_THAT(child.screen().highlighted(),
                ElementsAre("* primary      -12.34     -25.00         2.50     -2.15         1.00  whole"));
}

TEST_F(Watch, LetsTimePassAndTheSwitchAct) {
    TerminalChild child(command());
    ASSERT_TRUE(sees(child, {"time 0.3 s"}));
    child.type("c");
    ASSERT_TRUE(sees(child, {"0/1-PSM-OM  active path SECONDARY; reverts after 10.0 s",
                             "  primary      -40.00     -25.00         2.50     -2.15         1.00  cut",
                             "* secondary    -15.87"}));
    child.type("s");
    ASSERT_TRUE(sees(child, {"reverts in "}));
    EXPECT_TRUE(sees(child, {"0/1-PSM-OM  active path PRIMARY"}));
    quit(child);
    EXPECT_THAT(run("get '/aps/aps-modules/aps-module[name=0/1-PSM-OM]/state/active-path'"), HasSubstr(":PRIMARY"));
}

TEST_F(Watch, CutsAndSplicesTheChosenLine) {
    TerminalChild child(command());
    ASSERT_TRUE(sees(child, {"q quit"}));
    child.type("\x1bOB\x1bOBs"); // down, down
    ASSERT_TRUE(sees_highlighted(child, "  primary      -16.12     -26.50         0.00     -2.51         0.00  whole"));
    child.type("\x1bOA"); // up
    child.type("c");
    ASSERT_TRUE(sees_highlighted(child, "  secondary    -40.00     -28.00         1.50     -2.23         1.00  cut"));
    // What another process does is seen too, and a key for a module that has gone meanwhile does no harm.
    EXPECT_EQ(run("device pull 1"), "slot 1 is empty\n");
    child.type("c");
    EXPECT_TRUE(child.wait_until([](const Screen &screen) { return !shows(screen, "0/1-PSM-OM"); }));
    child.type("x");
    quit(child);
}

TEST_F(Watch, SetsTheLightOfTheChosenLine) {
    TerminalChild child(command());
    ASSERT_TRUE(sees(child, {"q quit"}));
    child.type("l-2x\x7f");
    ASSERT_TRUE(sees(child, {"the light that the fibre delivers, in dBm: -2_"}));
    child.type("0.5\r");
    ASSERT_TRUE(sees(child, {"* primary      -20.50     -25.00"}));
    child.type("l\x1b"); // escape
    child.type("lq\r");
    ASSERT_TRUE(sees(child, {"q is no power in dBm with at most two decimal places"}));
    child.type("l-99\r");
    ASSERT_TRUE(sees(child, {"no fibre delivers such a light"}));
    child.type("l-30\r");
    EXPECT_TRUE(sees(child, {"0/1-PSM-OM  active path SECONDARY", "  primary      -30.00"}));
    quit(child);
}

// What the clock says once it stands is what it says when all is over.
TEST_F(Watch, LetsTheTimeStandStillAndPassFaster) {
    TerminalChild child(command());
    ASSERT_TRUE(sees(child, {"time 0.2 s"}));
    child.type("p");
    ASSERT_TRUE(sees(child, {"paused"}));
    const std::string stands = child.screen().rows().front();
    // Cuts are seen all the same, and nothing switches.
    EXPECT_EQ(run("device cut 1 primary"), "slot 1: the primary fibre is cut\n");
    ASSERT_TRUE(sees(child, {"* primary      -40.00"}));
    EXPECT_EQ(child.screen().rows().front(), stands);
    child.type(">>");
    ASSERT_TRUE(sees(child, {"speed 5   paused"}));
    EXPECT_EQ(child.screen().rows().front(), stands.substr(0, stands.find(" s")) + " s   speed 5   paused");
    child.type("p");
    // In steps of half a second from where it stood.
    const std::string decimals = stands.substr(stands.find('.'), 2);
    ASSERT_TRUE(sees(child, {"* secondary    -15.87"}));
    quit(child);
    const std::string end = run("device tick 0");
    EXPECT_TRUE(end.substr(end.find('.'), 2) == decimals ||
                end[end.find('.') + 1] == '0' + (decimals[1] - '0' + 5) % 10)
        << end << stands;
}

TEST_F(Watch, LeavesTheTerminalAsItWasWhenTheUserQuits) {
    TerminalChild child(command());
    const termios before = child.settings();
    ASSERT_TRUE(sees(child, {"q quit"}));
    EXPECT_NE(child.settings().c_lflag, before.c_lflag);
    quit(child);
    expect_untouched(child, before);
}

class WatchSignal : public Watch, public testing::WithParamInterface<int> {};

TEST_P(WatchSignal, LeavesTheTerminalAsItWasAndEndsByTheSignal) {
    TerminalChild child(command());
    const termios before = child.settings();
    ASSERT_TRUE(sees(child, {"q quit"}));
    child.send(GetParam());
    const int status = child.wait_for_end();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), GetParam());
    expect_untouched(child, before);
    EXPECT_THAT(run("device tick 0"), HasSubstr("0/1-PSM-OM on PRIMARY")); // the clock is free again
}

INSTANTIATE_TEST_SUITE_P(Signals, WatchSignal, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto &tested) { return std::string(sigabbrev_np(tested.param)); });

TEST_F(Watch, EndsWithCtrlC) {
    TerminalChild child(command());
    const termios before = child.settings();
    ASSERT_TRUE(sees(child, {"q quit"}));
    child.type("\x03");
    const int status = child.wait_for_end();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGINT);
    expect_untouched(child, before);
}

TEST_F(Watch, FollowsTheSizeOfTheTerminal) {
    TerminalChild child(command());
    ASSERT_TRUE(sees(child, {"q quit"}));
    child.resize(10, 40);
    EXPECT_TRUE(child.wait_until([](const Screen &screen) {
        return screen.rows().front() == "too small: this needs 75 columns and 17 " ||
               screen.rows().front() == "too small: this needs 75 columns and 17";
    }));
    EXPECT_FALSE(shows(child.screen(), "PSM-OM"));
    child.resize(30, 100);
    EXPECT_TRUE(child.wait_until([](const Screen &screen) {
        return shows(screen, "* secondary    -16.59") && shows(screen, "q quit") && !shows(screen, "too small");
    }));
    quit(child);
}

TEST_F(Watch, LetsOneProcessMoveTheTime) {
    TerminalChild child(command());
    ASSERT_TRUE(sees(child, {"time 0.1 s"}));
    const std::string refused =
        "ocpsm: error: in-use: the time of the line system in " + state() + " is being moved already by process ";
    const std::string advice = "; end that ocpsm serve, watch or device tick first\n[1]";
    const std::string tick = run("device tick 100");
    EXPECT_EQ(tick.substr(0, refused.size()), refused);
    EXPECT_EQ(tick.substr(tick.size() - advice.size()), advice);

    TerminalChild second(command());
    const int status = second.wait_for_end();
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(second.output().substr(0, refused.size()), refused);
    EXPECT_FALSE(second.screen().alternate());

    // Edits and cuts go on all the while.
    EXPECT_EQ(run("device cut 1 secondary"), "slot 1: the secondary fibre is cut\n");
    EXPECT_TRUE(sees(child, {"  secondary    -40.00     -28.00"}));
}

// Stopped by the job control of a shell, it leaves the terminal and the time to others until it goes on.
TEST_F(Watch, LeavesTheTimeToOthersWhileItIsStopped) {
    const std::string in_use = "ocpsm: error: in-use: ";
    TerminalChild shell({"/bin/bash", "--norc", "--noprofile", "-i"});
    shell.type("'" + program() + "' watch --state '" + state() + "'\n");
    ASSERT_TRUE(sees(shell, {"time 0.2 s"}));
    EXPECT_EQ(run("device tick 100").substr(0, in_use.size()), in_use);

    shell.type("\x1a");
    ASSERT_TRUE(has_printed(shell, "Stopped"));
    EXPECT_FALSE(shell.screen().alternate());
    EXPECT_EQ(run("device tick 100").substr(0, 5), "time ");

    shell.type("fg\n");
    ASSERT_TRUE(shell.wait_until([](const Screen &screen) { return screen.alternate() && shows(screen, "q quit"); }));
    EXPECT_EQ(run("device tick 100").substr(0, in_use.size()), in_use);
    shell.type("q");
    ASSERT_TRUE(shell.wait_until([](const Screen &screen) { return !screen.alternate(); }));
    shell.type("exit\n");
    EXPECT_EQ(shell.wait_for_end(), 0);
}

// What moves the time meanwhile is named when it is to go on.
TEST_F(Watch, EndsWhenTheTimeIsMovedByAnotherWhenItIsToGoOn) {
    TerminalChild shell({"/bin/bash", "--norc", "--noprofile", "-i"});
    shell.type("'" + program() + "' watch --state '" + state() + "'\n");
    ASSERT_TRUE(sees(shell, {"q quit"}));
    shell.type("\x1a");
    ASSERT_TRUE(has_printed(shell, "Stopped"));
    TerminalChild other(command());
    ASSERT_TRUE(sees(other, {"q quit"}));
    shell.type("fg\n");
    EXPECT_TRUE(has_printed(shell, "ocpsm: error: in-use: the time of the line system in " + state() +
                                       " is being moved already by process "));
    EXPECT_FALSE(shell.screen().alternate());
    shell.type("exit\n");
    EXPECT_EQ(WEXITSTATUS(shell.wait_for_end()), 1);
}

TEST_F(Watch, RefusesATerminalThatIsTooLarge) {
    TerminalChild shell(
        {"/bin/sh", "-c", "stty rows 65000 cols 65000; exec '" + program() + "' watch --state '" + state() + "'"});
    EXPECT_EQ(WEXITSTATUS(shell.wait_for_end()), 2);
    EXPECT_EQ(shell.output(), "ocpsm: error: the terminal is too large: it has 65000 rows and 65000 columns; make it "
                              "1000 or less each way, or print the table once with ocpsm device show\r\n");
}

TEST_F(Watch, RefusesATerminalWithoutAScreenOrOfUnknownType) {
    for (const auto &[type, reason] :
         {std::pair("no-such-terminal", "the terminal type no-such-terminal cannot be used"),
          std::pair("dumb", "this needs a terminal with a screen, and the type dumb has none")}) {
        TerminalChild child(command(), type);
        const termios before = child.settings();
        const int status = child.wait_for_end();
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 2);
        EXPECT_EQ(child.output(), std::string("ocpsm: error: ") + reason +
                                      "; set TERM to its type, e.g. xterm, or print the table once with ocpsm device "
                                      "show\r\n");
        expect_untouched(child, before);
    }
}

} // namespace

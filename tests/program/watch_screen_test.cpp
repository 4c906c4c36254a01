// What is on the screen while a line system is watched.
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/line_system/line_system.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/view.hpp"
#include "watch_screen.hpp"

namespace ocpsm {
namespace {

namespace line_system = ocpsm::line_system;
using testing::ElementsAre;

class Watching : public testing::Test {
protected:
    Watching() { screen.update(view(line_system::example())); }

    // The highlighted lines, by the first 13 characters.
    std::vector<std::string> highlighted() const {
        std::vector<std::string> found;
        for (const ScreenLine &line : screen.lines({24, 80})) {
            if (line.highlighted) {
                found.push_back(line.text.substr(0, 20));
            }
        }
        return found;
    }

    std::vector<std::string> texts(ScreenSize size) const {
        std::vector<std::string> found;
        for (const ScreenLine &line : screen.lines(size)) {
            found.push_back(line.text);
        }
        return found;
    }

    WatchScreen screen;
};

TEST_F(Watching, ShowsTheTableTheKeysAndWhatIsToBeNoted) {
    screen.note("slot 1 holds no module");
    const std::vector<std::string> lines = texts({24, 80});
    ASSERT_EQ(lines.size(), 17U);
    EXPECT_EQ(lines.at(0), "time 0.0 s");
    EXPECT_EQ(lines.at(7), "* primary      -12.34     -25.00         2.50     -2.15         1.00  whole");
    EXPECT_EQ(lines.at(14), "slot 1 holds no module");
    EXPECT_EQ(lines.at(15), "up/down choose a line   c cut its fibre   s splice it   l set its light");
    EXPECT_EQ(lines.at(16), "p pause   < slower   > faster   q quit");
    screen.update(view(line_system::tick(line_system::example(), 100)));
    EXPECT_EQ(texts({24, 80}).at(14), "slot 1 holds no module");
    screen.update(view(line_system::pull(line_system::example(), 1)));
    EXPECT_EQ(texts({24, 80}).at(10), "");
}

TEST_F(Watching, MovesTheChoiceThroughAllLinesAndRound) {
    EXPECT_THAT(highlighted(), ElementsAre("* primary      -12.3"));
    EXPECT_EQ(screen.chosen(), (ChosenLine{1, 0}));
    screen.choose_previous();
    EXPECT_EQ(screen.chosen(), (ChosenLine{3, 1}));
    EXPECT_THAT(highlighted(), ElementsAre("* secondary    -16.5"));
    screen.choose_next();
    screen.choose_next();
    EXPECT_EQ(screen.chosen(), (ChosenLine{1, 1}));
    screen.choose_next();
    EXPECT_EQ(screen.chosen(), (ChosenLine{3, 0}));
    EXPECT_THAT(highlighted(), ElementsAre("  primary      -40.0"));
}

TEST_F(Watching, KeepsTheChoiceWhenModulesComeAndGo) {
    screen.choose_previous();
    const line_system::LineSystem three = line_system::fit(line_system::example(), 2);
    screen.update(view(three));
    EXPECT_EQ(screen.chosen(), (ChosenLine{3, 1}));
    screen.update(view(line_system::pull(three, 3)));
    EXPECT_EQ(screen.chosen(), (ChosenLine{1, 0}));
}

TEST_F(Watching, ChoosesNothingWithoutModules) {
    screen.update({});
    screen.choose_next();
    screen.choose_previous();
    EXPECT_FALSE(screen.chosen().has_value());
    EXPECT_THAT(highlighted(), ElementsAre());
}

TEST_F(Watching, SaysHowFastTheTimePasses) {
    const auto time = [this] { return texts({24, 80}).at(0); };
    const auto speed = [this] { return std::tuple(screen.speed().every, screen.speed().passes); };
    EXPECT_EQ(speed(), std::tuple(100U, 100U));
    screen.go_faster();
    screen.pause_or_go_on();
    EXPECT_TRUE(screen.paused());
    EXPECT_EQ(time(), "time 0.0 s   speed 2   paused");
    EXPECT_EQ(speed(), std::tuple(100U, 200U));
    for (int i = 0; i < 9; ++i) {
        screen.go_faster();
    }
    EXPECT_EQ(time(), "time 0.0 s   speed 100   paused");
    EXPECT_EQ(speed(), std::tuple(100U, 10000U));
    screen.pause_or_go_on();
    for (int i = 0; i < 20; ++i) {
        screen.go_slower();
    }
    EXPECT_FALSE(screen.paused());
    EXPECT_EQ(time(), "time 0.0 s   speed 0.1");
    EXPECT_EQ(speed(), std::tuple(1000U, 100U));
}

TEST_F(Watching, AsksWhereANoteStands) {
    const auto note = [this] { return texts({24, 80}).at(14); };
    screen.note("slot 1 holds no module");
    screen.ask("how much?");
    EXPECT_TRUE(screen.asks());
    EXPECT_EQ(note(), "how much? _");
    screen.erase();
    for (const char character : std::string("-12.50")) {
        screen.type(character);
    }
    screen.erase();
    EXPECT_EQ(note(), "how much? -12.5_");
    EXPECT_EQ(screen.take_answer(), "-12.5");
    EXPECT_FALSE(screen.asks());
    EXPECT_EQ(note(), "slot 1 holds no module");
    screen.ask("how much?");
    for (int i = 0; i < 100; ++i) {
        screen.type('1');
    }
    EXPECT_EQ(screen.take_answer(), "1111111111111111");
}

TEST_F(Watching, SaysHowLargeTheTerminalMustBe) {
    const std::vector<std::string> small = {"too small: this needs 75 columns and 17 rows",
                                            "make the terminal larger, or q to quit"};
    EXPECT_EQ(texts({16, 80}), small);
    EXPECT_EQ(texts({17, 74}), small);
    EXPECT_EQ(texts({0, 0}), small);
    EXPECT_EQ(texts({17, 75}).size(), 17U);
}

} // namespace
} // namespace ocpsm

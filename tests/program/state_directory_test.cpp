// Which directory a command takes for its line system.
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "framework/error.hpp"
#include "state_directory.hpp"

namespace ocpsm {
namespace {

using Variables = std::map<std::string, std::string>;

std::string directory(const std::optional<std::string> &named, const Variables &variables) {
    return state_directory(named,
                           [&](const std::string &name) {
                               const auto found = variables.find(name);
                               return found == variables.end() ? std::nullopt
                                                               : std::optional<std::string>(found->second);
                           })
        .string();
}

const Variables all = {{"OCPSM_STATE", "own/state"}, {"XDG_STATE_HOME", "/xdg"}, {"HOME", "/home/operator"}};

TEST(StateDirectory, TakesTheFirstOfItsSources) {
    EXPECT_EQ(directory("named", all), "named");
    EXPECT_EQ(directory(std::nullopt, all), "own/state");
    EXPECT_EQ(directory(std::nullopt, {{"XDG_STATE_HOME", "/xdg"}, {"HOME", "/home/operator"}}), "/xdg/ocpsm");
    EXPECT_EQ(directory(std::nullopt, {{"HOME", "/home/operator"}}), "/home/operator/.local/state/ocpsm");
}

TEST(StateDirectory, PassesOverWhatSaysNothing) {
    EXPECT_EQ(directory(std::nullopt, {{"OCPSM_STATE", ""}, {"XDG_STATE_HOME", ""}, {"HOME", "/h"}}),
              "/h/.local/state/ocpsm");
    EXPECT_EQ(directory(std::nullopt, {{"XDG_STATE_HOME", "relative"}, {"HOME", "/h"}}), "/h/.local/state/ocpsm");
}

// The message and the advice of the error, which must be about bad input.
std::string error_of(const std::optional<std::string> &named, const Variables &variables) {
    try {
        directory(named, variables);
    } catch (const ocpsm::Error &error) {
        EXPECT_EQ(error.source, ocpsm::Error::Source::input);
        EXPECT_EQ(error.tag, "");
        return std::string(error.what()) + "; " + error.advice;
    }
    return "no error";
}

TEST(StateDirectory, SaysThatNothingNamesIt) {
    EXPECT_EQ(error_of(std::nullopt, {}),
              "nothing says where the line system is kept: HOME is not set; name a directory with --state DIR");
    EXPECT_EQ(error_of(std::nullopt, {{"HOME", ""}}),
              "nothing says where the line system is kept: HOME is not set; name a directory with --state DIR");
    EXPECT_EQ(error_of("", all), "the state directory has no name; name one with --state DIR");
}

} // namespace
} // namespace ocpsm

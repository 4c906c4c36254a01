// The runner of the cases: it fails where it should, and says where.
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "scene.hpp"

namespace {

using Lines = std::vector<std::string>;

// "line: first line of the text" of every failure of the cases of a text.
Lines failures_of(const std::string &text) {
    Lines all;
    try {
        const cases::File file(text, "file");
        for (const cases::Case &one : file.cases()) {
            for (const cases::Failure &failure : cases::play(file, one)) {
                all.push_back(std::to_string(failure.line) + ": " + failure.text);
            }
        }
    } catch (const std::exception &error) {
        all.emplace_back(error.what());
    }
    return all;
}

constexpr char head[] = "setup\n"
                        "    look output messages\n"
                        "    tree source\n"
                        "        leaf = 5\n"
                        "case One\n";

constexpr char added[] =
    "        +@\n"
    "        add(dest, \"/active-nodes/active-node/slot/psm/revertive/wtr\", ns=ots-cfg, value=\"5\","
    " src=none, result=none, 0, 1)\n"
    "        -@\n";

std::string calling(const std::string &expected, const std::string &result = "0") {
    return std::string(head) + "    call oc_opt_psm_cfg_wtr_to_low -> " + result + "\n" + expected;
}

std::string rest(const std::string &from, const char *add = added) {
    return std::string(add).substr(std::string(add).find(from));
}

TEST(Runner, PassesWhatIsAsExpected) {
    EXPECT_EQ(failures_of(calling(added)), Lines{});
    EXPECT_EQ(failures_of(calling("        ...\n")), Lines{});
    EXPECT_EQ(failures_of(calling("        +@\n        ...\n        -@\n        ...\n")), Lines{});
    EXPECT_EQ(failures_of(std::string(head) + "    traced oc_opt_psm_cfg_wtr_to_low -> 0\n        ...\n"), Lines{});
    EXPECT_EQ(
        failures_of(std::string(head) + "    traced oc_opt_psm_cfg_wtr_to_low -> 0\n"),
        Lines{"6: what happened differs at its line 2: expected\n    -oc_opt_psm_cfg_wtr_to_low\nbut found\n    " +
              rest("add(dest").substr(0, rest("add(dest").find('\n')) + "\n    -oc_opt_psm_cfg_wtr_to_low"});
}

TEST(Runner, NoticesAnotherTextACallThatIsMissingAndOneTooMany) {
    const std::string add = "add(dest, \"/active-nodes/active-node/slot/psm/revertive/wtr\", ns=ots-cfg, value=\"5\", "
                            "src=none, result=none, 0, 1)";
    const std::string conversion = "oc_opt_psm_cfg_wtr_to_low";
    std::string other = added;
    other.replace(other.find("\"5\""), 3, "\"6\"");
    EXPECT_EQ(failures_of(calling(other)), Lines{"6: what happened differs at its line 2: expected\n    " +
                                                 std::string(add).replace(add.find("\"5\""), 3, "\"6\"") + "\n    -" +
                                                 conversion + "\nbut found\n    " + add + "\n    -" + conversion});
    EXPECT_EQ(failures_of(calling(std::string(added) + "        error_path()\n")),
              Lines{"6: what happened differs at its line 4: expected\n    error_path()\nbut found\n    (nothing)"});
    EXPECT_EQ(failures_of(calling("        +@\n" + rest("        -@"))),
              Lines{"6: what happened differs at its line 2: expected\n    -" + conversion + "\nbut found\n    " + add +
                    "\n    -" + conversion});
    EXPECT_EQ(failures_of(calling("")).size(), 1u);
    EXPECT_EQ(failures_of(calling("        ...\n        +@\n")).size(), 1u);
}

TEST(Runner, NoticesAnotherResult) {
    EXPECT_EQ(failures_of(calling(added, "1")), Lines{"6: the result is 0x00000000, expected 0x00000001"});
    EXPECT_EQ(failures_of(calling(added, "zero")), Lines{"5: file:6: 'zero' is no number"});
}

TEST(Runner, PutsWhatIsBelowAMacroInThePlaceOfItsBlock) {
    const std::string text = "define told result\n    call oc_opt_psm_cfg_wtr_to_low(top/in/leaf, dest) -> {result}\n"
                             "        +@\n        *block\n        -@\nsetup\n    look output messages\n"
                             "case One\n    for value in 5\n    tree top top/in\n"
                             "        each tag other in leaf {value} more 6: {tag} = {other}\n    *told 0\n";
    const std::string add = "add(dest, \"/active-nodes/active-node/slot/psm/revertive/wtr\", ns=ots-cfg, "
                            "value=\"{value}\", src=none, result=none, 0, 1)\n";
    EXPECT_EQ(failures_of(text + "        " + add), Lines{});
    EXPECT_EQ(failures_of(text + "        unless {value} = 5: " + add).size(), 1u);
}

TEST(Runner, NamesTheRow) {
    const std::string text = "setup\n    look output\ncase One\n    rows\n        value\n        \"5\"\n        \"6\"\n"
                             "    tree source\n        leaf = {value}\n    call oc_opt_psm_cfg_wtr_to_low -> 0\n"
                             "        add(dest, \"/active-nodes/active-node/slot/psm/revertive/wtr\", ns=ots-cfg, "
                             "value=\"5\", src=none, result=none, 0, 1)\n";
    const Lines found = failures_of(text);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].substr(0, found[0].find(':', 40)),
              "10: row of line 7: value=\"6\"\nwhat happened differs at its line 1");
}

TEST(Runner, NoticesWhatACallLeavesBehind) {
    const std::string refused = std::string(head) +
                                "    error-node earlier\n    call leaf_lvlc_aps_state_attenuation -> "
                                "0xaaf2ee00\n";
    EXPECT_EQ(failures_of(refused), Lines{"7: the call left behind\n    error node earlier -> leaf"});
    EXPECT_EQ(failures_of(refused + "    left\n        error node earlier -> leaf\n"), Lines{});
    EXPECT_EQ(failures_of(refused + "    left\n        error node earlier -> other\n"),
              Lines{"8: what the call left behind differs at its line 1: expected\n    error node earlier -> other\n"
                    "but found\n    error node earlier -> leaf"});
    EXPECT_EQ(failures_of(refused + "    left\n        error node earlier -> leaf\n    error-node is leave\n").size(),
              1u);
}

TEST(Runner, NoticesWhatAUtilityWrites) {
    const auto converted = [](const std::string &results) {
        return failures_of("case One\n    call convert_data_to_low(2.5, [5], 4, 10) -> " + results + "\n");
    };
    EXPECT_EQ(converted("2 25"), Lines{});
    EXPECT_EQ(converted("2 whole \"25\\x00\\x00#\""), Lines{});
    EXPECT_EQ(converted("3 25"), Lines{"2: the result is 0x00000002, expected 0x00000003"});
    EXPECT_EQ(converted("2 26"), Lines{"2: written is 25, expected 26"});
    EXPECT_EQ(converted("2"), Lines{"2: written is 25, expected "});
    EXPECT_EQ(converted("2 25 25"), Lines{"1: file:2: expected: as many results as are written"});
    for (const char *const wrong : {"2 untouched", "2 cleared 25", "2 whole 25"}) {
        EXPECT_EQ(converted(wrong).size(), 1u) << wrong;
    }
    EXPECT_EQ(failures_of("case One\n    call convert_data_to_low(2.5, [5], 4) -> 0\n"),
              Lines{"1: file:2: expected: more arguments"});
    EXPECT_EQ(failures_of("case One\n    call convert_data_to_low(2.5, [5], 4, 10, 1) -> 0\n"),
              Lines{"1: file:2: expected: fewer arguments"});
}

TEST(Runner, NoticesAFailureInAProcessOfItsOwn) {
    const std::string apart = "case One\n    apart\n    call convert_data_to_low(2.5, [5], 4, 10) -> 2 ";
    EXPECT_EQ(failures_of(apart + "25\n"), Lines{});
    EXPECT_EQ(failures_of(apart + "26\n"), Lines{"3: 3: written is 25, expected 26\n"});
}

TEST(Runner, NoticesABrokenContract) {
    EXPECT_EQ(failures_of(std::string(head) + "    push source 1\n    hierarchy source 1\n"
                                              "    when add\n        error-node a\n        error-node b\n"
                                              "    call oc_opt_psm_cfg_wtr_to_low -> 0\n        ...\n"),
              Lines{"11: the call left behind\n    error node none -> b"});
    const std::string dying = std::string(head) + "    dies oc_opt_psm_cfg_wtr_to_low(source, dest) in any\n";
    EXPECT_EQ(failures_of(dying).size(), 2u);
}

TEST(Runner, RefusesWhatItDoesNotUnderstand) {
    EXPECT_EQ(failures_of(""), Lines{"file: holds no case"});
    EXPECT_EQ(failures_of("# a comment\n"), Lines{"file: holds no case"});
    EXPECT_EQ(failures_of("case One\n"), Lines{"file:1: a case without steps"});
    EXPECT_EQ(failures_of("case One\n    kind 1\n"), Lines{"1: file:2: a case without a call"});
    EXPECT_EQ(failures_of("case One\n    kind 1\ncase One\n    kind 1\n"),
              Lines{"file:3: a second case of this title"});
    EXPECT_EQ(failures_of("something else\n"), Lines{"file:1: not understood: something else"});
    EXPECT_EQ(failures_of("case One\n    jump\n"), Lines{"1: file:2: no step: jump"});
    EXPECT_EQ(failures_of("case One\n    *jump\n    kind 1\n"), Lines{"1: file:2: no macro jump of 0 arguments"});
    EXPECT_EQ(failures_of("define jump a\n    kind {a}\ncase One\n    *jump\n"),
              Lines{"3: file:4: no macro jump of 0 arguments"});
    EXPECT_EQ(failures_of("define jump\n    *jump\ncase One\n    *jump\n"), Lines{"3: file:2: a macro of itself"});
    EXPECT_EQ(failures_of("define jump\n    kind 1\ncase One\n    *jump\n        kind 2\n"),
              Lines{"3: file:4: jump takes no block"});
    EXPECT_EQ(failures_of("case One\n    each a b in 1 2 3: kind {a}\n"),
              Lines{"1: file:2: expected: each NAME... in VALUE...: LINE"});
    EXPECT_EQ(failures_of("case One\n    each a in 1 x: kind {a}\n"), Lines{"1: file:2: 'x' is no number"});
    EXPECT_EQ(failures_of("case One\n    *block\n"), Lines{"1: file:2: no macro block of 0 arguments"});
    EXPECT_EQ(failures_of("case One\n    tree a\n"),
              Lines{"1: file:2: expected: a root behind the name, or one below it"});
    EXPECT_EQ(failures_of("define jump\ndefine jump\n"), Lines{"file:2: jump is defined twice"});
    EXPECT_EQ(failures_of("case One\n    kind {a}\n"), Lines{"1: file:2: no variable {a}"});
    EXPECT_EQ(failures_of("case One\n    kind {a\n"),
              Lines{"1: file:2: braces that do not match, or a variable of itself: kind {a"});
    EXPECT_EQ(failures_of("let a = {a}\ncase One\n    kind {a}\n"),
              Lines{"2: file:3: braces that do not match, or a variable of itself: kind {a}"});
    EXPECT_EQ(failures_of("case One\n    kind x\n"), Lines{"1: file:2: 'x' is no number"});
    EXPECT_EQ(failures_of("case One\n    kind \"1\n"), Lines{"1: file:2: a quote that is not closed"});
    EXPECT_EQ(
        failures_of("table a\n    a\n    1\ntable b\n    b\n    x\n    y\ncase One\n    rows a b\n    kind {b}\n"),
        (Lines{"6: row of line 6: a=1 b=x\nfile:10: 'x' is no number",
               "7: row of line 7: a=1 b=y\nfile:10: 'y' is no number"}));
    EXPECT_EQ(failures_of("table a\n    a\n    1\ncase One\n    rows a none\n    kind 1\n"),
              Lines{"file:5: no rows: rows a none"});
    EXPECT_EQ(failures_of("case One\n    rows none\n    kind 1\n"), Lines{"file:2: no rows: rows none"});
    EXPECT_EQ(failures_of("case One\n    for a in 1\n    for a in 2\n    kind 1\n"),
              Lines{"file:3: a second column a"});
    EXPECT_EQ(failures_of("table t\n    a b\n    1\n"), Lines{"file:3: 1 cells below 2 columns"});
    EXPECT_EQ(failures_of("table t\n    a b\n    each 1 2: 3 4\n"), Lines{"file:3: 3 cells below 2 columns"});
    EXPECT_EQ(failures_of("case One\n    rows\n        a b\n        each 1 x: 2\n    kind {a}\n"),
              (Lines{"4: row of line 4: a=1 b=2\nfile:5: a case without a call",
                     "4: row of line 4: a=x b=2\nfile:5: 'x' is no number"}));
    EXPECT_EQ(failures_of("table t\n    a b\n"), Lines{"file:1: a table without rows"});
    EXPECT_EQ(failures_of("case One\n\tkind 1\n"), Lines{"file:2: a tab"});
    EXPECT_EQ(failures_of("case One\n    kind 1\n  kind 2\n"), Lines{"file:3: indented as no line above it"});
    EXPECT_EQ(failures_of("  case One\n"), Lines{"file:1: indented below nothing"});
    EXPECT_EQ(failures_of("case One\n    call no_such_function(null, null) -> 0\n"),
              Lines{"1: file:2: the plug-in does not export no_such_function"});
    EXPECT_EQ(failures_of("case One\n    call lvla_aps -> 0\n"), Lines{"1: file:2: no tree source"});
    EXPECT_EQ(failures_of("names t 3 no-such-list .* name\n"), Lines{"no-such-list: cannot be read, or is empty"});
}

TEST(Runner, RefusesAFileThatIsNotThere) {
    EXPECT_THROW(cases::File(std::filesystem::path("/no/such/file.cases")), std::runtime_error);
}

// Every file beside the cases is run, or included by one that is.
TEST(Runner, AllFilesAreRead) {
    std::istringstream list(CASE_FILES);
    const std::set<std::string> run{std::istream_iterator<std::string>(list), {}};
    std::string included;
    for (const std::string &name : run) {
        std::ifstream stream(std::filesystem::path(CASE_DIRECTORY) / name);
        for (std::string line; std::getline(stream, line);) {
            included += line + "\n";
        }
    }
    std::size_t seen = 0;
    for (const auto &entry : std::filesystem::directory_iterator(CASE_DIRECTORY)) {
        const std::string name = entry.path().filename();
        seen += run.count(name);
        EXPECT_TRUE(run.contains(name) || name == "README.md" ||
                    included.find("include " + name + "\n") != std::string::npos)
            << name << " is read by no test";
    }
    EXPECT_EQ(seen, run.size());
    EXPECT_GE(seen, 1u);
}

} // namespace

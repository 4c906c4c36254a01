#include <gtest/gtest.h>

#include "cases/case_file.hpp"
#include "cases/runner.hpp"

namespace {

using case_runner::Case;
using case_runner::difference;
using case_runner::parse_cases;
using case_runner::Section;
using case_runner::unescaped;

std::string shown(const std::vector<Case> &cases) {
    std::string out;
    for (const Case &test : cases) {
        out += "case " + std::to_string(test.line) + " " + test.name + "\n";
        for (const auto *sections : {&test.input, &test.expected}) {
            for (const Section &section : *sections) {
                out += (sections == &test.input ? "in " : "out ") + std::to_string(section.line) + " " + section.name +
                       "\n" + section.text();
            }
        }
    }
    return out;
}

std::string refusal(const std::string &text) {
    try {
        parse_cases("f", text);
    } catch (const case_runner::BadCase &bad) {
        return bad.what();
    }
    return "none";
}

TEST(CaseFile, HoldsCasesWithTheirSections) {
    EXPECT_EQ(shown(parse_cases("f", R"(# about

@define pair
one $1

# about the template
\# no comment
two $2$1 $0 $
@define more
@pair a $1
\@end
@define rest
$2|$*|
\==> no section
==> $1: @pair $*
=== first  case
# no comment
@more b
\=== text

\

==> text
 x

=== second
--- in
\\y
==> one
==> two: @pair c d
==> three: x: y
z
=== third
@rest  rest  rest e
==> f
)")),
              "case 16 first  case\nin 16 \n# no comment\none a\n# no comment\ntwo ba $0 $\n@end\n=== text\n"
              "out 23 text\n x\ncase 26 second\nin 26 \nin 27 in\n\\y\nout 29 one\nout 30 two\n"
              "one c\n# no comment\ntwo dc $0 $\nout 31 three\nx: y\nz\n"
              "case 33 third\nin 33 \nrest|rest  rest e|\n==> no section\nout 34 rest\n"
              "one rest\n# no comment\ntwo restrest $0 $\nout 35 f\n");
}

TEST(CaseFile, IsRefusedWhenItIsMalformed) {
    const std::string fine = "=== a\n==> b\n";
    const struct {
        std::string text;
        const char *refusal;
    } rows[] = {
        {fine, "none"},
        {"", "f:0: no case"},
        {"# only a comment\n", "f:1: no case"},
        {"=== a\n==> b", "f:2: the last line does not end"},
        {"stray\n" + fine, "f:1: a text before the first case that is no comment"},
        {"===\n", "f:1: '===' needs a name after a blank"},
        {"===a\n", "f:1: '===' needs a name after a blank"},
        {"====\n", "f:1: '===' needs a name after a blank"},
        {"=== a\n---\n", "f:2: '---' needs a name after a blank"},
        {"=== a\n==>  \n", "f:2: '==>' needs a name after a blank"},
        {"==> b\n", "f:1: a section stands in a case"},
        {"=== a\n", "f:1: the case expects nothing: it has no '==>'"},
        {"=== a\n=== b\n==> c\n", "f:1: the case expects nothing: it has no '==>'"},
        {fine + fine, "f:3: a second case 'a'"},
        {fine + "--- b\n", "f:3: a second section 'b'"},
        {fine + "@define c\n", "f:3: a template stands before the first case"},
        {"@define c\n@define c\n", "f:2: a second template 'c'"},
        {"@define c\n@c\n$1\n" + fine, "none"},
        {"@define c\n$2\n=== a\n@c x\n==> b\n", "f:4: '@c x' gives no $2"},
        {"=== a\n@d x\n==> b\n", "f:2: no template for '@d x'"},
        {"=== a\n@\n==> b\n", "f:2: no template for '@'"},
        {"=== a\nx\r\n==> b\n", "f:2: a carriage return or a byte 0"},
        {std::string("=== a\nx\0\n==> b\n", 15), "f:2: a carriage return or a byte 0"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(refusal(row.text), row.refusal) << row.text;
    }
}

TEST(CaseFile, ThatIsNotThereIsRefused) {
    EXPECT_THROW(case_runner::read_cases("/nowhere/x.cases"), case_runner::BadCase);
}

TEST(CaseFile, WritesBytesAsEscapes) {
    EXPECT_EQ(unescaped(R"(a\\b\n\x00\xfFz)"), std::string("a\\b\n\0\xffz", 7));
    for (const char *text : {"\\", "\\q", "\\x", "\\x1", "\\xg0", "\\x0g"}) {
        EXPECT_THROW(unescaped(text), std::invalid_argument) << text;
    }
}

TEST(CaseRunner, ShowsTheLinesThatDiffer) {
    EXPECT_EQ(difference("a\nb\n", "a\nb\n"), "");
    EXPECT_EQ(difference("1\n2\n3\n4\nx\n5\n6\n7\n", "1\n2\n3\n4\ny\nz\n5\n6\n7\n"),
              "@@ line 5\n  3\n  4\n- x\n+ y\n+ z\n  5\n  6\n");
    EXPECT_EQ(difference("", "a\n"), "@@ line 1\n+ a\n");
    EXPECT_EQ(difference("a\na\n", "a\n"), "@@ line 2\n  a\n- a\n");
    EXPECT_EQ(difference("a\n", "a"), "@@ line 1\n- a\n+ a (no line end)\n");
    EXPECT_NE(difference("a (no line end)\n", "a"), "");
}

} // namespace

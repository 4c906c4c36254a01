// Test cases that are text: see README.md beside this file for the format.
#ifndef TESTS_CASES_CASE_FILE_HPP
#define TESTS_CASES_CASE_FILE_HPP

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace case_runner {

// A file, or a text in it, that is no case. The message begins with "file:line: ".
struct BadCase : std::runtime_error {
    BadCase(const std::string &file, int line, const std::string &what)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + what) {}
};

// One line of a section: where it stands, for messages, and what it says after templates are filled in.
struct Line {
    int number = 0;
    std::string text; // without the line end
};

struct Section {
    std::string name; // empty: what stands right below the name of the case
    int line = 0;
    std::vector<Line> lines;

    // All lines, each with a line end; blank lines at the end are not part of it.
    std::string text() const;
};

struct Case {
    std::string file;
    int line = 0;
    std::string name;
    std::vector<Section> input; // the unnamed section first
    std::vector<Section> expected;

    // The input or expected section of this name; null when there is none.
    const Section *find_input(std::string_view section) const { return find(input, section); }
    const Section *find_expected(std::string_view section) const { return find(expected, section); }

private:
    static const Section *find(const std::vector<Section> &sections, std::string_view name);
};

// The cases of a text, at least one; `file` is what messages call it. Throws BadCase.
std::vector<Case> parse_cases(const std::string &file, std::string_view text);

// The cases of a file. Throws BadCase, also for a file that cannot be read.
std::vector<Case> read_cases(const std::string &file);

// A text with \n, \\ and \xNN in place of a line end, a backslash and any byte, as a case writes bytes that a line
// cannot hold. Throws std::invalid_argument for any other use of a backslash.
std::string unescaped(std::string_view text);

} // namespace case_runner

#endif

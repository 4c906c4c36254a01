// The text of case files: blocks by indentation, words, variables, macros and tables. What the lines mean is the
// scene's matter (scene.hpp); the dialect is described in tests/plugin/cases/README.md.
#ifndef TESTS_SUPPORT_CASES_TEXT_HPP
#define TESTS_SUPPORT_CASES_TEXT_HPP

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cases {

// A line of a case file with the block that is indented below it.
struct Line {
    std::string text; // without indentation
    std::shared_ptr<const std::string> file;
    int number = 0;
    std::vector<Line> block;
};
using Block = std::vector<Line>;

// A case file that cannot be understood; names the place.
class Malformed : public std::runtime_error {
public:
    Malformed(const Line &at, const std::string &what);
};

// The lines of a text, nested. Empty lines and comments are left out.
[[nodiscard]] Block parsed(const std::string &text, const std::string &file_name);

// Words of a line: separated by blanks; one that begins with a quote goes on to the closing quote, quotes included.
[[nodiscard]] std::vector<std::string> words(const Line &at, std::string_view text);

// The text that a word stands for: what stands between quotes, with its escapes \n \t \v \f \r \" \\ and \xHH replaced;
// nothing for the word null; else the word itself.
[[nodiscard]] std::optional<std::string> meant(const Line &at, const std::string &word);

// A decimal or hexadecimal number, maybe negative.
[[nodiscard]] long long number(const Line &at, const std::string &word);

struct Macro {
    std::vector<std::string> parameters;
    Block block;
};

struct Table {
    std::vector<std::string> columns;
    std::vector<std::vector<std::string>> rows;
    std::vector<int> lines; // of the rows
};

[[nodiscard]] Table table_of(const Line &head);

using Variables = std::map<std::string, std::string>;

// One run of a case: its title, the values of its row, and where a failure belongs.
struct Run {
    Variables variables;
    std::string row; // "kind=10 value=abc", empty without rows
    int line = 0;    // of the row, or of the case
};

struct Case {
    std::string title;
    std::string file;
    int line = 0;
    Block steps;
    std::vector<Run> runs;
};

// A whole case file with what it includes.
class File {
public:
    explicit File(const std::filesystem::path &path);
    // The same from a text, for tests of the runner. It includes nothing.
    File(const std::string &text, const std::string &name);

    [[nodiscard]] const std::vector<Case> &cases() const { return cases_; }
    [[nodiscard]] const Block &setup() const { return setup_; }

    // The lines of a block and of all below it, with macros and conditions resolved and variables replaced. Lines that
    // become empty are left out.
    [[nodiscard]] Block expanded(const Block &block, const Variables &variables) const;
    [[nodiscard]] std::string replaced(const Line &at, std::string_view text, const Variables &variables) const;

private:
    void read(const Block &lines, const std::filesystem::path &directory);
    void add_names(const Line &line, const std::filesystem::path &directory, const std::vector<std::string> &all);
    void include(const Line &line, const std::filesystem::path &directory);
    [[nodiscard]] std::vector<Run> runs_of(const Case &whole, const Block &heads) const;
    // `inserted` is what a macro's call has below it, which stands in the place of "*block"; null outside of macros.
    void expand(const Line &line, const Variables &variables, int depth, Block &out, const Block *inserted) const;
    void repeat(const Line &line, const std::string &text, const Variables &variables, int depth, Block &out,
                const Block *inserted) const;
    void call_macro(const Line &line, const std::string &text, const Variables &variables, int depth, Block &out,
                    const Block *inserted) const;

    Variables constants_;
    std::map<std::string, Macro> macros_;
    std::map<std::string, Table> tables_;
    Block setup_;
    std::vector<Case> cases_;
};

} // namespace cases

#endif

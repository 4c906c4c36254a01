#include "text.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

namespace cases {
namespace {

constexpr int deepest = 40; // of macros in macros and of variables in variables

std::string place(const Line &at) {
    return (at.file ? *at.file : std::string("?")) + ":" + std::to_string(at.number);
}

std::string trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? ""
                                           : std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

bool is_name(std::string_view text) {
    return !text.empty() && text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_-") == std::string_view::npos;
}

// The rest of a line that begins with this word; nothing for another line.
std::optional<std::string> after(const std::string &line, std::string_view word) {
    if (line.compare(0, word.size(), word) != 0 || (line.size() > word.size() && line[word.size()] != ' ')) {
        return std::nullopt;
    }
    return trimmed(std::string_view(line).substr(word.size()));
}

std::string read_whole(const std::filesystem::path &path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    if (!stream) {
        throw std::runtime_error(path.string() + ": cannot be read, or is empty");
    }
    return text.str();
}

// What a word prints as in a message: %s of its text.
std::string printed(const std::string &word) {
    if (word == "null") {
        return "(null)";
    }
    return word.size() >= 2 && word.front() == '"' ? word.substr(1, word.size() - 2) : word;
}

std::string repeated(const Line &at, std::string_view count, std::string_view text) {
    std::string all;
    for (long long left = number(at, std::string(count)); left > 0; --left) {
        all += text;
    }
    return all;
}

// Whether the lines of a macro have a place for what stands below its call.
bool takes_block(const Block &lines) {
    return std::any_of(lines.begin(), lines.end(),
                       [](const Line &line) { return line.text == "*block" || takes_block(line.block); });
}

// The rows that a line of a table stands for: itself, or with "each VALUE...: CELLS" the cells behind each of the
// values.
std::vector<std::string> row_texts(const Line &line) {
    const std::size_t colon = line.text.find(": ");
    if (!after(line.text, "each") || colon == std::string::npos) {
        return {line.text};
    }
    std::vector<std::string> texts = words(line, std::string_view(line.text).substr(0, colon));
    texts.erase(texts.begin());
    for (std::string &text : texts) {
        text += line.text.substr(colon + 1);
    }
    return texts;
}

// Every run with every row of a table.
std::vector<Run> combined(const Line &head, const std::vector<Run> &runs, const Table &table) {
    std::vector<Run> more;
    for (const Run &run : runs) {
        for (std::size_t row = 0; row < table.rows.size(); ++row) {
            Run next = run;
            next.line = table.lines[row] == 0 ? run.line : table.lines[row];
            for (std::size_t column = 0; column < table.columns.size(); ++column) {
                if (!next.variables.emplace(table.columns[column], table.rows[row][column]).second) {
                    throw Malformed(head, "a second column " + table.columns[column]);
                }
                next.row += (next.row.empty() ? "" : " ") + table.columns[column] + "=" + table.rows[row][column];
            }
            more.push_back(std::move(next));
        }
    }
    return more;
}

} // namespace

Malformed::Malformed(const Line &at, const std::string &what) : std::runtime_error(place(at) + ": " + what) {}

Block parsed(const std::string &text, const std::string &file_name) {
    const auto file = std::make_shared<const std::string>(file_name);
    Block top;
    std::vector<std::pair<std::size_t, Block *>> open{{0, &top}}; // indentation and lines of each open block
    std::istringstream stream(text);
    std::string raw;
    for (int number = 1; std::getline(stream, raw); ++number) {
        const std::size_t indent = raw.find_first_not_of(' ');
        if (indent == std::string::npos || raw[indent] == '#') {
            continue;
        }
        Line line{trimmed(raw), file, number, {}};
        if (raw.find('\t') != std::string::npos) {
            throw Malformed(line, "a tab");
        }
        if (indent > open.back().first) {
            if (open.back().second->empty()) {
                throw Malformed(line, "indented below nothing");
            }
            open.emplace_back(indent, &open.back().second->back().block);
        }
        while (indent < open.back().first) {
            open.pop_back();
        }
        if (indent != open.back().first) {
            throw Malformed(line, "indented as no line above it");
        }
        open.back().second->push_back(std::move(line));
    }
    return top;
}

std::vector<std::string> words(const Line &at, std::string_view text) {
    std::vector<std::string> all;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        std::size_t end = i;
        if (text[i] == '"') {
            for (++end; end < text.size() && text[end] != '"'; ++end) {
                if (text[end] == '\\') {
                    ++end;
                }
            }
            if (end >= text.size()) {
                throw Malformed(at, "a quote that is not closed");
            }
            ++end;
        } else {
            // A repetition may hold a blank: {5000* }.
            for (bool braced = false; end < text.size() && (braced || text[end] != ' '); ++end) {
                braced = text[end] == '{' || (braced && text[end] != '}');
            }
        }
        all.emplace_back(text.substr(i, end - i));
        i = end;
    }
    return all;
}

std::optional<std::string> meant(const Line &at, const std::string &word) {
    if (word == "null") {
        return std::nullopt;
    }
    if (word.empty() || word.front() != '"') {
        return word;
    }
    static const std::map<char, char> escapes{{'n', '\n'}, {'t', '\t'}, {'v', '\v'}, {'f', '\f'},
                                              {'r', '\r'}, {'"', '"'},  {'\\', '\\'}};
    std::string text;
    for (std::size_t i = 1; i + 1 < word.size(); ++i) {
        if (word[i] != '\\') {
            text += word[i];
        } else if (word[++i] == 'x') {
            text += static_cast<char>(number(at, "0x" + word.substr(i + 1, 2)));
            i += 2;
        } else if (const auto found = escapes.find(word[i]); found != escapes.end()) {
            text += found->second;
        } else {
            throw Malformed(at, "an unknown escape in " + word);
        }
    }
    return text;
}

long long number(const Line &at, const std::string &word) {
    std::size_t used = 0;
    long long value = 0;
    try {
        value = std::stoll(word, &used, 0);
    } catch (const std::exception &) {
        used = 0;
    }
    if (used == 0 || used != word.size()) {
        throw Malformed(at, "'" + word + "' is no number");
    }
    return value;
}

Table table_of(const Line &head) {
    if (head.block.size() < 2) {
        throw Malformed(head, "a table without rows");
    }
    Table table;
    table.columns = words(head, head.block.front().text);
    for (auto line = head.block.begin() + 1; line != head.block.end(); ++line) {
        for (const std::string &text : row_texts(*line)) {
            std::vector<std::string> cells = words(*line, text);
            if (cells.size() != table.columns.size() || !line->block.empty()) {
                throw Malformed(*line, std::to_string(cells.size()) + " cells below " +
                                           std::to_string(table.columns.size()) + " columns");
            }
            table.rows.push_back(std::move(cells));
            table.lines.push_back(line->number);
        }
    }
    return table;
}

File::File(const std::filesystem::path &path) {
    read(parsed(read_whole(path), path.string()), path.parent_path());
    if (cases_.empty()) {
        throw std::runtime_error(path.string() + ": holds no case");
    }
}

File::File(const std::string &text, const std::string &name) {
    read(parsed(text, name), "");
    if (cases_.empty()) {
        throw std::runtime_error(name + ": holds no case");
    }
}

// names TABLE COUNT FILE PATTERN COLUMN... [with COLUMN = VALUE]...: the lines of a list that match, with what the
// pattern's groups match. They are appended to the table.
void File::add_names(const Line &line, const std::filesystem::path &directory, const std::vector<std::string> &all) {
    Table &table = tables_[all[1]];
    const auto with = std::find(all.begin() + 5, all.end(), "with");
    const std::vector<std::string> matched(all.begin() + 5, with);
    std::vector<std::string> columns = matched;
    std::vector<std::string> constants;
    for (auto word = with; word != all.end(); word += 4) {
        if (*word != "with" || all.end() - word < 4 || *(word + 2) != "=") {
            throw Malformed(line, "with COLUMN = VALUE");
        }
        columns.push_back(*(word + 1));
        constants.push_back(*(word + 3));
    }
    if (!table.columns.empty() && table.columns != columns) {
        throw Malformed(line, "other columns than those of the names above");
    }
    table.columns = columns;
    const std::regex pattern(all[4]);
    std::istringstream stream(read_whole(directory / all[3]));
    long long count = 0;
    for (std::string name; std::getline(stream, name);) {
        std::smatch match;
        if (!std::regex_match(name, match, pattern)) {
            continue;
        }
        if (match.size() != matched.size()) {
            throw Malformed(line, "a column for the whole name, and one for each group");
        }
        ++count;
        std::vector<std::string> row(match.begin(), match.end());
        row.insert(row.end(), constants.begin(), constants.end());
        table.rows.push_back(std::move(row));
        table.lines.push_back(line.number);
    }
    if (count != number(line, all[2])) {
        throw Malformed(line, std::to_string(count) + " names match");
    }
}

void File::include(const Line &line, const std::filesystem::path &directory) {
    const std::filesystem::path path = directory / *after(line.text, "include");
    read(parsed(read_whole(path), path.string()), directory);
}

void File::read(const Block &lines, const std::filesystem::path &directory) {
    for (const Line &line : lines) {
        const std::vector<std::string> all = words(line, line.text);
        const std::string &keyword = all.front();
        if (keyword == "include" && all.size() == 2) {
            include(line, directory);
        } else if (keyword == "let" && all.size() >= 4 && all[2] == "=" && is_name(all[1])) {
            constants_[all[1]] = trimmed(std::string_view(line.text).substr(line.text.find('=') + 1));
        } else if (keyword == "define" && all.size() >= 2 && is_name(all[1])) {
            if (!macros_.emplace(all[1], Macro{{all.begin() + 2, all.end()}, line.block}).second) {
                throw Malformed(line, all[1] + " is defined twice");
            }
        } else if (keyword == "table" && all.size() == 2) {
            tables_[all[1]] = table_of(line);
        } else if (keyword == "names" && all.size() >= 6) {
            add_names(line, directory, all);
        } else if (keyword == "setup" && all.size() == 1) {
            setup_.insert(setup_.end(), line.block.begin(), line.block.end());
        } else if (keyword == "case" && all.size() >= 2) {
            Case one{*after(line.text, "case"), *line.file, line.number, {}, {}};
            const auto first_step = std::find_if(line.block.begin(), line.block.end(), [](const Line &step) {
                return !after(step.text, "for") && !after(step.text, "rows");
            });
            one.steps.assign(first_step, line.block.end());
            one.runs = runs_of(one, Block(line.block.begin(), first_step));
            const bool known =
                std::any_of(cases_.begin(), cases_.end(), [&](const Case &other) { return other.title == one.title; });
            if (known || one.steps.empty()) {
                throw Malformed(line, known ? "a second case of this title" : "a case without steps");
            }
            cases_.push_back(std::move(one));
        } else {
            throw Malformed(line, "not understood: " + line.text);
        }
    }
}

std::vector<Run> File::runs_of(const Case &whole, const Block &heads) const {
    std::vector<Run> runs{{{}, "", whole.line}};
    for (const Line &head : heads) {
        const std::vector<std::string> all = words(head, head.text);
        if (all[0] == "for" && all.size() >= 4 && all[2] == "in") {
            Table table{{all[1]}, {}, std::vector<int>(all.size() - 3, 0)};
            std::transform(all.begin() + 3, all.end(), std::back_inserter(table.rows),
                           [](const std::string &cell) { return std::vector<std::string>{cell}; });
            runs = combined(head, runs, table);
        } else if (all[0] == "rows" && all.size() == 1) {
            runs = combined(head, runs, table_of(head));
        } else {
            for (auto name = all.begin() + 1; name != all.end(); ++name) {
                if (all[0] != "rows" || !tables_.contains(*name)) {
                    throw Malformed(head, "no rows: " + head.text);
                }
                runs = combined(head, runs, tables_.at(*name));
            }
        }
    }
    return runs;
}

std::string File::replaced(const Line &at, std::string_view text, const Variables &variables) const {
    std::string all(text);
    for (int count = 0;; ++count) {
        // The innermost first: {file-{model}}.
        const std::size_t close = all.find('}');
        if (close == std::string::npos && all.find('{') == std::string::npos) {
            return all;
        }
        const std::size_t open = close == std::string::npos ? close : all.rfind('{', close);
        if (open == std::string::npos || count == 1000) {
            throw Malformed(at, "braces that do not match, or a variable of itself: " + std::string(text));
        }
        const std::string inside = all.substr(open + 1, close - open - 1);
        if (const std::size_t star = inside.find('*'); star != std::string::npos) {
            all.replace(open, close - open + 1, repeated(at, inside.substr(0, star), inside.substr(star + 1)));
            continue;
        }
        const std::size_t dot = inside.find('.');
        const std::string name = inside.substr(0, dot);
        const std::string form = dot == std::string::npos ? "" : inside.substr(dot);
        const auto row = variables.find(name);
        const auto constant = constants_.find(name);
        if ((row == variables.end() && constant == constants_.end()) || (!form.empty() && form != ".text")) {
            throw Malformed(at, "no variable {" + inside + "}");
        }
        std::string value = row != variables.end() ? row->second : constant->second;
        if (form == ".text") {
            value = printed(value);
        }
        all.replace(open, close - open + 1, value == "-" ? "" : value);
    }
}

Block File::expanded(const Block &block, const Variables &variables) const {
    Block all;
    for (const Line &line : block) {
        expand(line, variables, 0, all, nullptr);
    }
    return all;
}

void File::expand(const Line &line, const Variables &variables, int depth, Block &out, const Block *inserted) const {
    if (depth == deepest) {
        throw Malformed(line, "a macro of itself");
    }
    std::string text = line.text;
    // if VALUE = ONE OF THESE: LINE, or unless; as many as there are.
    for (;;) {
        const bool wanted = after(text, "if").has_value();
        if (!wanted && !after(text, "unless")) {
            break;
        }
        const std::size_t colon = text.find(": ");
        if (colon == std::string::npos) {
            throw Malformed(line, "a condition without a colon");
        }
        const std::string condition = replaced(line, std::string_view(text).substr(0, colon), variables);
        const std::vector<std::string> all = words(line, condition);
        if (all.size() < 4 || all[2] != "=") {
            throw Malformed(line, "no condition: " + condition);
        }
        if ((std::find(all.begin() + 3, all.end(), all[1]) != all.end()) != wanted) {
            return;
        }
        text = trimmed(std::string_view(text).substr(colon + 2));
    }
    if (after(text, "each")) {
        repeat(line, text, variables, depth, out, inserted);
        return;
    }
    if (text == "*block" && inserted != nullptr) {
        out.insert(out.end(), inserted->begin(), inserted->end());
        return;
    }
    if (text.front() == '*') {
        call_macro(line, text, variables, depth, out, inserted);
        return;
    }
    const std::string done = replaced(line, text, variables); // blanks at its end may be a variable's
    if (trimmed(done).empty()) {
        return;
    }
    Line one{done, line.file, line.number, {}};
    for (const Line &below : line.block) {
        expand(below, variables, depth + 1, one.block, inserted);
    }
    out.push_back(std::move(one));
}

// each NAME... in VALUE...: LINE, once for every value, or for as many of them as there are names.
void File::repeat(const Line &line, const std::string &text, const Variables &variables, int depth, Block &out,
                  const Block *inserted) const {
    const std::size_t colon = text.find(": ");
    const std::vector<std::string> all = words(line, replaced(line, text.substr(0, colon), variables));
    const auto in = std::find(all.begin(), all.end(), "in");
    const auto names = in - all.begin() - 1;
    if (colon == std::string::npos || names < 1 || all.end() - in < 2 || (all.end() - in - 1) % names != 0) {
        throw Malformed(line, "expected: each NAME... in VALUE...: LINE");
    }
    Line one = line;
    one.text = trimmed(std::string_view(text).substr(colon + 2));
    for (auto value = in + 1; value != all.end();) {
        Variables inner = variables;
        for (auto name = all.begin() + 1; name != in; ++name) {
            inner[*name] = *value++;
        }
        expand(one, inner, depth + 1, out, inserted);
    }
}

void File::call_macro(const Line &line, const std::string &text, const Variables &variables, int depth, Block &out,
                      const Block *inserted) const {
    // The arguments are told apart before their variables are replaced: a value may hold blanks.
    std::vector<std::string> all = words(line, std::string_view(text).substr(1));
    if (all.empty() || text[1] == ' ') {
        return; // the name was a variable without a value
    }
    for (std::string &word : all) {
        word = replaced(line, word, variables);
    }
    const auto found = macros_.find(all.front());
    if (all.front().empty()) {
        return;
    }
    if (found == macros_.end() || all.size() != found->second.parameters.size() + 1) {
        throw Malformed(line, "no macro " + all.front() + " of " + std::to_string(all.size() - 1) + " arguments");
    }
    if (!line.block.empty() && !takes_block(found->second.block)) {
        throw Malformed(line, all.front() + " takes no block");
    }
    Variables inner = variables;
    for (std::size_t i = 0; i < found->second.parameters.size(); ++i) {
        inner[found->second.parameters[i]] = all[i + 1];
    }
    Block own; // what stands below the call, in the caller's words
    for (const Line &below : line.block) {
        expand(below, variables, depth + 1, own, inserted);
    }
    Block lines;
    for (const Line &one : found->second.block) {
        expand(one, inner, depth + 1, lines, &own);
    }
    for (Line &one : lines) {
        one.number = line.number; // a failure belongs where the macro is used
        one.file = line.file;
        out.push_back(std::move(one));
    }
}

} // namespace cases

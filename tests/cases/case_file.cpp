#include "cases/case_file.hpp"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <map>
#include <sstream>
#include <utility>

namespace case_runner {
namespace {

constexpr std::string_view case_mark = "===";
constexpr std::string_view input_mark = "---";
constexpr std::string_view expected_mark = "==>";
constexpr std::string_view template_mark = "@define";

using Template = std::vector<std::string>;

std::vector<std::string> words_of(std::string_view text) {
    std::vector<std::string> words;
    std::istringstream in{std::string(text)};
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

class Parser {
public:
    Parser(std::string file, std::string_view text) : file_(std::move(file)), rest_(text) {}

    std::vector<Case> parse();

private:
    void line(const std::string &text);
    void begin_template(std::string_view title);
    void begin_case(std::string_view title);
    void begin_section(std::vector<Section> Case::*list, std::string_view title);
    bool section(std::string_view text);
    void body(std::string_view text);
    void add(std::string_view text);
    std::vector<std::string> filled(std::string_view use) const;
    void check_case() const;
    [[noreturn]] void refuse(const std::string &what) const { throw BadCase(file_, number_, what); }

    // The title behind a mark; a mark is a word of its own.
    std::string_view title(std::string_view text, std::string_view mark) const;

    std::string file_;
    std::string_view rest_;
    int number_ = 0;
    std::map<std::string, Template, std::less<>> templates_;
    Template *defining_ = nullptr;
    std::vector<Case> cases_;
    Section *section_ = nullptr;
};

std::string_view Parser::title(std::string_view text, std::string_view mark) const {
    text.remove_prefix(mark.size());
    const std::size_t start = text.find_first_not_of(' ');
    if (start == 0 || start == std::string_view::npos) {
        refuse("'" + std::string(mark) + "' needs a name after a blank");
    }
    return text.substr(start);
}

void Parser::begin_template(std::string_view title) {
    if (!cases_.empty()) {
        refuse("a template stands before the first case");
    }
    const auto [place, added] = templates_.try_emplace(std::string(title));
    if (!added) {
        refuse("a second template '" + std::string(title) + "'");
    }
    defining_ = &place->second;
}

void Parser::begin_case(std::string_view title) {
    check_case();
    const bool known =
        std::any_of(cases_.begin(), cases_.end(), [&](const Case &other) { return other.name == title; });
    if (known) {
        refuse("a second case '" + std::string(title) + "'");
    }
    defining_ = nullptr;
    cases_.push_back({file_, number_, std::string(title), {{"", number_, {}}}, {}});
    section_ = &cases_.back().input.front();
}

// "NAME", or "NAME: LINE" for a section whose first line stands beside its name.
void Parser::begin_section(std::vector<Section> Case::*list, std::string_view title) {
    const std::size_t end = std::min(title.find(": "), title.size());
    const std::string_view line = title.substr(std::min(end + 2, title.size()));
    title = title.substr(0, end);
    if (cases_.empty()) {
        refuse("a section stands in a case");
    }
    for (const auto *sections : {&cases_.back().input, &cases_.back().expected}) {
        for (const Section &section : *sections) {
            if (section.name == title) {
                refuse("a second section '" + std::string(title) + "'");
            }
        }
    }
    section_ = &(cases_.back().*list).emplace_back(Section{std::string(title), number_, {}});
    if (!line.empty()) {
        body(line);
    }
}

// The lines of a template with the words of its use in place of $1, $2, ..., and all of them in place of $*.
std::vector<std::string> Parser::filled(std::string_view use) const {
    const std::vector<std::string> words = words_of(use.substr(1));
    const auto found = words.empty() ? templates_.end() : templates_.find(words.front());
    if (found == templates_.end()) {
        refuse("no template for '" + std::string(use) + "'");
    }
    const std::size_t behind_name = use.find(words.front()) + words.front().size();
    const std::string_view all = words.size() == 1 ? "" : use.substr(use.find(words[1], behind_name));
    std::vector<std::string> lines;
    for (const std::string &line : found->second) {
        std::string out;
        for (std::size_t at = 0; at < line.size(); ++at) {
            const char next = line[at] == '$' && at + 1 < line.size() ? line[at + 1] : '\0';
            const auto index = static_cast<std::size_t>(next - '0');
            if (next == '*') {
                out += all;
            } else if (next < '1' || next > '9') {
                out += line[at];
                continue;
            } else if (index < words.size()) {
                out += words[index];
            } else {
                refuse("'" + std::string(use) + "' gives no $" + next);
            }
            ++at;
        }
        lines.push_back(std::move(out));
    }
    return lines;
}

bool Parser::section(std::string_view text) {
    const bool input = text.starts_with(input_mark);
    if (input || text.starts_with(expected_mark)) {
        begin_section(input ? &Case::input : &Case::expected, title(text, input ? input_mark : expected_mark));
    }
    return input || text.starts_with(expected_mark);
}

void Parser::body(std::string_view text) {
    if (text.starts_with('@')) {
        for (const std::string &line : filled(text)) {
            if (!section(line)) {
                add(line);
            }
        }
    } else {
        add(text);
    }
}

void Parser::add(std::string_view text) {
    text.remove_prefix(text.starts_with('\\') ? 1 : 0);
    section_->lines.push_back({number_, std::string(text)});
}

void Parser::line(const std::string &text) {
    if (text.find('\r') != std::string::npos || text.find('\0') != std::string::npos) {
        refuse("a carriage return or a byte 0");
    } else if (text.starts_with(template_mark)) {
        begin_template(title(text, template_mark));
    } else if (text.starts_with(case_mark)) {
        begin_case(title(text, case_mark));
    } else if (defining_ == nullptr && section(text)) {
        return;
    } else if (section_ != nullptr) {
        body(text);
    } else if (text.starts_with('#')) {
        return; // a comment
    } else if (defining_ != nullptr && text.starts_with('@')) {
        const std::vector<std::string> lines = filled(text);
        defining_->insert(defining_->end(), lines.begin(), lines.end());
    } else if (defining_ != nullptr && !text.empty()) {
        defining_->push_back(text);
    } else if (!text.empty()) {
        refuse("a text before the first case that is no comment");
    }
}

void Parser::check_case() const {
    if (!cases_.empty() && cases_.back().expected.empty()) {
        throw BadCase(file_, cases_.back().line,
                      "the case expects nothing: it has no '" + std::string(expected_mark) + "'");
    }
}

std::vector<Case> Parser::parse() {
    while (!rest_.empty()) {
        ++number_;
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) {
            refuse("the last line does not end");
        }
        line(std::string(rest_.substr(0, end)));
        rest_.remove_prefix(end + 1);
    }
    check_case();
    if (cases_.empty()) {
        refuse("no case");
    }
    return std::move(cases_);
}

} // namespace

std::string Section::text() const {
    const auto end = std::find_if(lines.rbegin(), lines.rend(), [](const Line &each) { return !each.text.empty(); });
    std::string out;
    for (auto each = lines.begin(); each != end.base(); ++each) {
        out.append(each->text).append("\n");
    }
    return out;
}

const Section *Case::find(const std::vector<Section> &sections, std::string_view name) {
    const auto found =
        std::find_if(sections.begin(), sections.end(), [&](const Section &each) { return each.name == name; });
    return found == sections.end() ? nullptr : &*found;
}

std::vector<Case> parse_cases(const std::string &file, std::string_view text) {
    return Parser(file, text).parse();
}

std::vector<Case> read_cases(const std::string &file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    if (!in || !text) {
        throw BadCase(file, 0, "cannot be read, or is empty");
    }
    return parse_cases(file, text.str());
}

std::string unescaped(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string_view rest = text.substr(at);
        unsigned byte = 0;
        if (rest.front() != '\\') {
            out += rest.front();
        } else if (rest.starts_with("\\\\") || rest.starts_with("\\n")) {
            out += rest[1] == 'n' ? '\n' : '\\';
            at += 1;
        } else if (rest.size() >= 4 && rest[1] == 'x' &&
                   std::from_chars(rest.data() + 2, rest.data() + 4, byte, 16).ptr == rest.data() + 4) {
            out += static_cast<char>(byte);
            at += 3;
        } else {
            throw std::invalid_argument("no escape: " + std::string(rest.substr(0, 4)));
        }
    }
    return out;
}

} // namespace case_runner

#include "cases/runner.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>
#include <memory>
#include <set>
#include <system_error>
#include <utility>

namespace case_runner {
namespace {

class OneCase : public testing::Test {
public:
    OneCase(const Case &test, const Answer &answer) : test_(test), answer_(answer) {}

    void TestBody() override {
        for (const Section &section : test_.expected) {
            for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 2) {
                end = section.name.find(", ", begin);
                compare(section, section.name.substr(begin, end - begin));
            }
        }
    }

private:
    void compare(const Section &section, const std::string &wanted) const {
        try {
            const std::string different = difference(section.text(), answer_(test_, wanted));
            if (!different.empty()) {
                ADD_FAILURE_AT(test_.file.c_str(), section.line) << wanted << " differs:\n" << different;
            }
        } catch (const std::exception &error) {
            ADD_FAILURE_AT(test_.file.c_str(), section.line) << wanted << ": " << error.what();
        }
    }

    Case test_;
    Answer answer_;
};

class Malformed : public testing::Test {
public:
    explicit Malformed(std::string what) : what_(std::move(what)) {}
    void TestBody() override { FAIL() << what_; }

private:
    std::string what_;
};

// "the later add's value" as TheLaterAddsValue.
std::string one_word(const std::string &name) {
    std::string word;
    bool first = true;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0) {
            word += static_cast<char>(first ? std::toupper(byte) : byte);
        }
        first = character != '\'' && std::isalnum(byte) == 0;
    }
    return word;
}

void register_malformed(const std::string &suite, const std::string &what) {
    testing::RegisterTest(suite.c_str(), "IsWellFormed", nullptr, nullptr, __FILE__, __LINE__,
                          [what]() -> testing::Test * { return std::make_unique<Malformed>(what).release(); });
}

void register_file(const std::filesystem::path &file, const Answer &answer) {
    const std::string suite = one_word(file.stem().string());
    try {
        std::set<std::string> words;
        for (const Case &test : read_cases(file.string())) {
            const std::string word = one_word(test.name);
            if (word.empty() || !words.insert(word).second) {
                throw BadCase(test.file, test.line, "the name of this case is that of another, or has no letter");
            }
            testing::RegisterTest(
                suite.c_str(), word.c_str(), nullptr, nullptr, test.file.c_str(), test.line,
                [test, answer]() -> testing::Test * { return std::make_unique<OneCase>(test, answer).release(); });
        }
    } catch (const BadCase &bad) {
        register_malformed(suite, bad.what());
    }
}

std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        const bool ends = end != std::string::npos;
        lines.push_back(text.substr(start, ends ? end - start : end) + (ends ? "" : " (no line end)"));
        start = ends ? end + 1 : text.size();
    }
    return lines;
}

} // namespace

bool register_cases(const std::string &directory, const Answer &answer) {
    std::error_code error;
    std::set<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(directory, error)) {
        if (entry.path().extension() == ".cases") {
            files.insert(entry.path());
        }
    }
    for (const std::filesystem::path &file : files) {
        register_file(file, answer);
    }
    if (files.empty()) {
        register_malformed("Cases", directory + " holds no case file");
    }
    return true;
}

// Equal lines at both ends are left out but for two on either side.
std::string difference(const std::string &expected, const std::string &actual) {
    if (expected == actual) {
        return {};
    }
    const std::vector<std::string> one = lines_of(expected);
    const std::vector<std::string> other = lines_of(actual);
    const std::size_t shorter = std::min(one.size(), other.size());
    std::size_t start = 0;
    while (start < shorter && one[start] == other[start]) {
        ++start;
    }
    std::size_t tail = 0;
    while (tail < shorter - start && one[one.size() - 1 - tail] == other[other.size() - 1 - tail]) {
        ++tail;
    }
    std::string out = "@@ line " + std::to_string(start + 1) + "\n";
    const auto add = [&out](const char *mark, const std::vector<std::string> &lines, std::size_t from, std::size_t to) {
        for (std::size_t line = from; line < std::min(to, lines.size()); ++line) {
            out.append(mark).append(lines[line]).append("\n");
        }
    };
    constexpr std::size_t around = 2;
    add("  ", one, start - std::min(start, around), start);
    add("- ", one, start, one.size() - tail);
    add("+ ", other, start, other.size() - tail);
    add("  ", one, one.size() - tail, one.size() - tail + around);
    return out;
}

} // namespace case_runner

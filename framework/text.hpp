// Texts from clients, devices and disks: which can be printed where, and how they are shown.
#ifndef OCPSM_FRAMEWORK_TEXT_HPP
#define OCPSM_FRAMEWORK_TEXT_HPP

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ocpsm {

inline constexpr std::size_t whole_text = std::string_view::npos;

// A text as part of a message that stays on its line and shows what it says: controls (C0, C1, delete), line and
// paragraph separators, marks that change the direction of writing, byte order marks, noncharacters and bytes that are
// no UTF-8 are written as \xNN, byte by byte. A text of more than about `longest` bytes is cut and ends in "...".
std::string one_line(std::string_view text, std::size_t longest = 80);

// The same in double quotes, which show the blanks around the text.
std::string quoted(std::string_view text, std::size_t longest = 60);

// The one of these that a mistyped text was most probably meant to be, by the number of bytes that differ, of the first
// 64; none where several are as near.
std::optional<std::string_view> nearest(std::string_view text, std::span<const std::string> known);

// A text as an XPath 1.0 literal: in single quotes, in double ones where it holds single ones, else as a concat().
std::string xpath_literal(std::string_view text);

// A predicate of an instance path, [key='value'].
std::string key_predicate(std::string_view key, std::string_view value);

// Appends a text as XML has it between tags.
void append_xml(std::string &out, std::string_view text);

// An element on a line, "<name>text</name>".
std::string xml_element(std::string_view name, std::string_view text);

// A text with U+FFFD for each byte or character that XML 1.0 cannot carry.
std::string xml_text(std::string_view text);

// Whether a text is UTF-8, and whether it also holds nothing but characters of XML 1.0.
bool is_utf8(std::string_view text);
bool is_xml_text(std::string_view text);

// Texts of one kind, of which the first are kept and the rest are counted.
class FirstTexts {
public:
    static constexpr std::size_t most = 16;

    // `make` gives the text, and is called only where the text is kept.
    template <class Make>
    void add(Make make) {
        if (++count_ <= most) {
            kept_.push_back(make());
        }
    }

    const std::vector<std::string> &kept() const { return kept_; }
    std::size_t count() const { return count_; }
    std::size_t more() const { return count_ - kept_.size(); }

    // "a, b and 3 more".
    std::string in_a_row() const;

private:
    std::vector<std::string> kept_;
    std::size_t count_ = 0;
};

// Texts of any origin in such a row, each as one_line has it.
std::string listed(std::span<const std::string> texts);

} // namespace ocpsm

#endif

// Records of the database as the lines of a case.
#ifndef TESTS_SUPPORT_CASES_RECORDS_HPP
#define TESTS_SUPPORT_CASES_RECORDS_HPP

#include "fake_platform.hpp"
#include "text.hpp"

namespace cases {

// Refuses a line that is not of this form.
void demand(bool good, const Line &line, const char *form);

[[nodiscard]] std::uint32_t code(const Line &line, const std::string &word);

// The text that a word stands for; null is none.
[[nodiscard]] std::string text_of(const Line &line, const std::string &word);

[[nodiscard]] std::vector<std::string> texts_below(const Line &line);

// "TYPE NAME VALUE", where a type is a name or a number, or "struct NAME", "end-struct", ...
[[nodiscard]] fake::Token token_of(const Line &line, std::string_view text);

// "bag [TYPE]", with tokens, as many to a line as one likes, and what fails below.
[[nodiscard]] fake::Bag bag_of(const Line &head);

// What stands below "item PATH".
[[nodiscard]] fake::Item item_of(const Line &head);

} // namespace cases

#endif

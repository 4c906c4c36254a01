// What a call told the platform, as the lines of a case.
//
//   platform calls    without the context, handles without numbers: add(dest, "/path", ns=ots-cfg, ...)
//   function: text    a trace, the same on log and trace channel
//   ERR function: text
//   +function  -function  the traces Start and End
//   log TRC text, trace TRC function: text   what stands on one channel alone
//
// The prefixes of exported callbacks and walkers are left out of function names. Control characters are escaped.
#ifndef TESTS_SUPPORT_CASES_STORY_HPP
#define TESTS_SUPPORT_CASES_STORY_HPP

#include <string>
#include <vector>

#include "fake_platform.hpp"

namespace cases {

// What of a story a case looks at.
struct View {
    unsigned groups = fake::Everything & ~(fake::Filter | fake::Texts | fake::Releases);
    std::vector<std::string> hidden; // beginnings of lines
    std::vector<std::string> muted;  // functions whose traces are left out; their errors stay
    std::vector<std::string> heard;  // beginnings of the functions whose messages are looked at; empty: all
};

[[nodiscard]] std::string short_name(const std::string &function);

[[nodiscard]] std::vector<std::string> story_of(const fake::Platform &platform, const View &view);

} // namespace cases

#endif

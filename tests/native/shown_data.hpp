// Native data as text, to be compared whole.
#ifndef TESTS_NATIVE_SHOWN_DATA_HPP
#define TESTS_NATIVE_SHOWN_DATA_HPP

#include <string>

#include "framework/native/native_data.hpp"

namespace native_test {

// A line per node, two blanks deeper than the node around it: its name, and of a leaf "=" and its value between bars.
std::string shown(const ocpsm::native::NativeData &data);

} // namespace native_test

#endif

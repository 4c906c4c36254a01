#include "columns.hpp"

#include <algorithm>

namespace ocpsm {
namespace {

std::string blanks_beside(std::string_view text, std::size_t width) {
    return std::string(width - std::min(width, width_of(text)), ' ');
}

} // namespace

// What begins a character is counted.
std::size_t width_of(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) >> 6U) != 2; }));
}

std::string to_the_right(std::string_view text, std::size_t width) {
    return blanks_beside(text, width).append(text);
}

std::string to_the_left(std::string_view text, std::size_t width) {
    return std::string(text) + blanks_beside(text, width);
}

} // namespace ocpsm

// A call of an exported utility: what the words of a case stand for follows from the types of its parameters.
#ifndef TESTS_SUPPORT_CASES_ARGUMENTS_HPP
#define TESTS_SUPPORT_CASES_ARGUMENTS_HPP

#include <concepts>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "fake_platform.hpp"
#include "text.hpp"

namespace cases {

// The words of a call, taken one after the other, and what the call wrote. Every buffer is on the heap and of its exact
// size, so that a sanitizer sees what goes beyond it.
class Arguments {
public:
    // What stands in the scene under a word.
    struct Scenery {
        yfw_map_ctx ctx = nullptr;
        std::function<kidl_yfw_datatree *(const std::string &path)> node;
        const void *bag = nullptr;
    };
    Arguments(const Line &line, std::vector<std::string> words, std::vector<std::string> expected, Scenery scenery);
    ~Arguments();
    Arguments(const Arguments &) = delete;
    Arguments &operator=(const Arguments &) = delete;

    void take(yfw_map_ctx &ctx) const { ctx = scenery_.ctx; } // no word
    void take(kidl_yfw_datatree *&node) { node = scenery_.node(next()); }
    void take(const kidl_yfw_datatree *&node) { node = scenery_.node(next()); }
    template <std::integral Number>
    void take(Number &value) {
        value = static_cast<Number>(number(line_, next()));
    }
    void take(const void *&bag) { bag = next() == "null" ? nullptr : scenery_.bag; }
    void take(const char *&text);
    void take(char *&buffer); // [SIZE], full of '#'; [SIZE=TEXT], zeros behind the text; [fit], of the expected text
    void take(const bag_token_td *&token); // in quotes
    void take(void **&item);               // item: what the plug-in hands over, released with the arguments
    void take(std::uint32_t *&length);     // of the item

    // Every word is used.
    void finish() const;
    // How what was written differs from what is expected of it, in the order of the arguments: a text, "untouched",
    // "cleared TEXT" with zeros to the end of the buffer, "whole TEXT" with every byte; an item and its length.
    [[nodiscard]] std::vector<std::string> differences() const;

private:
    [[nodiscard]] const std::string &next();
    [[nodiscard]] std::string item() const;

    const Line &line_;
    std::vector<std::string> words_;
    std::vector<std::string> expected_;
    Scenery scenery_;
    std::size_t used_ = 0;
    std::deque<std::pair<std::string, std::string>> texts_; // handed over, and as they were
    std::deque<std::vector<char>> buffers_;
    std::deque<fake::GivenToken> tokens_;
    bool has_item_ = false;
    bool has_length_ = false;
    void *item_ = nullptr;
    std::uint32_t length_ = 0;
};

// Calls a utility; gives its result, zero for one without.
using Utility = std::function<kerrno(Arguments &)>;

template <class Result, class... Parameters>
Utility utility(Result (*function)(Parameters...)) {
    return [function](Arguments &arguments) -> kerrno {
        std::tuple<Parameters...> values;
        std::apply([&](auto &...value) { (arguments.take(value), ...); }, values);
        arguments.finish();
        if constexpr (std::is_void_v<Result>) {
            std::apply(function, values);
            return KERR_SUCCESS;
        } else {
            return static_cast<kerrno>(std::apply(function, values));
        }
    };
}

// The utilities by name; the program that plays the cases has the table.
[[nodiscard]] const std::map<std::string, Utility> &utilities();

} // namespace cases

#endif

// What the tests of the utilities share: whole call lists, failed assertions, buffers that show every byte written.
#ifndef TESTS_PLUGIN_UTILITY_SUPPORT_HPP
#define TESTS_PLUGIN_UTILITY_SUPPORT_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "request.hpp"
#include "utility.hpp"
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man.hpp"

namespace utility {

using Lines = std::vector<std::string>;
using Reader = kerrno (*)(yfw_map_ctx, const char *, char *);

// One step that a function takes: a call of the platform, or a message, which goes to both channels.
struct Step {
    std::string level; // empty: a call
    std::string function;
    std::string text;
};
using Steps = std::vector<Step>;

[[nodiscard]] Step call(std::string line);
[[nodiscard]] Step trace(std::string function, std::string text);
[[nodiscard]] Step error(std::string function, std::string text);

[[nodiscard]] Steps operator+(Steps first, const Steps &second);

// The lines that the platform records for these steps with both channels on: each message is a log line and then a
// trace line, whose sequence numbers begin at 1.
[[nodiscard]] Lines lines_of(const Steps &steps);

// What a failed assertion on the context prints, as a pattern for a death test; `file` is the name behind the
// directory of the sources.
[[nodiscard]] std::string context_assertion(const std::string &file, const std::string &prototype);

// A buffer of exactly `size` bytes on the heap, filled with '#', so that every byte beyond it and every byte left
// alone shows.
class Buffer {
public:
    explicit Buffer(std::size_t size) : bytes_(size, '#') {}
    // Of `size` bytes, holding an empty text.
    static Buffer cleared(std::size_t size);

    [[nodiscard]] char *data() { return bytes_.data(); }
    // Up to the terminator, or all of it when there is none.
    [[nodiscard]] std::string text() const { return whole().substr(0, whole().find('\0')); }
    [[nodiscard]] std::string whole() const { return {bytes_.begin(), bytes_.end()}; }
    [[nodiscard]] bool untouched() const { return whole() == std::string(bytes_.size(), '#'); }

private:
    std::vector<char> bytes_;
};

// A bag of these tokens, and an item of these bytes.
[[nodiscard]] fake::Bag bag_of(std::vector<fake::Token> tokens);
[[nodiscard]] fake::Item item_of(std::string bytes, kerrno result = KERR_SUCCESS);

[[nodiscard]] std::string repeated(std::size_t count, char character);

// Items of the database that were handed out and have not been released.
[[nodiscard]] std::size_t items_outstanding();

// The base of the tests: the client library has been found already, so that no look-up of its file stands in the lists;
// at the end every item of the database has been released.
class UtilityTest : public fake::RequestTest {
protected:
    void SetUp() override;
    void TearDown() override;

    // Messages, database calls ("free(item)" for the release of an item) and bag calls.
    [[nodiscard]] Lines happened() const;
    [[nodiscard]] Lines messages() const { return platform.calls(fake::Log); }
};

} // namespace utility

#endif

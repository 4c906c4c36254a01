// What the tests of the conversions towards OpenConfig share: how a run is written down, how an expected run is
// written, and a database that holds the modules of slots 0 to 3.
//
// A run is the list of what a conversion told the platform, in order: calls as the platform writes them (fake_platform
// .hpp), a trace as "function text", an error as "ERROR function text". Both stand for one line on each channel. Left
// out are the traces of the database readers and of the searches, the numbers of database handles, and the look for the
// client library's file unless that is absent. In expected lines "@" at the beginning stands for the function under
// test.
#ifndef TESTS_PLUGIN_HIGH_SUPPORT_HPP
#define TESTS_PLUGIN_HIGH_SUPPORT_HPP

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "exports.hpp"
#include "request.hpp"

namespace high_test {

using Lines = std::vector<std::string>;
using Text = std::optional<std::string>;

inline void append(Lines &all, const std::string &line) {
    all.push_back(line);
}

inline void append(Lines &all, const Lines &more) {
    all.insert(all.end(), more.begin(), more.end());
}

// Joins single lines and groups of lines.
template <class... Parts>
[[nodiscard]] Lines lines(const Parts &...parts) {
    Lines all;
    (append(all, parts), ...);
    return all;
}

inline constexpr kerrno skip = 0xaaf2f600;
inline constexpr kerrno invalid_arguments = 0xaaf2a000;
inline constexpr kerrno no_library = 0x8081c200;

// The code that the nth add of a run is answered with.
[[nodiscard]] constexpr kerrno add_result(std::size_t nth) {
    return 0x5a000000u + static_cast<kerrno>(nth);
}

// ---- expected lines ----

[[nodiscard]] std::string node_info(const std::string &list_path, const std::string &key);
// A leaf below the module that is current. The value is a text.
[[nodiscard]] std::string add(const std::string &leaf, const std::string &value);
// A leaf of the module that is named.
[[nodiscard]] std::string stitch(const std::string &module, const std::string &leaf, const std::string &value);
// The same, behind the trace that comes before each leaf written.
[[nodiscard]] Lines told_stitch(const std::string &module, const std::string &leaf, const std::string &value);
[[nodiscard]] Lines told_add(const std::string &module, const std::string &leaf, const std::string &value);
// A read that binds, fetches and unbinds; type 7 is a record, 1 a number.
[[nodiscard]] Lines database_read(const std::string &bind_path, const std::string &item, unsigned type);

// The check of a controller's name: it is that of a module in place; its port or its slot is another (each with what
// the name was scanned as); there is no name; the module is not in the inventory (slot as text).
[[nodiscard]] Lines check_passes(const std::string &name, const std::string &slot);
[[nodiscard]] Lines check_refuses_port(const std::string &name, const std::string &port);
[[nodiscard]] Lines check_refuses_slot(const std::string &name, const std::string &slot);
[[nodiscard]] Lines check_refuses_null();
[[nodiscard]] Lines check_finds_no_module(const std::string &name, const std::string &slot);

// ---- names, selections, kinds ----

// Modes and bits of a selection. Configuration is left out only in mode 2 with at least one bit.
struct Selection {
    std::uint32_t mode;
    std::uint32_t bits;
    bool suppresses;
};
[[nodiscard]] const std::vector<Selection> &selections();

inline constexpr Selection nothing_selected = {0, 0, false};
inline constexpr Selection state_selected = {2, 1, true};

// A count of one character.
[[nodiscard]] std::string repeated(std::size_t count, char character);

// A leaf's value and what is to be written for it.
struct Value {
    std::string given;
    std::string written;
};

// Texts that a division by ten, a hundred or one turns into these; long ones are cut to 19 characters, before they are
// read and after they are written.
[[nodiscard]] const std::vector<Value> &tenths();
[[nodiscard]] const std::vector<Value> &hundredths();
[[nodiscard]] const std::vector<Value> &units();

class HighTest : public fake::RequestTest {
protected:
    HighTest();

    struct Outcome {
        kerrno result;
        Lines lines;
    };

    // A leaf of the answer, printed as "source"; without a value it has no text.
    kidl_yfw_datatree *leaf_with(const Text &value);
    void set_selection(const Selection &selection);

    Outcome run(const std::string &function, const kidl_yfw_datatree *source);
    // Runs and compares everything: the lines, the result, and that source, request and context stay as they are. "@"
    // is `said_by` where that is another function than the one that is run.
    void expect_run(const std::string &function, const kidl_yfw_datatree *source, kerrno result, const Lines &expected,
                    const std::string &said_by = "");
    [[nodiscard]] Lines told() const;

    // Runs a test in a child that has not seen the client library yet, and makes its failures this test's.
    void without_client_library(const std::function<void()> &test);

    // ---- the database of slots 0 to 3 ----
    void put_inventory(const std::string &slot);
    // The numbers of controllers Ots0_2_0_2 and Ots0_2_0_0, see high_support.cpp.
    void put_ports_of_slot_2();

private:
    fake::Tree registered_;
};

} // namespace high_test

#endif

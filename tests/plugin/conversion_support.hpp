// What the tests of the conversions share: how a run is written down, and how an expected run is written.
//
// A run is the list of what a conversion told the platform, in order. A trace line is "function text", an error line
// "ERROR function text"; both stand for one line on each channel. An add is what add() gives. In expected lines
//
//   @   at the beginning   the conversion's own name
//   $                      the value that is to be written
//   ^                      the text of the leaf, as "%s" prints it
#ifndef TESTS_PLUGIN_CONVERSION_SUPPORT_HPP
#define TESTS_PLUGIN_CONVERSION_SUPPORT_HPP

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "exports.hpp"
#include "request.hpp"

namespace conversion_test {

using Lines = std::vector<std::string>;

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

// The source of an add: the node that the conversion received, or none.
inline constexpr char src[] = "source";
inline constexpr char none[] = "none";

// The line of one add into the destination. The value is a text, "$", or null.
[[nodiscard]] std::string add(const std::string &path, const std::string &native_namespace, const char *value,
                              const std::string &source, unsigned first_flag, unsigned second_flag);

// Native paths, written out by hand.
[[nodiscard]] std::string port_info(const std::string &rest); // below the ots-info of a port
[[nodiscard]] std::string time_line(const std::string &rest); // below a 30-second time-line instance
inline constexpr char interface_entry[] = "/interface-configurations/interface-configuration";
inline constexpr char interface_name[] = "/interface-configurations/interface-configuration/interface-name";
inline constexpr char interface_active[] = "/interface-configurations/interface-configuration/active";
inline constexpr char node_name[] = "/active-nodes/active-node/node-name";
inline constexpr char slot_id[] = "/active-nodes/active-node/slot/slot-id";
inline constexpr char port_entry[] = "/ots-oper/ots-ports/ots-port";
inline constexpr char port_name[] = "/ots-oper/ots-ports/ots-port/name";
inline constexpr char history_entry[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history";
inline constexpr char history_name[] =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history/name";

// The lines of the interface entry that a controller leaf opens for itself.
[[nodiscard]] Lines interface_key(const char *controller);

// The lines of a dump of a context whose lists are empty; the duplicate of the request prints as "registered".
[[nodiscard]] Lines dump();

// The four operations of a request, and the codes and kinds that they come with.
struct Situation {
    const char *name;
    std::uint32_t kind;
    std::uint32_t operation;
};

std::ostream &operator<<(std::ostream &out, const Situation &situation);

[[nodiscard]] const std::vector<Situation> &reads();
[[nodiscard]] const std::vector<Situation> &merges();
[[nodiscard]] const std::vector<Situation> &deletes();

// A leaf's value and what is to be written for it; null stands for no text at all.
struct Value {
    const char *given;
    const char *written;
};

// How the text of a leaf becomes the native value.
enum class Scale { text, tenths, hundredths, lockout, empty };
[[nodiscard]] const std::vector<Value> &values(Scale scale);

// Puts the conversion, the written value and the leaf's text into expected lines.
[[nodiscard]] Lines filled(const Lines &expected, const std::string &conversion, const Value &value);

// A fixture: the current list entry is 0/2-PSM-OM, while the registered request names 0/3-PSM-OM. The nth add of a run
// returns add_result(n).
class ConversionTest : public fake::RequestTest {
protected:
    ConversionTest();

    struct Outcome {
        kerrno result;
        Lines lines;
        std::vector<std::uint32_t> operations; // of the source, at each add
    };

    [[nodiscard]] static kerrno add_result(std::size_t nth) { return 0x5a000000u + static_cast<kerrno>(nth); }

    // A leaf of the request, printed as "source".
    kidl_yfw_datatree *leaf_with(const char *value, std::uint32_t operation);
    Outcome run(const std::string &conversion, kidl_yfw_datatree *source);
    // Runs, and compares calls, messages, the result (the last add's), the source's operation at every add, and what
    // the run leaves of the source, the request and the context.
    void expect_run(const std::string &conversion, const Situation &situation, const Value &value,
                    const Lines &expected);
    // The lines of the run that was just made.
    [[nodiscard]] Lines told() const;

private:
    kidl_yfw_datatree *running_ = nullptr;
    std::vector<std::uint32_t> operations_;
};

} // namespace conversion_test

#endif

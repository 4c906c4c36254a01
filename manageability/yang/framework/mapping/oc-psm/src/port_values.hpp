// A value of the primary line controller that fills the leaf of all ports of its module: the native answer holds the
// primary port's, the system database the other ports'.
#ifndef OC_PSM_PORT_VALUES_HPP
#define OC_PSM_PORT_VALUES_HPP

#include "module_writer.hpp"

namespace ymap {

enum class PortEntry { ots_port, history };
enum class Direction { receive, transmit };
enum class Ports { lines, all };
enum class Others { keep, skip, secondary };

inline constexpr Reader *no_reader = nullptr;

struct PortRow {
    Function function;
    PortEntry entry; // the native list whose key names the controller
    Direction direction;
    int divisor;
    const char *leaf;      // below a port's state container
    Reader *reader;        // of the same value of another port
    Ports ports;           // lines: primary and secondary; all: common-output too
    Reader *config_reader; // of the configured value, or none
    Others others;         // what an entry gives that is no primary port
};

kerrno port_to_high(const PortRow &row, yfw_map_ctx ctx, const Node *source, Node *destination);

} // namespace ymap

// Defines the exported conversion of a row; `file` is the including source file, as assertions name it.
#define YMAP_DEFINE_PORT_TO_HIGH(file, conversion, entry, direction, divisor, leaf, reader, ports, config_reader,      \
                                 others)                                                                               \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        using namespace ymap::bounded;                                                                                 \
        static constexpr PortRow row{{#conversion, YMAP_CALLBACK_PROTOTYPE(conversion), YMAP_SOURCE(file)},            \
                                     PortEntry::entry,                                                                 \
                                     Direction::direction,                                                             \
                                     divisor,                                                                          \
                                     leaf,                                                                             \
                                     ymap::bounded::reader,                                                            \
                                     Ports::ports,                                                                     \
                                     config_reader,                                                                    \
                                     Others::others};                                                                  \
        return port_to_high(row, ctx, source, destination);                                                            \
    }

#endif

// Where the conversions of a plug-in are run to see what they do.
#ifndef OCPSM_CONVERSION_HOST_HPP
#define OCPSM_CONVERSION_HOST_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/mapping/answer_table.hpp"

namespace ocpsm {

// ---- requests ----

enum class RequestMode { read, merge, remove }; // remove: the leaf is deleted

// One native node that a conversion has added.
struct NativeAddition {
    std::string module;
    std::string path;
    std::string value; // empty: none, or the empty text
    bool is_leaf = false;
    bool is_key = false;  // of a list
    bool deletes = false; // with the operation of a deleted leaf
};

struct RequestRun {
    bool accepted = false;
    std::vector<NativeAddition> additions;
};

// ---- answers ----

enum class AnswerMode {
    configuration, // to a read of configuration
    everything,    // to a read that includes operational state
    state_only,    // to one that names nothing but state leaves
};

// The line controller that a native entry is about: of a module in place, or of no module.
enum class EntryPort { primary, secondary, other };

enum class AnswerResult { done, skipped, failed };

// One OpenConfig node that a conversion has written.
struct WrittenNode {
    std::string path;   // schema path
    std::string value;  // empty for a list entry
    std::string manner; // as in AnswerRow
};

struct AnswerRun {
    AnswerResult result = AnswerResult::failed;
    std::vector<WrittenNode> written;
};

// Every run is on its own, of the module in slot 1, which is in place.
class ConversionHost {
public:
    ConversionHost() = default;
    ConversionHost(const ConversionHost &) = delete;
    ConversionHost &operator=(const ConversionHost &) = delete;
    virtual ~ConversionHost() = default;

    // Hands over a request that names the OpenConfig leaf or entry with this schema path, and gives what this
    // conversion adds.
    virtual RequestRun request(const std::string &leaf, std::string_view conversion, RequestMode mode,
                               const std::string &value) = 0;

    // Hands the node of a row to its callback, in an entry of this port. Without a value of its own where the node is
    // the key of the entry.
    virtual AnswerRun answer(const NativeRow &row, EntryPort port, AnswerMode mode, const std::string &value) = 0;

    // What the plug-in's direct read of this name gives for the secondary or common port; nothing when it fails.
    virtual std::optional<std::string> read(std::string_view reader, std::string_view source) = 0;
};

} // namespace ocpsm

#endif

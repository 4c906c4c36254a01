// What the conversions to OpenConfig write: the rows of their tables, and how one is carried out.
#ifndef OC_PSM_ANSWER_ROWS_HPP
#define OC_PSM_ANSWER_ROWS_HPP

#include <span>

#include "module_writer.hpp"

namespace ymap {

// What a value belongs to.
enum class Source {
    slot,       // the slot of the module
    controller, // any line controller of the module that makes it
    primary,    // its primary line port, "Ots0/<slot>/0/1"
    secondary,  // its secondary line port, "Ots0/<slot>/0/2"
    common,     // its common port, which only the system database knows
};

enum class Value {
    tenths,     // divided by ten
    hundredths, // divided by a hundred
    units,      // divided by one
    text,       // as it stands
    lockout,    // the path that traffic is locked out from, as the port that it is forced to
    status,     // of the primary port: the path that traffic takes
    module,     // the key of the module
};

// The reads that a row is written in.
enum class Kinds {
    always,
    unless_state_only, // not where a read names nothing but state leaves
    with_state,        // the read that includes operational state
    without_state,     // the read of configuration
};

enum class Manner {
    added,    // below the current module
    stitched, // by instance path
    opened,   // a new module, which has no key yet
};

// What an entry that is none of the module's primary port gives.
enum class Others {
    keep,           // what its lookup gives
    keep_secondary, // the same for a secondary port, skip for every other
    skip,
};

// In place of a reader: the native leaf that is converted holds the value.
inline constexpr Reader *answer = nullptr;

// One node that a conversion writes.
struct AnswerLeaf {
    const char *path; // below the module
    Reader *reader;   // of the system database
    Source source;
    Value value;
    Kinds kinds;
    Manner manner;
};

using AnswerLeaves = std::span<const AnswerLeaf>;

// A conversion. Rows with one source and reader stand together: their value is read and converted once.
struct AnswerRow {
    Function function;
    const char *key_list; // schema path of the list whose key tells the entry; null where the leaf is the key
    Others others;
    AnswerLeaves leaves;
};

// The first rows that share a source and a reader; empty when there is none left.
AnswerLeaves first_group(AnswerLeaves leaves);

// The rows of one source; they stand together.
AnswerLeaves rows_of(AnswerLeaves leaves, Source source);

// The source that a line controller's port number stands for; `common` for a port that is no line port.
Source line_source(int port);

// A native text in OpenConfig terms, the empty text where it is null. The text must outlive this: some values pass it
// on.
class AnswerValue {
public:
    AnswerValue(Value value, const char *native);
    AnswerValue(const AnswerValue &) = delete;
    AnswerValue &operator=(const AnswerValue &) = delete;

    const char *text() const { return text_; }

private:
    void scale(const char *native, int divisor);

    char buffer_[value_size] = {};
    const char *text_;
};

// The result for an entry of this controller that is none of a primary port, given that of its lookup.
kerrno answer_for_others(Others others, yfw_map_ctx ctx, const char *controller, kerrno lookup);

// The leaves that tell in the trace which module they are written for.
enum class ModuleTrace {
    none,
    stitched, // a module is made by its key, which is stitched
    all,
};

// Where the leaves of a conversion go.
struct Target {
    const AnswerRow &row;
    yfw_map_ctx ctx;
    Node *destination;
    const char *module; // its key; may be null where all leaves are added below the current module
    ModuleTrace trace;
};

// Writes the leaves that the read asks for. The result is that of the last addition, `result` where there was none.
kerrno write_text(const Target &target, AnswerLeaves leaves, const char *text, kerrno result);

// The same with a native text, which the first leaf says how to convert. Without leaves nothing is converted.
kerrno write_native(const Target &target, AnswerLeaves leaves, const char *native, kerrno result);

} // namespace ymap

// A row of a conversion's table.
#define YMAP_WRITES(path, source, reader, value, kinds, manner)                                                        \
    {path, reader, ymap::Source::source, ymap::Value::value, ymap::Kinds::kinds, ymap::Manner::manner},

// Defines the row of a conversion in the scope of its function; `file` is the including source file, as assertions name
// it.
#define YMAP_ANSWER_ROW(file, conversion, key_list, others, ...)                                                       \
    using namespace ymap::bounded;                                                                                     \
    static constexpr AnswerLeaf leaves[] = {__VA_ARGS__};                                                              \
    static constexpr AnswerRow row {                                                                                   \
        {#conversion, YMAP_CALLBACK_PROTOTYPE(conversion), YMAP_SOURCE(file)}, key_list, Others::others, leaves        \
    }

// Defines an exported conversion; `steps` carries the row out and takes row, context, source and destination.
#define YMAP_DEFINE_TO_HIGH(file, conversion, steps, ...)                                                              \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        YMAP_ANSWER_ROW(file, conversion, __VA_ARGS__);                                                                \
        return convert_to_high(row.function, ctx, source, destination,                                                 \
                               [&] { return steps(row, ctx, source, destination); });                                  \
    }

#endif

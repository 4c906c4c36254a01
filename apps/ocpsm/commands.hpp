// What the program does, a function per subcommand. Each prints its result to `output` and returns the exit code; what
// goes wrong leaves it as ocpsm::Error.
#ifndef OCPSM_COMMANDS_HPP
#define OCPSM_COMMANDS_HPP

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "framework/service.hpp"
#include "messages.hpp"
#include "request_input.hpp"

namespace ocpsm {

// What a subcommand that makes a request is told on the command line.
struct RequestOptions {
    EditOptions request;                        // what goes with the request; the dry run of an edit
    std::optional<std::filesystem::path> state; // the directory of a line system; none: the built-in example
    std::filesystem::path plugin;
    std::optional<Format> format; // of the output; absent: as the request came, with what else there is in words
    std::optional<Kind> kind;     // absent: what the text says

    bool table = false;  // of get: print a table
    bool follow = false; // of get and journal: go on with what changes

    std::optional<std::uint64_t> sequence; // of undo: the entry of the journal; of journal: the one to begin behind

    std::vector<std::string> paths; // of get: what to read, none: everything; of delete: what to take away
    std::string setting;            // of set: PATH, with VALUE as all of `more`; or PATH=VALUE, with others of these
    std::vector<std::string> more;  // of set
    std::string file;               // of the others, and of a filter: the text of the request; "-": standard input
    bool if_there = false;          // of delete: what is not there is no error
};

// Prints the answer to a read, in JSON unless a format is named or the filter is XML. One that follows prints each leaf
// in a line, then each change, until it is ended or nobody reads any more.
int get_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

// Each carries an edit out, whole or not at all, and prints what has changed: in words, or as a document where a format
// is named.
int edit_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);
int set_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);
int delete_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

// Takes back what an edit has changed, by another one: that of an entry of the journal, or the last one.
int undo_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

// Prints what has happened, oldest first: a line for each entry, with a line for each change below, or an object a
// line. One that follows goes on with what happens until it is ended or nobody reads any more.
int journal_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

// Prints the native requests that an OpenConfig request becomes, and the result: one after the other, or as a document
// where a format is named.
int translate_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

// Prints a line per native node that the plug-in adds, in order.
int explain_command(const RequestOptions &options, std::ostream &output, std::ostream &errors);

enum class TableFormat { text, markdown };

// Prints the mapping of every node of the OpenConfig model.
int table_command(TableFormat format, std::ostream &output);

// Proves that model, tables and plug-in agree; exit_refused and a line per disagreement when they do not.
int coverage_command(const std::filesystem::path &plugin, std::ostream &output, std::ostream &errors);

} // namespace ocpsm

#endif

// What a management client does with a line system: reads and edits in OpenConfig.
#include <algorithm>
#include <iostream>
#include <iterator>

#include "commands.hpp"
#include "following.hpp"
#include "framework/user.hpp"
#include "leaf_table.hpp"
#include "line_system_service.hpp"
#include "result_document.hpp"
#include "undo.hpp"

namespace ocpsm {
namespace {

// ---- reads ----

void warn_of_nothing(const ReadResult &result, std::ostream &errors) {
    if (result.answer.empty() && result.warnings.empty()) {
        print_warning(errors, "the line system has nothing of what is selected");
    }
}

// Prints what a read has, and what of it changes.
class Follow {
public:
    Follow(const Service &service, const RequestOptions &options, std::ostream &output, std::ostream &errors)
        : service_(service), options_(options), output_(output), errors_(errors) {}

    int run(const Selection &selection) {
        for (bool first = true; first || wait_for_a_step(); first = false) {
            const ReadResult result = service_.read(selection, *options_.kind, options_.request);
            print_log(result, errors_);
            if (first || result.warnings != warnings_) {
                print_warnings(result, errors_);
            }
            if (result.error) {
                return print_error(errors_, *result.error);
            }
            if (first) {
                warn_of_nothing(result, errors_);
                print(result.answer.leaves());
            } else {
                print(changes_between(before_, result.answer));
            }
            if (!output_.flush()) {
                break;
            }
            before_ = result.answer;
            warnings_ = result.warnings;
        }
        return exit_done;
    }

private:
    static std::string words(const Leaf &leaf) {
        return on_one_line(leaf.path) + ": " + in_words(std::optional(leaf.value)) + "\n";
    }
    static std::string words(const Change &change) { return in_words(change) + "\n"; }

    template <class Line>
    void print(const std::vector<Line> &lines) {
        for (const Line &line : lines) {
            output_ << (options_.format ? json_line(line) : words(line));
        }
    }

    const Service &service_;
    const RequestOptions &options_;
    std::ostream &output_;
    std::ostream &errors_;
    Answer before_;
    std::vector<std::string> warnings_;
};

// ---- edits ----

void print_native(const DeviceRequest &native, std::ostream &output) {
    output << "native operations:\n";
    for (const DeviceOperation &operation : native.operations()) {
        output << "  " << operation_name(operation.operation) << " " << on_one_line(operation.path);
        if (operation.value) {
            output << " = " << in_words(operation.value);
        }
        output << '\n';
    }
}

void print_changes(const std::vector<Change> &changes, std::string_view indent, std::ostream &output) {
    for (const Change &change : changes) {
        output << indent << in_words(change) << '\n';
    }
    if (changes.empty()) {
        output << indent << "nothing changes\n";
    }
}

int exit_code(const RequestOptions &options, const EditResult &result) {
    return options.request.dry_run || result.changes.empty() ? exit_done : exit_changed;
}

int print_result(const RequestOptions &options, const EditResult &result, std::ostream &output, std::ostream &errors) {
    if (options.format && !result.error) {
        print_log(result, errors);
        output << document(result, *options.format);
        return exit_code(options, result);
    }
    print_messages(result, errors);
    if (result.error) {
        return print_error(errors, *result.error);
    }
    if (options.request.dry_run) {
        print_native(result.native, output);
        output << "OpenConfig changes:\n";
    }
    print_changes(result.changes, options.request.dry_run ? "  " : "", output);
    return exit_code(options, result);
}

int run_edit(const RequestOptions &options, const Edit &edit, std::ostream &output, std::ostream &errors) {
    EditOptions request = options.request;
    request.user = "cli " + user_name();
    return print_result(options, open_service(options).edit(edit, request), output, errors);
}

// Where the path of PATH=VALUE ends: at the first = that is in no predicate.
std::size_t sign_of_equality(std::string_view word) {
    char quote = '\0';
    bool in_predicate = false;
    for (std::size_t at = 0; at < word.size(); ++at) {
        const char c = word[at];
        if (quote != '\0') {
            quote = c == quote ? '\0' : quote;
        } else if (in_predicate && (c == '\'' || c == '"')) {
            quote = c;
        } else if (c == '[' || c == ']') {
            in_predicate = c == '[';
        } else if (c == '=' && !in_predicate) {
            return at;
        }
    }
    return std::string::npos;
}

PathEdit setting_in(const std::string &word) {
    const std::size_t sign = sign_of_equality(word);
    if (sign == std::string::npos) {
        throw Error(Error::Source::input, {}, {}, "there is no value in " + word,
                    "write PATH VALUE, or PATH=VALUE for each of several leaves");
    }
    return {word.substr(0, sign), Operation::merge, word.substr(sign + 1)};
}

} // namespace

int get_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    if (std::find(options.paths.begin(), options.paths.end(), "") != options.paths.end()) {
        throw Error(Error::Source::input, {}, {}, "a path is empty", "name a path, or none to read everything");
    }
    Selection selection = Paths{options.paths};
    Format format = Format::json;
    if (!options.file.empty()) {
        Text filter{read_request(options.file, std::cin)};
        format = format_of(filter.text);
        selection = std::move(filter);
    }
    const Service service = open_service(options);
    if (options.follow) {
        return Follow(service, options, output, errors).run(selection);
    }
    const ReadResult result = service.read(selection, *options.kind, options.request);
    print_messages(result, errors);
    if (result.error) {
        return print_error(errors, *result.error);
    }
    warn_of_nothing(result, errors);
    if (options.table) {
        output << leaf_table(result.answer.leaves());
        return exit_done;
    }
    format = options.format.value_or(format);
    output << (result.answer.empty() && format == Format::xml ? "<data/>\n" : result.answer.print(format));
    return exit_done;
}

int edit_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    return run_edit(options, Text{read_request(options.file, std::cin)}, output, errors);
}

int set_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    if (options.more.size() == 1 && sign_of_equality(options.setting) == std::string::npos) {
        return run_edit(options, PathEdits{{options.setting, Operation::merge, options.more.front()}}, output, errors);
    }
    PathEdits edits{setting_in(options.setting)};
    std::transform(options.more.begin(), options.more.end(), std::back_inserter(edits), setting_in);
    return run_edit(options, edits, output, errors);
}

int delete_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const Operation operation = options.if_there ? Operation::remove : Operation::delete_existing;
    PathEdits edits;
    for (const std::string &path : options.paths) {
        edits.push_back({path, operation});
    }
    return run_edit(options, edits, output, errors);
}

int undo_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const Service service = open_service(options);
    const Undo undo = undo_of(service, options.sequence);
    EditOptions request = options.request;
    request.user = "cli " + user_name();
    request.check = undo.check;
    return print_result(options, service.edit(undo.edits, request), output, errors);
}

} // namespace ocpsm

#include "completion.hpp"

#include <algorithm>
#include <optional>
#include <ostream>

#include "framework/error.hpp"
#include "framework/mapping/request_table.hpp"
#include "open_line_system.hpp"
#include "simulator/line_system.hpp"
#include "state_directory.hpp"

namespace ocpsm {
namespace {

struct Candidate {
    std::string text;
    std::string help;
};

// ---- words ----

// Without the quotes and backslashes of a shell, of which the last one may still be open.
std::string unquoted(std::string_view typed) {
    std::string text;
    char quote = 0;
    for (std::size_t i = 0; i < typed.size(); ++i) {
        const char c = typed[i];
        if (c == '\\' && quote != '\'') {
            if (++i < typed.size()) {
                text += typed[i];
            }
        } else if (quote == 0 && (c == '\'' || c == '"')) {
            quote = c;
        } else if (c == quote) {
            quote = 0;
        } else {
            text += c;
        }
    }
    return text;
}

// Where on the command line the last word stands.
struct Position {
    const CLI::App *command;
    const CLI::Option *option = nullptr; // whose value it is
    std::size_t positional = 0;          // so many have gone before
    bool options_may_follow = true;
    std::optional<std::string> state;
};

// An option of the command, or of one around it; null when there is none of this name.
const CLI::Option *find_option(const CLI::App *command, const std::string &name) {
    for (; command != nullptr; command = command->get_parent()) {
        if (const CLI::Option *option = command->get_option_no_throw(name)) {
            return option;
        }
    }
    return nullptr;
}

const CLI::App *find_subcommand(const CLI::App &command, const std::string &name) {
    const auto found = command.get_subcommands([&](const CLI::App *sub) { return sub->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

void step(Position &position, const std::string &word) {
    if (position.option != nullptr) {
        if (position.option->check_lname("state")) {
            position.state = word;
        }
        position.option = nullptr;
    } else if (word == "--") {
        position.options_may_follow = false;
    } else if (position.options_may_follow && word.size() > 1 && word.front() == '-') {
        const CLI::Option *option = find_option(position.command, word.substr(0, word.find('=')));
        const bool takes_value = option != nullptr && option->get_items_expected_max() > 0;
        if (takes_value && word.find('=') == std::string::npos) {
            position.option = option;
        } else if (takes_value && option->check_lname("state")) {
            position.state = word.substr(word.find('=') + 1);
        }
    } else if (const CLI::App *subcommand = find_subcommand(*position.command, word)) {
        position.command = subcommand;
    } else {
        ++position.positional;
    }
}

// ---- values ----

std::vector<ModuleRow> modules(const Position &position) {
    try {
        return open_line_system(state_directory(position.state, process_environment)).view().modules;
    } catch (const Error &) {
        return {};
    }
}

// Where the last step of a path begins; a slash in a predicate is none.
std::size_t last_step(std::string_view path) {
    std::size_t start = 0;
    bool in_predicate = false;
    for (std::size_t i = 0; i < path.size(); ++i) {
        in_predicate = path[i] == '[' || (in_predicate && path[i] != ']');
        if (path[i] == '/' && !in_predicate) {
            start = i;
        }
    }
    return start;
}

std::string without_predicates(std::string_view path) {
    std::string plain;
    bool in_predicate = false;
    for (const char c : path) {
        in_predicate = in_predicate || c == '[';
        plain.append(in_predicate ? 0 : 1, c);
        in_predicate = in_predicate && c != ']';
    }
    return plain;
}

// The nodes below all but the last step, those that the command can do something with.
std::vector<Candidate> paths(const Position &position, const std::string &word) {
    const std::string above = word.substr(0, last_step(word));
    const std::string schema_above = without_predicates(above);
    const bool edits = position.command->get_name() != "get";
    std::vector<Candidate> found;
    for (const NodeRow &row : node_rows()) {
        const std::string path = schema_path(node_rows(), row);
        const std::size_t slash = path.rfind('/');
        const bool refused = row.kind == NodeKind::leaf && row.conversion.empty();
        if (path.substr(0, slash) != schema_above || refused || (edits && !row.is_configuration)) {
            continue;
        }
        const std::string step = above + path.substr(slash);
        if (row.kind != NodeKind::list) {
            found.push_back({step + (row.kind == NodeKind::container ? "/" : ""), {}});
            continue;
        }
        for (const ModuleRow &module : modules(position)) {
            found.push_back({step + "[name=" + module.name + "]/", {}});
        }
    }
    return found;
}

std::vector<Candidate> slots(const Position &position) {
    std::vector<Candidate> found;
    for (const ModuleRow &module : modules(position)) {
        found.push_back({std::to_string(module.slot), module.name});
    }
    return found;
}

// What stands for a value in the help says what it may be.
std::vector<Candidate> values(const Position &position, const CLI::Option &option, const std::string &word) {
    const std::string type = option.get_type_name();
    if (type == "FILE" || type == "DIR") {
        return {{type == "FILE" ? ":file" : ":directory", {}}};
    }
    if (type == "PATH") {
        return paths(position, word);
    }
    if (type == "SLOT" && position.command->get_name() != "fit") {
        return slots(position);
    }
    if (type == "LINE") {
        return {{std::string(line_names[0]), {}}, {std::string(line_names[1]), {}}};
    }
    std::vector<Candidate> found;
    if (type.find('|') != std::string::npos) {
        for (const std::string &value : CLI::detail::split(type, '|')) {
            found.push_back({value, {}});
        }
    }
    return found;
}

// ---- candidates ----

std::vector<Candidate> option_names(const CLI::App *command) {
    std::vector<Candidate> found;
    for (; command != nullptr; command = command->get_parent()) {
        for (const CLI::Option *option : command->get_options()) {
            for (const std::string &name : option->get_lnames()) {
                found.push_back({"--" + name, option->get_description()});
            }
        }
    }
    return found;
}

// The positional option that the word is the value of; the last one may take several.
const CLI::Option *positional(const Position &position) {
    std::size_t left = position.positional;
    for (const CLI::Option *option : position.command->get_options()) {
        if (option->get_positional()) {
            if (left == 0 || option->get_items_expected_max() > 1) {
                return option;
            }
            --left;
        }
    }
    return nullptr;
}

std::vector<Candidate> candidates(const Position &position, const std::string &word) {
    if (position.option != nullptr) {
        return values(position, *position.option, word);
    }
    if (position.options_may_follow && word.starts_with('-')) {
        return option_names(position.command);
    }
    std::vector<Candidate> found;
    for (const CLI::App *subcommand : position.command->get_subcommands([](const CLI::App *) { return true; })) {
        found.push_back({subcommand->get_name(), subcommand->get_description()});
    }
    if (const CLI::Option *option = positional(position)) {
        const std::vector<Candidate> own = values(position, *option, word);
        found.insert(found.end(), own.begin(), own.end());
    }
    return found;
}

} // namespace

void print_completions(const CLI::App &app, const std::vector<std::string> &words, std::ostream &output) {
    Position position{.command = &app, .state = {}};
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        step(position, unquoted(words[i]));
    }
    const std::string word = words.empty() ? "" : unquoted(words.back());
    std::vector<std::string> lines;
    for (const Candidate &candidate : candidates(position, word)) {
        if (candidate.text.starts_with(word) || candidate.text.starts_with(':')) {
            lines.push_back(candidate.text + (candidate.help.empty() ? "" : "\t" + candidate.help) + "\n");
        }
    }
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    for (const std::string &line : lines) {
        output << line;
    }
}

} // namespace ocpsm

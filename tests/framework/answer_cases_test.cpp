/*
 * Answers as text. What a plug-in writes, a line per call:
 *   search NAME                  search-or-add
 *   open                         a new entry, without a name yet
 *   add PATH = VALUE             a leaf below the current entry; without "=": no value; "=" alone: the empty one
 *   stitch NAME PATH = VALUE     a leaf below the entry of this name
 *   point NAME                   what the instance map says; without a name: no instance
 *   scope, end                   the output scope of a native list entry
 * Section "more" is a second answer that is joined to it, "after" one that it is compared with, "select" the content of
 * /aps/aps-modules in a read that it is cut to. Expected: "leaves", "names" of the entries, "xml", "json", "changes",
 * the "failures" of the writes, or for each selection how many "state leaves" a read of it names.
 *
 * Instance maps: "read NAME" begins the read of an instance, "add PATH = VALUE" and "open PATH = VALUE" add to it;
 * "instances" has instance paths of native nodes, and whose they are.
 */
#include <sstream>

#include "cases/runner.hpp"
#include "dump.hpp"
#include "framework/answer/cut.hpp"
#include "framework/answer/instance_map.hpp"
#include "framework/host/codes.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "session_fixture.hpp"

namespace {

using case_runner::BadCase;
using case_runner::Case;
using case_runner::Section;
using case_runner::unescaped;
using ocpsm::RequestNode;
using ocpsm::framework::AnswerTree;
using ocpsm::framework::DataTree;
using ocpsm::framework::InstanceMap;

const std::string space = "http://openconfig.net/yang/optical-transport-line-protection";
const std::string list = "/aps/aps-modules/aps-module";

// A line as its first word and what follows, parted at the first " =".
struct Call {
    std::string word;
    std::string argument;
    std::optional<std::string> value;

    explicit Call(const std::string &line) {
        const std::size_t equals = line.find(" =");
        const std::string head = line.substr(0, equals);
        const std::size_t blank = head.find(' ');
        word = head.substr(0, blank);
        argument = blank == std::string::npos ? "" : unescaped(head.substr(blank + 1));
        if (equals != std::string::npos) {
            value = unescaped(line.substr(std::min(equals + 3, line.size())));
        }
    }
};

class Writing {
public:
    explicit Writing(const Section &section, const std::string &file) {
        for (const case_runner::Line &line : section.lines) {
            if (!line.text.empty()) {
                const kerrno result = write(Call(line.text), file, line.number);
                failures += result == KERR_SUCCESS ? "" : line.text + ": " + ocpsm::framework::name_of(result) + "\n";
            }
        }
        if (writer.failure() != KERR_SUCCESS) {
            failures += "kept: " + ocpsm::framework::name_of(writer.failure()) + "\n";
        }
    }

    std::string failures;
    ocpsm::framework::Channels channels;
    ocpsm::framework::AnswerWriter writer;
    ocpsm::framework::MappingContext context{YFW_KIND_GET, {"aps", space}, channels, writer};

private:
    kerrno write(const Call &call, const std::string &file, int number) {
        if (call.word == "search") {
            return yfw_map_search_or_add_list(&context, &context.destination(), context.request->module_list,
                                              list.c_str(), call.argument.c_str(), "name", space.c_str());
        }
        if (call.word == "open" || call.word == "add") {
            const std::string path = call.argument.starts_with('/') ? call.argument
                                     : call.argument.empty()        ? list
                                                                    : list + "/" + call.argument;
            return yfw_map_datatree_add_path_flagged(&context, &context.destination(), path.c_str(), space.c_str(),
                                                     call.value ? call.value->c_str() : nullptr, nullptr, nullptr,
                                                     call.word == "open" ? 1 : 0, 0);
        }
        if (call.word == "stitch") {
            const std::size_t blank = call.argument.find(' ');
            return stitch(call.argument.substr(0, blank), "/" + call.argument.substr(blank + 1), *call.value);
        }
        if (call.word == "point") {
            writer.point_to(call.argument.empty() ? std::nullopt : std::optional(call.argument));
        } else if (call.word == "scope") {
            yfw_add_to_output_list_ctx(&context, &context.request_tree(), &context.destination());
        } else if (call.word == "end") {
            yfw_remove_from_output_list_ctx(&context, &context.request_tree(), &context.destination());
        } else {
            throw BadCase(file, number, "no such call");
        }
        return KERR_SUCCESS;
    }

    kerrno stitch(const std::string &name, const std::string &leaf, const std::string &value) {
        yfw_map_stitch_entry entry{};
        entry.in_use = 1;
        entry.destination = &context.destination();
        entry.value_kind = YFW_STITCH_VALUE_TEXT;
        yfw_strcpy_s(entry.namespace_uri, sizeof entry.namespace_uri, space.c_str());
        yfw_strcpy_s(entry.value, sizeof entry.value, value.c_str());
        yfw_strcpy_s(entry.instance_path, sizeof entry.instance_path, (list + "[name=" + name + "]" + leaf).c_str());
        yfw_strcpy_s(entry.schema_path, sizeof entry.schema_path, (list + leaf).c_str());
        return yfw_map_stitch_list_to_list(&context, &entry);
    }
};

AnswerTree written(const Case &test, const std::string &section) {
    return std::move(Writing(*test.find_input(section), test.file).writer).finish();
}

std::vector<RequestNode> selections(const std::string &text) {
    return ocpsm::framework::type_request(
        ocpsm::framework::parse_request(text.starts_with("<aps ") ? text : modules_text(text), ocpsm::Kind::get).tops,
        ocpsm::Kind::get, true);
}

AnswerTree answer_of(const Case &test) {
    AnswerTree answer = written(test, "");
    if (test.find_input("more") != nullptr) {
        std::vector<AnswerTree> parts;
        parts.push_back(std::move(answer));
        parts.push_back(written(test, "more"));
        answer = join(std::move(parts));
    }
    return test.find_input("select") == nullptr ? std::move(answer)
                                                : cut(std::move(answer), selections(test.find_input("select")->text()));
}

std::string lines_of(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\n";
    }
    return text;
}

// ---- instance maps ----

InstanceMap map_of(const Case &test) {
    InstanceMap map;
    std::string instance;
    std::optional<ocpsm::native::NativeRequest> read;
    const auto end_read = [&] {
        if (read) {
            map.add(instance, read->net());
        }
    };
    for (const case_runner::Line &line : test.input.front().lines) {
        const Call call(line.text);
        if (call.word == "read") {
            end_read();
            instance = call.argument;
            read.emplace(ocpsm::native::RequestKind::read);
        } else if (!call.word.empty()) {
            const auto node = ocpsm::models::Schema::native().describe(call.argument);
            if (!read || !node) {
                throw BadCase(test.file, line.number, "no such node");
            }
            read->add(call.argument, node->namespace_uri, call.value, 0, call.word == "open", 0);
        }
    }
    end_read();
    return map;
}

// A native instance path as nodes, each with its keys; "[key=value]" without brackets in the value.
std::string instance_of(const InstanceMap &map, const std::string &path) {
    RequestNode top{"above all", ""};
    RequestNode *node = &top;
    std::string schema_path;
    std::istringstream steps(path.substr(1));
    for (std::string text; std::getline(steps, text, '|');) {
        const std::string tag = text.substr(0, text.find('['));
        schema_path += "/" + tag;
        const std::string uri(ocpsm::models::Schema::native().describe(schema_path)->namespace_uri);
        node = &node->children.emplace_back(RequestNode{tag, uri});
        for (std::size_t at = text.find('['); at != std::string::npos; at = text.find('[', at + 1)) {
            const std::size_t equals = text.find('=', at);
            node->children.push_back(
                {text.substr(at + 1, equals - at - 1), uri, text.substr(equals + 1, text.find(']', at) - equals - 1)});
        }
    }
    const DataTree tree(top);
    InstanceMap::Place place = map.top();
    for (const kidl_yfw_datatree *each = &tree.root(); each->child_count > 0;) {
        each = &each->children[each->child_count - 1];
        if (each->value != nullptr) {
            break;
        }
        place = map.below(place, *each);
    }
    const std::string *instance = map.instance_of(place);
    return path + ": " + (instance == nullptr ? "(none)" : *instance);
}

std::string answer(const Case &test, const std::string &wanted) {
    if (wanted == "failures") {
        return Writing(test.input.front(), test.file).failures;
    }
    if (wanted == "state leaves") {
        std::string text;
        for (const case_runner::Line &line : test.find_expected(wanted)->lines) {
            const std::string selection = line.text.substr(0, line.text.rfind(": "));
            text +=
                selection + ": " + std::to_string(ocpsm::framework::state_leaves_only(selections(selection))) + "\n";
        }
        return text;
    }
    if (wanted == "instances") {
        const InstanceMap map = map_of(test);
        Lines lines;
        for (const case_runner::Line &line : test.find_expected("instances")->lines) {
            if (!line.text.empty()) {
                lines.push_back(instance_of(map, line.text.substr(0, line.text.find(": "))));
            }
        }
        return lines_of(lines);
    }
    if (wanted == "error") {
        return error_of([&test] { answer_of(test); }) + "\n";
    }
    const AnswerTree tree = answer_of(test);
    if (wanted == "xml" || wanted == "json") {
        return tree.print(wanted == "xml" ? ocpsm::Format::xml : ocpsm::Format::json);
    }
    if (wanted == "names") {
        return lines_of(tree.entry_names());
    }
    if (wanted == "changes") {
        ocpsm::EditResult result;
        result.changes = changes_between(tree, written(test, "after"));
        return lines_of(changes_of(result));
    }
    if (wanted != "leaves") {
        throw BadCase(test.file, test.line, "no such section");
    }
    std::vector<ocpsm::Leaf> leaves;
    tree.for_each_leaf([&leaves](const std::string &path, std::string_view value) {
        leaves.push_back({path, std::string(value)});
    });
    return lines_of(grouped(leaves));
}

[[maybe_unused]] const bool registered = case_runner::register_cases(CASES_DIRECTORY, answer);

} // namespace

// Requests from text or path to what the plug-in is handed. The input of a case is a request's text or a path; a
// section "tree" holds a ready tree as dump() writes it. In a section whose name begins with "escaped", bytes may be
// written as \n and \xNN. What a wanted section is is told at the head of its file.
#include <libyang/libyang.h>

#include <array>
#include <sstream>

#include "cases/runner.hpp"
#include "dump.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/models/models.hpp"
#include "framework/request/existence.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/passed_over.hpp"
#include "framework/request/syntax.hpp"
#include "framework/request/type.hpp"
#include "framework/request/xpath.hpp"
#include "framework/text.hpp"

namespace {

using case_runner::Case;
using ocpsm::Kind;
using ocpsm::Operation;
using ocpsm::RequestNode;
using Trees = std::vector<RequestNode>;

std::string without_last_end(std::string text) {
    if (!text.empty()) {
        text.pop_back();
    }
    return text;
}

std::optional<std::string> input(const Case &test, const std::string &name) {
    if (const auto *escaped = test.find_input(name.empty() ? "escaped" : "escaped " + name)) {
        return case_runner::unescaped(without_last_end(escaped->text()));
    }
    const auto *section = test.find_input(name);
    return section == nullptr ? std::nullopt : std::optional(without_last_end(section->text()));
}

std::string part(const Case &test, const std::string &name) {
    const auto *section = test.find_input(name);
    return section == nullptr ? "" : section->text();
}

std::string text_of(const Case &test) {
    return input(test, "").value_or("");
}

// ---- trees as they were written ----

void write(const Trees &nodes, std::size_t depth, std::string &text) {
    constexpr std::array forms{"none", "empty",  "text",   "string", "number", "boolean",
                               "null", "[null]", "object", "entry",  "item",   "[]"};
    for (const RequestNode &node : nodes) {
        text.append(depth * 2, ' ').append("{").append(node.namespace_uri).append("}").append(node.tag);
        text.append(" ").append(forms.at(static_cast<std::size_t>(node.form)));
        text.append(node.value ? " \"" + *node.value + "\"" : "");
        text.append(node.value_namespace.empty() ? "" : " in " + node.value_namespace.str());
        for (const auto &attribute : node.attributes) {
            text.append(" @{").append(attribute.namespace_uri).append("}").append(attribute.name);
            text.append("=").append(attribute.value);
        }
        text.append("\n");
        write(node.children, depth + 1, text);
    }
}

std::string content(const ocpsm::framework::Content &content, Kind kind) {
    constexpr std::array defaults{"merge", "replace", "none"};
    std::string text;
    write(content.tops, 0, text);
    if (content.default_operation) {
        text.append("default operation: ");
        text.append(defaults.at(static_cast<std::size_t>(*content.default_operation))).append("\n");
    }
    return text + (content.whole ? "everything\n" : "") + (content.kind != kind ? "configuration only\n" : "");
}

// ---- answers ----

Kind kind_of(const std::string &wanted) {
    return wanted.starts_with("get-config") ? Kind::get_config : wanted.starts_with("get") ? Kind::get : Kind::edit;
}

Trees parsed(const Case &test, Kind kind) {
    const auto tree = input(test, "tree");
    return tree ? read_dump(*tree) : ocpsm::framework::parse_request(text_of(test), kind).tops;
}

Trees typed(const Case &test, Kind kind, bool check = true) {
    return ocpsm::framework::type_request(parsed(test, kind), kind, check);
}

// A tree is already what typing makes of it.
Trees ready(const Case &test, Kind kind) {
    return input(test, "tree") ? parsed(test, kind) : typed(test, kind);
}

std::string each(const Trees &trees) {
    std::string all;
    for (const RequestNode &tree : trees) {
        all += (&tree == &trees.front() ? "" : "--\n") + dump({tree});
    }
    return all;
}

std::vector<std::string> lines(const std::optional<std::string> &text) {
    std::vector<std::string> all;
    std::istringstream stream(text.value_or(""));
    for (std::string line; std::getline(stream, line);) {
        all.push_back(line);
    }
    return all;
}

// Adds to a standing answer what a dump tells; a list's key comes with its entry.
void stand(lyd_node *&top, const std::string &above, const Trees &trees) {
    for (const RequestNode &tree : trees) {
        const bool entry = tree.tag == "aps-module";
        const std::string path =
            above + "/" + tree.tag + (entry ? "[name='" + *tree.children.front().value + "']" : "");
        lyd_node *made = nullptr;
        lyd_new_path(top, ocpsm::models::Schema::openconfig().context(), path.c_str(),
                     tree.value ? tree.value->c_str() : nullptr, LYD_NEW_PATH_UPDATE, top == nullptr ? &made : nullptr);
        top = top == nullptr ? made : top;
        stand(top, path, tree.children);
    }
}

ocpsm::framework::AnswerTree standing_answer(Trees trees) {
    if (trees.empty()) {
        return {};
    }
    lyd_node *top = nullptr;
    trees.front().tag = "openconfig-transport-line-protection:aps";
    stand(top, "", trees);
    return ocpsm::framework::AnswerTree(ocpsm::OwnedNode(top));
}

std::string settled(const Case &test) {
    Trees tops = parsed(test, Kind::edit);
    const auto standing = standing_answer(read_dump(input(test, "standing").value_or("")));
    ocpsm::framework::settle_existence(tops, standing, [&standing] { return standing.entry_names(); });
    return each(tops);
}

std::string modules(const Trees &tops) {
    std::string text;
    for (const std::string &name : ocpsm::framework::named_modules(tops)) {
        text += name + "\n";
    }
    return text + (ocpsm::framework::concerns_all_modules(tops) ? "(all)\n" : "");
}

std::string syntax_name(std::optional<ocpsm::framework::Syntax> syntax) {
    return !syntax ? "neither" : *syntax == ocpsm::framework::Syntax::xml ? "xml" : "json";
}

std::string opening(const std::string &text) {
    const auto opening = ocpsm::framework::opening_of(text);
    return syntax_name(opening.syntax) + " " + std::string(opening.element) + ": " + std::string(opening.body) + "\n";
}

std::string syntax(const std::string &text) {
    const auto request = ocpsm::framework::inspect(text);
    return syntax_name(request.syntax) + ": " + std::string(request.body) + "\n";
}

std::string steps(const std::string &path) {
    std::string text;
    for (const auto &step : ocpsm::framework::parse_instance_path(path)) {
        text += step.name;
        for (const auto &key : step.keys) {
            text += " " + key.name + "=" + key.value;
        }
        text += "\n";
    }
    return text;
}

std::string schema(const std::string &path) {
    const lysc_node *node = ocpsm::framework::schema_of(path);
    return (node == nullptr ? "none" : ocpsm::models::schema_path(*node)) + "\n";
}

std::string of_a_path(const std::string &path, const std::string &value, const std::string &wanted) {
    const Kind kind = wanted == "read" ? Kind::get : Kind::edit;
    return dump(ocpsm::framework::type_request(wanted == "read"      ? ocpsm::framework::read_of(path)
                                               : wanted == "setting" ? ocpsm::framework::setting_of(path, value)
                                               : wanted == "deletion"
                                                   ? ocpsm::framework::deletion_of(path)
                                                   : ocpsm::framework::deletion_of(path, Operation::remove),
                                               kind, true));
}

// Marks as the plug-in's walkers do the nodes that are to be created, and keys.
void walk(kidl_yfw_datatree &node) {
    node.second_flags = node.operation == YFW_OPERATION_CREATE ? YFW_NODE2_KIND_SET : 0;
    node.flags |= std::string_view(node.tag) == "name" ? YFW_NODE_KEY_CONSUMED : 0;
    for (int index = 0; index < node.child_count; ++index) {
        walk(node.children[index]);
    }
}

std::string passed_over(const Trees &trees, Kind kind) {
    ocpsm::framework::PassedOver selections(kind);
    std::string text;
    for (const RequestNode &tree : trees) {
        ocpsm::framework::DataTree walked(tree);
        walk(walked.root());
        text += std::to_string(selections.add(walked.root())) + " walked\n";
    }
    for (const std::string &warning : selections.warnings()) {
        text += warning + "\n";
    }
    return text;
}

std::string of_a_tree(const Case &test, const std::string &wanted) {
    const Kind kind = kind_of(wanted);
    if (wanted.ends_with("passed over")) {
        return passed_over(parsed(test, kind), kind);
    }
    if (wanted.ends_with("parsed")) {
        return content(ocpsm::framework::parse_request(text_of(test), kind), kind);
    }
    if (wanted.ends_with("unchecked")) {
        return dump(typed(test, kind, false));
    }
    if (wanted.ends_with("entry")) {
        return dump(typed(test, kind).at(0).children.at(0).children.at(0).children);
    }
    if (wanted.ends_with("typed")) {
        return dump(typed(test, kind));
    }
    if (wanted.ends_with("handed over")) {
        return each(kind == Kind::edit
                        ? ocpsm::framework::hand_over_edit(ready(test, kind), lines(input(test, "fitted")))
                        : ocpsm::framework::hand_over_read(ready(test, kind)));
    }
    throw case_runner::BadCase(test.file, test.line, "nothing is called " + wanted);
}

std::string of_a_text(const Case &test, const std::string &wanted) {
    const std::string text = text_of(test);
    if (wanted == "line" || wanted == "quoted") {
        return (wanted == "line" ? ocpsm::one_line(text) : ocpsm::quoted(text)) + "\n";
    }
    if (wanted == "literal") {
        return ocpsm::one_line(ocpsm::xpath_literal(text)) + "\n";
    }
    if (wanted == "opening") {
        return opening(text);
    }
    if (wanted == "kind") {
        const auto kind = ocpsm::framework::kind_named(text);
        return !kind ? "none\n" : *kind == Kind::edit ? "edit\n" : *kind == Kind::get ? "get\n" : "get-config\n";
    }
    if (wanted == "syntax") {
        return syntax(text);
    }
    if (wanted == "steps") {
        return steps(text);
    }
    if (wanted == "xpath") {
        return ocpsm::framework::xpath_of(text).value_or("none") + "\n";
    }
    if (wanted == "schema") {
        return schema(text);
    }
    if (wanted == "read" || wanted == "setting" || wanted == "deletion" || wanted == "removal") {
        return of_a_path(text, input(test, "value").value_or(""), wanted);
    }
    if (wanted == "settled") {
        return settled(test);
    }
    return wanted == "modules" ? modules(parsed(test, Kind::edit)) : of_a_tree(test, wanted);
}

// The case with one of its input lines as the whole input, between the sections "before" and "after".
Case with_input(const Case &test, const std::string &section, const std::string &line) {
    Case single{test.file, test.line, test.name, {}, {}};
    for (const case_runner::Section &other : test.input) {
        if (!other.name.empty() && other.name != section) {
            single.input.push_back(other);
        }
    }
    case_runner::Section input{section, test.line, {}};
    input.lines = {{test.line, without_last_end(part(test, "before") + line + "\n" + part(test, "after"))}};
    single.input.push_back(input);
    return single;
}

// What is wanted, or the error instead of it; "each" wants it of every line of the input, or of the tree.
std::string answer(const Case &test, const std::string &wanted) {
    if (wanted.starts_with("each ")) {
        const std::string section = test.find_input("tree") == nullptr ? "" : "tree";
        std::string all;
        for (const case_runner::Line &line : test.find_input(section)->lines) {
            all += answer(with_input(test, section, line.text), wanted.substr(5));
        }
        return all;
    }
    std::string text;
    const std::string error = error_of([&] { text = of_a_text(test, wanted); });
    return error == "nothing" ? text : ocpsm::one_line(error, ocpsm::whole_text) + "\n";
}

const bool registered = case_runner::register_cases(CASES_DIRECTORY, answer);

} // namespace

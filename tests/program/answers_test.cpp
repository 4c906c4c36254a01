// Every answer that a transcript or the README shows is data of the OpenConfig model, and every native request names
// nodes of the native models only. The build names the models' directory, OCPSM_YANG, that of the transcripts,
// OCPSM_TRANSCRIPTS, and the README, OCPSM_README.
#include <libyang/libyang.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// ---- what is shown ----

enum class Kind { answer, native_request, other };

struct Shown {
    std::string where; // file:line
    std::string text;
    bool whole = true; // false: it has a beginning and no end
};

bool is_xml(const Shown &shown) {
    return shown.text.starts_with('<');
}

Kind kind_of(const Shown &shown) {
    if (is_xml(shown)) {
        return shown.text.starts_with("<aps") ? Kind::answer : Kind::native_request;
    }
    if (shown.text.find("\n  \"openconfig-transport-line-protection:") != std::string::npos) {
        return Kind::answer;
    }
    return shown.text.find("\n  \"Vexlo-") != std::string::npos ? Kind::native_request : Kind::other;
}

// The line with which a text ends that begins with this one; none where nothing begins. Nothing is shown by "{}".
std::optional<std::string> end_of(const std::string &begin) {
    if (begin == "{") {
        return "}";
    }
    for (const std::string name : {"aps", "nc:filter", "nc:config"}) {
        if (begin.starts_with("<" + name + " ")) {
            return begin.ends_with("/>") ? begin : "</" + name + ">";
        }
    }
    return std::nullopt;
}

// The lines of output of a transcript, of a Markdown file those of its blocks marked "console"; all others empty.
std::vector<std::string> output_lines(std::istream &file, bool markdown) {
    std::vector<std::string> lines;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (markdown && line.starts_with("```")) {
            inside = line == "```console";
            line.clear();
        } else if (!markdown) {
            inside = line.starts_with("  ");
            line.erase(0, inside ? 2 : line.size());
        }
        const bool command = line.starts_with("$ ") || line.starts_with("> ");
        lines.push_back(inside && !command ? line : "");
    }
    return lines;
}

// Of a document about native requests only these are data of a model: each is made to stand alone.
void take_requests_out(std::vector<std::string> &lines) {
    bool in_document = false;
    bool in_requests = false;
    for (std::size_t index = 0; index + 1 < lines.size(); ++index) {
        std::string &line = lines.at(index);
        in_document =
            in_document || line == "<result>" || (line == "{" && lines.at(index + 1).starts_with("  \"native\""));
        if (!in_document) {
            continue;
        }
        const bool ends = line == "}" || line == "</result>";
        const bool begins_requests = line == "  \"native\": [" || line == "  <native>";
        in_requests = (in_requests || begins_requests) && line != "  ]," && line != "  </native>" && !ends;
        line.erase(0, in_requests && !begins_requests ? 4 : line.size());
        line = line == "}," ? "}" : line;
        in_document = !ends;
    }
}

std::vector<Shown> shown_in(std::istream &file, const std::string &name, bool markdown) {
    std::vector<Shown> all;
    std::vector<std::string> lines = output_lines(file, markdown);
    take_requests_out(lines);
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const auto end = end_of(lines.at(index));
        if (!end) {
            continue;
        }
        Shown shown{name + ":" + std::to_string(index + 1), lines.at(index) + "\n"};
        while (lines.at(index) != *end) {
            ++index;
            shown.whole = index < lines.size() && !lines.at(index).empty();
            if (!shown.whole) {
                break;
            }
            shown.text += lines.at(index) + "\n";
        }
        all.push_back(std::move(shown));
    }
    return all;
}

std::vector<Shown> shown_in(const std::filesystem::path &path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return shown_in(file, path.filename().string(), path.extension() == ".md");
}

std::vector<Shown> shown_in_text(const std::string &text) {
    std::istringstream file(text);
    return shown_in(file, "text", false);
}

// ---- what the models say ----

struct Free {
    void operator()(ly_ctx *context) const noexcept { ly_ctx_destroy(context); }
    void operator()(lyd_node *tree) const noexcept { lyd_free_all(tree); }
};

class Models {
public:
    // Those whose file names begin so.
    explicit Models(const std::string &begin) {
        ly_ctx *context = nullptr;
        require(ly_ctx_new(OCPSM_YANG, 0, &context));
        context_.reset(context);
        for (const auto &file : std::filesystem::directory_iterator(OCPSM_YANG)) {
            const std::string name = file.path().stem().string();
            if (name.starts_with(begin)) {
                require(ly_ctx_load_module(context, name.c_str(), nullptr, nullptr) == nullptr ? LY_EVALID
                                                                                               : LY_SUCCESS);
            }
        }
    }

    // What is wrong with an answer; nothing when it is data of the models. It may be a part of the data: what it leaves
    // out is not missed.
    std::string wrong_in_answer(const Shown &shown) const {
        parse(shown, LYD_PARSE_STRICT | LYD_PARSE_ONLY);
        return message_;
    }

    // What is wrong with a request. It is no data: leaves are selected or deleted without a value.
    std::string wrong_in_request(const Shown &shown) const {
        const auto tree = parse(without_nulls(shown), LYD_PARSE_OPAQ | LYD_PARSE_ONLY);
        if (!message_.empty()) {
            return message_;
        }
        const lyd_node *top = tree.get();
        if (is_xml(shown)) {
            top = child_of(top); // the element of NETCONF's around it
        }
        int count = 0;
        const std::string wrong = wrong_below(top, nullptr, count);
        return count == 0 && wrong.empty() ? "names nothing" : wrong;
    }

private:
    static void require(LY_ERR result) {
        if (result != LY_SUCCESS) {
            throw std::runtime_error("the models cannot be compiled");
        }
    }

    // libyang takes [null] for no leaf but an empty one, and the empty text for any.
    static Shown without_nulls(Shown shown) {
        constexpr std::string_view null = "[null]";
        for (std::size_t at = shown.text.find(null); at != std::string::npos; at = shown.text.find(null, at)) {
            shown.text.replace(at, null.size(), "\"\"");
        }
        return shown;
    }

    std::unique_ptr<lyd_node, Free> parse(const Shown &shown, std::uint32_t options) const {
        ly_log_options(LY_LOSTORE_LAST);
        ly_err_clean(context_.get(), nullptr);
        lyd_node *tree = nullptr;
        const LY_ERR result = lyd_parse_data_mem(context_.get(), shown.text.c_str(), is_xml(shown) ? LYD_XML : LYD_JSON,
                                                 options, 0, &tree);
        const char *reason = ly_errmsg(context_.get());
        message_ = result == LY_SUCCESS ? "" : reason == nullptr ? "cannot be parsed" : reason;
        if (message_.empty() && tree == nullptr) {
            message_ = "is empty";
        }
        return std::unique_ptr<lyd_node, Free>(tree);
    }

    // The module that an opaque node says it is of: in XML by a namespace; in JSON by a name, else it is its parent's.
    const lys_module *module_of(const lyd_node_opaq &node, const lysc_node *parent) const {
        if (node.format == LY_VALUE_XML) {
            return node.name.module_ns == nullptr
                       ? nullptr
                       : ly_ctx_get_module_implemented_ns(context_.get(), node.name.module_ns);
        }
        if (node.name.module_name != nullptr) {
            return ly_ctx_get_module_implemented(context_.get(), node.name.module_name);
        }
        return parent == nullptr ? nullptr : parent->module;
    }

    // A node without a schema is one of these: the two begin alike.
    static const lyd_node_opaq &opaque_of(const lyd_node &node) {
        return reinterpret_cast<const lyd_node_opaq &>(node);
    }

    static std::string name_of(const lyd_node &node) {
        return node.schema == nullptr ? opaque_of(node).name.name : node.schema->name;
    }

    static const lyd_node *child_of(const lyd_node *node) {
        return node->schema == nullptr ? opaque_of(*node).child : lyd_child(node);
    }

    const lysc_node *schema_of(const lyd_node &node, const lysc_node *parent) const {
        if (node.schema != nullptr) {
            return node.schema;
        }
        const lyd_node_opaq &opaque = opaque_of(node);
        const lys_module *module = module_of(opaque, parent);
        return module == nullptr ? nullptr : lys_find_child(parent, module, opaque.name.name, 0, 0, 0);
    }

    std::string wrong_below(const lyd_node *node, const lysc_node *parent, int &count) const {
        for (; node != nullptr; node = node->next) {
            const lysc_node *schema = schema_of(*node, parent);
            if (schema == nullptr) {
                return name_of(*node) + " is no native node";
            }
            ++count;
            if (std::string wrong = wrong_below(child_of(node), schema, count); !wrong.empty()) {
                return wrong;
            }
        }
        return {};
    }

    std::unique_ptr<ly_ctx, Free> context_;
    mutable std::string message_;
};

const Models &openconfig() {
    static const Models models("openconfig-");
    return models;
}

const Models &native() {
    static const Models models("Vexlo-");
    return models;
}

std::string wrong_in(const Shown &shown) {
    if (!shown.whole) {
        return "has no end";
    }
    switch (kind_of(shown)) {
    case Kind::answer:
        return openconfig().wrong_in_answer(shown);
    case Kind::native_request:
        return native().wrong_in_request(shown);
    case Kind::other:
        break;
    }
    return {};
}

// ---- all that are shown ----

std::size_t count(const std::vector<Shown> &all, Kind kind) {
    return static_cast<std::size_t>(
        std::count_if(all.begin(), all.end(), [kind](const Shown &shown) { return kind_of(shown) == kind; }));
}

std::vector<std::filesystem::path> texts() {
    std::vector<std::filesystem::path> paths{OCPSM_README};
    for (const auto &file : std::filesystem::directory_iterator(OCPSM_TRANSCRIPTS)) {
        if (file.path().extension() == ".transcript") {
            paths.push_back(file.path());
        }
    }
    return paths;
}

// Counted by hand: without a number, no answer might be found any more and nothing be wrong with any.
constexpr std::size_t answers_shown = 19;         // 7 in XML, 12 in JSON
constexpr std::size_t native_requests_shown = 15; // 8 in XML, 7 in JSON

TEST(ShownAnswers, AreDataOfTheModels) {
    std::size_t answers = 0;
    std::size_t native_requests = 0;
    for (const auto &path : texts()) {
        const std::vector<Shown> all = shown_in(path);
        for (const Shown &shown : all) {
            EXPECT_EQ(wrong_in(shown), "") << shown.where;
        }
        answers += count(all, Kind::answer);
        native_requests += count(all, Kind::native_request);
    }
    EXPECT_GE(answers, answers_shown);
    EXPECT_GE(native_requests, native_requests_shown);
}

// ---- what must be found wrong, and what not ----

std::string transcript_of(const std::vector<std::string> &lines) {
    std::string text = "Words.\n\n  $ ocpsm get\n";
    for (const std::string &line : lines) {
        text += "  " + line + "\n";
    }
    return text + "\nMore words.\n";
}

const std::string aps = R"(<aps xmlns="http://openconfig.net/yang/optical-transport-line-protection">)";
const std::string filter = R"(<nc:filter xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0" type="subtree">)";

std::vector<std::string> module(const std::string &leaf) {
    return {aps, "<aps-modules><aps-module><name>a</name>", leaf, "</aps-module></aps-modules>", "</aps>"};
}

std::vector<std::string> module_in_json(const std::string &config) {
    return {
        "{",
        R"(  "openconfig-transport-line-protection:aps": {"aps-modules": {"aps-module": [{"name": "a", "config": )" +
            config + "}]}}",
        "}"};
}

std::vector<std::string> slot(const std::string &content) {
    return {
        filter,
        R"(<active-nodes xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg"><active-node><node-name/>)",
        R"(<slot xmlns="http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg">)" + content + "</slot>",
        "</active-node></active-nodes>", "</nc:filter>"};
}

std::vector<std::string> slot_in_json(const std::string &content) {
    return {"{", R"(  "Vexlo-ORBIT-config-mda-cfg:active-nodes": {"active-node": [{"node-name": "n",)",
            R"("Vexlo-ORBIT-tlm2200-ots-cfg:slot": [{"slot-id": 1, )" + content + "}]}]}", "}"};
}

std::vector<std::string> document(const std::vector<std::string> &request) {
    std::vector<std::string> lines = {"{", R"(  "native": [)"};
    for (const std::string &line : request) {
        lines.push_back("    " + line);
    }
    lines.insert(lines.end(), {"  ],", R"(  "warnings": [)", R"(    "none is native")", "  ]", "}"});
    return lines;
}

struct Row {
    const char *what;
    std::vector<std::string> lines;
    const char *reason; // a part of it; empty: nothing is wrong
    const char *where = "text:4";
};

const std::vector<Row> rows{
    {"a leaf", module("<config><revertive>true</revertive></config>"), ""},
    {"state", module("<state><active-path>PRIMARY</active-path></state>"), ""},
    {"an unknown leaf", module("<config><revertiv>true</revertiv></config>"), "revertiv"},
    {"a value of another type", module("<config><revertive>yes</revertive></config>"), "yes"},
    {"more digits than the model has",
     module("<state><primary-switch-threshold>-1.234</primary-switch-threshold></state>"), "-1.234"},
    {"no line", module("<state><active-path>TERTIARY</active-path></state>"), "TERTIARY"},
    {"an entry without its key",
     {aps, "<aps-modules><aps-module><config/></aps-module></aps-modules>", "</aps>"},
     "name"},
    {"another namespace", {R"(<aps xmlns="urn:x">)", "</aps>"}, "urn:x"},
    {"no end", {aps, "<aps-modules/>"}, "has no end"},
    {"another end", {aps, "</aps-modules>", "</aps>"}, "aps"},

    {"JSON", module_in_json(R"({"revertive": true})"), ""},
    {"a truth value as a text", module_in_json(R"({"revertive": "true"})"), "true"},
    {"a decimal as a number", module_in_json(R"({"primary-switch-threshold": -1.5})"), "-1.5"},
    {"an unknown member", module_in_json(R"({"colour": "red"})"), "colour"},
    {"no end in JSON", {"{", R"(  "openconfig-transport-line-protection:aps": {)"}, "has no end"},

    {"a native leaf", slot("<slot-id>1</slot-id><psm><revertive><enable/></revertive></psm>"), ""},
    {"no native leaf", slot("<slot-id>1</slot-id><psm><revertive><enabled/></revertive></psm>"),
     "enabled is no native node"},
    {"a native leaf in another place", slot("<psm><enable/></psm>"), "enable is no native node"},
    {"a native node of another namespace", slot(R"(<psm xmlns="urn:x"/>)"), "psm is no native node"},
    {"nothing native", {filter, "</nc:filter>"}, "names nothing"},

    {"native JSON", slot_in_json(R"("psm": {"revertive": {"enable": [null]}})"), ""},
    {"a native operation",
     slot_in_json(R"("psm": {"lockout-from": [null], "@lockout-from": {"ietf-netconf:operation": "delete"}})"), ""},
    {"a native member in a document", document(slot_in_json(R"("psm": {"revertive": {"enable": [null]}})")), "",
     "text:6"},
    {"no native member in a document", document(slot_in_json(R"("psm": {"revertive": {"enabled": [null]}})")),
     "enabled is no native node", "text:6"},
    {"no native member", slot_in_json(R"("psm": {"revertive": {"enabled": [null]}})"), "enabled is no native node"},
    {"no native member with an operation",
     slot_in_json(R"("psm": {"lockout": [null], "@lockout": {"ietf-netconf:operation": "delete"}})"),
     "lockout is no native node"},
};

TEST(ShownAnswers, ThatAreBrokenAreFound) {
    for (const Row &row : rows) {
        const std::vector<Shown> all = shown_in_text(transcript_of(row.lines));
        ASSERT_EQ(all.size(), 1U) << row.what;
        EXPECT_EQ(all.front().where, row.where) << row.what;
        EXPECT_NE(kind_of(all.front()), Kind::other) << row.what;
        const std::string wrong = wrong_in(all.front());
        EXPECT_EQ(wrong.empty(), std::string(row.reason).empty()) << row.what << ": " << wrong;
        EXPECT_THAT(wrong, testing::HasSubstr(row.reason)) << row.what;
    }
}

// Requests that are typed, words and what is no answer are passed over; two answers in a row are two.
TEST(ShownAnswers, AreTakenFromTheOutputOnly) {
    EXPECT_THAT(
        shown_in_text("<aps xmlns=\"x\">\n  $ ocpsm edit - <<END\n  > " + aps + "\n  > </aps>\n  > END\n  {}\n"),
        testing::IsEmpty());
    std::vector<std::string> lines = module("<config/>");
    const std::vector<std::string> second = module_in_json("{}");
    lines.insert(lines.end(), second.begin(), second.end());
    EXPECT_EQ(count(shown_in_text(transcript_of(lines)), Kind::answer), 2U);
    EXPECT_EQ(count(shown_in_text(transcript_of({"{", "  \"clock\": 1", "}"})), Kind::other), 1U);
    std::istringstream markdown(
        "```console\n{\n  \"openconfig-transport-line-protection:aps\": {}\n}\n```\n```text\n{\n}\n```\n");
    EXPECT_EQ(shown_in(markdown, "README.md", true).size(), 1U);
}

} // namespace

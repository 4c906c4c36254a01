// Values of every form, for leaves of every type, both ways; documents.
#include <gmock/gmock.h>
#include <google/protobuf/text_format.h>

#include "servers/gnmi/refusal.hpp"
#include "servers/gnmi/value.hpp"

namespace {

using ocpsm::Leaf;
using ocpsm::ModelNode;
using ocpsm::RequestNode;
using ocpsm::gnmi::Refusal;
namespace messages = ::gnmi;

const std::string module_one = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']";

const ModelNode &node(const std::string &path) {
    return *ocpsm::gnmi::node_of(ocpsm::gnmi::steps_of(path));
}

const ModelNode &leaf_of_type(const std::string &type) {
    static const std::map<std::string, std::string> leaves{
        {"boolean", "/config/revertive"},
        {"uint32", "/config/wait-to-restore-time"},
        {"decimal64", "/config/primary-switch-threshold"},
        {"enumeration", "/config/force-to-port"},
        {"identityref", "/state/active-path"},
        {"uint64", "/ports/common-in/state/optical-power/interval"},
        {"string", "/config/name"},
    };
    const ModelNode &found = node(module_one + leaves.at(type));
    EXPECT_EQ(found.type, type);
    return found;
}

std::string words(const messages::TypedValue &value) {
    return value.ShortDebugString();
}

messages::TypedValue value(const std::string &text) {
    messages::TypedValue message;
    EXPECT_TRUE(google::protobuf::TextFormat::ParseFromString(text, &message)) << text;
    return message;
}

// ---- out ----

struct WriteRow {
    std::string type;
    std::string value;
    std::string json;
    std::string ietf;
    std::string scalar;
};

TEST(GnmiValue, IsWrittenInEachEncoding) {
    const std::vector<WriteRow> rows{
        {"boolean", "true", "json_val: \"true\"", "json_ietf_val: \"true\"", "bool_val: true"},
        {"boolean", "false", "json_val: \"false\"", "json_ietf_val: \"false\"", "bool_val: false"},
        {"uint32", "10000", "json_val: \"10000\"", "json_ietf_val: \"10000\"", "uint_val: 10000"},
        {"uint64", "18446744073709551615", "json_val: \"18446744073709551615\"",
         R"(json_ietf_val: "\"18446744073709551615\"")", "uint_val: 18446744073709551615"},
        {"decimal64", "-12.34", "json_val: \"-12.34\"", R"(json_ietf_val: "\"-12.34\"")", "double_val: -12.34"},
        {"enumeration", "NONE", R"(json_val: "\"NONE\"")", R"(json_ietf_val: "\"NONE\"")", "string_val: \"NONE\""},
        {"identityref", "openconfig-transport-line-protection:PRIMARY", R"(json_val: "\"PRIMARY\"")",
         R"(json_ietf_val: "\"openconfig-transport-line-protection:PRIMARY\"")", "string_val: \"PRIMARY\""},
        {"string", "a\"b", R"(json_val: "\"a\\\"b\"")", R"(json_ietf_val: "\"a\\\"b\"")", R"(string_val: "a\"b")"},
    };
    for (const WriteRow &row : rows) {
        const auto written = [&row](messages::Encoding encoding) {
            messages::TypedValue message;
            ocpsm::gnmi::write_value(leaf_of_type(row.type), row.value, encoding, message);
            return words(message);
        };
        EXPECT_EQ(written(messages::JSON), row.json);
        EXPECT_EQ(written(messages::JSON_IETF), row.ietf);
        EXPECT_EQ(written(messages::PROTO), row.scalar);
    }
}

std::string document(const std::vector<Leaf> &leaves, std::size_t depth, messages::Encoding encoding) {
    const auto snapshot = ocpsm::gnmi::snapshot_of(leaves, 0);
    std::vector<ocpsm::gnmi::DocumentLeaf> all;
    for (std::size_t at = 0; at < leaves.size(); ++at) {
        all.push_back({&snapshot->places->leaves[at], &snapshot->values[at]});
    }
    return ocpsm::gnmi::json_document(all, depth, encoding);
}

TEST(GnmiValue, DocumentsHaveWhatIsAroundTheLeaves) {
    const std::string module_two = "/aps/aps-modules/aps-module[name='0/2-PSM-OM']";
    const std::vector<Leaf> leaves{
        {module_one + "/name", "0/1-PSM-OM"},
        {module_one + "/config/revertive", "true"},
        {module_one + "/config/primary-switch-threshold", "-25.0"},
        {module_one + "/state/active-path", "openconfig-transport-line-protection:PRIMARY"},
        {module_one + "/ports/common-in/config/target-attenuation", "0.5"},
        {module_one + "/ports/common-in/state/optical-power/instant", "-1.0"},
        {module_one + "/ports/common-output/config/target-attenuation", "1.5"},
        {module_two + "/name", "0/2-PSM-OM"},
    };
    const std::string one =
        R"("config":{"revertive":true,"primary-switch-threshold":-25.0},"state":{"active-path":"PRIMARY"},)"
        R"("ports":{"common-in":{"config":{"target-attenuation":0.5},"state":{"optical-power":{"instant":-1.0}}},)"
        R"("common-output":{"config":{"target-attenuation":1.5}}})";
    EXPECT_EQ(document(leaves, 0, messages::JSON),
              R"({"aps":{"aps-modules":{"aps-module":[{"name":"0/1-PSM-OM",)" + one + R"(},{"name":"0/2-PSM-OM"}]}}})");
    EXPECT_EQ(document({leaves.begin(), leaves.end() - 1}, 3, messages::JSON), R"({"name":"0/1-PSM-OM",)" + one + "}");
    EXPECT_EQ(document({leaves[1], leaves[2]}, 4, messages::JSON_IETF),
              R"({"openconfig-transport-line-protection:revertive":true,)"
              R"("openconfig-transport-line-protection:primary-switch-threshold":"-25.0"})");
    EXPECT_EQ(document({leaves[0], leaves[7]}, 2, messages::JSON_IETF),
              R"({"openconfig-transport-line-protection:aps-module":[{"name":"0/1-PSM-OM"},{"name":"0/2-PSM-OM"}]})");
    EXPECT_EQ(document({leaves[2]}, 5, messages::JSON_IETF), "\"-25.0\"");
}

// ---- in ----

struct ReadRow {
    std::string type;
    std::string value;
    std::string expected;
};

TEST(GnmiValue, IsReadOrRefused) {
    const std::vector<ReadRow> rows{
        {"boolean", "bool_val: true", "true"},
        {"boolean", "json_val: ' false '", "false"},
        {"boolean", "json_ietf_val: '\"true\"'", "3 a leaf of type boolean cannot be given as a JSON string at /x"},
        {"boolean", "string_val: 'true'", "3 a leaf of type boolean cannot be given as string_val at /x"},
        {"boolean", "uint_val: 1", "3 a leaf of type boolean cannot be given as uint_val at /x"},
        {"uint32", "uint_val: 7", "7"},
        {"uint32", "int_val: -7", "-7"}, // the model refuses it
        {"uint32", "json_val: '7'", "7"},
        {"uint32", "json_val: '7.5'", "7.5"},
        {"uint32", "double_val: 7", "3 a leaf of type uint32 cannot be given as double_val at /x"},
        {"uint32", "bool_val: true", "3 a leaf of type uint32 cannot be given as bool_val at /x"},
        {"decimal64", "double_val: -20.55", "-20.55"},
        {"decimal64", "double_val: 1e22", "10000000000000000000000"},
        {"decimal64", "double_val: nan", "3 a value is no finite number at /x"},
        {"decimal64", "double_val: inf", "3 a value is no finite number at /x"},
        {"decimal64", "float_val: 0.1", "0.1"},
        {"decimal64", "int_val: -20", "-20"},
        {"decimal64", "decimal_val { digits: -205 precision: 1 }", "-20.5"},
        {"decimal64", "decimal_val { digits: -5 precision: 2 }", "-0.05"},
        {"decimal64", "decimal_val { digits: 7 }", "7"},
        {"decimal64", "decimal_val { digits: -9223372036854775808 precision: 18 }", "-9.223372036854775808"},
        {"decimal64", "decimal_val { digits: 1 precision: 19 }",
         "3 a decimal has more than 18 digits behind the point at /x"},
        {"decimal64", "json_ietf_val: '\"-20.5\"'", "-20.5"},
        {"decimal64", "json_val: '-20.5'", "-20.5"},
        {"decimal64", "json_val: '-205e-1'", "-20.5"},
        {"decimal64", "json_val: '[1]'", "3 a leaf of type decimal64 cannot be given as a JSON array at /x"},
        {"decimal64", "json_val: '{}'", "3 a leaf of type decimal64 cannot be given as a JSON object at /x"},
        {"decimal64", "json_val: 'null'", "3 a leaf of type decimal64 cannot be given as a JSON null at /x"},
        {"decimal64", "json_val: ''", "3 the value is no JSON: byte 0: The document is empty. at /x"},
        {"decimal64", "json_val: '1 2'",
         "3 the value is no JSON: byte 2: The document root must not be followed by other values. at /x"},
        {"enumeration", "string_val: 'PRIMARY'", "PRIMARY"},
        {"enumeration", "json_val: '\"\\xff\"'", "3 the value is no JSON: byte 1: Invalid encoding in string. at /x"},
        {"enumeration", "json_val: '1'", "3 a leaf of type enumeration cannot be given as a JSON number at /x"},
        {"string", "string_val: ''", ""},
        {"string", "", "3 there is no value at /x"},
        {"string", "leaflist_val {}", "3 the model has no leaf-list at /x"},
        {"string", "bytes_val: 'x'",
         "12 values are given as JSON, JSON_IETF or scalars, not as bytes, ASCII or Any at /x"},
        {"string", "ascii_val: 'x'",
         "12 values are given as JSON, JSON_IETF or scalars, not as bytes, ASCII or Any at /x"},
        {"string", "proto_bytes: 'x'",
         "12 values are given as JSON, JSON_IETF or scalars, not as bytes, ASCII or Any at /x"},
        {"string", "any_val {}", "12 values are given as JSON, JSON_IETF or scalars, not as bytes, ASCII or Any at /x"},
    };
    for (const ReadRow &row : rows) {
        std::string read;
        try {
            read = ocpsm::gnmi::read_value(leaf_of_type(row.type), value(row.value), "/x");
        } catch (const Refusal &refusal) {
            read = std::to_string(refusal.code) + " " + refusal.what();
        }
        EXPECT_EQ(read, row.expected) << row.type << " " << row.value;
    }
}

std::string words(const std::vector<RequestNode> &nodes) {
    std::string text;
    for (const RequestNode &one : nodes) {
        EXPECT_EQ(one.namespace_uri, "http://openconfig.net/yang/optical-transport-line-protection");
        text += (text.empty() ? "" : " ") + one.tag;
        text += one.value ? "=" + *one.value : "(" + words(one.children) + ")";
    }
    return text;
}

struct TreeRow {
    std::string path;
    std::string json;
    std::string expected;
};

TEST(GnmiValue, ObjectsBecomeTreesOrAreRefused) {
    const std::vector<TreeRow> rows{
        {"/", "{}", ""},
        {"/", R"({"openconfig-transport-line-protection:aps":{"aps-modules":{"aps-module":[]}}})",
         "aps(aps-modules())"},
        {"/aps/aps-modules", R"({"aps-module":[{"config":{"revertive":true},"name":"x"},{"name":"y"}]})",
         "aps-module(name=x config(revertive=true)) aps-module(name=y)"},
        {module_one, R"({"ports":{"common-in":{"config":{"target-attenuation":2.50}}}})",
         "ports(common-in(config(target-attenuation=2.5)))"},
        {module_one, "[]", "3 the node is a JSON object at /p"},
        {module_one, "1", "3 the node is a JSON object at /p"},
        {module_one, R"({"config":1})", "3 the node is a JSON object at /p/config"},
        {module_one, R"({"config":{"nothing":1}})", "3 the model has no such node at /p/config/nothing"},
        {module_one, R"({"config":{},"openconfig-transport-line-protection:config":{}})",
         "3 the value has the member twice at /p/config"},
        {module_one, R"({"x:config":{}})",
         "3 the value has a member x:config, which is no node of the module openconfig-transport-line-protection at "
         "/p"},
        {module_one, R"({"@config":{}})",
         "3 the value has a member @config, which is no node of the module openconfig-transport-line-protection at /p"},
        {"/aps/aps-modules", R"({"aps-module":{}})", "3 a list is a JSON array at /p/aps-module"},
        {"/aps/aps-modules", R"({"aps-module":[{}]})", "3 an entry of the list lacks its key name at /p/aps-module"},
        {"/aps", std::string(1'000'000, '[') + std::string(1'000'000, ']'), "3 the node is a JSON object at /p"},
    };
    for (const TreeRow &row : rows) {
        messages::TypedValue message;
        message.set_json_val(row.json);
        std::string read;
        try {
            read = words(ocpsm::gnmi::read_tree(node(row.path), message, "/p"));
        } catch (const Refusal &refusal) {
            read = std::to_string(refusal.code) + " " + refusal.what();
        }
        EXPECT_EQ(read, row.expected) << row.json.substr(0, 200);
    }
}

} // namespace

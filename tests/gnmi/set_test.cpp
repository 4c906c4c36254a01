// What the operations of a Set come to.
#include <gmock/gmock.h>
#include <google/protobuf/text_format.h>

#include "servers/gnmi/refusal.hpp"
#include "servers/gnmi/set.hpp"

namespace {

using ocpsm::RequestNode;
using ocpsm::Tree;
using ocpsm::gnmi::Refusal;
namespace messages = ::gnmi;

// aps(-) is removed, aps(!...) replaced, aps(...) merged.
std::string words(const Tree &nodes) {
    std::string text;
    for (const RequestNode &node : nodes) {
        text += (text.empty() ? "" : " ") + node.tag;
        const std::string mark = node.operation == ocpsm::Operation::merge    ? ""
                                 : node.operation == ocpsm::Operation::remove ? "-"
                                                                              : "!";
        text += node.value ? mark + "=" + *node.value : "(" + mark + words(node.children) + ")";
    }
    return text;
}

std::string elem(const std::string &name, const std::string &key = {}) {
    return "elem {name: '" + name + "'" + (key.empty() ? "" : " key {key: 'name' value: '" + key + "'}") + "} ";
}

const std::string list = elem("aps") + elem("aps-modules");

std::string module_path(const std::string &name, const std::vector<std::string> &below = {}) {
    std::string text = list + elem("aps-module", name);
    for (const std::string &step : below) {
        text += elem(step);
    }
    return text;
}

std::string operation(const std::string &kind, const std::string &path, const std::string &value) {
    return kind + " {path {" + path + "} val {" + value + "}} ";
}

struct Row {
    std::string what;
    std::string request;
    std::string expected;
};

std::shared_ptr<const ocpsm::gnmi::Snapshot> configuration() {
    std::vector<ocpsm::Leaf> leaves;
    for (const char *name : {"A", "B"}) {
        const std::string module = std::string("/aps/aps-modules/aps-module[name='") + name + "']";
        leaves.push_back({module + "/name", name});
        leaves.push_back({module + "/config/name", name});
        leaves.push_back({module + "/config/revertive", "true"});
        leaves.push_back({module + "/ports/common-in/config/target-attenuation", "1.0"});
    }
    return ocpsm::gnmi::snapshot_of(leaves, 0);
}

void expect_rows(const std::vector<Row> &rows) {
    for (const Row &row : rows) {
        messages::SetRequest request;
        ASSERT_TRUE(google::protobuf::TextFormat::ParseFromString(row.request, &request)) << row.request;
        std::string told;
        try {
            told = words(ocpsm::gnmi::edit_tree(request, configuration));
        } catch (const Refusal &refusal) {
            told = std::to_string(refusal.code) + " " + refusal.what();
        }
        EXPECT_EQ(told, row.expected) << row.what;
    }
}

const std::string timer = operation("update", module_path("A", {"config", "wait-to-restore-time"}), "uint_val: 7");
const std::string revertive = module_path("A", {"config", "revertive"});
const std::string revertive_config = "json_val: '{\"revertive\": true}'";

TEST(GnmiSet, OperationsAreCombinedInTheirOrder) {
    expect_rows({
        {"nothing", "", ""},
        {"a leaf", timer, "aps(aps-modules(aps-module(name=A config(wait-to-restore-time=7))))"},
        {"the prefix is in front",
         "prefix {" + module_path("A") + "} " +
             operation("update", elem("config") + elem("revertive"), "bool_val: true"),
         "aps(aps-modules(aps-module(name=A config(revertive=true))))"},
        {"two leaves of one module", timer + operation("update", revertive, "bool_val: true"),
         "aps(aps-modules(aps-module(name=A config(wait-to-restore-time=7 revertive=true))))"},
        {"the later update counts",
         timer + operation("update", module_path("A", {"config", "wait-to-restore-time"}), "uint_val: 8"),
         "aps(aps-modules(aps-module(name=A config(wait-to-restore-time=8))))"},
        {"a replaced leaf is set", operation("replace", revertive, "bool_val: true"),
         "aps(aps-modules(aps-module(name=A config(revertive=true))))"},
        {"delete of a leaf", "delete {" + revertive + "}", "aps(aps-modules(aps-module(name=A config(revertive(-)))))"},
        {"delete, then update", operation("update", revertive, "bool_val: true") + "delete {" + revertive + "}",
         "aps(aps-modules(aps-module(name=A config(revertive=true))))"},
        {"delete around, then update below", timer + "delete {" + module_path("A") + "}",
         "aps(aps-modules(aps-module(!name=A config(wait-to-restore-time=7))))"},
        {"delete below and around",
         "delete {" + revertive + "} delete {" + module_path("A") + "} delete {" + revertive + "}",
         "aps(aps-modules(aps-module(-name=A)))"},
        {"replace, then update below", timer + operation("replace", module_path("A", {"config"}), revertive_config),
         "aps(aps-modules(aps-module(name=A config(!revertive=true wait-to-restore-time=7))))"},
        {"replace by nothing", operation("replace", module_path("A", {"config"}), "json_val: '{}'"),
         "aps(aps-modules(aps-module(name=A config(-))))"},
        {"replace by nothing, then update",
         timer + operation("replace", module_path("A", {"config"}), "json_val: '{}'"),
         "aps(aps-modules(aps-module(name=A config(!wait-to-restore-time=7))))"},
        {"an entry with its key again",
         operation("replace", module_path("A"),
                   "json_ietf_val: '{\"name\": \"A\", "
                   "\"config\": {\"revertive\": true}}'"),
         "aps(aps-modules(aps-module(!name=A config(revertive=true))))"},
        {"the root",
         operation("replace", "",
                   "json_val: '{\"aps\": {\"aps-modules\": {\"aps-module\": [{\"name\": "
                   "\"A\", \"config\": {\"revertive\": true}}]}}}'"),
         "aps(!aps-modules(aps-module(name=A config(revertive=true))))"},
        {"the root by nothing", operation("replace", "", "json_val: '{}'"), "aps(-)"},
        {"delete of the root", "delete {}", "aps(-)"},
        {"delete of the root, then update", timer + "delete {}",
         "aps(!aps-modules(aps-module(name=A config(wait-to-restore-time=7))))"},
        {"update of the root", operation("update", "", "json_val: '{\"aps\": {}}'"), "aps()"},
        {"a list",
         operation("replace", list + elem("aps-module"),
                   "json_val: '[{\"name\": \"A\", \"config\": {\"revertive\": true}}]'"),
         "aps(aps-modules(!aps-module(name=A config(revertive=true))))"},
        {"update of a list", operation("update", list + elem("aps-module"), "json_val: '[{\"name\": \"A\"}]'"),
         "aps(aps-modules(aps-module(name=A)))"},
        {"deletes of entries that are named otherwise",
         "delete {" + module_path("A") + "} " + operation("update", module_path("B", {"config"}), revertive_config),
         "aps(aps-modules(aps-module(-name=A) aps-module(name=B config(revertive=true))))"},
        {"delete of all entries", "delete {" + list + elem("aps-module") + "}",
         "aps(aps-modules(aps-module(-name=A) aps-module(-name=B)))"},
        {"delete with wildcards", "delete {" + elem("...") + elem("target-attenuation") + "}",
         "aps(aps-modules(aps-module(name=A ports(common-in(config(target-attenuation(-))))) "
         "aps-module(name=B ports(common-in(config(target-attenuation(-)))))))"},
        {"delete of what only keys have", "delete {" + list + elem("aps-module", "*") + elem("name") + "}", ""},
        {"a key that is said again", operation("update", module_path("A", {"name"}), "string_val: 'A'"),
         "aps(aps-modules(aps-module(name=A)))"},
        {"delete of what is not there", "delete {" + module_path("C", {"config"}) + "}", ""},
    });
}

TEST(GnmiSet, RefusesWhatCannotBeWritten) {
    const std::string one = "/aps/aps-modules/aps-module[name='A']";
    expect_rows({
        {"union_replace", operation("union_replace", revertive, "bool_val: true"),
         "12 union_replace is not served; use replace"},
        {"the old value", "update {path {" + revertive + "} value {value: 'x'}}",
         "12 values are given in val; value has been given up by the protocol at " + one + "/config/revertive"},
        {"unknown", operation("update", elem("nothing"), "bool_val: true"), "5 the model has no such node at /nothing"},
        {"state", operation("update", module_path("A", {"state", "revertive"}), "bool_val: true"),
         "3 operational state cannot be written at " + one + "/state/revertive"},
        {"delete of state", "delete {" + module_path("A", {"state"}) + "}",
         "3 operational state cannot be deleted at " + one + "/state"},
        {"delete of a key", "delete {" + module_path("A", {"name"}) + "}",
         "3 the key of an entry cannot be deleted at " + one + "/name"},
        {"another key", operation("update", module_path("A", {"name"}), "string_val: 'B'"),
         "3 the key of an entry cannot be changed at " + one + "/name"},
        {"another key in the value", operation("update", module_path("A"), "json_val: '{\"name\": \"B\"}'"),
         "3 the key of an entry is another in path and value at " + one},
        {"several",
         operation("update", list + elem("aps-module", "*") + elem("config") + elem("revertive"), "bool_val: true"),
         "3 what is replaced or updated is one node: without wildcards, each list with its keys at "
         "/aps/aps-modules/aps-module[name='*']/config/revertive"},
        {"a leaf of all entries", operation("update", list + elem("aps-module") + elem("name"), "string_val: 'A'"),
         "3 what is replaced or updated is one node: without wildcards, each list with its keys at "
         "/aps/aps-modules/aps-module/name"},
        {"a scalar for a container", operation("update", module_path("A", {"config"}), "bool_val: true"),
         "3 a scalar is no value of a node that is no leaf; give JSON at " + one + "/config"},
        {"an object for a list", operation("replace", list + elem("aps-module"), "json_val: '{}'"),
         "3 a list is a JSON array at /aps/aps-modules/aps-module"},
        {"ASCII", operation("update", module_path("A", {"config"}), "ascii_val: 'x'"),
         "12 values are given as JSON, JSON_IETF or scalars, not as bytes, ASCII or Any at " + one + "/config"},
    });
}

TEST(GnmiSet, HasABoundOfOperations) {
    messages::SetRequest request;
    for (int count = 0; count < 4'097; ++count) {
        request.add_delete_();
    }
    EXPECT_THROW(ocpsm::gnmi::edit_tree(request, configuration), Refusal);
    request.mutable_delete_()->RemoveLast();
    EXPECT_EQ(words(ocpsm::gnmi::edit_tree(request, configuration)), "aps(-)");
}

} // namespace

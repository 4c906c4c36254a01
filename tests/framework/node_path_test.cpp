// Requests that are given as paths.
#include "framework/request/node_path.hpp"

#include "dump.hpp"
#include "framework/request/type.hpp"
#include "gmock/gmock.h"

namespace {

using ocpsm::Kind;
using ocpsm::framework::deletion_of;
using ocpsm::framework::read_of;
using ocpsm::framework::setting_of;

std::string selection(const std::string &path) {
    return dump(ocpsm::framework::type_request(read_of(path), Kind::get, true));
}

const std::string of_a_leaf = "aps\n"
                              "  aps-modules\n"
                              "    aps-module\n"
                              "      name = 0/1-PSM-OM\n"
                              "      config\n"
                              "        revertive\n";

TEST(NodePath, TheKeyStandsWithOrWithoutQuotes) {
    EXPECT_EQ(selection("/aps/aps-modules/aps-module[name=0/1-PSM-OM]/config/revertive"), of_a_leaf);
    EXPECT_EQ(selection("/aps/aps-modules/aps-module[name='0/1-PSM-OM']/config/revertive"), of_a_leaf);
    EXPECT_EQ(selection("/aps/aps-modules/aps-module[name=\"0/1-PSM-OM\"]/config/revertive"), of_a_leaf);
}

TEST(NodePath, StepsMayBearTheNameOrPrefixOfTheirModule) {
    EXPECT_EQ(selection("/openconfig-transport-line-protection:aps/aps-modules/"
                        "oc-line-protect:aps-module[oc-line-protect:name=0/1-PSM-OM]/config/revertive"),
              of_a_leaf);
}

TEST(NodePath, AQuotedKeyMayHoldBrackets) {
    EXPECT_EQ(selection("/aps/aps-modules/aps-module[name='a]/b']"), "aps\n"
                                                                     "  aps-modules\n"
                                                                     "    aps-module\n"
                                                                     "      name = a]/b\n");
}

TEST(NodePath, EverythingAndWholeLists) {
    EXPECT_EQ(selection("/"), "aps\n");
    EXPECT_EQ(selection(""), "aps\n");
    EXPECT_EQ(selection("/aps"), "aps\n");
    EXPECT_EQ(selection("/aps/aps-modules/aps-module/name"), "aps\n"
                                                             "  aps-modules\n"
                                                             "    aps-module\n"
                                                             "      name\n");
}

TEST(NodePath, ASettingIsAMerge) {
    EXPECT_EQ(
        dump(ocpsm::framework::type_request(
            setting_of("/aps/aps-modules/aps-module[name=0/1-PSM-OM]/config/revertive", "true"), Kind::edit, true)),
        "aps\n"
        "  aps-modules\n"
        "    aps-module\n"
        "      name = 0/1-PSM-OM\n"
        "      config\n"
        "        revertive = true\n");
}

TEST(NodePath, ADeletionIsOneOfTheLastNode) {
    EXPECT_EQ(dump(ocpsm::framework::type_request(deletion_of("/aps/aps-modules/aps-module[name=0/1-PSM-OM]/config"),
                                                  Kind::edit, true)),
              "aps\n"
              "  aps-modules\n"
              "    aps-module\n"
              "      name = 0/1-PSM-OM\n"
              "      config delete\n");
    EXPECT_EQ(
        dump(ocpsm::framework::type_request(deletion_of("/aps/aps-modules/aps-module[name=x]"), Kind::edit, true)),
        "aps\n"
        "  aps-modules\n"
        "    aps-module delete\n"
        "      name = x\n");
}

// ---- paths that say nothing ----

struct BadPath {
    const char *path;
    const char *tag;
    const char *message;
    const char *advice;
};

const char example[] = "for example /aps/aps-modules/aps-module[name=0/1-PSM-OM]/config";

const BadPath bad_paths[] = {
    {"aps", "invalid-value", "a path begins with a slash, and so does each of its steps", example},
    {"/aps/", "invalid-value", "a step of the path has no name", example},
    {"//aps", "invalid-value", "a step of the path has no name", example},
    {"/apps", "unknown-element", "the model has no node 'apps' at the top", "there is aps"},
    {"/aps/x", "unknown-element", "the model has no node 'x' below aps", "there is aps-modules"},
    {"/aps/aps-modules/aps-module/config/name/x", "unknown-element", "the model has no node 'x' below name",
     "name is a leaf"},
    {"/other:aps", "unknown-namespace", "there is no module 'other'",
     "write openconfig-transport-line-protection or leave it out"},
    {"/aps[name=x]", "unknown-element", "'name' is no key of aps", "it is no list"},
    {"/aps/aps-modules/aps-module[revertive=true]", "unknown-element", "'revertive' is no key of aps-module",
     "its key is name"},
    {"/aps/aps-modules/aps-module[name]", "invalid-value", "a predicate has the form [key=value]", example},
    {"/aps/aps-modules/aps-module[name=x", "invalid-value", "a predicate is not closed", example},
    {"/aps/aps-modules/aps-module[name='x]", "invalid-value", "a predicate is not closed", example},
    {"/aps/aps-modules/aps-module[name='x'y]", "invalid-value", "a predicate is not closed", example},
    {"/aps/aps-modules/aps-module[name=]", "invalid-value", "a key has no value", example},
    {"/aps/aps-modules/aps-module[name='']", "invalid-value", "a key has no value", example},
    {"/aps/aps-modules/aps-module[name=x][name=y]", "invalid-value", "the key name stands twice", "say it once"},
    {"/aps/aps-modules/aps-module[name=x]config", "invalid-value",
     "a path begins with a slash, and so does each of its steps", example},
};

TEST(NodePath, BadPathsAreRefusedWithWhatToWrite) {
    for (const BadPath &bad : bad_paths) {
        const std::string error =
            std::string("input|") + bad.tag + "|" + bad.path + "|" + bad.message + "|" + bad.advice;
        EXPECT_EQ(error_of([&] { read_of(bad.path); }), error);
        EXPECT_EQ(error_of([&] { setting_of(bad.path, "1"); }), error);
        EXPECT_EQ(error_of([&] { deletion_of(bad.path); }), error);
    }
}

TEST(NodePath, TheKeyOfANamedEntryIsNotRead) {
    EXPECT_EQ(error_of([] { read_of("/aps/aps-modules/aps-module[name=x]/name"); }),
              "input|invalid-value|/aps/aps-modules/aps-module[name=x]/name|the key of a named entry is known|read the "
              "entry, or a leaf of it");
}

TEST(NodePath, AnEditNamesTheEntryAndNotItsKey) {
    const std::string unnamed = "/aps/aps-modules/aps-module/config/revertive";
    const std::string error =
        "input|missing-element|" + unnamed + "|an entry of aps-module is not named|add [name=...]";
    EXPECT_EQ(error_of([&] { setting_of(unnamed, "true"); }), error);
    EXPECT_EQ(error_of([&] { deletion_of(unnamed); }), error);
    const std::string key = "/aps/aps-modules/aps-module[name=x]/name";
    const std::string key_error =
        "input|invalid-value|" + key + "|the key of an entry cannot be changed|name the entry";
    EXPECT_EQ(error_of([&] { setting_of(key, "y"); }), key_error);
    EXPECT_EQ(error_of([&] { deletion_of(key); }), key_error);
    EXPECT_EQ(error_of([] { deletion_of("/"); }),
              std::string("input|invalid-value|/|a step of the path has no name|") + example);
    EXPECT_EQ(error_of([] { deletion_of(""); }), std::string("input|invalid-value||the path names no node|") + example);
}

TEST(NodePath, OnlyLeavesAreSet) {
    EXPECT_EQ(error_of([] { setting_of("/aps/aps-modules/aps-module[name=x]/config", "1"); }),
              "input|invalid-value|/aps/aps-modules/aps-module[name=x]/config|config is no leaf and has no value|name "
              "one of the leaves below it");
}

TEST(NodePath, PathsOfAnyLengthAndContent) {
    const std::string longest = "/aps/" + std::string(5000, 'x');
    EXPECT_NE(error_of([&] { read_of(longest); }), "nothing");
    const std::string odd = std::string("/aps/\n\x01\0[", 9);
    EXPECT_EQ(error_of([&] { read_of(odd); }).find('\n'), std::string::npos);
}

} // namespace

#include "translate.hpp"

#include <gmock/gmock.h>

#include "framework/host/codes.hpp"
#include "framework/host/data_tree.hpp"
#include "hvs_dt.h"

namespace {

using ocpsm::Kind;
using ocpsm::framework::AddRecord;
using ocpsm::framework::name_of;
using ocpsm::framework::Translation;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char ifmgr[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg";
constexpr char list_path[] = "/aps/aps-modules/aps-module";
constexpr char interface_path[] = "/interface-configurations/interface-configuration";

// Requests as dump() writes them.
const std::string all_modules = "aps/aps-modules";
const std::string one_entry = "aps/aps-modules/aps-module[0/1-PSM-OM]";
const std::string at_entry = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']";
const std::string a_and_b = "aps/aps-modules\n  aps-module[a]\n  aps-module[b]";

using Node = kidl_yfw_datatree;

// The context and the nodes of a walk that stands at the first one_entry; they are taken off the hierarchy again.
class AtEntry {
public:
    AtEntry(yfw_map_ctx ctx, const Node *aps) : ctx_(ctx), aps_(aps) {
        yfw_map_add_to_node_hierarchy(ctx, aps, 1);
        yfw_map_add_to_node_hierarchy(ctx, &modules(), 1);
        yfw_map_add_to_node_hierarchy(ctx, &entry(), 2);
        (void)yfw_map_update_current_list_node(ctx, list_path);
    }
    ~AtEntry() { yfw_map_remove_from_node_hierarchy(ctx_, aps_); }
    AtEntry(const AtEntry &) = delete;
    AtEntry &operator=(const AtEntry &) = delete;

    const Node &modules() const { return aps_->children[0]; }
    Node &entry() const { return modules().children[0]; }

private:
    yfw_map_ctx ctx_;
    const Node *aps_;
};

// Refuses as a plug-in does: location, tag, code.
kerrno refuse(yfw_map_ctx ctx, const char *tag, kerrno code) {
    ctx->request->error_node_name = yfw_strdup(tag, "YFW MAP");
    yfw_oc_error_path(ctx);
    return code;
}

kerrno succeeds(yfw_map_ctx, const Node *, Node *) {
    return KERR_SUCCESS;
}

// ---- what goes over ----

kerrno adds_its_names(yfw_map_ctx ctx, const Node *source, Node *destination) {
    const AtEntry at(ctx, source);
    (void)yfw_map_datatree_add_path_flagged(ctx, destination, interface_path, ifmgr, nullptr, nullptr, nullptr, 1, 0);
    return yfw_map_datatree_add_path_flagged(ctx, destination,
                                             "/interface-configurations/interface-configuration/interface-name", ifmgr,
                                             at.entry().children[0].value, &at.entry().children[0], nullptr, 0, 1);
}

TEST(Translation, EveryInstanceOfAReadHasANativeRequestOfItsOwn) {
    const Translation translation = translate(adds_its_names, a_and_b, Kind::get);
    EXPECT_EQ(name_of(translation.result), "KERR_SUCCESS");
    ASSERT_EQ(translation.handed_over.size(), 2U);
    EXPECT_EQ(translation.handed_over[0].native.kind(), ocpsm::native::RequestKind::read);
    for (const std::size_t index : {0U, 1U}) {
        EXPECT_EQ(translation.handed_over[index].native.net().operations().back().path,
                  std::string(interface_path) + "[interface-name='" + (index == 0 ? "a']" : "b']"));
    }
    std::vector<std::string> adds;
    for (const AddRecord &add : translation.handed_over[1].adds) {
        EXPECT_EQ(add.namespace_uri, ifmgr);
        adds.push_back(add.path + " " + add.value.value_or("-") + " " +
                       (add.source_operation ? std::to_string(*add.source_operation) : "-") + " " +
                       std::to_string(add.first_flag) + std::to_string(add.second_flag));
    }
    EXPECT_THAT(adds, ElementsAre(interface_path + std::string(" - - 10"),
                                  interface_path + std::string("/interface-name b 0 01")));
}

TEST(Translation, AnEditIsOneNativeRequest) {
    const Translation translation = translate(adds_its_names, a_and_b, Kind::edit);
    ASSERT_EQ(translation.handed_over.size(), 1U);
    EXPECT_EQ(translation.handed_over[0].native.kind(), ocpsm::native::RequestKind::edit);
}

kerrno shows_kind(yfw_map_ctx ctx, const Node *, Node *) {
    return ctx->request->registration->operation_kind;
}

TEST(Translation, ThePluginSeesTheKind) {
    EXPECT_EQ(translate(shows_kind, all_modules, Kind::get).result, 10U);
    EXPECT_EQ(translate(shows_kind, all_modules, Kind::get_config).result, 0U);
    EXPECT_EQ(translate(shows_kind, all_modules, Kind::edit).result, 1U);
}

TEST(Translation, ARequestForNothingIsSaidToBeNothing) {
    const Translation read = translate(succeeds, "<filter/>", Kind::get);
    EXPECT_THAT(read.handed_over, IsEmpty());
    EXPECT_THAT(read.warnings, ElementsAre("the request selects nothing"));
    EXPECT_EQ(name_of(read.result), "KERR_SUCCESS");
    EXPECT_THAT(translate(succeeds, "{}", Kind::edit).warnings, ElementsAre("the request changes nothing"));
}

TEST(Translation, WhatCannotBeReadNeverReachesThePlugin) {
    EXPECT_EQ(error_of([] { (void)translate(nullptr, "<x", Kind::get); }),
              "input|malformed-message||line 1, column 3: NAME=\"VALUE\", /> or > is expected, but the request ends|");
    EXPECT_EQ(error_of([] { (void)translate(nullptr, one_entry + "/config = x", Kind::edit); }),
              "refused|invalid-value|" + at_entry +
                  "/config|config is no leaf and has no value, but \"x\" stands there|");
}

// ---- channels ----

kerrno speaks(yfw_map_ctx ctx, const Node *, Node *destination) {
    static uint32_t site = 0xffffffff;
    if (yfw_debug_should_log(&ctx->debug_log_filter, 0) != 0) {
        _hvs_dt_log_filter_adv(ctx->error_log, 0, 0, 0, 0, 0, &site, "ERR: YFW: %s", "logged");
    }
    if (ctx->trace_enabled != 0) {
        _lstrace(ctx->trace_buffer, 0, "#1: TRC: ymap_o2n_m_lvla_aps:1 ctx=0x1,Start");
        _lstrace(ctx->trace_buffer, 0, "#2: TRC: a_to_low:2 ctx=0x1,Start");
    }
    return yfw_map_datatree_add_path_flagged(ctx, destination, "/interface-configurations", ifmgr, nullptr, nullptr,
                                             nullptr, 0, 0);
}

TEST(Translation, BothChannelsAreOffUnlessTheyAreAskedFor) {
    const Translation translation = translate(speaks, all_modules, Kind::get);
    EXPECT_THAT(translation.log, IsEmpty());
    EXPECT_THAT(translation.trace, IsEmpty());
    EXPECT_EQ(translation.handed_over[0].adds[0].walker, "");
    EXPECT_EQ(translation.handed_over[0].adds[0].conversion, "");
}

TEST(Translation, EachChannelIsSwitchedOnByItself) {
    const Translation logged = translate(speaks, all_modules, Kind::get, {.log = true, .trace = false});
    ASSERT_EQ(logged.log.size(), 1U);
    EXPECT_EQ(logged.log[0].text, "ERR: YFW: logged");
    EXPECT_TRUE(logged.log[0].error);
    EXPECT_THAT(logged.trace, IsEmpty());

    const Translation traced = translate(speaks, all_modules, Kind::get, {.log = false, .trace = true});
    EXPECT_THAT(traced.log, IsEmpty());
    ASSERT_EQ(traced.trace.size(), 2U);
    EXPECT_EQ(traced.trace[1].text, "#2: TRC: a_to_low:2 ctx=0x1,Start");
    EXPECT_EQ(traced.handed_over[0].adds[0].walker, "ymap_o2n_m_lvla_aps");
    EXPECT_EQ(traced.handed_over[0].adds[0].conversion, "a_to_low");
}

// ---- refusals ----

template <kerrno code>
kerrno returns(yfw_map_ctx, const Node *, Node *) {
    return code;
}

template <kerrno code>
kerrno refuses_name(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    return refuse(ctx, "name", code);
}

template <kerrno code>
kerrno refuses_leaf(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    const Node &container = at.entry().children[1];
    yfw_map_add_to_node_hierarchy(ctx, &container, 1);
    return refuse(ctx, container.children[0].tag, code);
}

kerrno refuses_a_null_node(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    yfw_oc_error_path(ctx);
    return YMAP_ERR_INVALID_ARGS;
}

kerrno checks_the_leafref(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    return yfw_map_check_oc_leafref(ctx, list_path, "config", &at.entry().children[0], &at.entry());
}

kerrno adds_what_no_model_has(yfw_map_ctx ctx, const Node *source, Node *destination) {
    const AtEntry at(ctx, source);
    return yfw_map_datatree_add_path_flagged(ctx, destination, "/nowhere", ifmgr, nullptr, nullptr, nullptr, 0, 0);
}

kerrno changes_its_mind(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    (void)refuse(ctx, "first", YMAP_ERR_UNSUPPORTED);
    hvs_named_free(ctx->request->error_node_name);
    ctx->request->error_node_name = yfw_strdup("second", "YFW MAP");
    return YMAP_ERR_UNSUPPORTED;
}

kerrno succeeds_all_the_same(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    (void)refuse(ctx, "name", YMAP_ERR_UNSUPPORTED);
    return KERR_SUCCESS;
}

struct Refused {
    const char *what;
    ocpsm::framework::Callback plugin;
    Kind kind;
    std::string request;
    std::string error; // result|tag|message|location|offending node|advice; "@" is the entry's instance path
};

const Refused refused[] = {
    {"an unsupported node that the model knows", refuses_leaf<YMAP_ERR_UNSUPPORTED>, Kind::edit,
     one_entry + "/config/hold-off-time = 5",
     "YMAP_ERR_UNSUPPORTED|operation-not-supported|hold-off-time is not served by this device|"
     "@/config/hold-off-time|hold-off-time|leave it out"},
    {"an unsupported node of a read", refuses_leaf<YMAP_ERR_UNSUPPORTED>, Kind::get, one_entry + "/state/revertive",
     "YMAP_ERR_UNSUPPORTED|operation-not-supported|revertive is not served by this device|"
     "@/state/revertive|revertive|leave it out"},
    {"operational state in an edit", refuses_leaf<YMAP_ERR_UNSUPPORTED>, Kind::edit, one_entry + "/state/revertive",
     "YMAP_ERR_UNSUPPORTED|operation-not-supported|revertive is operational state and cannot be edited|"
     "@/state/revertive|revertive|leave it out, or read it"},
    {"an unknown node", refuses_leaf<YMAP_ERR_UNSUPPORTED>, Kind::edit, one_entry + "/config/colour = 1",
     "YMAP_ERR_UNSUPPORTED|unknown-element|the model has no node colour here|"
     "@/config/colour|colour|check the name against the model"},
    {"data of an augmenting model", refuses_leaf<YMAP_ERR_AUGMENT_UNSUPPORTED>, Kind::edit,
     one_entry + "/config/colour {urn:x} = 1",
     "YMAP_ERR_AUGMENT_UNSUPPORTED|unknown-namespace|colour belongs to a model that is not served here|"
     "@/config/colour|colour|leave it out"},
    {"a missing or doubled key", refuses_name<YMAP_ERR_LIST_KEY>, Kind::edit, one_entry,
     "YMAP_ERR_LIST_KEY|missing-element|an entry needs its key once, with a value|@/name|name|name the entry once"},
    {"a key with a delete records no name", refuses_name<YMAP_ERR_KEY_DELETE>, Kind::edit, one_entry,
     "YMAP_ERR_KEY_DELETE|bad-attribute|the key of an entry cannot be taken away|@||put the operation on the entry"},
    {"a delete with content is located by the framework", returns<YMAP_ERR_INVALID_ARGS>, Kind::edit,
     one_entry + "\n  config/revertive = true\n  ports delete\n    line-primary-in",
     "YMAP_ERR_INVALID_ARGS|operation-failed|ports is to be deleted, but something stands below it|"
     "@/ports||delete it without content, or delete only what stands below it"},
    {"other invalid arguments", refuses_a_null_node, Kind::edit, one_entry,
     "YMAP_ERR_INVALID_ARGS|operation-failed|invalid arguments, or a delete with content below it|@||"},
    {"an entry without key and children is located by the framework", returns<YMAP_ERR_BAD_TREE>, Kind::edit,
     all_modules + "\n  aps-module[a]\n  aps-module",
     "YMAP_ERR_BAD_TREE|missing-element|the entry has no key|/aps/aps-modules/aps-module||name the entry"},
    {"another bad tree", returns<YMAP_ERR_BAD_TREE>, Kind::edit, one_entry,
     "YMAP_ERR_BAD_TREE|operation-failed|the request tree is not well formed|||"},
    {"a bad tree of a read", returns<YMAP_ERR_BAD_TREE>, Kind::get, all_modules + "/aps-module",
     "YMAP_ERR_BAD_TREE|operation-failed|the request tree is not well formed|||"},
    {"a key that differs from the leaf that it refers to", checks_the_leafref, Kind::edit,
     one_entry + "/config/name = other",
     "YFW_ERR_LEAFREF|data-missing|the key and the leaf that it refers to differ (instance-required)|"
     "@/name||give both the same value, or leave config/name out"},
    {"a key that is that leaf's value", checks_the_leafref, Kind::edit, one_entry + "/config/name = 0/1-PSM-OM",
     "KERR_SUCCESS|no error"},
    {"a native path that no model has", adds_what_no_model_has, Kind::edit, one_entry,
     "NATIVE_ERR_UNKNOWN_PATH|operation-failed|no native model has a node with this path: /nowhere|@||"},
    {"a code that nobody knows", returns<0x12345678>, Kind::get, all_modules,
     "0x12345678|operation-failed|unknown error|||"},
    {"the location ends with the name as it stands at the end", changes_its_mind, Kind::edit, one_entry,
     "YMAP_ERR_UNSUPPORTED|unknown-element|the model has no node second here|"
     "@/second|second|check the name against the model"},
    {"the location of a request that succeeded is dropped", succeeds_all_the_same, Kind::edit, one_entry,
     "KERR_SUCCESS|no error"},
};

TEST(Refusal, TellsWhatWhereAndWhatToDo) {
    for (const Refused &row : refused) {
        const Translation translation = translate(row.plugin, row.request, row.kind);
        std::string shown = name_of(translation.result) + "|no error";
        if (const auto &error = translation.error) {
            shown = name_of(translation.result) + "|" + error->tag + "|" + error->message() + "|" + error->path + "|" +
                    error->node + "|" + error->advice;
        }
        const std::size_t at = row.error.find('@');
        std::string expected = row.error;
        expected = at == std::string::npos ? expected : expected.replace(at, 1, at_entry);
        EXPECT_EQ(shown, expected) << row.what;
    }
}

kerrno refuses_b(yfw_map_ctx ctx, const Node *source, Node *destination) {
    const std::string_view name = source->children[0].children[0].children[0].value;
    return name == "b" ? refuses_name<YMAP_ERR_UNSUPPORTED>(ctx, source, destination) : KERR_SUCCESS;
}

TEST(Refusal, TheFirstOneEndsARead) {
    const Translation translation = translate(refuses_b, a_and_b + "\n  aps-module[c]", Kind::get);
    ASSERT_EQ(translation.handed_over.size(), 2U);
    EXPECT_EQ(translation.result, YMAP_ERR_UNSUPPORTED);
    EXPECT_EQ(translation.error->path, "/aps/aps-modules/aps-module[name='b']/name");
}

kerrno leaves_things_behind(yfw_map_ctx ctx, const Node *source, Node *) {
    yfw_map_add_to_node_hierarchy(ctx, source, 1);
    return KERR_SUCCESS;
}

TEST(Translation, AWalkThatDoesNotEndAsItBeganIsReported) {
    EXPECT_THAT(translate(leaves_things_behind, one_entry, Kind::edit).warnings,
                ElementsAre("the plug-in has not ended its walk as it began it; this is a defect of the plug-in"));
}

kerrno hides_children(yfw_map_ctx, const Node *source, Node *) {
    Node &modules = source->children[0];
    modules.children = nullptr;
    modules.child_count = 0;
    return YMAP_ERR_SKIP;
}

TEST(Translation, ChildrenThatStayHiddenAreNotLeaked) {
    EXPECT_EQ(translate(hides_children, one_entry + "/config", Kind::edit).result, YMAP_ERR_SKIP);
}

// ---- what was passed over ----

// A walker for config and revertive only.
kerrno walks_revertive(yfw_map_ctx, const Node *source, Node *) {
    Node &entry = source->children[0].children[0];
    entry.second_flags |= YFW_NODE2_KIND_SET;
    for (int i = 0; i < entry.child_count; ++i) {
        Node &child = entry.children[i];
        const std::string_view tag = child.tag;
        if (tag == "name") {
            child.flags |= YFW_NODE_KEY_CONSUMED;
        } else if (tag == "config") {
            child.second_flags |= YFW_NODE2_KIND_SET;
            for (int j = 0; j < child.child_count; ++j) {
                child.children[j].second_flags |=
                    std::string_view(child.children[j].tag) == "revertive" ? YFW_NODE2_KIND_SET : 0;
            }
        }
    }
    return KERR_SUCCESS;
}

TEST(PassedOver, OneInstanceWithSomethingSupportedIsEnough) {
    const Translation translation = translate(
        walks_revertive, all_modules + "\n  aps-module[a]/config/revertive\n  aps-module[b]/other", Kind::get);
    ASSERT_EQ(translation.handed_over.size(), 2U);
    EXPECT_FALSE(translation.handed_over[0].nothing_supported);
    EXPECT_TRUE(translation.handed_over[1].nothing_supported);
    EXPECT_THAT(translation.warnings,
                ElementsAre("not supported and left out: /aps/aps-modules/aps-module[name='b']/other"));
}

TEST(PassedOver, AnEditIsNotLookedThrough) {
    EXPECT_THAT(translate(walks_revertive, one_entry + "/other", Kind::edit).warnings, IsEmpty());
}

} // namespace

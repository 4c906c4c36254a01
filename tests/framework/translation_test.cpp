#include "translate.hpp"

#include <gmock/gmock.h>

#include "dump.hpp"
#include "framework/host/codes.hpp"
#include "framework/host/data_tree.hpp"
#include "hvs_dt.h"

namespace {

using ocpsm::Kind;
using ocpsm::framework::AddRecord;

using ocpsm::Options;
using ocpsm::framework::name_of;
using ocpsm::framework::Translation;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char ifmgr[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg";
constexpr char list_path[] = "/aps/aps-modules/aps-module";
constexpr char entry_path[] = "/aps/aps-modules/aps-module[name='0/1-PSM-OM']";

using Node = kidl_yfw_datatree;

std::string modules(const std::string &content) {
    return "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
           "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules>" +
           content + "</aps-modules></aps>";
}

std::string module(const std::string &content) {
    return modules("<aps-module><name>0/1-PSM-OM</name>" + content + "</aps-module>");
}

// The context and the nodes of a walk that stands at the first entry; they are taken off the hierarchy again.
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

template <kerrno code>
kerrno refuses_name(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    return refuse(ctx, "name", code);
}

// "result name|tag|message|location|offending node|advice", and the adds and trees must have come along.
std::string refusal(const Translation &translation) {
    if (!translation.error) {
        return name_of(translation.result) + "|no error";
    }
    const ocpsm::Error &error = *translation.error;
    return name_of(translation.result) + "|" + error.tag + "|" + error.message() + "|" + error.path + "|" + error.node +
           "|" + error.advice;
}

kerrno succeeds(yfw_map_ctx, const Node *, Node *) {
    return KERR_SUCCESS;
}

// ---- what goes over ----

kerrno adds_its_names(yfw_map_ctx ctx, const Node *source, Node *destination) {
    const AtEntry at(ctx, source);
    (void)yfw_map_datatree_add_path_flagged(ctx, destination, "/interface-configurations/interface-configuration",
                                            ifmgr, nullptr, nullptr, nullptr, 1, 0);
    return yfw_map_datatree_add_path_flagged(ctx, destination,
                                             "/interface-configurations/interface-configuration/interface-name", ifmgr,
                                             at.entry().children[0].value, &at.entry().children[0], nullptr, 0, 1);
}

TEST(Translation, EveryInstanceOfAReadHasANativeRequestOfItsOwn) {
    const Translation translation = translate(
        adds_its_names, modules("<aps-module><name>a</name></aps-module><aps-module><name>b</name></aps-module>"),
        Kind::get, {});
    EXPECT_EQ(refusal(translation), "KERR_SUCCESS|no error");
    ASSERT_EQ(translation.handed_over.size(), 2U);
    const auto native = [&translation](std::size_t index) {
        return translation.handed_over.at(index).native.net().operations().back();
    };
    EXPECT_EQ(translation.handed_over[0].native.kind(), ocpsm::native::RequestKind::read);
    EXPECT_EQ(native(0).path, "/interface-configurations/interface-configuration[interface-name='a']");
    EXPECT_EQ(native(1).path, "/interface-configurations/interface-configuration[interface-name='b']");
    const std::vector<AddRecord> &adds = translation.handed_over[1].adds;
    ASSERT_EQ(adds.size(), 2U);
    EXPECT_EQ(adds[0].path, "/interface-configurations/interface-configuration");
    EXPECT_EQ(adds[0].namespace_uri, ifmgr);
    EXPECT_EQ(adds[0].value, std::nullopt);
    EXPECT_EQ(adds[0].source_operation, std::nullopt);
    EXPECT_EQ(adds[0].first_flag, 1U);
    EXPECT_EQ(adds[0].second_flag, 0U);
    EXPECT_EQ(adds[1].value, "b");
    EXPECT_EQ(adds[1].source_operation, 0U);
    EXPECT_EQ(adds[1].first_flag, 0U);
    EXPECT_EQ(adds[1].second_flag, 1U);
}

TEST(Translation, AnEditIsOneNativeRequest) {
    const Translation translation = translate(
        adds_its_names, modules("<aps-module><name>a</name></aps-module><aps-module><name>b</name></aps-module>"),
        Kind::edit, {});
    ASSERT_EQ(translation.handed_over.size(), 1U);
    EXPECT_EQ(translation.handed_over[0].native.kind(), ocpsm::native::RequestKind::edit);
}

kerrno shows_kind(yfw_map_ctx ctx, const Node *, Node *) {
    return ctx->request->registration->operation_kind;
}

TEST(Translation, ThePluginSeesTheKind) {
    EXPECT_EQ(translate(shows_kind, modules(""), Kind::get, {}).result, 10U);
    EXPECT_EQ(translate(shows_kind, modules(""), Kind::get_config, {}).result, 0U);
    EXPECT_EQ(translate(shows_kind, modules(""), Kind::edit, {}).result, 1U);
}

TEST(Translation, ARequestForNothingIsSaidToBeNothing) {
    const Translation read = translate(succeeds, "<filter/>", Kind::get, {});
    EXPECT_THAT(read.handed_over, IsEmpty());
    EXPECT_THAT(read.warnings, ElementsAre("the request selects nothing"));
    EXPECT_EQ(name_of(read.result), "KERR_SUCCESS");
    EXPECT_THAT(translate(succeeds, "{}", Kind::edit, {}).warnings, ElementsAre("the request changes nothing"));
}

TEST(Translation, WhatCannotBeReadNeverReachesThePlugin) {
    EXPECT_EQ(error_of([] { (void)translate(nullptr, "x", Kind::get, {}); }),
              "input|malformed-message||the request is neither XML nor JSON|an XML request begins with <, a JSON "
              "request with {");
    EXPECT_EQ(error_of([] { (void)translate(nullptr, module("<config>x</config>"), Kind::edit, {}); }),
              std::string("refused|invalid-value|") + entry_path +
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
    const Translation translation = translate(speaks, modules(""), Kind::get, {});
    EXPECT_THAT(translation.log, IsEmpty());
    EXPECT_THAT(translation.trace, IsEmpty());
    EXPECT_EQ(translation.handed_over[0].adds[0].walker, "");
    EXPECT_EQ(translation.handed_over[0].adds[0].conversion, "");
}

TEST(Translation, EachChannelIsSwitchedOnByItself) {
    Options log;
    log.log = true;
    const Translation logged = translate(speaks, modules(""), Kind::get, log);
    ASSERT_EQ(logged.log.size(), 1U);
    EXPECT_EQ(logged.log[0].text, "ERR: YFW: logged");
    EXPECT_TRUE(logged.log[0].error);
    EXPECT_THAT(logged.trace, IsEmpty());

    Options trace;
    trace.trace = true;
    const Translation traced = translate(speaks, modules(""), Kind::get, trace);
    EXPECT_THAT(traced.log, IsEmpty());
    ASSERT_EQ(traced.trace.size(), 2U);
    EXPECT_EQ(traced.trace[1].text, "#2: TRC: a_to_low:2 ctx=0x1,Start");
    EXPECT_EQ(traced.handed_over[0].adds[0].walker, "ymap_o2n_m_lvla_aps");
    EXPECT_EQ(traced.handed_over[0].adds[0].conversion, "a_to_low");
}

// ---- refusals ----

template <kerrno code>
kerrno refuses_leaf(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    const Node &container = at.entry().children[1];
    yfw_map_add_to_node_hierarchy(ctx, &container, 1);
    return refuse(ctx, container.children[0].tag, code);
}

TEST(Refusal, AnUnsupportedNodeThatTheModelKnows) {
    EXPECT_EQ(refusal(translate(refuses_leaf<YMAP_ERR_UNSUPPORTED>,
                                module("<config><hold-off-time>5</hold-off-time></config>"), Kind::edit, {})),
              std::string("YMAP_ERR_UNSUPPORTED|operation-not-supported|hold-off-time is not served by this device|") +
                  entry_path + "/config/hold-off-time|hold-off-time|leave it out");
    EXPECT_EQ(
        refusal(translate(refuses_leaf<YMAP_ERR_UNSUPPORTED>, module("<state><revertive/></state>"), Kind::get, {})),
        std::string("YMAP_ERR_UNSUPPORTED|operation-not-supported|revertive is not served by this device|") +
            entry_path + "/state/revertive|revertive|leave it out");
}

TEST(Refusal, OperationalStateInAnEdit) {
    EXPECT_EQ(
        refusal(translate(refuses_leaf<YMAP_ERR_UNSUPPORTED>, module("<state><revertive/></state>"), Kind::edit, {})),
        std::string("YMAP_ERR_UNSUPPORTED|operation-not-supported|revertive is operational state and cannot be "
                    "edited|") +
            entry_path + "/state/revertive|revertive|leave it out, or read it");
}

TEST(Refusal, AnUnknownNode) {
    EXPECT_EQ(refusal(translate(refuses_leaf<YMAP_ERR_UNSUPPORTED>, module("<config><colour>1</colour></config>"),
                                Kind::edit, {})),
              std::string("YMAP_ERR_UNSUPPORTED|unknown-element|the model has no node colour here|") + entry_path +
                  "/config/colour|colour|check the name against the model");
}

TEST(Refusal, DataOfAnAugmentingModel) {
    EXPECT_EQ(refusal(translate(refuses_leaf<YMAP_ERR_AUGMENT_UNSUPPORTED>,
                                module("<config><colour xmlns='urn:x'>1</colour></config>"), Kind::edit, {})),
              std::string("YMAP_ERR_AUGMENT_UNSUPPORTED|unknown-namespace|colour belongs to a model that is not served "
                          "here|") +
                  entry_path + "/config/colour|colour|leave it out");
}

TEST(Refusal, AMissingOrDoubledKey) {
    EXPECT_EQ(refusal(translate(refuses_name<YMAP_ERR_LIST_KEY>, module(""), Kind::edit, {})),
              std::string("YMAP_ERR_LIST_KEY|missing-element|an entry needs its key once, with a value|") + entry_path +
                  "/name|name|name the entry once");
}

TEST(Refusal, AKeyWithADeleteRecordsNoName) {
    EXPECT_EQ(refusal(translate(refuses_name<YMAP_ERR_KEY_DELETE>, module(""), Kind::edit, {})),
              std::string("YMAP_ERR_KEY_DELETE|bad-attribute|the key of an entry cannot be taken away|") + entry_path +
                  "||put the operation on the entry");
}

kerrno refuses_silently(yfw_map_ctx, const Node *, Node *) {
    return YMAP_ERR_INVALID_ARGS;
}
kerrno finds_bad_tree(yfw_map_ctx, const Node *, Node *) {
    return YMAP_ERR_BAD_TREE;
}

TEST(Refusal, ADeleteWithContentIsLocatedByTheFramework) {
    EXPECT_EQ(refusal(translate(refuses_silently,
                                module("<config><revertive>true</revertive></config>"
                                       "<ports nc:operation='delete'><line-primary-in/></ports>"),
                                Kind::edit, {})),
              std::string("YMAP_ERR_INVALID_ARGS|operation-failed|ports is to be deleted, but something stands below "
                          "it|") +
                  entry_path + "/ports||delete it without content, or delete only what stands below it");
}

kerrno refuses_a_null_node(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    yfw_oc_error_path(ctx);
    return YMAP_ERR_INVALID_ARGS;
}

TEST(Refusal, OtherInvalidArguments) {
    EXPECT_EQ(refusal(translate(refuses_a_null_node, module(""), Kind::edit, {})),
              std::string("YMAP_ERR_INVALID_ARGS|operation-failed|invalid arguments, or a delete with content below "
                          "it|") +
                  entry_path + "||");
}

TEST(Refusal, AnEntryWithoutKeyAndChildrenIsLocatedByTheFramework) {
    EXPECT_EQ(refusal(translate(finds_bad_tree, modules("<aps-module><name>a</name></aps-module><aps-module/>"),
                                Kind::edit, {})),
              "YMAP_ERR_BAD_TREE|missing-element|the entry has no key|/aps/aps-modules/aps-module||name the entry");
}

TEST(Refusal, OtherBadTrees) {
    EXPECT_EQ(refusal(translate(finds_bad_tree, module(""), Kind::edit, {})),
              "YMAP_ERR_BAD_TREE|operation-failed|the request tree is not well formed|||");
    EXPECT_EQ(refusal(translate(finds_bad_tree, modules("<aps-module/>"), Kind::get, {})),
              "YMAP_ERR_BAD_TREE|operation-failed|the request tree is not well formed|||");
}

kerrno checks_the_leafref(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    return yfw_map_check_oc_leafref(ctx, list_path, "config", &at.entry().children[0], &at.entry());
}

TEST(Refusal, AKeyThatDiffersFromTheLeafThatItRefersTo) {
    EXPECT_EQ(refusal(translate(checks_the_leafref, module("<config><name>other</name></config>"), Kind::edit, {})),
              std::string("YFW_ERR_LEAFREF|data-missing|the key and the leaf that it refers to differ "
                          "(instance-required)|") +
                  entry_path + "/name||give both the same value, or leave config/name out");
    EXPECT_EQ(
        refusal(translate(checks_the_leafref, module("<config><name>0/1-PSM-OM</name></config>"), Kind::edit, {})),
        "KERR_SUCCESS|no error");
}

kerrno adds_what_no_model_has(yfw_map_ctx ctx, const Node *source, Node *destination) {
    const AtEntry at(ctx, source);
    return yfw_map_datatree_add_path_flagged(ctx, destination, "/nowhere", ifmgr, nullptr, nullptr, nullptr, 0, 0);
}

TEST(Refusal, ANativePathThatNoModelHas) {
    EXPECT_EQ(refusal(translate(adds_what_no_model_has, module(""), Kind::edit, {})),
              std::string("NATIVE_ERR_UNKNOWN_PATH|operation-failed|no native model has a node with this path: "
                          "/nowhere|") +
                  entry_path + "||");
}

kerrno fails_strangely(yfw_map_ctx, const Node *, Node *) {
    return 0x12345678;
}

TEST(Refusal, ACodeThatNobodyKnows) {
    EXPECT_EQ(refusal(translate(fails_strangely, modules(""), Kind::get, {})),
              "0x12345678|operation-failed|unknown error|||");
}

kerrno changes_its_mind(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    (void)refuse(ctx, "first", YMAP_ERR_UNSUPPORTED);
    hvs_named_free(ctx->request->error_node_name);
    ctx->request->error_node_name = yfw_strdup("second", "YFW MAP");
    return YMAP_ERR_UNSUPPORTED;
}

TEST(Refusal, TheLocationEndsWithTheNameAsItStandsAtTheEnd) {
    EXPECT_EQ(refusal(translate(changes_its_mind, module(""), Kind::edit, {})),
              std::string("YMAP_ERR_UNSUPPORTED|unknown-element|the model has no node second here|") + entry_path +
                  "/second|second|check the name against the model");
}

kerrno succeeds_all_the_same(yfw_map_ctx ctx, const Node *source, Node *) {
    const AtEntry at(ctx, source);
    (void)refuse(ctx, "name", YMAP_ERR_UNSUPPORTED);
    return KERR_SUCCESS;
}

TEST(Refusal, TheLocationOfARequestThatSucceededIsDropped) {
    EXPECT_EQ(refusal(translate(succeeds_all_the_same, module(""), Kind::edit, {})), "KERR_SUCCESS|no error");
}

kerrno refuses_b(yfw_map_ctx ctx, const Node *source, Node *destination) {
    const std::string_view name = source->children[0].children[0].children[0].value;
    return name == "b" ? refuses_name<YMAP_ERR_UNSUPPORTED>(ctx, source, destination) : KERR_SUCCESS;
}

TEST(Refusal, TheFirstOneEndsARead) {
    const Translation translation =
        translate(refuses_b,
                  modules("<aps-module><name>a</name></aps-module><aps-module><name>b</name></aps-module>"
                          "<aps-module><name>c</name></aps-module>"),
                  Kind::get, {});
    ASSERT_EQ(translation.handed_over.size(), 2U);
    EXPECT_EQ(translation.result, YMAP_ERR_UNSUPPORTED);
    EXPECT_EQ(translation.error->path, "/aps/aps-modules/aps-module[name='b']/name");
}

kerrno leaves_things_behind(yfw_map_ctx ctx, const Node *source, Node *) {
    yfw_map_add_to_node_hierarchy(ctx, source, 1);
    return KERR_SUCCESS;
}

TEST(Translation, AWalkThatDoesNotEndAsItBeganIsReported) {
    EXPECT_THAT(translate(leaves_things_behind, module(""), Kind::edit, {}).warnings,
                ElementsAre("the plug-in has not ended its walk as it began it; this is a defect of the plug-in"));
}

kerrno hides_children(yfw_map_ctx, const Node *source, Node *) {
    Node &modules = source->children[0];
    modules.children = nullptr;
    modules.child_count = 0;
    return YMAP_ERR_SKIP;
}

TEST(Translation, ChildrenThatStayHiddenAreNotLeaked) {
    EXPECT_EQ(translate(hides_children, module("<config/>"), Kind::edit, {}).result, YMAP_ERR_SKIP);
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

TEST(PassedOver, AReadOfNothingThatIsSupportedIsAnsweredEmptyWithOneWarning) {
    const Translation translation =
        translate(walks_revertive, module("<config><hold-off-time/></config><other/>"), Kind::get, {});
    ASSERT_EQ(translation.handed_over.size(), 1U);
    EXPECT_TRUE(translation.handed_over[0].nothing_supported);
    EXPECT_THAT(translation.warnings,
                ElementsAre(std::string("nothing that was selected is supported, the answer is empty: ") + entry_path +
                            "/config/hold-off-time, " + entry_path + "/other"));
}

TEST(PassedOver, WhatIsLeftOutOfAReadIsNamed) {
    const Translation translation =
        translate(walks_revertive, module("<config><hold-off-time/><revertive/></config>"), Kind::get, {});
    EXPECT_FALSE(translation.handed_over[0].nothing_supported);
    EXPECT_THAT(translation.warnings,
                ElementsAre(std::string("not supported and left out: ") + entry_path + "/config/hold-off-time"));
}

TEST(PassedOver, OneInstanceWithSomethingSupportedIsEnough) {
    const Translation translation =
        translate(walks_revertive,
                  modules("<aps-module><name>a</name><config><revertive/></config></aps-module>"
                          "<aps-module><name>b</name><other/></aps-module>"),
                  Kind::get, {});
    ASSERT_EQ(translation.handed_over.size(), 2U);
    EXPECT_FALSE(translation.handed_over[0].nothing_supported);
    EXPECT_TRUE(translation.handed_over[1].nothing_supported);
    EXPECT_THAT(translation.warnings,
                ElementsAre("not supported and left out: /aps/aps-modules/aps-module[name='b']/other"));
}

TEST(PassedOver, AWholeEntryAndAWholeContainerAreSupported) {
    for (const char *content : {"", "<config/>", "<config><revertive/></config>"}) {
        const Translation translation = translate(walks_revertive, module(content), Kind::get, {});
        EXPECT_FALSE(translation.handed_over[0].nothing_supported) << content;
        EXPECT_THAT(translation.warnings, IsEmpty()) << content;
    }
}

TEST(PassedOver, AnEditIsNotLookedThrough) {
    EXPECT_THAT(translate(walks_revertive, module("<other/>"), Kind::edit, {}).warnings, IsEmpty());
}

} // namespace

// A host that has functions and data of the plug-in's plain names: the plug-in's own calls and data stay its own.
#include <dlfcn.h>

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "request.hpp"

// What the host has. They are exported from the program, in front of the plug-in in the loader's search order.
extern "C" {
extern const char *const controller_psm_ots_list[7];
const char *const controller_psm_ots_list[7] = {"host/1", "host/2", "host/3", "host/4", "host/5", "host/6", nullptr};

int host_calls = 0;

void print_data(void * /*ctx*/) {
    ++host_calls;
}

char *strstrip(char *text) {
    ++host_calls;
    return text;
}
}

namespace {

using testing::ElementsAre;
using testing::StrEq;

class HostClash : public fake::RequestTest {
protected:
    static void SetUpTestSuite() { plugin = dlopen(OC_PSM_LIBRARY, RTLD_NOW | RTLD_LOCAL); }

    void SetUp() override {
        ASSERT_NE(plugin, nullptr) << dlerror(); // NOLINT(concurrency-mt-unsafe)
        host_calls = 0;
    }

    template <class Function>
    static Function find(const char *name) {
        return reinterpret_cast<Function>(dlsym(plugin, name)); // NOLINT
    }

    // Never closed: leak reports name the plug-in's functions only while it is loaded.
    static inline void *plugin = nullptr;
};

using Conversion = kerrno (*)(yfw_map_ctx, const kidl_yfw_datatree *, kidl_yfw_datatree *);

fake::Item inventory_item(const std::string &name) {
    fake::Bag bag;
    bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "inv_phy_entity_basic_info"), fake::text_token("Name", name),
                  fake::mark_token(BAG_TOKEN_STRUCT_END), fake::mark_token(BAG_TOKEN_END)};
    return fake::bag_item(bag);
}

TEST_F(HostClash, HasNamesOfTheHostInFrontOfThePlugins) {
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "print_data"), reinterpret_cast<void *>(&print_data)); // NOLINT
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "strstrip"), reinterpret_cast<void *>(&strstrip));     // NOLINT
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "controller_psm_ots_list"), &controller_psm_ots_list);
}

TEST_F(HostClash, FindsThePluginsOwnList) {
    const auto *list = find<const char *const *>("controller_psm_ots_list");
    ASSERT_NE(list, nullptr);
    EXPECT_NE(list, controller_psm_ots_list);
    EXPECT_THAT(std::vector<std::string>(list, list + 6),
                ElementsAre("Ots0/1/0/1", "Ots0/1/0/2", "Ots0/2/0/1", "Ots0/2/0/2", "Ots0/3/0/1", "Ots0/3/0/2"));
    EXPECT_EQ(list[6], nullptr);
    EXPECT_THAT(std::vector<std::string>(controller_psm_ots_list, controller_psm_ots_list + 6),
                ElementsAre("host/1", "host/2", "host/3", "host/4", "host/5", "host/6"));
}

TEST_F(HostClash, DumpsTheContextWithThePluginsOwnFunction) {
    const auto convert = find<Conversion>("oc_opt_psm_cfg_revertive_to_low");
    ASSERT_NE(convert, nullptr);
    fake::Tree &leaf = build(fake::leaf("revertive"), "revertive");
    EXPECT_EQ(convert(request.ctx(), leaf.root(), dest), KERR_SUCCESS);
    EXPECT_EQ(request.context.data_printed, 1U);
    EXPECT_EQ(host_calls, 0);
}

TEST_F(HostClash, WalksThePluginsOwnList) {
    platform.items["/oper/inventory/gl/entity/0%2f1-PSM-OM/attrib/inv_basic_bag"] = inventory_item("0/1-PSM-OM");
    platform.items["/oper/inventory/gl/entity/0%2f3-PSM-OM/attrib/inv_basic_bag"] = inventory_item("0/3-PSM-OM");
    const auto convert = find<Conversion>("oc_aps_cfg_psm_list_to_low");
    ASSERT_NE(convert, nullptr);
    fake::Tree &entry = build(fake::container("aps-module"), "entry");
    EXPECT_EQ(convert(request.ctx(), entry.root(), dest), KERR_SUCCESS);

    std::vector<std::string> controllers;
    for (const std::string &call : platform.calls(fake::Output)) {
        const size_t name = call.find("/interface-name\", ns=ifmgr-cfg, value=\"");
        if (name != std::string::npos) {
            const size_t value = call.find("value=\"") + 7;
            controllers.push_back(call.substr(value, call.find('"', value) - value));
        }
    }
    EXPECT_THAT(controllers, ElementsAre("Ots0/1/0/1", "Ots0/1/0/2", "Ots0/3/0/1", "Ots0/3/0/2"));
    EXPECT_EQ(host_calls, 0);
}

TEST_F(HostClash, StripsBlanksWithThePluginsOwnFunction) {
    const auto strip = find<char *(*)(char *)>("strstrip");
    ASSERT_NE(strip, nullptr);
    char text[] = "  a b  ";
    EXPECT_THAT(strip(text), StrEq("a b"));
    EXPECT_EQ(host_calls, 0);
    EXPECT_THAT(strstrip(text), StrEq("  a b"));
    EXPECT_EQ(host_calls, 1);
}

} // namespace

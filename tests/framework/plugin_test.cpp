#include "framework/host/plugin.hpp"

#include <gmock/gmock.h>

#include "dump.hpp"
#include "framework/error.hpp"

namespace {

using ocpsm::framework::openconfig_root_walker;
using ocpsm::framework::Plugin;
using testing::HasSubstr;
using testing::StartsWith;

TEST(Plugin, IsLoadedAndFindsItsCallbacksByName) {
    const Plugin plugin(FAKE_PLUGIN_PLAIN);
    const ocpsm::framework::Callback root = plugin.callback(openconfig_root_walker);
    EXPECT_EQ(root(nullptr, nullptr, nullptr), YMAP_ERR_INVALID_ARGS);
    EXPECT_EQ(plugin.find("no_such_function"), nullptr);
    EXPECT_EQ(plugin.library(), FAKE_PLUGIN_PLAIN);
}

TEST(Plugin, AFileThatIsNotThereIsNamed) {
    const std::string error = error_of([] { const Plugin plugin("/nowhere/plugin.so"); });
    EXPECT_THAT(error, StartsWith("input|operation-failed||cannot load the plug-in /nowhere/plugin.so: "));
    EXPECT_THAT(error, HasSubstr("No such file"));
}

TEST(Plugin, ANameWithoutDirectoryIsAFileToo) {
    EXPECT_THAT(error_of([] { const Plugin plugin("libc.so.6"); }), HasSubstr("No such file"));
}

TEST(Plugin, AnOperationThatNobodyOffersIsNamedWhenItIsLoaded) {
    EXPECT_THAT(error_of([] { const Plugin plugin(FAKE_PLUGIN_UNRESOLVED); }),
                HasSubstr("operation_that_nobody_offers"));
}

TEST(Plugin, AMissingCallbackIsNamed) {
    const Plugin plugin(FAKE_PLUGIN_WITHOUT_ROOT);
    EXPECT_EQ(error_of([&plugin] { (void)plugin.callback(openconfig_root_walker); }),
              "input|operation-failed||the plug-in " FAKE_PLUGIN_WITHOUT_ROOT " does not export "
              "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps|is this the mapping plug-in for "
              "protection switch modules?");
}

} // namespace

// The database client's library may be installed after the plug-in was loaded: until its file is there every access
// looks for it again, and once it has been seen it is never looked for again. What has been seen is remembered for the
// life of the process, so every test here runs in a process of its own.
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "request.hpp"
#include "utility.hpp"

namespace {

using Lines = std::vector<std::string>;

constexpr kerrno no_library = 0x8081c200;

class PresenceTest : public fake::RequestTest {
protected:
    // Runs a test in a child, which has seen nothing yet, and makes its failures this test's.
    void in_a_fresh_process(const std::function<void()> &test) {
        EXPECT_EXIT(
            {
                test();
                std::exit(::testing::Test::HasFailure() ? 1 : 0);
            },
            ::testing::ExitedWithCode(0), "");
    }

    kerrno get() {
        void *data = nullptr;
        std::uint32_t length = 0;
        const kerrno result =
            sysdb_get_data(request.ctx(), "/oper/ots/if/", "Ots0_2_0_2/ots_info", &data, &length, SYSDB_ITEM_BAG);
        std::free(data); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): the client's contract
        return result;
    }

    Lines database() {
        Lines calls = platform.calls(fake::Database);
        platform.forget();
        return calls;
    }

    void expect_said(const Lines &expected) {
        EXPECT_EQ(platform.calls(fake::Log), expected);
        platform.forget();
    }

    const std::string look = "access(client library)";
    const std::string bind = "sysdb_bind(\"/oper/ots/if/\", 0)";
};

using PresenceDeathTest = PresenceTest;

TEST_F(PresenceDeathTest, AnAbsentLibraryIsLookedForAtEveryFetch) {
    in_a_fresh_process([this] {
        platform.client_library_present = false;
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(get(), no_library);
            EXPECT_EQ(database(), (Lines{look}));
        }
    });
}

TEST_F(PresenceDeathTest, AFetchTellsThatTheLibraryIsAbsent) {
    in_a_fresh_process([this] {
        platform.client_library_present = false;
        EXPECT_EQ(get(), no_library);
        EXPECT_EQ(platform.calls(fake::Channels | fake::Database),
                  (Lines{"log TRC path Ots0_2_0_2/ots_info", "trace TRC #1 sysdb_get_data path Ots0_2_0_2/ots_info",
                         look, "log TRC sysdb_bind failed error 0x8081c200",
                         "trace TRC #2 sysdb_get_data sysdb_bind failed error 0x8081c200"}));
    });
}

TEST_F(PresenceDeathTest, OnceSeenItIsNeverLookedForAgain) {
    in_a_fresh_process([this] {
        platform.items["/oper/ots/if/Ots0_2_0_2/ots_info"] = {};
        platform.client_library_present = false;
        EXPECT_EQ(get(), no_library);
        EXPECT_EQ(database(), (Lines{look}));

        platform.client_library_present = true;
        EXPECT_EQ(get(), KERR_SUCCESS);
        EXPECT_EQ(database(), (Lines{look, bind, "sysdb_item_get(handle 1, \"Ots0_2_0_2/ots_info\", type 7, 0)",
                                     "sysdb_unbind(handle 1)"}));

        platform.client_library_present = false;
        EXPECT_EQ(get(), KERR_SUCCESS);
        EXPECT_EQ(database(), (Lines{bind, "sysdb_item_get(handle 2, \"Ots0_2_0_2/ots_info\", type 7, 0)",
                                     "sysdb_unbind(handle 2)"}));
    });
}

TEST_F(PresenceDeathTest, ALibraryThatIsThereIsLookedForOnce) {
    in_a_fresh_process([this] {
        EXPECT_EQ(get(), platform.missing_item_result);
        EXPECT_EQ(database(), (Lines{look, bind, "sysdb_item_get(handle 1, \"Ots0_2_0_2/ots_info\", type 7, 0)",
                                     "sysdb_unbind(handle 1)"}));
        EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
        EXPECT_EQ(database(), (Lines{bind, "sysdb_list(handle 2, \"\", \"Ots0_2_0_2/\", 0)", "sysdb_list_next(0)",
                                     "sysdb_list_free()", "sysdb_unbind(handle 2)"}));
    });
}

TEST_F(PresenceDeathTest, AFailingBindDoesNotMakeTheLibraryUnseen) {
    in_a_fresh_process([this] {
        platform.answer("sysdb_bind", 0x77);
        EXPECT_EQ(get(), 0x77u);
        EXPECT_EQ(database(), (Lines{look, bind}));
        EXPECT_EQ(get(), 0x77u);
        EXPECT_EQ(database(), (Lines{bind}));
    });
}

TEST_F(PresenceDeathTest, NoKeyIsDefinedWithoutTheLibrary) {
    in_a_fresh_process([this] {
        platform.client_library_present = false;
        platform.listings["/oper/ots/if/Ots0_2_0_2/"] = {"Ots0_2_0_2/"};
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 0);
            EXPECT_EQ(platform.calls(fake::Log), (Lines{"log TRC sysdb_bind failed error 0x8081c200"}));
            EXPECT_EQ(platform.traced().back().function, "sysdb_key_is_defined");
            EXPECT_EQ(database(), (Lines{look}));
        }
        platform.client_library_present = true;
        EXPECT_EQ(sysdb_key_is_defined(request.ctx(), "Ots0_2_0_2"), 1);
        EXPECT_EQ(database().front(), look);
        EXPECT_EQ(get(), platform.missing_item_result);
        EXPECT_EQ(database().front(), bind);
    });
}

TEST_F(PresenceDeathTest, ReadersPassTheCodeOn) {
    in_a_fresh_process([this] {
        platform.client_library_present = false;
        std::string out = "untouched";
        EXPECT_EQ(sysdb_get_psm_state_rx_attenuation(request.ctx(), "Ots0_1_0_2", out.data()), no_library);
        expect_said({"log TRC controller_key Ots0_1_0_2", "log TRC path Ots0_1_0_2/ots_info",
                     "log TRC sysdb_bind failed error 0x8081c200"});
        EXPECT_EQ(sysdb_get_psm_config_rx_attenuation(request.ctx(), "Ots0_1_0_2", out.data()), no_library);
        expect_said({"log TRC controller_key Ots0_1_0_2", "log TRC path Ots0_1_0_2/Optics/rx_attenuation",
                     "log TRC sysdb_bind failed error 0x8081c200"});
        EXPECT_EQ(sysdb_get_tx_pm_30sec_max_power(request.ctx(), "Ots0_1_0_2", out.data()), no_library);
        expect_said({"log TRC controller_key Ots0_1_0_2", "log TRC path Ots0_1_0_2/30sec/optics/1/timeline_rev/0x1",
                     "log TRC sysdb_bind failed error 0x8081c200"});
        EXPECT_EQ(sysdb_get_psm_name_from_inventory(request.ctx(), "0/1-PSM-OM", out.data()), no_library);
        expect_said({"log TRC psm_name_key 0/1-PSM-OM", "log TRC path 0%2f1-PSM-OM/attrib/inv_basic_bag",
                     "log TRC sysdb_bind failed error 0x8081c200", "log TRC rc != KERR_SUCCESS"});
        EXPECT_EQ(out, "untouched");
    });
}

TEST_F(PresenceDeathTest, NoControllerIsGoodWithoutTheLibrary) {
    in_a_fresh_process([this] {
        platform.client_library_present = false;
        std::string key(20, '#');
        EXPECT_EQ(check_controller_name_ots_is_good(request.ctx(), "Ots0/1/0/1", key.data()), 0);
        EXPECT_STREQ(key.c_str(), "0/1-PSM-OM");
        EXPECT_EQ(platform.calls(fake::Log).back(),
                  "log ERR Psm_name [0/1-PSM-OM] not present in sysdb inventory, discard it!");
        EXPECT_EQ(database(), (Lines{look}));
    });
}

TEST_F(PresenceDeathTest, AMissingContextIsNoticedWhenTheAbsenceIsTold) {
    platform.client_library_present = false;
    EXPECT_DEATH(static_cast<void>(sysdb_key_is_defined(nullptr, "Ots0_2_0_2")),
                 "src/utility:[0-9]+: int sysdb_key_is_defined\\(yfw_map_ctx, const char \\*\\): "
                 "Assertion `\\(\\(void \\*\\)0\\) != ctx' failed");
}

TEST_F(PresenceDeathTest, NothingElseLooksForTheLibrary) {
    in_a_fresh_process([this] {
        std::string out(200, '#');
        EXPECT_EQ(get_value_in_bag(request.ctx(), "a", BAG_TOKEN_INT32, nullptr, 0, out.data()), 0xffffffffu);
        EXPECT_EQ(check_controller_name_ots_is_good(request.ctx(), "Ots0/1/0/2", out.data()), 0);
        EXPECT_EQ(convert_data_to_low("1", out.data(), 200, 1), 1);
        EXPECT_EQ(ots_ctrl_key_to_psm_key("Ots0/1/0/1", out.data()), 10);
        EXPECT_EQ(database(), Lines{});
    });
}

} // namespace

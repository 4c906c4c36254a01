// The direct reads of the system database: item, field and text of every reader, and every way in which a read fails.
#include <ostream>
#include <string>
#include <vector>

#include "utility_support.hpp"

namespace {

using fake::bag_item;
using fake::integer_item;
using fake::Item;
using fake::mark_token;
using fake::number_token;
using fake::text_token;
using fake::Token;
using utility::bag_of;
using utility::Buffer;
using utility::call;
using utility::item_of;
using utility::Lines;
using utility::lines_of;
using utility::Reader;
using utility::repeated;
using utility::Steps;
using utility::trace;

constexpr char interfaces[] = "/oper/ots/if/";
constexpr char configuration[] = "/cfg/if/act/";
constexpr char history[] = "/oper/perfmgmt/gl/periodic/optics/interface/";
constexpr char inventory[] = "/oper/inventory/gl/entity/";

constexpr char fetch[] = "sysdb_get_data";
constexpr char search[] = "get_value_in_bag";

struct Case {
    std::string name;
    Reader reader;
    std::string messenger; // the function that names itself in the messages
    std::string greeting;  // its first message, in front of the key
    std::string key;
    std::string bind_path;
    std::string item;
    int type;
    std::vector<Token> tokens; // of a bag; the last one is the field
    std::string text;
};

// The name in lists of tests.
void PrintTo(const Case &read, std::ostream *stream) {
    *stream << read.name;
}

Token structure(const std::string &name) {
    return mark_token(BAG_TOKEN_STRUCT_START, name);
}

Token signed_field(const std::string &name, std::int32_t value) {
    return number_token(BAG_TOKEN_INT32, name, value);
}

Case state_reader(const std::string &name, Reader reader, const std::string &item, std::vector<Token> tokens,
                  const std::string &text) {
    return {name, reader, name, "controller_key ", "Ots0_2_0_2", interfaces, "Ots0_2_0_2/" + item, 7, std::move(tokens),
            text};
}

Case history_reader(const std::string &name, Reader reader, const std::string &group, const std::string &field) {
    return {name,
            reader,
            "sysdb_get_pm_30sec_power",
            "controller_key ",
            "Ots0_1_0_2",
            history,
            "Ots0_1_0_2/30sec/optics/1/timeline_rev/0x1",
            7,
            {structure("pm_optics_paras"), structure(group), text_token(field, " -21.37 ")},
            " -21.37 "};
}

Case configuration_reader(const std::string &name, Reader reader, const std::string &item) {
    return {name, reader, name, "controller_key ", "Ots0_2_0_2", configuration, "Ots0_2_0_2/Optics/" + item,
            1,    {},     "-25"};
}

std::vector<Case> bag_readers() {
    const std::vector<Token> lane = {structure("ots_edm_info"), mark_token(BAG_TOKEN_ARRAY_START, "LaneData")};
    const auto in_lane = [&](const std::string &field, std::int32_t value) {
        std::vector<Token> tokens = lane;
        tokens.push_back(signed_field(field, value));
        return tokens;
    };
    return {
        state_reader("sysdb_get_psm_state_threshold", sysdb_get_psm_state_threshold, "optics_info",
                     {structure("optics_edm_info"), signed_field("RxLowThreshold", -300)}, "-300"),
        state_reader("sysdb_get_psm_state_rx_attenuation", sysdb_get_psm_state_rx_attenuation, "ots_info",
                     {structure("Ots_edm_info"), signed_field("RxVoaAttenuation", 150)}, "150"),
        state_reader("sysdb_get_psm_state_tx_attenuation", sysdb_get_psm_state_tx_attenuation, "ots_info",
                     {structure("Ots_edm_info"), signed_field("TxVoaAttenuation", 151)}, "151"),
        state_reader("sysdb_get_psm_state_tx_instant_power", sysdb_get_psm_state_tx_instant_power, "ots_info",
                     in_lane("TransmitPower", -2137), "-2137"),
        state_reader("sysdb_get_psm_state_tx_instant_power_dbm", sysdb_get_psm_state_tx_instant_power_dbm, "ots_info",
                     in_lane("TransmitPowerDbm", -2138), "-2138"),
        state_reader("sysdb_get_psm_state_rx_instant_power", sysdb_get_psm_state_rx_instant_power, "ots_info",
                     in_lane("ReceivePower", -2147483647 - 1), "-2147483648"),
        state_reader("sysdb_get_psm_state_rx_instant_power_dbm", sysdb_get_psm_state_rx_instant_power_dbm, "ots_info",
                     in_lane("ReceivePowerDbm", 2147483647), "2147483647"),
        history_reader("sysdb_get_rx_pm_30sec_avg_power", sysdb_get_rx_pm_30sec_avg_power, "OPR", "Average"),
        history_reader("sysdb_get_rx_pm_30sec_min_power", sysdb_get_rx_pm_30sec_min_power, "OPR", "Minimum"),
        history_reader("sysdb_get_rx_pm_30sec_max_power", sysdb_get_rx_pm_30sec_max_power, "OPR", "Maximum"),
        history_reader("sysdb_get_tx_pm_30sec_avg_power", sysdb_get_tx_pm_30sec_avg_power, "OPT", "Average"),
        history_reader("sysdb_get_tx_pm_30sec_min_power", sysdb_get_tx_pm_30sec_min_power, "OPT", "Minimum"),
        history_reader("sysdb_get_tx_pm_30sec_max_power", sysdb_get_tx_pm_30sec_max_power, "OPT", "Maximum"),
        {"sysdb_get_psm_name_from_inventory",
         sysdb_get_psm_name_from_inventory,
         "sysdb_get_psm_name_from_inventory",
         "psm_name_key ",
         "0/3-PSM-OM",
         inventory,
         "0%2f3-PSM-OM/attrib/inv_basic_bag",
         7,
         {structure("inv_phy_entity_basic_info"), text_token("Name", "0/3-PSM-OM")},
         "0/3-PSM-OM"},
    };
}

std::vector<Case> configuration_readers() {
    return {
        configuration_reader("sysdb_get_psm_config_threshold", sysdb_get_psm_config_threshold, "rx_threshold/0x1"),
        configuration_reader("sysdb_get_psm_config_rx_attenuation", sysdb_get_psm_config_rx_attenuation,
                             "rx_attenuation"),
        configuration_reader("sysdb_get_psm_config_tx_attenuation", sysdb_get_psm_config_tx_attenuation,
                             "tx_attenuation"),
    };
}

// The steps up to the fetch and those behind it.
Steps opening(const Case &read) {
    return {trace(read.messenger, read.greeting + read.key), trace(fetch, "path " + read.item),
            call("sysdb_bind(\"" + read.bind_path + "\", 0)")};
}

Steps fetching(const Case &read) {
    return opening(read) +
           Steps{call("sysdb_item_get(handle 1, \"" + read.item + "\", type " + std::to_string(read.type) + ", 0)")};
}

Steps closing() {
    return {trace(fetch, "sysdb_unbind"), call("sysdb_unbind(handle 1)"), trace(fetch, "return")};
}

// What the inventory reader alone says about a failed fetch.
Steps complaint(const Case &read) {
    return read.bind_path == inventory ? Steps{trace(read.messenger, "rc != KERR_SUCCESS")} : Steps{};
}

std::string name_of(const ::testing::TestParamInfo<Case> &read) {
    return read.param.name;
}

class ReaderTest : public utility::UtilityTest, public ::testing::WithParamInterface<Case> {
protected:
    void put(Item item) { platform.items[GetParam().bind_path + GetParam().item] = std::move(item); }

    Item record(bool with_end = true) {
        fake::Bag bag = bag_of(GetParam().tokens);
        if (with_end) {
            bag.tokens.push_back(mark_token(BAG_TOKEN_END));
        }
        return bag_item(std::move(bag));
    }

    // Reads into a buffer that the text just fills, or leaves all of it alone.
    kerrno read() { return GetParam().reader(request.ctx(), GetParam().key.c_str(), out.data()); }

    Buffer out{GetParam().text.size() + 1};
};

// ---- of any kind ----

class AnyReaderTest : public ReaderTest {};

TEST_P(AnyReaderTest, AFailingBindIsReturned) {
    platform.answer("sysdb_bind", 0x00c0ffee);
    EXPECT_EQ(read(), 0x00c0ffeeu);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of(opening(GetParam()) + Steps{trace(fetch, "sysdb_bind failed error 0x00c0ffee")} +
                                   complaint(GetParam())));
}

TEST_P(AnyReaderTest, AnItemThatIsNotThereIsReturned) {
    EXPECT_EQ(read(), 0x0a0b0c00u);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(),
              lines_of(fetching(GetParam()) + Steps{trace(fetch, "sysdb_item_get failed: error 0x0a0b0c00")} +
                       closing() + complaint(GetParam())));
}

TEST_P(AnyReaderTest, DataThatComesWithAFailureIsReleased) {
    Item broken = item_of("half", 0x77);
    broken.data_on_failure = true;
    put(broken);
    EXPECT_EQ(read(), 0x77u);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(),
              lines_of(fetching(GetParam()) + Steps{trace(fetch, "sysdb_item_get failed: error 0x00000077")} +
                       closing() + complaint(GetParam()) + Steps{call("free(item)")}));
}

TEST_P(AnyReaderTest, ARefusalIsNoErrorOfTheRequest) {
    EXPECT_EQ(read(), 0x0a0b0c00u);
    EXPECT_EQ(platform.calls(fake::Walk), Lines{});
    EXPECT_EQ(request.error_node(), "none");
    for (const fake::LogRecord &line : platform.logged()) {
        EXPECT_EQ(line.handle, request.ctx()->trace_log);
    }
}

TEST_P(AnyReaderTest, AKeyOfAnyLengthStaysWithinThePath) {
    for (const std::size_t length : {199u, 200u, 255u, 256u, 100000u}) {
        SCOPED_TRACE(length);
        platform.forget();
        const std::string key = repeated(length, 'k');
        EXPECT_EQ(GetParam().reader(request.ctx(), key.c_str(), out.data()), 0x0a0b0c00u);
        EXPECT_TRUE(out.untouched());
        EXPECT_EQ(messages()[0], "log TRC " + GetParam().greeting + key);
        // The inventory key is cut at 199 characters, every other path at 255.
        const std::string behind_key = GetParam().item.substr(GetParam().item.find('/'));
        const std::string path =
            GetParam().bind_path == inventory ? repeated(199, 'k') + behind_key : (key + behind_key).substr(0, 255);
        EXPECT_EQ(messages()[1], "log TRC path " + path);
    }
}

std::vector<Case> all_readers() {
    std::vector<Case> all = bag_readers();
    for (Case &read : configuration_readers()) {
        all.push_back(std::move(read));
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(, AnyReaderTest, ::testing::ValuesIn(all_readers()), name_of);

// ---- of a field of a bag ----

class BagReaderTest : public ReaderTest {};

TEST_P(BagReaderTest, FetchesTheItemAndPicksTheField) {
    put(record());
    EXPECT_EQ(read(), KERR_SUCCESS);
    EXPECT_EQ(out.text(), GetParam().text);
    Steps decoding = {trace(search, "Start"), call("bag_header_info(bag \"record\")"),
                      trace(search, "[bag (len 3)] \t (record v1.0)"), call("bag_init(bag \"record\", 3)")};
    for (std::size_t number = 1; number <= GetParam().tokens.size(); ++number) {
        decoding.push_back(call("bag_token(#" + std::to_string(number) + ")"));
        decoding.push_back(call("bag_free_token(#" + std::to_string(number) + ")"));
    }
    EXPECT_EQ(happened(),
              lines_of(fetching(GetParam()) + closing() + decoding +
                       Steps{trace(search, "bag_generic_destroy"), call("bag_destroy()"), call("free(item)")}));
}

TEST_P(BagReaderTest, TheNamesOfTheFieldCountToTheLetter) {
    for (std::size_t changed = 0; changed < GetParam().tokens.size(); ++changed) {
        SCOPED_TRACE(changed);
        Item item = record();
        char &first = item.bag->tokens[changed].name->front();
        first = static_cast<char>(first ^ 0x20); // the other case
        put(item);
        EXPECT_EQ(read(), KERR_SUCCESS);
        EXPECT_TRUE(out.untouched());
    }
}

TEST_P(BagReaderTest, AFieldThatIsNotThereIsASuccess) {
    put(bag_item(bag_of({mark_token(BAG_TOKEN_END)})));
    EXPECT_EQ(read(), KERR_SUCCESS);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened().back(), "free(item)");
}

TEST_P(BagReaderTest, WithoutAHandleThereIsNoBag) {
    platform.bind_gives_handle = false;
    EXPECT_EQ(read(), 0xffffffffu);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of(opening(GetParam()) + Steps{trace(fetch, "return"), trace(search, "Start"),
                                                               trace(search, "NULL == bag_data")}));
}

TEST_P(BagReaderTest, AnItemWithoutDataIsNoBag) {
    Item empty;
    empty.no_data = true;
    put(empty);
    EXPECT_EQ(read(), 0xffffffffu);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of(fetching(GetParam()) + closing() +
                                   Steps{trace(search, "Start"), trace(search, "NULL == bag_data")}));
}

TEST_P(BagReaderTest, AFailingDecoderIsReturned) {
    Item item = record();
    item.bag->header_result = 0x51;
    put(item);
    EXPECT_EQ(read(), 0x51u);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(),
              lines_of(fetching(GetParam()) + closing() +
                       Steps{trace(search, "Start"), call("bag_header_info(bag \"record\")"),
                             trace(search, "bag_header_info failed: error 0x00000051"), call("free(item)")}));

    item = record();
    item.bag->init_result = 0x52;
    put(item);
    EXPECT_EQ(read(), 0x52u);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened().back(), "free(item)");

    for (std::size_t failing = 0; failing < GetParam().tokens.size(); ++failing) {
        item = record();
        item.bag->token_results[failing] = 0x53;
        put(item);
        EXPECT_EQ(read(), 0x53u);
        EXPECT_TRUE(out.untouched());
        EXPECT_EQ(happened().back(), "free(item)");
    }
}

TEST_P(BagReaderTest, ATextOfAnyLengthIsWrittenWhole) {
    for (const std::size_t length : {0u, 20u, 200u, 256u, 100000u}) {
        Item item = record();
        Token &field = item.bag->tokens[GetParam().tokens.size() - 1];
        field = text_token(*field.name, repeated(length, 't'));
        put(item);
        Buffer text(length + 1);
        EXPECT_EQ(GetParam().reader(request.ctx(), GetParam().key.c_str(), text.data()), KERR_SUCCESS);
        EXPECT_EQ(text.text(), repeated(length, 't'));
    }
}

INSTANTIATE_TEST_SUITE_P(, BagReaderTest, ::testing::ValuesIn(bag_readers()), name_of);

// Where an array ends the path, its first element of the reader's type is the value.
class ElementTypeTest : public utility::UtilityTest {
protected:
    std::string read(Reader reader, const std::string &item, std::vector<Token> path) {
        path.back().type = BAG_TOKEN_ARRAY_START;
        path.push_back(text_token("", "text"));
        path.push_back(number_token(BAG_TOKEN_UINT32, "", 5));
        path.push_back(number_token(BAG_TOKEN_INT32, "", 4));
        path.push_back(mark_token(BAG_TOKEN_ARRAY_END));
        path.push_back(mark_token(BAG_TOKEN_END));
        platform.items[item] = bag_item(bag_of(std::move(path)));
        Buffer out = Buffer::cleared(20);
        EXPECT_EQ(reader(request.ctx(), item.find(inventory) == 0 ? "0/1-PSM-OM" : "Ots0_1_0_2", out.data()),
                  KERR_SUCCESS);
        return out.text();
    }
};

TEST_F(ElementTypeTest, StateReadersWantSignedIntegersOthersTexts) {
    for (const Case &reader : bag_readers()) {
        SCOPED_TRACE(reader.name);
        std::string item = reader.bind_path + reader.item;
        if (const std::size_t slot = item.find("Ots0_2"); slot != std::string::npos) {
            item.replace(slot, 6, "Ots0_1");
        }
        if (const std::size_t slot = item.find("0%2f3"); slot != std::string::npos) {
            item.replace(slot, 5, "0%2f1");
        }
        EXPECT_EQ(read(reader.reader, item, reader.tokens), reader.bind_path == interfaces ? "4" : "text");
    }
}

// ---- of a bare integer ----

class IntegerReaderTest : public ReaderTest {};

TEST_P(IntegerReaderTest, FetchesTheItemAndWritesTheInteger) {
    put(integer_item(-25));
    EXPECT_EQ(read(), KERR_SUCCESS);
    EXPECT_EQ(out.text(), "-25");
    EXPECT_EQ(happened(), lines_of(fetching(GetParam()) + closing() + Steps{call("free(item)")}));
}

TEST_P(IntegerReaderTest, EveryIntegerIsWritten) {
    struct Value {
        std::int32_t number;
        std::string text;
    };
    for (const Value &value : std::vector<Value>{
             {0, "0"}, {7, "7"}, {-1, "-1"}, {2147483647, "2147483647"}, {-2147483647 - 1, "-2147483648"}}) {
        put(integer_item(value.number));
        Buffer text(value.text.size() + 1);
        EXPECT_EQ(GetParam().reader(request.ctx(), GetParam().key.c_str(), text.data()), KERR_SUCCESS);
        EXPECT_EQ(text.text(), value.text);
    }
}

TEST_P(IntegerReaderTest, FourBytesAreEnoughAndTheFirstFourCount) {
    Item item = integer_item(125);
    item.bytes += "more";
    put(item);
    Buffer text(4);
    EXPECT_EQ(GetParam().reader(request.ctx(), GetParam().key.c_str(), text.data()), KERR_SUCCESS);
    EXPECT_EQ(text.text(), "125");
}

TEST_P(IntegerReaderTest, LessThanFourBytesAreAFailure) {
    for (const std::uint32_t length : {0u, 1u, 3u}) {
        SCOPED_TRACE(length);
        platform.forget();
        Item item = integer_item(125);
        item.length = length;
        put(item);
        EXPECT_EQ(read(), 0xffffffffu);
        EXPECT_TRUE(out.untouched());
        EXPECT_EQ(platform.calls(fake::Database).back(), "free(item)");
    }
}

TEST_P(IntegerReaderTest, NoDataIsAFailure) {
    Item empty;
    empty.no_data = true;
    empty.length = 4;
    put(empty);
    EXPECT_EQ(read(), 0xffffffffu);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of(fetching(GetParam()) + closing()));
}

TEST_P(IntegerReaderTest, WithoutAHandleThereIsNoData) {
    platform.bind_gives_handle = false;
    EXPECT_EQ(read(), 0xffffffffu);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(happened(), lines_of(opening(GetParam()) + Steps{trace(fetch, "return")}));
}

INSTANTIATE_TEST_SUITE_P(, IntegerReaderTest, ::testing::ValuesIn(configuration_readers()), name_of);

// ---- history by field, inventory by key ----

class HistoryTest : public utility::UtilityTest {};

TEST_F(HistoryTest, FieldAndTypeAreTheCallers) {
    platform.items["/oper/perfmgmt/gl/periodic/optics/interface/Ots0_3_0_0/30sec/optics/1/timeline_rev/0x1"] =
        bag_item(bag_of({structure("any"), mark_token(BAG_TOKEN_ARRAY_START, "field"), text_token("", "text"),
                         number_token(BAG_TOKEN_UINT32, "", 7), mark_token(BAG_TOKEN_ARRAY_END)}));
    Buffer out(20);
    EXPECT_EQ(sysdb_get_pm_30sec_power(request.ctx(), "any.field", BAG_TOKEN_UINT32, "Ots0_3_0_0", out.data()),
              KERR_SUCCESS);
    EXPECT_EQ(out.text(), "7");
    EXPECT_EQ(messages().front(), "log TRC controller_key Ots0_3_0_0");
    EXPECT_EQ(platform.traced().front().function, "sysdb_get_pm_30sec_power");
}

class InventoryTest : public utility::UtilityTest {
protected:
    // The item that is asked for a module key.
    std::string item_of(const std::string &psm_key) {
        platform.forget();
        Buffer out(200);
        EXPECT_EQ(sysdb_get_psm_name_from_inventory(request.ctx(), psm_key.c_str(), out.data()), 0x0a0b0c00u);
        return messages()[1];
    }
};

TEST_F(InventoryTest, TheFirstSlashOfTheKeyIsEncoded) {
    EXPECT_EQ(item_of("0/1-PSM-OM"), "log TRC path 0%2f1-PSM-OM/attrib/inv_basic_bag");
    EXPECT_EQ(item_of("0/1/2/3"), "log TRC path 0%2f1/2/3/attrib/inv_basic_bag");
    EXPECT_EQ(item_of("PSM-1"), "log TRC path PSM-1/attrib/inv_basic_bag");
    EXPECT_EQ(item_of(""), "log TRC path /attrib/inv_basic_bag");
    EXPECT_EQ(item_of("0%2f1"), "log TRC path 0%2f1/attrib/inv_basic_bag");
    EXPECT_EQ(item_of("%s/%n"), "log TRC path %s%2f%n/attrib/inv_basic_bag");
}

TEST_F(InventoryTest, ALongKeyIsCutBeforeItsSlashIsEncoded) {
    EXPECT_EQ(item_of("0/" + repeated(300, 'x')), "log TRC path 0%2f" + repeated(197, 'x') + "/attrib/inv_basic_bag");
    EXPECT_EQ(item_of(repeated(198, 'x') + "/y"), "log TRC path " + repeated(198, 'x') + "%2f/attrib/inv_basic_bag");
    EXPECT_EQ(item_of(repeated(199, 'x') + "/y"), "log TRC path " + repeated(199, 'x') + "/attrib/inv_basic_bag");
}

// ---- null context ----

class ReaderDeathTest : public ReaderTest {};

TEST_P(ReaderDeathTest, NeedsAContext) {
    // The history readers differ in nothing but the field that they hand on.
    const std::string prototype =
        GetParam().messenger == "sysdb_get_pm_30sec_power"
            ? "kerrno sysdb_get_pm_30sec_power(yfw_map_ctx, const char *, bag_token_type_td, const char *, char *)"
            : "kerrno " + GetParam().name + "(yfw_map_ctx, const char *, char *)";
    EXPECT_DEATH(static_cast<void>(GetParam().reader(nullptr, GetParam().key.c_str(), out.data())),
                 utility::context_assertion("utility", prototype));
}

INSTANTIATE_TEST_SUITE_P(, ReaderDeathTest, ::testing::ValuesIn(all_readers()), name_of);

} // namespace

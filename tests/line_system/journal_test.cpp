#include "simulator/line_system/journal.hpp"

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/measure.hpp"
#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"
#include "sysdb/open_store.hpp"

namespace ocpsm {

static void PrintTo(const JournalEntry &entry, std::ostream *out) { // gtest finds it by this name
    *out << entry.sequence << " at " << entry.time << "/" << entry.clock << " kind " << static_cast<int>(entry.kind)
         << " |" << entry.module << "|" << entry.line << "|" << entry.before << "|" << entry.after << "|"
         << entry.reason << "|" << entry.user << "|";
    for (const Change &change : entry.changes) {
        *out << " " << change.path << ": " << change.before.value_or("-") << " -> " << change.after.value_or("-");
    }
}

namespace line_system {
namespace {

using sysdb::Table;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t noon = 1'700'000'000'000;

std::int64_t at_noon() {
    return noon;
}

constexpr std::size_t all = 1'000'000;

class JournalTest : public OpenStore {
public:
    JournalTest() {
        const auto transaction = store->write();
        save(*transaction, example());
        transaction->commit();
    }

protected:
    void enter(const std::vector<JournalEntry> &entries) {
        const auto transaction = store->write();
        for (const JournalEntry &entry : entries) {
            append(*transaction, entry);
        }
        transaction->commit();
    }

    std::vector<JournalEntry> journal(std::uint64_t after = 0, std::size_t most = all) {
        return read_journal(*store->read(), after, most);
    }

    std::vector<std::uint64_t> sequences(std::uint64_t after = 0, std::size_t most = all) {
        std::vector<std::uint64_t> found;
        for (const JournalEntry &entry : journal(after, most)) {
            found.push_back(entry.sequence);
        }
        return found;
    }

    void put(const std::string &record, const std::string &text) {
        const auto transaction = store->write();
        transaction->put(Table::journal, record, text);
        transaction->commit();
    }

    void does(const LineSystemChange &how) { change(*store, how, at_noon); }
};

std::string damaged(const std::string &record) {
    return "input|operation-failed||the journal of the line system is damaged: its record " + record +
           " cannot be understood|restore the directory from a copy or create a new line system";
}

// ---- what is entered ----

TEST_F(JournalTest, HasWhatHappensToTheLineSystem) {
    does([](const LineSystem &system, Events &events) { return tick(system, 250, &events); });
    EXPECT_THAT(journal(), IsEmpty());
    does([](const LineSystem &system, Events &events) { return cut(system, 1, Path::primary, &events); });
    does([](const LineSystem &system, Events &events) { return tick(system, 1000, &events); });
    does([](const LineSystem &system, Events &events) { return splice(system, 1, Path::primary, &events); });
    does([](const LineSystem &system, Events &events) { return tick(system, 60'000, &events); });
    does([](const LineSystem &system, Events &events) { return light(system, 3, Path::secondary, -2000, &events); });
    does([](const LineSystem &system, Events &events) { return pull(system, 3, &events); });
    does([](const LineSystem &system, Events &events) { return fit(system, 2, &events); });
    const std::string first = "0/1-PSM-OM";
    EXPECT_THAT(journal(), ElementsAre(JournalEntry{1, noon, 250, JournalKind::cut, first, "", "", "primary"},
                                       JournalEntry{2, noon, 350, JournalKind::switched, first, "PRIMARY", "SECONDARY",
                                                    "", "loss of primary: -40.00 dBm, below -25.00 dBm"},
                                       JournalEntry{3, noon, 1250, JournalKind::spliced, first, "", "", "primary"},
                                       JournalEntry{4, noon, 11'350, JournalKind::switched, first, "SECONDARY",
                                                    "PRIMARY", "", "primary restored: -12.34 dBm, good for 10.0 s"},
                                       JournalEntry{5, noon, 61'250, JournalKind::lit, "0/3-PSM-OM", "-16.59", "-20.00",
                                                    "secondary"},
                                       JournalEntry{6, noon, 61'250, JournalKind::pulled, "0/3-PSM-OM"},
                                       JournalEntry{7, noon, 61'250, JournalKind::fitted, "0/2-PSM-OM"}));
    EXPECT_EQ(last_sequence(*store->read()), 7U);
}

TEST_F(JournalTest, HasNothingOfWhatChangesNothing) {
    does([](const LineSystem &system, Events &events) { return cut(system, 3, Path::primary, &events); });
    does([](const LineSystem &system, Events &events) { return splice(system, 3, Path::secondary, &events); });
    does([](const LineSystem &system, Events &events) { return light(system, 3, Path::primary, -1612, &events); });
    const auto transaction = store->write();
    LineSystemDevice(*transaction, at_noon).record("nobody", {});
    transaction->commit();
    EXPECT_THAT(journal(), IsEmpty());
    EXPECT_EQ(last_sequence(*store->read()), 0U);
}

// In the order in which they came about, whichever slot they are in.
TEST_F(JournalTest, HasEachSwitchOverOfALongTick) {
    does([](const LineSystem &system, Events &events) {
        LineSystem before = light(system, 3, Path::primary, 300);
        before = splice(before, 3, Path::primary);
        slot(before, 1).module->protection.active = Path::secondary;
        return tick(before, 86'400'000, &events);
    });
    EXPECT_THAT(journal(),
                ElementsAre(JournalEntry{1, noon, 100, JournalKind::switched, "0/3-PSM-OM", "SECONDARY", "PRIMARY", "",
                                         "primary better by 19.09 dB, more than the relative threshold of "
                                         "3.00 dB"},
                            JournalEntry{2, noon, 10'100, JournalKind::switched, "0/1-PSM-OM", "SECONDARY", "PRIMARY",
                                         "", "primary restored: -12.34 dBm, good for 10.0 s"}));
}

TEST_F(JournalTest, HasNothingOfWhatIsRefused) {
    EXPECT_EQ(error_of([&] {
                  does([](const LineSystem &system, Events &events) {
                      return pull(cut(system, 1, Path::primary, &events), 2, &events);
                  });
              }),
              "refused|data-missing||slot 2 holds no module|fit one first");
    EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(JournalTest, HasEditsWithWhoAskedForThem) {
    const std::vector<Change> changes{{"/a", "1", std::nullopt}, {"/b", std::nullopt, ""}};
    const auto record = [&](const std::string &user) {
        const auto transaction = store->write();
        LineSystemDevice device(*transaction, at_noon);
        device.record(user, changes);
        device.commit();
    };
    record("cli somebody");
    record(std::string(256, 'u'));
    record(std::string(1'000'000, 'u'));
    EXPECT_THAT(journal(), ElementsAre(JournalEntry{.sequence = 1,
                                                    .time = noon,
                                                    .kind = JournalKind::configured,
                                                    .user = "cli somebody",
                                                    .changes = changes},
                                       JournalEntry{.sequence = 2,
                                                    .time = noon,
                                                    .kind = JournalKind::configured,
                                                    .user = std::string(256, 'u'),
                                                    .changes = changes},
                                       JournalEntry{.sequence = 3,
                                                    .time = noon,
                                                    .kind = JournalKind::configured,
                                                    .user = std::string(256, 'u') + "...",
                                                    .changes = changes}));
    const auto snapshot = store->read();
    EXPECT_THROW(LineSystemDevice(*snapshot).record("somebody", changes), std::logic_error);
}

// ---- how it is kept ----

TEST_F(JournalTest, KeepsWhateverTextsHold) {
    using namespace std::string_literals;
    const std::string hostile = "3:a-\0 \n\xff\xfe 12 head"s;
    JournalEntry entry{.time = -1, .clock = UINT64_MAX, .kind = JournalKind::configured};
    for (const auto text : {&JournalEntry::module, &JournalEntry::before, &JournalEntry::after, &JournalEntry::line,
                            &JournalEntry::reason, &JournalEntry::user}) {
        entry.*text = hostile + std::to_string(entry.module.size());
    }
    entry.changes = {{hostile, hostile, hostile}, {"", "", ""}, {"-", "-", std::nullopt}, {"x", std::nullopt, "1:"}};
    enter({entry, entry});
    open_again();
    JournalEntry first = entry;
    first.sequence = 1;
    JournalEntry second = entry;
    second.sequence = 2;
    EXPECT_THAT(journal(), ElementsAre(first, second));
}

TEST_F(JournalTest, IsReadInPieces) {
    enter(std::vector<JournalEntry>(5));
    EXPECT_THAT(sequences(0), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(sequences(0, 2), ElementsAre(1, 2));
    EXPECT_THAT(sequences(2, 2), ElementsAre(3, 4));
    EXPECT_THAT(sequences(4), ElementsAre(5));
    for (const std::uint64_t end : {std::uint64_t{5}, std::uint64_t{6}, UINT64_MAX}) {
        EXPECT_THAT(sequences(end), IsEmpty());
    }
    EXPECT_THAT(sequences(0, 0), IsEmpty());
}

TEST_F(JournalTest, DropsTheOldestOfTooMany) {
    enter(std::vector<JournalEntry>(9'999, JournalEntry{.reason = "one"}));
    enter({{.reason = "the last that has room"}});
    EXPECT_THAT(sequences(0, 2), ElementsAre(1, 2));
    enter({{.reason = "the first that has none"}, {}});
    open_again();
    EXPECT_EQ(journal().size(), 10'000U);
    EXPECT_THAT(sequences(0, 2), ElementsAre(3, 4));
    EXPECT_THAT(sequences(1, 1), ElementsAre(3));
    EXPECT_THAT(sequences(10'000), ElementsAre(10'001, 10'002));
    EXPECT_EQ(journal(10'000, 1).front().reason, "the first that has none");
    std::size_t records = 0;
    store->read()->for_each(Table::journal, "", [&](std::string_view, std::string_view) {
        ++records;
        return true;
    });
    EXPECT_EQ(records, 10'001U); // and where they begin and end
}

TEST_F(JournalTest, DropsTheOldestOfTooLargeOnes) {
    const std::size_t mebibyte = 1 << 20;
    const std::vector<JournalEntry> large(15, {.reason = std::string(mebibyte, 'x')});
    enter(large);
    EXPECT_THAT(sequences(0, 1), ElementsAre(1));
    enter({large[0]});
    EXPECT_THAT(sequences(0, 1), ElementsAre(2));
    enter({{.reason = std::string(16 * mebibyte - 100, 'x')}});
    EXPECT_THAT(sequences(), ElementsAre(17));
    EXPECT_EQ(error_of([&] { enter({{.reason = std::string(16 * mebibyte, 'x')}}); }),
              "refused|too-big||the change is too large for the journal|make it in several steps");
    enter({{.reason = std::string(200, 'x')}});
    EXPECT_THAT(sequences(), ElementsAre(18));
}

// The journal that is there costs a tick nothing.
TEST_F(JournalTest, DoesNotSlowDownWhatHappens) {
    const auto tick_often = [&] {
        for (int round = 0; round < 30; ++round) {
            does([](const LineSystem &system, Events &events) {
                return tick(slot(system, 1).cabling.fibres[0].cut ? splice(system, 1, Path::primary, &events)
                                                                  : cut(system, 1, Path::primary, &events),
                            100, &events);
            });
        }
    };
    const double with_little = measure::seconds(tick_often);
    enter(std::vector<JournalEntry>(10'000, JournalEntry{.reason = std::string(100, 'x')}));
    double with_much = measure::seconds(tick_often);
    with_much = std::min(with_much, measure::seconds(tick_often));
    EXPECT_LT(with_much, 2 * with_little);
}

// ---- what is wrong with it ----

TEST_F(JournalTest, RefusesRecordsThatItCannotUnderstand) {
    const std::string fine = "c1 2 1:m0:0:7:primary0:0:";
    enter({{}, {}});
    put("000000000002", fine);
    EXPECT_THAT(journal(1), ElementsAre(JournalEntry{2, 1, 2, JournalKind::cut, "m", "", "", "primary"}));
    for (const std::string text : {"",
                                   "x1 2 1:m0:0:7:primary0:0:",
                                   "c",
                                   "c1",
                                   "c1 ",
                                   "c1 2",
                                   "c1 2 ",
                                   "cx 2 1:m0:0:7:primary0:0:",
                                   "c1 -2 1:m0:0:7:primary0:0:",
                                   "c1  2 1:m0:0:7:primary0:0:",
                                   "c1 2 1:m0:0:7:primary0:",
                                   "c1 2 1:m0:0:7:primary0:1:",
                                   "c1 2 1:m0:0:7:primary0:0:x",
                                   "c1 2 1:m0:0:7:primary0:0:1:p",
                                   "c1 2 1:m0:0:7:primary0:0:1:p-",
                                   "c1 2 1:m0:0:7:primary0:0:--",
                                   "c1 2 -0:0:0:0:0:",
                                   "c1 2 99999999999999999999:m0:0:0:0:0:",
                                   "c1 2 18446744073709551615:m0:0:0:0:0:",
                                   "c9223372036854775808 2 1:m0:0:0:0:0:"}) {
        put("000000000002", text);
        EXPECT_EQ(error_of([&] { journal(); }), damaged("000000000002")) << text;
        EXPECT_THAT(sequences(0, 1), ElementsAre(1)) << text;
    }
}

TEST_F(JournalTest, NoticesWhatIsMissing) {
    enter({{}, {}, {}});
    const auto transaction = store->write();
    transaction->erase(Table::journal, "000000000002");
    transaction->commit();
    EXPECT_EQ(error_of([&] { journal(); }), damaged("000000000002"));
    EXPECT_THAT(sequences(2), ElementsAre(3));
}

TEST_F(JournalTest, RefusesToGoOnBehindADamagedHead) {
    enter({{}, {}});
    for (const std::string text : {"", "1", "1 2", "1 2 3", "1 2 3 4 ", "0 2 3 ", "3 2 3 ", "1 10001 3 ", "-1 2 3 ",
                                   "1 18446744073709551615 3 ", "1 18446744073709551616 3 "}) {
        put("head", text);
        EXPECT_EQ(error_of([&] { journal(); }), damaged("head")) << text;
        EXPECT_EQ(error_of([&] { last_sequence(*store->read()); }), damaged("head")) << text;
        EXPECT_EQ(
            error_of([&] { does([](const LineSystem &system, Events &events) { return pull(system, 1, &events); }); }),
            damaged("head"))
            << text;
        EXPECT_TRUE(load(*store->read()) == example());
    }
}

} // namespace
} // namespace line_system
} // namespace ocpsm

// Edits whose process is killed, at the beginning of each of its system calls in turn: the line system is what it was
// or what it was to become, and the next edit is carried out as if nothing had happened.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answers.hpp"
#include "line_system.hpp"
#include "traced_process.hpp"

namespace {

using circle::Records;
using ocpsm::Operation;
using ocpsm::PathEdits;
using ocpsm::Text;

Text modules(const std::string &content) {
    return {"<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
            "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules>" +
            content + "</aps-modules></aps>"};
}

struct Row {
    std::string what;
    ocpsm::Edit edit;
};

const std::vector<Row> rows{
    {"a threshold", PathEdits{{circle::module_path(1, "/config/primary-switch-threshold"), Operation::merge, "-18.5"}}},
    {"a setting that is deleted", PathEdits{{circle::module_path(1, "/config/revertive"), Operation::delete_existing}}},
    {"a configuration that is replaced",
     modules("<aps-module><name>0/1-PSM-OM</name><config nc:operation=\"replace\"><force-to-port>SECONDARY"
             "</force-to-port></config></aps-module>")},
    {"a module that is deleted", modules("<aps-module nc:operation=\"delete\"><name>0/3-PSM-OM</name></aps-module>")},
    {"attenuators of both modules",
     modules("<aps-module><name>0/1-PSM-OM</name><ports><line-secondary-out><config><target-attenuation>3.5"
             "</target-attenuation></config></line-secondary-out></ports></aps-module>"
             "<aps-module><name>0/3-PSM-OM</name><ports><line-primary-in><config><target-attenuation>12"
             "</target-attenuation></config></line-primary-in></ports></aps-module>")},
    {"thresholds of both lines",
     modules("<aps-module><name>0/3-PSM-OM</name><config><primary-switch-threshold nc:operation=\"remove\"/>"
             "<secondary-switch-threshold>-31</secondary-switch-threshold></config></aps-module>")},
};

// What none of them touches.
const PathEdits next_edit{
    {circle::module_path(1, "/ports/line-primary-in/config/target-attenuation"), Operation::merge, "7.7"}};

class Kills : public circle::RestoredExample {
protected:
    // As it is, and as the next edit makes it.
    struct Outcome {
        Records now;
        Records next;

        bool operator==(const Outcome &) const = default;
    };

    Outcome outcome() const {
        Outcome found{circle::records(state()), {}};
        const ocpsm::EditResult next = circle::edit_in(state(), next_edit);
        EXPECT_EQ(next.error ? next.error->message() : "", "");
        EXPECT_THAT(next.changes,
                    testing::ElementsAre(ocpsm::Change{next_edit.front().path, "2.5", next_edit.front().value}));
        found.next = circle::records(state());
        restore();
        return found;
    }

    // Returns the number of kills.
    int kill_everywhere(const ocpsm::Edit &edit) const {
        const Outcome before = outcome();
        EXPECT_EQ(circle::edit_in(state(), edit).error, std::nullopt);
        const Outcome after = outcome();
        EXPECT_NE(before.now, after.now);
        int kills = 0;
        int unchanged = 0;
        for (; !HasFailure(); ++kills) {
            circle::TracedProcess child([&] { return circle::edit_in(state(), edit).error ? 1 : 0; });
            const bool ended = !child.next_call(kills);
            child.kill_now();
            const Outcome found = outcome();
            EXPECT_TRUE(found == after || (!ended && found == before)) << "killed at call " << kills;
            if (ended) {
                EXPECT_EQ(child.exit_code(), 0);
                break;
            }
            unchanged += found == before ? 1 : 0;
        }
        // On both sides of the moment in which the edit becomes valid.
        EXPECT_GE(unchanged, 10);
        EXPECT_GE(kills - unchanged, 1);
        return kills;
    }
};

TEST_F(Kills, LeaveTheLineSystemAsItWasOrAsItIsToBe) {
    int kills = 0;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        kills += kill_everywhere(row.edit);
    }
    RecordProperty("kills", kills);
    EXPECT_GE(kills, 200);
}

} // namespace

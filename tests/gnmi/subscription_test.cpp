// What a subscriber is sent, and when: of a clock that stands still, and of devices that are written down.
#include <gmock/gmock.h>
#include <google/protobuf/text_format.h>

#include "servers/gnmi/outbox.hpp"
#include "servers/gnmi/refusal.hpp"
#include "servers/gnmi/subscription.hpp"

namespace {

using ocpsm::gnmi::Outbox;
using ocpsm::gnmi::Refusal;
using ocpsm::gnmi::Snapshot;
using ocpsm::gnmi::Subscriptions;
using ocpsm::gnmi::Time;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
namespace messages = ::gnmi;

using Lines = std::vector<std::string>;

const std::string timer = "/config/wait-to-restore-time";
const std::string active = "/state/active-path";
const std::string power = "/ports/common-in/state/optical-power/instant";

messages::SubscriptionList list(const std::string &text) {
    messages::SubscriptionList message;
    EXPECT_TRUE(google::protobuf::TextFormat::ParseFromString(text, &message)) << text;
    return message;
}

// A subscription to everything.
messages::SubscriptionList stream(const std::string &fields) {
    return list("encoding: JSON subscription {" + fields + "}");
}

// All that is in the outbox; a value is "A/config/leaf value".
Lines taken(Outbox &outbox) {
    Lines lines;
    while (const auto response = outbox.take()) {
        if (response->sync_response()) {
            lines.push_back("sync");
        }
        const auto words = [](const messages::Path &path) {
            std::string text = path.elem(2).key().at("name");
            for (int at = 3; at < path.elem_size(); ++at) {
                text += "/" + path.elem(at).name();
            }
            return text;
        };
        for (const messages::Update &update : response->update().update()) {
            const std::string times = update.duplicates() == 0 ? "" : " x" + std::to_string(update.duplicates());
            lines.push_back(words(update.path()) + " " + update.val().json_val() + times);
        }
        for (const messages::Path &gone : response->update().delete_()) {
            lines.push_back(words(gone) + " deleted");
        }
    }
    return lines;
}

// A device with modules A and B, each with a setting, an event and a measurement.
class Device {
public:
    Device() { fit("A", 1); }

    void fit(const std::string &name, int value) {
        set(name, timer, std::to_string(value));
        set(name, active, "openconfig-transport-line-protection:PRIMARY");
        set(name, power, "-" + std::to_string(value) + ".0");
    }
    void pull(const std::string &name) {
        for (const std::string &below : {timer, active, power}) {
            values_.erase(path(name, below));
        }
    }
    void set(const std::string &name, const std::string &below, const std::string &value) {
        values_[path(name, below)] = value;
    }

    // Each is of a later time.
    std::shared_ptr<const Snapshot> snapshot() {
        std::vector<ocpsm::Leaf> leaves;
        for (const auto &[path, value] : values_) {
            leaves.push_back({path, value});
        }
        last_ = ocpsm::gnmi::snapshot_of(leaves, ++time_, last_);
        return last_;
    }

private:
    static std::string path(const std::string &name, const std::string &below) {
        return "/aps/aps-modules/aps-module[name='" + name + "']" + below;
    }

    std::map<std::string, std::string> values_;
    std::int64_t time_ = 0;
    std::shared_ptr<const Snapshot> last_;
};

// A subscriber to it from 10 s on.
struct Subscriber {
    explicit Subscriber(const messages::SubscriptionList &asked) : subscriptions(asked) {
        subscriptions.start(now, device.snapshot(), outbox);
    }

    Lines after(milliseconds passed) {
        now += passed;
        subscriptions.step(now, device.snapshot(), outbox);
        return taken(outbox);
    }
    std::int64_t due_in() { return std::chrono::duration_cast<milliseconds>(*subscriptions.due() - now).count(); }

    Device device;
    Time now = std::chrono::seconds(10);
    Outbox outbox{messages::JSON, {}, 0};
    Subscriptions subscriptions;
};

const Lines all{"A/config/wait-to-restore-time 1", "A/ports/common-in/state/optical-power/instant -1.0",
                "A/state/active-path \"PRIMARY\""};

Lines all_and_sync() {
    Lines lines = all;
    lines.push_back("sync");
    return lines;
}

TEST(GnmiSubscription, OnChangeSendsEverythingOnceAndThenWhatChanges) {
    Subscriber one(stream("mode: ON_CHANGE"));
    EXPECT_EQ(taken(one.outbox), all_and_sync());
    EXPECT_THAT(one.after(milliseconds(1)), IsEmpty());
    one.device.set("A", timer, "2");
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time 2"));
    EXPECT_THAT(one.after(milliseconds(1)), IsEmpty());
    EXPECT_EQ(one.due_in(), 997); // nothing tells of measurements
    one.device.set("A", power, "-7.0");
    EXPECT_THAT(one.after(milliseconds(997)), ElementsAre("A/ports/common-in/state/optical-power/instant -7.0"));
    EXPECT_EQ(one.due_in(), 1'000);
}

TEST(GnmiSubscription, OnChangeWithoutMeasurementsIsNeverDue) {
    Subscriber one(stream("mode: ON_CHANGE path {elem {name: '...'} elem {name: 'active-path'}}"));
    EXPECT_THAT(taken(one.outbox), ElementsAre("A/state/active-path \"PRIMARY\"", "sync"));
    EXPECT_EQ(one.subscriptions.due(), std::nullopt);
}

TEST(GnmiSubscription, TellsWhatComesAndGoes) {
    Subscriber one(stream("mode: ON_CHANGE"));
    taken(one.outbox);
    one.device.fit("B", 5);
    EXPECT_THAT(one.after(milliseconds(1)),
                ElementsAre("B/config/wait-to-restore-time 5", "B/ports/common-in/state/optical-power/instant -5.0",
                            "B/state/active-path \"PRIMARY\""));
    one.device.pull("A");
    EXPECT_THAT(one.after(milliseconds(1)),
                ElementsAre("A/config/wait-to-restore-time deleted",
                            "A/ports/common-in/state/optical-power/instant deleted", "A/state/active-path deleted"));
    EXPECT_THAT(one.after(milliseconds(1)), IsEmpty());
}

TEST(GnmiSubscription, ASubscriptionMayBeToWhatIsNotThereYet) {
    Subscriber one(stream("mode: ON_CHANGE path {elem {name: 'aps'} elem {name: 'aps-modules'} elem {name: "
                          "'aps-module' key {key: 'name' value: 'B'}} elem {name: 'config'}}"));
    EXPECT_THAT(taken(one.outbox), ElementsAre("sync"));
    one.device.fit("B", 5);
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("B/config/wait-to-restore-time 5"));
}

TEST(GnmiSubscription, SamplesAreSentAtWholeIntervalsFromTheStart) {
    Subscriber one(stream("mode: SAMPLE sample_interval: 500000000"));
    EXPECT_EQ(taken(one.outbox), all_and_sync());
    EXPECT_EQ(one.due_in(), 500);
    one.device.set("A", timer, "2");
    EXPECT_THAT(one.after(milliseconds(499)), IsEmpty());
    EXPECT_EQ(one.after(milliseconds(1)).size(), 3);
    EXPECT_EQ(one.after(milliseconds(730)).size(), 3); // late, at 1230
    EXPECT_EQ(one.due_in(), 270);
    EXPECT_EQ(one.after(milliseconds(5'270)).size(), 3); // once for all that was missed
    EXPECT_EQ(one.due_in(), 500);
    one.device.pull("A");
    EXPECT_EQ(one.after(milliseconds(500)).size(), 3);
    EXPECT_THAT(one.after(milliseconds(500)), IsEmpty());
}

TEST(GnmiSubscription, SamplesWithoutAnIntervalComeAsOftenAsCanBe) {
    EXPECT_EQ(Subscriber(stream("mode: SAMPLE")).due_in(), 100);
}

TEST(GnmiSubscription, RedundantSamplesAreLeftOutButForTheHeartbeat) {
    Subscriber one(stream("mode: SAMPLE sample_interval: 1000000000 suppress_redundant: true "
                          "heartbeat_interval: 2500000000"));
    taken(one.outbox);
    one.device.set("A", timer, "2");
    EXPECT_THAT(one.after(milliseconds(1'000)), ElementsAre("A/config/wait-to-restore-time 2"));
    EXPECT_THAT(one.after(milliseconds(1'000)), IsEmpty());
    EXPECT_EQ(one.due_in(), 500);
    EXPECT_EQ(one.after(milliseconds(500)).size(), 3);
    EXPECT_EQ(one.due_in(), 500);
}

TEST(GnmiSubscription, AHeartbeatRepeatsWhatHasNotChanged) {
    Subscriber one(stream("mode: ON_CHANGE heartbeat_interval: 400000000"));
    taken(one.outbox);
    EXPECT_EQ(one.due_in(), 400);
    EXPECT_EQ(one.after(milliseconds(400)), all);
    EXPECT_THAT(one.after(milliseconds(399)), IsEmpty());
    EXPECT_EQ(one.after(milliseconds(1)), all);
}

TEST(GnmiSubscription, TargetDefinedSamplesMeasurementsAndTellsTheRest) {
    Subscriber one(stream("mode: TARGET_DEFINED"));
    EXPECT_THAT(taken(one.outbox), testing::UnorderedElementsAre(all[0], all[1], all[2], "sync"));
    EXPECT_EQ(one.due_in(), 1'000);
    one.device.set("A", timer, "2");
    one.device.set("A", power, "-7.0");
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time 2"));
    EXPECT_THAT(one.after(milliseconds(999)), ElementsAre("A/ports/common-in/state/optical-power/instant -7.0"));
    EXPECT_THAT(one.after(milliseconds(1'000)), ElementsAre("A/ports/common-in/state/optical-power/instant -7.0"));
}

TEST(GnmiSubscription, EachSubscriptionHasItsMode) {
    Subscriber one(list("encoding: JSON subscription {mode: SAMPLE sample_interval: 300000000 path {elem {name: '...'} "
                        "elem {name: 'optical-power'}}} subscription {mode: ON_CHANGE path {elem {name: '...'} "
                        "elem {name: 'config'}}}"));
    EXPECT_THAT(taken(one.outbox), ElementsAre(all[1], all[0], "sync"));
    one.device.set("A", timer, "2");
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time 2"));
    EXPECT_THAT(one.after(milliseconds(299)), ElementsAre(all[1]));
}

TEST(GnmiSubscription, UpdatesOnlyBeginsWithTheEndOfTheBeginning) {
    Subscriber one(list("encoding: JSON updates_only: true subscription {mode: ON_CHANGE}"));
    EXPECT_THAT(taken(one.outbox), ElementsAre("sync"));
    one.device.set("A", timer, "2");
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time 2"));
}

TEST(GnmiSubscription, APollIsAnsweredWithEverything) {
    Subscriber one(list("encoding: JSON mode: POLL updates_only: true subscription {}"));
    EXPECT_THAT(taken(one.outbox), ElementsAre("sync"));
    EXPECT_EQ(one.subscriptions.due(), std::nullopt);
    one.subscriptions.poll(*one.device.snapshot(), one.outbox);
    EXPECT_EQ(taken(one.outbox), all_and_sync());
}

// ---- the outbox ----

TEST(GnmiOutbox, KeepsTheNewestValueAndCountsTheOthers) {
    Subscriber one(stream("mode: ON_CHANGE"));
    for (int value = 2; value <= 1'000; ++value) {
        one.device.set("A", timer, std::to_string(value));
        one.subscriptions.step(one.now, one.device.snapshot(), one.outbox);
    }
    EXPECT_THAT(taken(one.outbox), ElementsAre("A/config/wait-to-restore-time 1000 x999", all[1], all[2], "sync"));
    EXPECT_TRUE(one.outbox.empty());
    one.device.set("A", timer, "1");
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time 1"));
}

TEST(GnmiOutbox, AValueThatSeveralSubscriptionsHaveIsSentOnce) {
    Subscriber one(list("encoding: JSON subscription {mode: ON_CHANGE} subscription {mode: ON_CHANGE}"));
    EXPECT_EQ(taken(one.outbox), all_and_sync());
}

TEST(GnmiOutbox, ADeletionOvertakesValuesAndIsOvertaken) {
    Subscriber one(stream("mode: ON_CHANGE path {elem {name: '...'} elem {name: 'config'}}"));
    taken(one.outbox);
    one.device.set("A", timer, "2");
    one.subscriptions.step(one.now, one.device.snapshot(), one.outbox);
    one.device.pull("A");
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time deleted"));
    one.device.fit("A", 3);
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time 3"));
    one.device.pull("A");
    one.subscriptions.step(one.now, one.device.snapshot(), one.outbox);
    one.device.fit("A", 4);
    EXPECT_THAT(one.after(milliseconds(1)), ElementsAre("A/config/wait-to-restore-time 4"));
}

TEST(GnmiOutbox, AMessageIsOfOneTimeAndHas512UpdatesAtMost) {
    Outbox outbox(messages::JSON, {}, 0);
    const ocpsm::gnmi::Steps steps =
        ocpsm::gnmi::steps_of("/aps/aps-modules/aps-module[name='A']/config/wait-to-restore-time");
    for (int number = 0; number < 600; ++number) {
        outbox.update({std::to_string(number), steps, ocpsm::gnmi::node_of(steps)}, "1", number < 590 ? 1 : 2);
    }
    EXPECT_EQ(outbox.take()->update().update_size(), 512);
    const auto second = outbox.take();
    EXPECT_EQ(second->update().update_size(), 78);
    EXPECT_EQ(second->update().timestamp(), 1);
    EXPECT_EQ(outbox.take()->update().timestamp(), 2);
    EXPECT_TRUE(outbox.empty());
}

TEST(GnmiOutbox, HasABound) {
    Outbox outbox(messages::JSON, {}, 0);
    const ocpsm::gnmi::Steps steps{{"aps"}};
    for (int number = 0; number < 65'536; ++number) {
        outbox.remove({std::to_string(number), steps, nullptr}, 1);
    }
    EXPECT_FALSE(outbox.overflowed());
    outbox.remove({"one more", steps, nullptr}, 1);
    EXPECT_TRUE(outbox.overflowed());
}

// ---- what is refused ----

struct RefusedRow {
    std::string list;
    std::string expected;
};

TEST(GnmiSubscription, RefusesWhatIsNotServed) {
    const std::string aps = "subscription {path {elem {name: 'aps'}} ";
    const std::vector<RefusedRow> rows{
        {"", "3 a subscription list has no subscription"},
        {aps + "} encoding: BYTES", "12 the encodings are JSON, JSON_IETF and PROTO"},
        {aps + "} qos {marking: 7}", "12 packets are not marked: leave qos out"},
        {aps + "mode: SAMPLE sample_interval: 99999999}", "3 the sample_interval is less than 100 ms at /aps"},
        {aps + "mode: ON_CHANGE heartbeat_interval: 1}", "3 the heartbeat_interval is less than 100 ms at /aps"},
        {"subscription {path {elem {name: 'nothing'}}}", "5 the model has no such node at /nothing"},
        {aps + "} use_models {name: 'other' version: '1'}",
         "3 the model other 1 is not served, only openconfig-transport-line-protection 2018-11-21"},
    };
    for (const RefusedRow &row : rows) {
        try {
            const Subscriptions subscriptions(list(row.list));
            ADD_FAILURE() << row.list;
        } catch (const Refusal &refusal) {
            EXPECT_EQ(std::to_string(refusal.code) + " " + refusal.what(), row.expected);
        }
    }
}

TEST(GnmiSubscription, RefusesAliasesAndUnknownModesAndTooMany) {
    const auto code = [](const messages::SubscriptionList &asked) {
        try {
            const Subscriptions subscriptions(asked);
        } catch (const Refusal &refusal) {
            return refusal.code;
        }
        return grpc::StatusCode::OK;
    };
    messages::SubscriptionList aliases = stream("");
    EXPECT_TRUE(aliases.MergeFromString("\x18\x01"));
    EXPECT_EQ(code(aliases), grpc::StatusCode::UNIMPLEMENTED);
    messages::SubscriptionList mode = stream("");
    EXPECT_TRUE(mode.MergeFromString("\x28\x07"));
    EXPECT_EQ(code(mode), grpc::StatusCode::INVALID_ARGUMENT);
    messages::SubscriptionList many = stream("");
    while (many.subscription_size() < 1'025) {
        many.add_subscription();
    }
    EXPECT_EQ(code(many), grpc::StatusCode::RESOURCE_EXHAUSTED);
    many.mutable_subscription()->RemoveLast();
    EXPECT_EQ(code(many), grpc::StatusCode::OK);
}

} // namespace

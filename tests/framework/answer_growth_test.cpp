// The way back costs in proportion to what is answered: four times as much costs about four times the time.
#include <functional>

#include "framework/answer/cut.hpp"
#include "framework/answer/instance_map.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "measure.hpp"
#include "session_fixture.hpp"

namespace {

using ocpsm::Operation;
using ocpsm::framework::AnswerTree;
using ocpsm::framework::AnswerWriter;
using ocpsm::native::NativeNode;

void expect_proportional(const std::function<void(int)> &work, int size) {
    EXPECT_LT(measure::growth([&] { work(size); }, [&] { work(4 * size); }), 8);
}

std::string name(int number) {
    return "0/" + std::to_string(number) + "-PSM-OM";
}

// Modules from `first` on, each written leaf by leaf, the last one first.
AnswerTree modules(int first, int count, const std::string &timer) {
    const std::string list = "/aps/aps-modules/aps-module";
    const std::string space = "http://openconfig.net/yang/optical-transport-line-protection";
    AnswerWriter writer;
    for (const char *leaf : {"/config/wait-to-restore-time", "/config/hold-off-time"}) {
        for (int number = first + count; number-- > first;) {
            writer.search_or_add(list, "name", name(number), space);
            writer.add(list + leaf, space, timer, false);
        }
    }
    return std::move(writer).finish();
}

TEST(Growth, OfWritesToAnAnswer) {
    expect_proportional([](int count) { EXPECT_FALSE(modules(0, count, "5").empty()); }, 1000);
}

TEST(Growth, OfAJoinOfReadsOfSingleModules) {
    expect_proportional(
        [](int count) {
            std::vector<AnswerTree> parts;
            for (int number = count; number-- > 0;) {
                parts.push_back(modules(number, 1, "5"));
            }
            EXPECT_EQ(join(std::move(parts)).entry_names().size(), static_cast<std::size_t>(count));
        },
        500);
}

TEST(Growth, OfACutAndOfPaths) {
    const auto selections = ocpsm::framework::type_request(
        ocpsm::framework::parse_request(
            modules_text("<aps-module><config><wait-to-restore-time/></config></aps-module>"), ocpsm::Kind::get)
            .tops,
        ocpsm::Kind::get, true);
    expect_proportional(
        [&selections](int count) {
            int leaves = 0;
            cut(modules(0, count, "5"), selections).for_each_leaf([&leaves](const std::string &, std::string_view) {
                ++leaves;
            });
            EXPECT_EQ(leaves, 2 * count);
        },
        1000);
}

TEST(Growth, OfAComparison) {
    expect_proportional(
        [](int count) {
            const auto changes = changes_between(modules(0, count, "5"), modules(count / 2, count, "6"));
            EXPECT_EQ(changes.size(), static_cast<std::size_t>(4 * count)); // half each gone, changed, new
        },
        1000);
}

// ---- through the plug-in ----

// A device with the settings of many slots, which answers with all of them.
class ManySlots : public ocpsm::DeviceTransaction {
public:
    explicit ManySlots(int count) {
        const auto schema = [](const std::string &path) { return ocpsm::models::Schema::native().find(path); };
        const std::string list = "/active-nodes/active-node";
        NativeNode node{schema(list), {}, {{schema(list + "/node-name"), "0/RP0/CPU0", {}}}};
        for (int number = 0; number < count; ++number) {
            const NativeNode wtr{schema(list + "/slot/psm/revertive/wtr"), "7", {}};
            const NativeNode revertive{schema(list + "/slot/psm/revertive"), {}, {wtr}};
            const NativeNode psm{schema(list + "/slot/psm"), {}, {revertive}};
            node.children.push_back(
                {schema(list + "/slot"), {}, {{schema(list + "/slot/slot-id"), std::to_string(number), {}}, psm}});
        }
        held_.roots.push_back({schema("/active-nodes"), {}, {std::move(node)}});
    }

    ocpsm::native::NativeData answer(const ocpsm::native::NetRequest & /*read*/) override { return held_; }
    std::vector<std::string> apply(const ocpsm::native::NetRequest & /*edit*/) override { return {}; }
    void record(const std::string & /*user*/, const std::vector<ocpsm::Change> & /*changes*/) override {}
    void commit() override {}

private:
    ocpsm::native::NativeData held_;
};

class GrowthThroughThePlugin : public SessionFixture {};

TEST_F(GrowthThroughThePlugin, OfManyNativeEntries) {
    expect_proportional(
        [](int count) {
            ManySlots device(count);
            const auto result = requests::read_paths(plugin(), {}, Kind::get_config, device);
            EXPECT_EQ(refusal_of(result), "none");
        },
        2500);
}

TEST(Growth, OfTheInstanceMap) {
    const auto read = [](int number) {
        ocpsm::native::NativeRequest request(ocpsm::native::RequestKind::read);
        const std::string list = "/active-nodes/active-node";
        const auto add = [&request](const std::string &path, const std::string &value) {
            request.add(path, ocpsm::models::Schema::native().describe(path)->namespace_uri, value, 0, true, 0);
        };
        add(list + "/node-name", "0/RP0/CPU0");
        add(list + "/slot/slot-id", std::to_string(number));
        return request.net();
    };
    const auto selections_of_all = [&read](int count) {
        ocpsm::framework::InstanceMap map;
        for (int number = 0; number < count; ++number) {
            map.add(name(number), read(number));
        }
        const std::string space(ocpsm::models::Schema::native().describe("/active-nodes")->namespace_uri);
        const std::string slots(
            ocpsm::models::Schema::native().describe("/active-nodes/active-node/slot")->namespace_uri);
        const ocpsm::framework::DataTree tree(
            {"active-node", space, {}, Operation::merge, {{"node-name", space, "0/RP0/CPU0"}}});
        const ocpsm::framework::DataTree top({"active-nodes", space});
        for (int number = 0; number < count; ++number) {
            const ocpsm::framework::DataTree slot(
                {"slot", slots, {}, Operation::merge, {{"slot-id", slots, std::to_string(number)}}});
            const auto place = map.below(map.below(map.below(map.top(), top.root()), tree.root()), slot.root());
            const std::string *instance = map.instance_of(place);
            EXPECT_EQ(instance == nullptr ? "(none)" : *instance, name(number));
        }
    };
    expect_proportional(selections_of_all, 500);
}

} // namespace

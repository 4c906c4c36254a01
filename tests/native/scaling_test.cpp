// Time and memory of large requests. Time is compared with that of a request a quarter as large: work that grows with
// the square of the size would take sixteen times as long.
#include <gtest/gtest.h>
#include <libyang/libyang.h>

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "framework/measure.hpp"
#include "framework/native/native_data.hpp"
#include "native/native_test.hpp"

namespace {

std::atomic<std::size_t> held_bytes{0};
std::atomic<std::size_t> most_bytes{0};

void *counted(std::size_t size) noexcept {
    void *memory = std::malloc(size); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    if (memory != nullptr) {
        const std::size_t now = held_bytes += malloc_usable_size(memory) + sizeof(std::size_t);
        most_bytes = std::max(most_bytes.load(), now);
    }
    return memory;
}

} // namespace

// All memory of the test program, with what the allocator adds.
void *operator new(std::size_t size) {
    void *memory = counted(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void *operator new(std::size_t size, const std::nothrow_t & /*tag*/) noexcept {
    return counted(size);
}
void operator delete(void *memory) noexcept {
    if (memory != nullptr) {
        held_bytes -= malloc_usable_size(memory) + sizeof(std::size_t);
        std::free(memory); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    }
}
void operator delete(void *memory, std::size_t /*size*/) noexcept {
    operator delete(memory);
}

namespace native_test {
namespace {

using ocpsm::models::Schema;
using ocpsm::native::NativeData;
using ocpsm::native::NativeNode;
using ocpsm::native::NetRequest;

std::string number(std::size_t value) {
    return std::to_string(value);
}

void open_interface(Request &request, std::size_t index) {
    request.put(interface_path, ifmgr, none, merge, true, 0);
    request.put(interface_path + "/interface-name", ifmgr, "Ots0/" + number(index), merge, false, 0);
    request.put(interface_path + "/active", ifmgr, "act", merge, false, 0);
}

// Modules with three leaves each, as an edit of them adds them.
Request modules(std::size_t count) {
    Request request = edit();
    for (std::size_t index = 0; index < count; ++index) {
        open_interface(request, index);
        request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "5", merge, false, 0);
        request.put(node_path, mda, none, merge, true, 0);
        request.put(node_path + "/node-name", mda, "0/RP0/CPU0", merge, false, 0);
        request.put(slot_path, ots, none, merge, true, 0);
        request.put(slot_path + "/slot-id", ots, number(index), merge, false, 0);
        request.put(psm_path + "/revertive/enable", ots, "true", merge, false, 0);
        request.put(psm_path + "/lockout-from", ots, "working", merge, false, 0);
    }
    return request;
}
constexpr std::size_t adds_of_a_module = 10;

void edit_of_modules(std::size_t count) {
    const NetRequest net = modules(count).net();
    net.check();
    EXPECT_EQ(net.roots.at(1).children.front().children.size(), 1 + count);
    EXPECT_GT(net.to_xml().size() + net.to_json().size() + net.operations().size(), count);
    EXPECT_EQ(net.origin_of("/active-nodes/active-node[node-name='0/RP0/CPU0']"), 0U);
}

// Entries that are never opened: each key looks for the entry that has its value.
void entries_by_key(std::size_t count) {
    Request request = edit();
    for (int round = 0; round < 2; ++round) {
        for (std::size_t index = 0; index < count; ++index) {
            request.put(slot_path + "/slot-id", ots, number(index), merge, false, 0);
            request.put(psm_path + "/lockout-from", ots, "working", merge, false, 0);
        }
    }
    EXPECT_EQ(request.net().roots.front().children.front().children.size(), 1 + count);
}

// Outer instances with many inner ones that are selected in turn.
void outer_instances_in_turn(std::size_t count) {
    Request request = edit();
    for (std::size_t index = 0; index < count; ++index) {
        request.put(node_path + "/node-name", mda, index % 2 == 0 ? "a" : "b", merge, false, 0);
        request.put(slot_path + "/slot-id", ots, number(index), merge, false, 0);
    }
    EXPECT_EQ(request.net().roots.front().children.size(), 2U);
}

// Entries that are taken away and made again, one by one and all together.
void taken_and_made(std::size_t count) {
    Request request = edit();
    open_interface(request, 0);
    for (std::size_t index = 0; index < count; ++index) {
        request.put(threshold_path, optics, none, remove, true, 0);
        request.put(threshold_path + "/rx-threshold-type", optics, number(index), remove, false, 0);
        request.put(threshold_path, optics, none, merge, true, 0);
        request.put(threshold_path + "/rx-threshold-type", optics, "low", merge, false, 0);
        if (index % 2 == 0) {
            request.put(optics_path + "/rx-thresholds", optics, none, remove, false, 0);
        }
        request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, none, remove, false, 0);
    }
    EXPECT_FALSE(request.net().roots.empty());
}

NativeData data_of(std::size_t count) {
    NativeNode list{Schema::native().find("/interface-configurations")};
    for (std::size_t index = 0; index < count; ++index) {
        list.children.push_back(
            {Schema::native().find(interface_path),
             std::nullopt,
             {{Schema::native().find(interface_path + "/active"), "act"},
              {Schema::native().find(interface_path + "/interface-name"), "Ots0/" + number(index)}}});
    }
    return {{list}};
}

void read_of_entries(std::size_t count) {
    Request request = read();
    for (std::size_t index = 0; index < count; ++index) {
        open_interface(request, index);
        request.put(optics_path + "/optics-ots-rx-voa-attenuation", optics, "", merge, false, 0);
    }
    const NetRequest net = request.net();
    EXPECT_EQ(net.roots.front().children.size(), count);
    EXPECT_EQ(ocpsm::native::answer(data_of(count), net).roots.front().children.size(), count);
}

class Scaling : public testing::TestWithParam<void (*)(std::size_t)> {};

TEST_P(Scaling, FourTimesTheSizeIsFarFromSixteenTimesTheWork) {
    constexpr std::size_t count = 400;
    GetParam()(100);
    EXPECT_LT(measure::growth([] { GetParam()(count); }, [] { GetParam()(4 * count); }), 8);
}

INSTANTIATE_TEST_SUITE_P(Of, Scaling,
                         testing::Values(edit_of_modules, entries_by_key, outer_instances_in_turn, taken_and_made,
                                         read_of_entries));

TEST(Memory, OfAnAddAndItsNetNodeIsLessThanAKilobyte) {
    constexpr std::size_t count = 1000;
    modules(1);
    const std::size_t before = held_bytes;
    most_bytes = before;
    const NetRequest net = modules(count).net();
    EXPECT_LT((most_bytes - before) / (count * adds_of_a_module), 1024U);
}

} // namespace
} // namespace native_test

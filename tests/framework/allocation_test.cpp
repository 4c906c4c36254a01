// Requests while allocations fail: each ends in an error or is answered as if nothing had failed.
#include "framework/host/allocation.hpp"

#include <cstdlib>
#include <new>

#include "framework/host/mapping_context.hpp"
#include "session_fixture.hpp"

namespace {

// Of this thread, while a request is carried out.
thread_local long until_failure = 0; // allocations that still succeed; below zero: all do
thread_local bool counting = false;
thread_local bool keeps_failing = false;
thread_local bool failed = false;

bool fails_now() {
    if (!counting) {
        return false;
    }
    if (until_failure > 0) {
        --until_failure;
        return false;
    }
    const bool fails = until_failure == 0 && (keeps_failing || !failed);
    failed = failed || fails;
    return fails;
}

} // namespace

// As the standard library's own, but for the failures.
void *operator new(std::size_t size) {
    while (true) {
        void *room = fails_now() ? nullptr : std::malloc(size == 0 ? 1 : size); // NOLINT
        if (room != nullptr) {
            return room;
        }
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) {
            throw std::bad_alloc();
        }
        handler();
    }
}

void *operator new(std::size_t size, const std::nothrow_t & /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void operator delete(void *room, const std::nothrow_t & /*tag*/) noexcept {
    std::free(room); // NOLINT
}

void operator delete(void *room) noexcept {
    std::free(room); // NOLINT
}

void operator delete(void *room, std::size_t /*size*/) noexcept {
    std::free(room); // NOLINT
}

namespace {

using ocpsm::EditResult;
using ocpsm::Kind;
using ocpsm::ReadResult;

class FailingAllocations : public SessionFixture {
protected:
    // Carries out a request again and again, each time another of its allocations failing, `step` behind the one
    // before, until none fails; then so that all behind it fail too. `request` gives what it comes to, an error as no
    // text.
    template <typename Request>
    static void expect_all_or_nothing(long step, Request request) {
        const std::string whole = request();
        ASSERT_NE(whole, "");
        for (const bool keeps : {false, true}) {
            keeps_failing = keeps;
            // What goes on failing comes to its end soon, and differs little from one beginning to the next.
            for (long number = 0; run(request, number, whole); number += keeps ? 61 : step) {
                ASSERT_LT(number, 100000);
            }
        }
        EXPECT_EQ(request(), whole);
    }

private:
    // True when an allocation has failed.
    template <typename Request>
    static bool run(Request request, long number, const std::string &whole) {
        std::string outcome;
        outcome.reserve(whole.size());
        until_failure = number;
        failed = false;
        counting = true;
        try {
            outcome = request();
        } catch (const std::bad_alloc &) {
            outcome.clear();
        }
        counting = false;
        if (!outcome.empty()) {
            EXPECT_EQ(outcome, whole) << "allocation " << number;
        }
        return failed;
    }
};

std::string text_of(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\n";
    }
    return text;
}

// The second one reads the database.
TEST_F(FailingAllocations, OfASmallReadLeaveNoLeafOut) {
    const ocpsm::framework::Plugin &loaded = plugin();
    for (const auto &[step, kind, path] :
         {std::tuple{2, Kind::get_config, module_path(1, "/config/revertive")},
          std::tuple{7, Kind::get, module_path(1, "/ports/line-secondary-in/state/optical-power/min")}}) {
        expect_all_or_nothing(step, [&loaded, this, paths = std::vector{path}, of = kind] {
            const ReadResult result = requests::read_paths(loaded, paths, of, device());
            return result.error ? "" : text_of(leaves_of(result.answer));
        });
    }
}

TEST_F(FailingAllocations, OfASmallEditLeaveNothingOut) {
    const ocpsm::framework::Plugin &loaded = plugin();
    const std::string text = module_text(1, "<config><revertive>true</revertive></config>");
    expect_all_or_nothing(7, [&] {
        HeldDevice held("interface-configurations/interface-configuration[act,Ots0/1/0/1]");
        const EditResult result = requests::edit(loaded, text, held);
        return result.error ? "" : text_of(held.edits);
    });
}

// ---- the platform's operations ----

TEST_F(FailingAllocations, OfAnOperationAreNotedAndGiveACode) {
    ocpsm::framework::Channels channels;
    ocpsm::native::NativeRequest native(ocpsm::native::RequestKind::edit);
    ocpsm::framework::MappingContext context(YFW_KIND_EDIT_CONFIG, {"aps", "urn:x"}, channels, native);
    const ocpsm::framework::AllocationWatch watch;
    until_failure = 0;
    keeps_failing = true;
    failed = false;
    counting = true;
    const kerrno added = yfw_map_datatree_add_path_flagged(&context, &context.destination(),
                                                           "/interface-configurations/interface-configuration", "urn:x",
                                                           nullptr, nullptr, nullptr, 0, 0);
    yfw_map_add_to_node_hierarchy(&context, &context.request_tree(), 1);
    counting = false;
    EXPECT_EQ(added, 0xaaf30c00U);
    EXPECT_EQ(context.request->hierarchy_length, 0U);
    EXPECT_TRUE(watch.has_failed());
    EXPECT_FALSE(ocpsm::framework::AllocationWatch().has_failed());
}

} // namespace

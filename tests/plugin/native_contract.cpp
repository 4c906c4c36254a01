// What all walkers, callbacks and hooks of the native models keep to: missing arguments, a missing context, Start and
// End, and the two channels.
#include <limits>

#include "native_support.hpp"

namespace native_test {
namespace {

struct Arguments {
    const kidl_yfw_datatree *source;
    kidl_yfw_datatree *destination;
};

// What glibc prints of a failed assertion, but for the program's name and the line number.
::testing::Matcher<const std::string &> assertion(const std::string &file, const std::string &prototype) {
    return ::testing::AllOf(::testing::HasSubstr(": manageability/yang/framework/mapping/oc-psm/src/" + file + ":"),
                            ::testing::HasSubstr(": kerrno " + prototype + ": Assertion `((void *)0) != ctx' failed."));
}

std::string prototype(const std::string &function) {
    return function + "(yfw_map_ctx, const struct kidl_yfw_datatree *, struct kidl_yfw_datatree *)";
}

std::string container_prototype(const std::string &function) {
    return function + "(yfw_map_ctx, const struct kidl_yfw_datatree *, unsigned int, struct kidl_yfw_datatree *)";
}

fake::Callback call(const std::string &name) {
    return fake::function<fake::Callback>(name);
}

fake::ContainerCallback call_container(const std::string &name) {
    return fake::function<fake::ContainerCallback>(name);
}

// The lists whose callback does something.
const Lines &working_lists() {
    static const Lines all{
        "lvla_otsoper_otsports_otsport",
        "lvla_performancemanagementhistory_opticsporthistories_opticsporthistory",
        "lvla_interfaceconfigurations_interfaceconfiguration",
    };
    return all;
}

bool is_working(const Walker &list) {
    return std::count(working_lists().begin(), working_lists().end(), list.suffix()) != 0;
}

bool is_preconfigured(const Walker &walker) {
    return walker.suffix().compare(0, 5, "lvlb_") == 0;
}

// Not between walkers and callbacks: these are called as the framework or a walker would.
class NativeContract : public NativeTest {
protected:
    NativeContract() : node_(build(leaf("the-node", "1"), "source").root()) {}

    [[nodiscard]] std::vector<Arguments> missing() const { return {{nullptr, dest}, {node_, nullptr}, {}}; }

    // Every call but the questions for the filter, the trace lines without their number.
    [[nodiscard]] Lines calls() const {
        Lines lines = platform.calls(fake::Everything & ~fake::Filter);
        for (std::string &line : lines) {
            if (line.compare(0, 6, "trace ") == 0) {
                const std::size_t number = line.find(" #");
                line.erase(number, line.find(' ', number + 1) - number);
            }
        }
        return lines;
    }

    [[nodiscard]] static Lines traced(const std::string &function, const std::string &text) {
        return {"log TRC " + text, "trace TRC " + function + " " + text};
    }

    [[nodiscard]] static Lines refused(const std::string &function) {
        return {"log ERR Invalid arguments passed!", "trace ERR " + function + " Invalid arguments passed!",
                "error_path(ctx)"};
    }

    [[nodiscard]] static Lines started_and_refused(const std::string &function) {
        Lines lines = traced(function, "Start");
        append(lines, refused(function));
        return lines;
    }

    kidl_yfw_datatree *node_;
};

TEST_F(NativeContract, AllModelsAreListed) {
    EXPECT_EQ(walkers().size(), 69u);
    EXPECT_EQ(walkers_of(Kind::augment).size(), 3u);
    EXPECT_EQ(walkers_of(Kind::container).size(), 26u);
    EXPECT_EQ(walkers_of(Kind::list).size(), 10u);
    EXPECT_EQ(walkers_of(Kind::leaf).size(), 30u);
    EXPECT_EQ(list_parents().size(), 8u);
}

// ---- walkers ----

// No End follows: the walk has not begun.
TEST_F(NativeContract, AWalkerRefusesMissingArguments) {
    request.set_error_node("earlier");
    for (const Walker &walker : walkers()) {
        for (const Arguments &given : missing()) {
            platform.forget();
            EXPECT_EQ(call(walker.function())(request.ctx(), given.source, given.destination), invalid_arguments);
            EXPECT_EQ(calls(), started_and_refused(walker.function()));
        }
    }
    EXPECT_EQ(request.error_node(), "earlier");
}

TEST_F(NativeContract, AWalkerTracesStartFirstAndEndLast) {
    for (const Walker &walker : walkers()) {
        platform.forget();
        EXPECT_EQ(call(walker.function())(request.ctx(), build(node_of(walker)).root(), dest), 0u);
        ASSERT_GE(platform.traced().size(), 2u);
        EXPECT_EQ(platform.traced().front().function + " " + platform.traced().front().text,
                  walker.function() + " Start");
        EXPECT_EQ(platform.traced().back().function + " " + platform.traced().back().text, walker.function() + " End");
        EXPECT_EQ(calls().front(), "log TRC Start");
        EXPECT_EQ(calls().back(), "trace TRC " + walker.function() + " End");
        drop_trees();
    }
}

using NativeContractDeathTest = NativeContract;

TEST_F(NativeContractDeathTest, AWalkerAssertsItsContextFirst) {
    for (const Walker &walker : walkers()) {
        const auto expected = assertion(walker.model->files + "parser", prototype(walker.function()));
        EXPECT_DEATH(call(walker.function())(nullptr, build(node_of(walker)).root(), dest), expected);
        EXPECT_DEATH(call(walker.function())(nullptr, nullptr, nullptr), expected);
    }
}

// ---- container callbacks ----

TEST_F(NativeContract, AContainerIsTracedAndThatIsAll) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        for (const unsigned count : {0u, 1u, std::numeric_limits<unsigned>::max()}) {
            platform.forget();
            EXPECT_EQ(call_container(walker->callback())(request.ctx(), node_, count, dest), 0u);
            EXPECT_EQ(calls(), traced(walker->callback(), "Start"));
        }
    }
}

TEST_F(NativeContract, AContainerRefusesMissingArguments) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        for (const Arguments &given : missing()) {
            platform.forget();
            EXPECT_EQ(call_container(walker->callback())(request.ctx(), given.source, 1, given.destination),
                      invalid_arguments);
            EXPECT_EQ(calls(), started_and_refused(walker->callback()));
        }
    }
    EXPECT_EQ(request.error_node(), "none");
}

TEST_F(NativeContractDeathTest, AContainerAssertsItsContextFirst) {
    for (const Walker *walker : walkers_of(Kind::container)) {
        const auto expected = assertion(walker->model->files + "auto", container_prototype(walker->callback()));
        EXPECT_DEATH(call_container(walker->callback())(nullptr, node_, 0, dest), expected);
        EXPECT_DEATH(call_container(walker->callback())(nullptr, nullptr, 0, nullptr), expected);
    }
}

// ---- list callbacks ----

TEST_F(NativeContract, AListWithoutWorkDoesNothingAtAll) {
    Lines empty;
    for (const Walker *walker : walkers_of(Kind::list)) {
        if (is_working(*walker)) {
            continue;
        }
        empty.push_back(walker->suffix());
        platform.forget();
        const fake::Callback list = call(walker->callback());
        EXPECT_EQ(list(request.ctx(), node_, dest), 0u);
        EXPECT_EQ(list(request.ctx(), nullptr, dest), 0u);
        EXPECT_EQ(list(request.ctx(), node_, nullptr), 0u);
        EXPECT_EQ(list(request.ctx(), nullptr, nullptr), 0u);
        EXPECT_EQ(list(nullptr, node_, dest), 0u);
        EXPECT_EQ(list(nullptr, nullptr, nullptr), 0u);
        EXPECT_EQ(platform.calls(fake::Everything), Lines{}) << walker->suffix();
    }
    const std::string history = "lvla_performancemanagementhistory_";
    EXPECT_EQ(empty, (Lines{"lvla_slot", "lvlb_slot", "lvla_optics_rxthresholds_rxthreshold",
                            history + "opticssecond30opticshistories_opticssecond30opticshistory",
                            history + "opticssecond30opticstimelineinstances_opticssecond30opticstimelineinstance",
                            "lvla_opticsoper_opticsports_opticsport", "lvla_activenodes_activenode"}));
}

TEST_F(NativeContract, AListWithWorkRefusesMissingArguments) {
    for (const std::string &suffix : working_lists()) {
        const std::string name = walker(suffix).callback();
        for (const Arguments &given : missing()) {
            platform.forget();
            EXPECT_EQ(call(name)(request.ctx(), given.source, given.destination), invalid_arguments);
            EXPECT_EQ(calls(), started_and_refused(name));
        }
    }
    EXPECT_EQ(request.error_node(), "none");
}

TEST_F(NativeContractDeathTest, AListWithWorkAssertsItsContextFirst) {
    for (const std::string &suffix : working_lists()) {
        const Walker &list = walker(suffix);
        const auto expected = assertion(list.model->files + "auto", prototype(list.callback()));
        EXPECT_DEATH(call(list.callback())(nullptr, node_, dest), expected);
        EXPECT_DEATH(call(list.callback())(nullptr, nullptr, nullptr), expected);
    }
}

// ---- leaf callbacks ----

TEST_F(NativeContract, ALeafRefusesMissingArgumentsAndTracesNoStart) {
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        for (const Arguments &given : missing()) {
            platform.forget();
            EXPECT_EQ(call(walker->callback())(request.ctx(), given.source, given.destination), invalid_arguments);
            EXPECT_EQ(calls(), refused(walker->callback()));
        }
    }
    EXPECT_EQ(request.error_node(), "none");
}

TEST_F(NativeContractDeathTest, ALeafAssertsItsContextWhenItRefuses) {
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        const auto expected = assertion(walker->model->files + "auto", prototype(walker->callback()));
        EXPECT_DEATH(call(walker->callback())(nullptr, nullptr, dest), expected);
        EXPECT_DEATH(call(walker->callback())(nullptr, node_, nullptr), expected);
    }
}

// The settings of a node that is not there are accepted, and no more.
TEST_F(NativeContract, APreconfiguredLeafDoesNothingAtAll) {
    std::size_t leaves = 0;
    for (const Walker *walker : walkers_of(Kind::leaf)) {
        if (is_preconfigured(*walker)) {
            ++leaves;
            platform.forget();
            EXPECT_EQ(call(walker->callback())(request.ctx(), node_, dest), 0u);
            EXPECT_EQ(call(walker->callback())(nullptr, node_, dest), 0u);
            EXPECT_EQ(platform.calls(fake::Everything), Lines{}) << walker->suffix();
        }
    }
    EXPECT_EQ(leaves, 5u);
}

// ---- hooks ----

// Every walker has one, be it called or not. It asserts nothing.
TEST_F(NativeContract, AHookDoesNothingAtAll) {
    for (const std::uint32_t kind : {0u, 1u, 10u}) {
        request.set_kind(kind);
        platform.forget();
        for (const Walker &walker : walkers()) {
            const fake::Callback hook = call(walker.hook());
            EXPECT_EQ(hook(request.ctx(), node_, dest), 0u) << walker.suffix();
            for (const Arguments &given : missing()) {
                EXPECT_EQ(hook(request.ctx(), given.source, given.destination), 0u) << walker.suffix();
                EXPECT_EQ(hook(nullptr, given.source, given.destination), 0u) << walker.suffix();
            }
            EXPECT_EQ(hook(nullptr, node_, dest), 0u) << walker.suffix();
        }
        EXPECT_EQ(platform.calls(fake::Everything), Lines{});
    }
}

// ---- channels ----

class NativeChannels : public NativeContract {
protected:
    // The story of a walk apart from its messages: what it does must not depend on who listens.
    Lines done(bool log_on, bool trace_on) {
        request.set_channels(log_on, trace_on);
        Lines all;
        for (const Walker &walker : walkers()) {
            std::vector<Node> children{leaf("zzz")};
            for (const Child &child : walker.row.children) {
                children.push_back(node_of(native_test::walker(child.walker)));
            }
            platform.forget();
            Tree &tree = build(node_of(walker, children), "node");
            const kerrno result = call(walker.function())(request.ctx(), tree.root(), dest);
            append(all, platform.calls(fake::Output | fake::Walk | fake::Callbacks));
            all.push_back("result " + std::to_string(result));
            EXPECT_EQ(platform.logged().empty(), !log_on) << walker.suffix();
            EXPECT_EQ(platform.traced().empty(), !trace_on) << walker.suffix();
            EXPECT_EQ(platform.count("trace_index"), platform.traced().size());
            drop_trees();
        }
        return all;
    }
};

TEST_F(NativeChannels, AWalkIsTheSameWhoeverListens) {
    const Lines both = done(true, true);
    EXPECT_GE(both.size(), walkers().size());
    EXPECT_EQ(done(true, false), both);
    EXPECT_EQ(done(false, true), both);
    EXPECT_EQ(done(false, false), both);
}

TEST_F(NativeChannels, ARefusalIsSilentWhenNothingListens) {
    request.set_channels(false, false);
    for (const Walker &walker : walkers()) {
        platform.forget();
        EXPECT_EQ(call(walker.function())(request.ctx(), nullptr, dest), invalid_arguments);
        EXPECT_EQ(calls(), Lines{"error_path(ctx)"}) << walker.suffix();
    }
    EXPECT_EQ(platform.last_sequence_number(), 0u);
}

TEST_F(NativeChannels, ErrorsAndTracesAreOfTheirLevels) {
    request.context.debug_log_filter.enabled_levels = 1; // level 0 alone
    request.context.trace_enabled = 0;
    for (const Walker *walker : walkers_of(Kind::list)) {
        platform.forget();
        call(walker->function())(request.ctx(), build(node_of(*walker)).root(), dest);
        ASSERT_EQ(platform.logged().size(), 1u) << walker->suffix();
        EXPECT_EQ(platform.logged()[0].format, "ERR: YFW: ctx=%p,No keys specified with a list node.");
        EXPECT_EQ(platform.logged()[0].handle, request.context.error_log);
        drop_trees();
    }
}

// Tags are never a format, and are cut on the trace only.
TEST_F(NativeChannels, TagsOfAnyLengthAreTold) {
    for (const Walker &walker : walkers()) {
        if (walker.kind == Kind::leaf) {
            continue;
        }
        const std::string tag = "%n%s" + std::string(5000, 't');
        Node node = walker.kind == Kind::augment ? leaf(tag) : node_of(walker, {leaf(tag)});
        node = in_model(node, walker.model->namespace_uri);
        platform.forget();
        EXPECT_EQ(call(walker.function())(request.ctx(), build(node).root(), dest), 0u);
        const Lines logged = platform.calls(fake::Log);
        EXPECT_EQ(std::count(logged.begin(), logged.end(), "log TRC Unsupported tag `" + tag + "`. Ignoring."), 1)
            << walker.suffix();
        drop_trees();
    }
}

} // namespace
} // namespace native_test

#include "walk_support.hpp"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace walk {

WalkTest *WalkTest::current_ = nullptr;

Node module(std::string key, std::vector<Node> children) {
    children.insert(children.begin(), leaf("name", std::move(key)));
    return container("aps-module", std::move(children));
}

Node bare_module(std::vector<Node> children) {
    return container("aps-module", std::move(children));
}

Node aps(std::vector<Node> modules) {
    return container("aps", {container("aps-modules", std::move(modules))});
}

const Lines &walker_suffixes() {
    static const Lines suffixes{
#define YMAP_TEST_CONTAINER(suffix) #suffix,
#define YMAP_TEST_LIST(suffix) #suffix,
#define YMAP_TEST_LEAF(suffix) #suffix,
#include "walk_names.def"
#undef YMAP_TEST_CONTAINER
#undef YMAP_TEST_LIST
#undef YMAP_TEST_LEAF
    };
    return suffixes;
}

WalkTest::WalkTest() {
    current_ = this;
}

WalkTest::~WalkTest() {
    current_ = nullptr;
}

void WalkTest::TearDown() {
    if (request.context.trace_enabled != 0 && request.context.debug_log_filter.enabled_levels != 0) {
        EXPECT_EQ(channel_difference(platform.calls(fake::Channels)), "");
    }
    RequestTest::TearDown();
}

kerrno WalkTest::walk(const std::string &suffix, kidl_yfw_datatree *node) {
    const fake::Checker checker(platform, request.ctx());
    const kerrno result = fake::walker(suffix)(request.ctx(), node, dest);
    EXPECT_EQ(checker.differences(), Lines{}) << "left behind by " << suffix;
    return result;
}

namespace {

// "trace TRC #4 function text" of a walker as a line of the story; empty for Start of others and of callbacks.
std::string story_message(const fake::TraceRecord &record) {
    const std::string prefix = fake::callback_prefix;
    if (record.function.compare(0, prefix.size(), prefix) != 0) {
        return "";
    }
    const std::string suffix = record.function.substr(prefix.size());
    const bool is_callback = suffix.compare(0, 5, "cont_") == 0 || suffix.compare(0, 5, "list_") == 0;
    if (record.level == "TRC" && record.text == "Start") {
        return is_callback ? "" : "+" + suffix;
    }
    if (record.level == "TRC" && record.text == "End") {
        return "-" + suffix;
    }
    return record.level + " " + suffix + ": " + record.text;
}

std::string without_context(std::string line) {
    const std::size_t found = line.find("(ctx");
    if (found != std::string::npos) {
        line.erase(found + 1, line.compare(found, 6, "(ctx, ") == 0 ? 5 : 3);
    }
    return line;
}

} // namespace

Lines WalkTest::story() const {
    Lines lines;
    std::size_t traced = 0;
    for (const std::string &line : platform.calls(fake::Walk | fake::Callbacks | fake::Trace)) {
        if (line.compare(0, 6, "trace ") == 0) {
            const std::string message = story_message(platform.traced().at(traced++));
            if (!message.empty()) {
                lines.push_back(message);
            }
        } else if (line.compare(0, 11, "itree_size(") != 0) {
            lines.push_back(without_context(line));
        }
    }
    return lines;
}

Lines WalkTest::operations() const {
    Lines lines = platform.calls(fake::Walk);
    std::erase_if(lines, [](const std::string &line) { return line.compare(0, 11, "itree_size(") == 0; });
    return lines;
}

Lines WalkTest::messages() const {
    Lines lines;
    for (const fake::TraceRecord &record : platform.traced()) {
        const std::string message = story_message(record);
        if (!message.empty() && message[0] != '+' && message[0] != '-') {
            lines.push_back(message);
        }
    }
    return lines;
}

void WalkTest::note(const std::string &callback) {
    if (sampled_ == nullptr) {
        return;
    }
    const kidl_yfw_datatree &node = *sampled_;
    const yfw_map_request &state = request.state;
    std::array<char, 300> line{};
    std::snprintf(
        line.data(), line.size(), "%s: op %u%s children %d%s | whole %u delete %u replace %u marker %u selection 0x%x",
        callback.c_str(), node.operation, (node.flags & YFW_NODE_OPERATION_REWRITTEN) != 0 ? " rewritten" : "",
        node.children == nullptr ? 0 : node.child_count, (node.flags & YFW_NODE_CHILDREN_VALID) != 0 ? "" : " hidden",
        state.whole_subtree_walk, state.delete_walk, state.replace_flags, state.replace_marker, state.read_selection);
    samples.emplace_back(line.data());
}

std::string called(const std::string &callback, const std::string &arguments) {
    return callback + "(" + arguments + ")";
}

std::string below(const std::string &path, const std::string &step) {
    return path + "/" + step;
}

std::string sampled(const char *callback, const char *node, const char *request) {
    return std::string(callback) + ": " + node + " | " + request;
}

std::string channel_difference(const Lines &lines) {
    for (std::size_t i = 0; i < lines.size(); i += 2) {
        if (lines[i].compare(0, 4, "log ") != 0 || i + 1 == lines.size() || lines[i + 1].compare(0, 6, "trace ") != 0) {
            return "no pair of log and trace: " + lines[i];
        }
        const std::string level = lines[i].substr(4, 3);
        const std::string text = lines[i].substr(8);
        if (lines[i + 1].compare(6, 3, level) != 0) {
            return "another level: " + lines[i] + " | " + lines[i + 1];
        }
        // The number and the function stand in front of the text; a cut text is the test's own matter.
        const std::size_t number = lines[i + 1].find(' ', 10);
        const std::size_t function = lines[i + 1].find(' ', number + 1);
        const std::string traced = lines[i + 1].substr(function + 1);
        if (text.compare(0, traced.size(), traced) != 0 || (traced != text && traced.size() < 80)) {
            return "another text: " + lines[i] + " | " + lines[i + 1];
        }
    }
    return "";
}

// What the wrapped callbacks call instead of the plug-in's.
struct Between {
    static void check(yfw_map_ctx ctx, const kidl_yfw_datatree *dest) {
        if (WalkTest::current_ == nullptr) {
            std::fputs("a callback was called outside of a walk test\n", stderr);
            std::abort();
        }
        fake::Platform &platform = fake::Platform::current();
        if (ctx != fake::current_context() || platform.name_of(dest) != "dest") {
            platform.fault("a callback was called with another context or destination than its walker");
        }
    }

    static kerrno call(const char *name, bool converts, fake::Callback real, yfw_map_ctx ctx,
                       const kidl_yfw_datatree *node, kidl_yfw_datatree *dest) {
        check(ctx, dest);
        WalkTest::current_->note(name);
        fake::Platform &platform = fake::Platform::current();
        const auto scripted = platform.record(fake::Callbacks, name, platform.name_of(node));
        if (scripted) {
            return *scripted;
        }
        return converts && !WalkTest::current_->conversions_run_ ? KERR_SUCCESS : real(ctx, node, dest);
    }

    static kerrno call(const char *name, fake::ContainerCallback real, yfw_map_ctx ctx, const kidl_yfw_datatree *node,
                       unsigned int count, kidl_yfw_datatree *dest) {
        check(ctx, dest);
        WalkTest::current_->note(name);
        fake::Platform &platform = fake::Platform::current();
        const auto scripted =
            platform.record(fake::Callbacks, name, platform.name_of(node) + ", " + std::to_string(count));
        return scripted ? *scripted : real(ctx, node, count, dest);
    }
};

} // namespace walk

#define YMAP_TEST_JOIN(a, b) a##b
#define YMAP_TEST_REAL(name) YMAP_TEST_JOIN(__real_ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_, name)
#define YMAP_TEST_WRAP(name) YMAP_TEST_JOIN(__wrap_ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_, name)

#define YMAP_TEST_CALLBACK(name, converts)                                                                             \
    kerrno YMAP_TEST_REAL(name)(yfw_map_ctx, const kidl_yfw_datatree *, kidl_yfw_datatree *);                          \
    kerrno YMAP_TEST_WRAP(name)(yfw_map_ctx ctx, const kidl_yfw_datatree *node, kidl_yfw_datatree *dest) {             \
        return walk::Between::call(#name, converts, YMAP_TEST_REAL(name), ctx, node, dest);                            \
    }
#define YMAP_TEST_CONTAINER(suffix)                                                                                    \
    kerrno YMAP_TEST_REAL(cont_##suffix)(yfw_map_ctx, const kidl_yfw_datatree *, unsigned int, kidl_yfw_datatree *);   \
    kerrno YMAP_TEST_WRAP(cont_##suffix)(yfw_map_ctx ctx, const kidl_yfw_datatree *node, unsigned int count,           \
                                         kidl_yfw_datatree *dest) {                                                    \
        return walk::Between::call("cont_" #suffix, YMAP_TEST_REAL(cont_##suffix), ctx, node, count, dest);            \
    }                                                                                                                  \
    YMAP_TEST_CALLBACK(suffix##_parse_augments, false)
#define YMAP_TEST_LIST(suffix)                                                                                         \
    YMAP_TEST_CALLBACK(list_##suffix, true)                                                                            \
    YMAP_TEST_CALLBACK(suffix##_parse_augments, false)
#define YMAP_TEST_LEAF(suffix) YMAP_TEST_CALLBACK(leaf_##suffix, true)

extern "C" {
#include "walk_names.def"
}

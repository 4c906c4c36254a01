#include "native_support.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace native_test {

NativeTest *NativeTest::current_ = nullptr;

Node in_model(Node node, const std::string &namespace_uri) {
    if (node.namespace_uri == fake::openconfig) {
        node.namespace_uri = namespace_uri;
    }
    for (Node &child : node.children) {
        child = in_model(child, namespace_uri);
    }
    return node;
}

Node node_of(const Walker &walker, std::vector<Node> children) {
    const Node node =
        walker.kind == Kind::leaf ? leaf(walker.row.tag, "1") : container(walker.row.tag, std::move(children));
    return in_model(node, walker.model->namespace_uri);
}

void append(Lines &lines, const Lines &more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

Lines container_story(const Walker &walker, const std::string &node, std::size_t children, const Lines &body) {
    Lines story{"+" + walker.suffix(), "add_to_hierarchy(" + node + ", 1)",
                walker.short_callback() + "(" + node + ", " + std::to_string(children) + ")"};
    append(story, body);
    append(story, {"remove_from_hierarchy(" + node + ")", "-" + walker.suffix()});
    return story;
}

Lines list_story(const Walker &walker, const std::string &node, const Lines &body) {
    Lines story{"+" + walker.suffix(), "add_to_hierarchy(" + node + ", 2)",
                "update_current_list(\"" + walker.row.path + "\")", walker.short_callback() + "(" + node + ")",
                "output_push(" + node + ", dest)"};
    append(story, body);
    append(story, {"remove_from_hierarchy(" + node + ")", "output_pop(" + node + ", dest)", "-" + walker.suffix()});
    return story;
}

Lines leaf_story(const Walker &walker, const std::string &node) {
    return {"+" + walker.suffix(), walker.short_callback() + "(" + node + ")", "-" + walker.suffix()};
}

Lines bare_story(const Walker &walker, const std::string &node) {
    if (walker.kind == Kind::leaf) {
        return leaf_story(walker, node);
    }
    if (walker.kind == Kind::container) {
        return container_story(walker, node, 0);
    }
    Lines story = list_story(walker, node);
    story.insert(story.begin() + 1, "ERR " + walker.suffix() + ": No keys specified with a list node.");
    return story;
}

std::string unsupported(const Walker &walker, const std::string &tag) {
    return "TRC " + walker.suffix() + ": Unsupported tag `" + tag + "`. Ignoring.";
}

NativeTest::NativeTest() {
    current_ = this;
    request.set_kind(YFW_KIND_GET);
}

NativeTest::~NativeTest() {
    current_ = nullptr;
}

void NativeTest::TearDown() {
    if (request.context.trace_enabled != 0 && request.context.debug_log_filter.enabled_levels != 0) {
        const Lines lines = platform.calls(fake::Channels);
        EXPECT_EQ(lines.size() % 2, 0u);
        for (std::size_t i = 0; i + 1 < lines.size(); i += 2) {
            const fake::TraceRecord &trace = platform.traced().at(i / 2);
            const std::string log = "log " + trace.level + " " + trace.text;
            EXPECT_TRUE(lines[i] == log || (trace.whole.size() == 249 && lines[i].compare(0, log.size(), log) == 0))
                << "the channels differ: " << lines[i] << " | " << lines[i + 1];
        }
    }
    RequestTest::TearDown();
}

// ---- what a walk leaves behind ----

NativeTest::Picture NativeTest::take() const {
    Picture picture{{}, levels(), request.state, request.context};
    // Its own way of keeping what was said is the framework's matter.
    picture.request.list_node = nullptr;
    picture.request.hierarchy = nullptr;
    picture.context.current_node = nullptr;
    const std::function<void(const kidl_yfw_datatree &, const std::string &)> visit = [&](const kidl_yfw_datatree &node,
                                                                                          const std::string &place) {
        picture.nodes[place] = {&node, node};
        for (std::int32_t i = 0; node.children != nullptr && i < node.child_count; ++i) {
            visit(node.children[i], place + "." + std::to_string(i));
        }
    };
    for (std::size_t i = 0; i < platform.trees().size(); ++i) {
        visit(*platform.trees()[i]->root(), std::to_string(i));
    }
    return picture;
}

namespace {

bool is_same_node(const kidl_yfw_datatree &a, const kidl_yfw_datatree &b) {
    return a.tag == b.tag && a.namespace_uri == b.namespace_uri && a.value == b.value && a.operation == b.operation &&
           a.flags == b.flags && a.second_flags == b.second_flags && a.hierarchy_kind == b.hierarchy_kind &&
           a.consumed_mark == b.consumed_mark && a.child_count == b.child_count && a.children == b.children;
}

bool is_same_request(const yfw_map_request &a, const yfw_map_request &b) {
    return a.registration == b.registration && a.whole_subtree_walk == b.whole_subtree_walk &&
           a.delete_walk == b.delete_walk && a.replace_flags == b.replace_flags &&
           a.replace_marker == b.replace_marker && a.read_selection == b.read_selection &&
           a.selection_mode == b.selection_mode && a.leaf_selection == b.leaf_selection &&
           a.error_node_name == b.error_node_name && a.hierarchy_length == b.hierarchy_length &&
           a.output_depth == b.output_depth && a.request_root == b.request_root && a.answer_root == b.answer_root &&
           a.module_list == b.module_list;
}

bool is_same_context(const yfw_map_context &a, const yfw_map_context &b) {
    return a.request == b.request && a.debug_log_filter.enabled_levels == b.debug_log_filter.enabled_levels &&
           a.error_log == b.error_log && a.trace_log == b.trace_log && a.trace_buffer == b.trace_buffer &&
           a.trace_enabled == b.trace_enabled && a.list_operation == b.list_operation &&
           a.data_printed == b.data_printed && a.output_count == b.output_count && a.output == b.output &&
           a.root_node == b.root_node && a.parent_node == b.parent_node && a.pending_list == b.pending_list &&
           a.xpath_count == b.xpath_count && a.xpaths == b.xpaths;
}

} // namespace

Lines NativeTest::differences(const Picture &before, const Picture &after) const {
    Lines found;
    EXPECT_EQ(after.nodes.size(), before.nodes.size()) << "the walk changed the trees";
    for (const auto &[place, was] : before.nodes) {
        const kidl_yfw_datatree &is = after.nodes.at(place).second;
        kidl_yfw_datatree marked = was.second;
        marked.consumed_mark = 1;
        marked.flags |= YFW_NODE_KEY_CONSUMED;
        if (!is_same_node(was.second, is)) {
            found.push_back(platform.name_of(was.first) + (is_same_node(marked, is) ? ": key" : ": changed"));
        }
    }
    if (after.request.xpath_error != before.request.xpath_error) {
        found.push_back(after.request.xpath_error == 1 ? "request: xpath error" : "request: wrong xpath error");
    }
    if (!is_same_request(before.request, after.request)) {
        found.emplace_back("request: changed");
    }
    if (!is_same_context(before.context, after.context)) {
        found.emplace_back("context: changed");
    }
    if (after.levels != before.levels) {
        found.emplace_back("hierarchy: changed");
    }
    return found;
}

kerrno NativeTest::walk(const std::string &suffix, const kidl_yfw_datatree *node) {
    const Picture before = take();
    const std::string function = walker(suffix).function();
    const kerrno result = fake::function<fake::Callback>(function)(request.ctx(), node, dest);
    changes_ = differences(before, take());
    for (const std::string &change : changes_) {
        EXPECT_TRUE(change == "request: xpath error" ||
                    (change.size() > 5 && change.compare(change.size() - 5, 5, ": key") == 0))
            << suffix << " left behind: " << change;
    }
    return result;
}

// ---- what happened ----

namespace {

std::string walker_of(const std::string &function) {
    for (const Walker &walker : walkers()) {
        if (walker.function() == function) {
            return walker.suffix();
        }
    }
    return "";
}

// A trace of a walker as a line of the story; empty for those of others.
std::string story_message(const fake::TraceRecord &record) {
    const std::string suffix = walker_of(record.function);
    if (suffix.empty()) {
        return "";
    }
    if (record.level == "TRC" && (record.text == "Start" || record.text == "End")) {
        return (record.text == "Start" ? "+" : "-") + suffix;
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

Lines NativeTest::story() const {
    Lines lines;
    std::size_t traced = 0;
    for (const std::string &line : platform.calls(fake::Walk | fake::Output | fake::Callbacks | fake::Trace)) {
        if (line.compare(0, 6, "trace ") != 0) {
            lines.push_back(without_context(line));
        } else if (const std::string message = story_message(platform.traced().at(traced++)); !message.empty()) {
            lines.push_back(message);
        }
    }
    return lines;
}

Lines NativeTest::output() const {
    Lines lines;
    for (const std::string &line : platform.calls(fake::Output)) {
        if (line.compare(0, 14, "get_node_info(") != 0) {
            lines.push_back(without_context(line));
        }
    }
    return lines;
}

Lines NativeTest::messages() const {
    Lines lines;
    for (const fake::TraceRecord &record : platform.traced()) {
        const std::string message = story_message(record);
        if (!message.empty() && message[0] != '+' && message[0] != '-') {
            lines.push_back(message);
        }
    }
    return lines;
}

Lines NativeTest::levels() const {
    Lines lines;
    for (const yfw_map_hierarchy_level &level : platform.hierarchy) {
        lines.push_back(platform.name_of(level.node) + " " + std::to_string(level.kind));
    }
    return lines;
}

// ---- the platform's answers ----

void NativeTest::look_up_in_hierarchy() {
    platform.before("get_node_info", [this](const std::string &) {
        platform.node_info.clear();
        for (const yfw_map_hierarchy_level &level : platform.hierarchy) { // the innermost is the last
            for (std::int32_t i = 0; level.kind == 2 && i < level.node->child_count; ++i) {
                const kidl_yfw_datatree &child = level.node->children[i];
                if (child.value != nullptr) {
                    platform.node_info[child.tag] = child.value;
                }
            }
        }
    });
}

void NativeTest::put_inventory(const std::string &slot) {
    fake::Bag bag;
    bag.tokens = {fake::mark_token(BAG_TOKEN_STRUCT_START, "inv_phy_entity_basic_info"),
                  fake::text_token("Name", "module " + slot), fake::mark_token(BAG_TOKEN_STRUCT_END),
                  fake::mark_token(BAG_TOKEN_END)};
    platform.items["/oper/inventory/gl/entity/0%2f" + slot + "-PSM-OM/attrib/inv_basic_bag"] = fake::bag_item(bag);
}

// What the wrapped callbacks call instead of the plug-in's.
struct Between {
    static NativeTest &test(yfw_map_ctx ctx, const kidl_yfw_datatree *dest) {
        if (NativeTest::current_ == nullptr) {
            std::fputs("a callback was called outside of a test of the native walk\n", stderr);
            std::abort();
        }
        fake::Platform &platform = fake::Platform::current();
        if (ctx != fake::current_context() || platform.name_of(dest) != "dest") {
            platform.fault("a callback was called with another context or destination than its walker");
        }
        return *NativeTest::current_;
    }

    static std::optional<std::uint32_t> note(const NativeTest &test, const char *name, const std::string &arguments) {
        if (test.on_callback) {
            test.on_callback(name);
        }
        return fake::Platform::current().record(fake::Callbacks, name, arguments);
    }

    static kerrno call(const char *name, fake::Callback real, yfw_map_ctx ctx, const kidl_yfw_datatree *node,
                       kidl_yfw_datatree *dest) {
        const NativeTest &in = test(ctx, dest);
        const auto scripted = note(in, name, fake::Platform::current().name_of(node));
        if (scripted) {
            return *scripted;
        }
        return in.conversions_run_ ? real(ctx, node, dest) : KERR_SUCCESS;
    }

    static kerrno call(const char *name, fake::ContainerCallback real, yfw_map_ctx ctx, const kidl_yfw_datatree *node,
                       unsigned int count, kidl_yfw_datatree *dest) {
        const NativeTest &in = test(ctx, dest);
        const auto scripted = note(in, name, fake::Platform::current().name_of(node) + ", " + std::to_string(count));
        return scripted ? *scripted : real(ctx, node, count, dest);
    }
};

struct Lookup {
    static kerrno result(kerrno real) {
        const NativeTest *const test = NativeTest::current_;
        return test == nullptr ? real : test->lookup_result.value_or(real);
    }
};

} // namespace native_test

#define YMAP_TEST_JOIN(a, b, c, d) a##b##c##d
#define YMAP_TEST_REAL(module, word, suffix) YMAP_TEST_JOIN(__real_ymap_n2o_oc_opt_psm_, module, word, suffix)
#define YMAP_TEST_WRAP(module, word, suffix) YMAP_TEST_JOIN(__wrap_ymap_n2o_oc_opt_psm_, module, word, suffix)

#define YMAP_TEST_AUGMENT(module, suffix)
#define YMAP_TEST_CALLBACK(module, word, suffix, name)                                                                 \
    kerrno YMAP_TEST_REAL(module, word, suffix)(yfw_map_ctx, const kidl_yfw_datatree *, kidl_yfw_datatree *);          \
    kerrno YMAP_TEST_WRAP(module, word, suffix)(yfw_map_ctx ctx, const kidl_yfw_datatree *node,                        \
                                                kidl_yfw_datatree *dest) {                                             \
        return native_test::Between::call(name, YMAP_TEST_REAL(module, word, suffix), ctx, node, dest);                \
    }
#define YMAP_TEST_LIST(module, suffix) YMAP_TEST_CALLBACK(module, _list_, suffix, "list_" #suffix)
#define YMAP_TEST_LEAF(module, suffix) YMAP_TEST_CALLBACK(module, _leaf_, suffix, "leaf_" #suffix)
#define YMAP_TEST_CONT(module, suffix)                                                                                 \
    kerrno YMAP_TEST_REAL(module, _cont_, suffix)(yfw_map_ctx, const kidl_yfw_datatree *, unsigned int,                \
                                                  kidl_yfw_datatree *);                                                \
    kerrno YMAP_TEST_WRAP(module, _cont_, suffix)(yfw_map_ctx ctx, const kidl_yfw_datatree *node, unsigned int count,  \
                                                  kidl_yfw_datatree *dest) {                                           \
        return native_test::Between::call("cont_" #suffix, YMAP_TEST_REAL(module, _cont_, suffix), ctx, node, count,   \
                                          dest);                                                                       \
    }

extern "C" {

#include "native_names.def"

kerrno __real_yfw_map_get_node_info(yfw_map_ctx ctx, const char *list_path, const char *key_name, const char **text);
kerrno __wrap_yfw_map_get_node_info(yfw_map_ctx ctx, const char *list_path, const char *key_name, const char **text) {
    return native_test::Lookup::result(__real_yfw_map_get_node_info(ctx, list_path, key_name, text));
}

} // extern "C"

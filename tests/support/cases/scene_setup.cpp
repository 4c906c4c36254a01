// The steps of a scene that set up the request, the trees and the platform, and those that look at them.
#include <algorithm>
#include <concepts>
#include <functional>
#include <type_traits>

#include "records.hpp"
#include "scene.hpp"

namespace cases {
namespace {

// "answer OPERATION [nth N] [of TEXT] = RESULT" and "when OPERATION [nth N] [of TEXT]"
struct Rule {
    std::string operation;
    std::size_t nth = 0;
    std::string containing;
    std::string result;
};

Rule rule_of(const Line &line, const std::vector<std::string> &all) {
    demand(all.size() >= 2, line, "OPERATION [nth N] [of TEXT] [= RESULT]");
    Rule rule{all[1], 0, "", ""};
    for (std::size_t i = 2; i < all.size(); i += 2) {
        demand(i + 1 < all.size(), line, "OPERATION [nth N] [of TEXT] [= RESULT]");
        if (all[i] == "nth") {
            rule.nth = static_cast<std::size_t>(number(line, all[i + 1]));
        } else if (all[i] == "of") {
            rule.containing = text_of(line, all[i + 1]);
        } else {
            demand(all[i] == "=", line, "OPERATION [nth N] [of TEXT] [= RESULT]");
            rule.result = all[i + 1];
        }
    }
    return rule;
}

// A number in a structure of the platform, whatever its width.
struct Number {
    template <std::integral Integer>
    Number(Integer &place) // NOLINT(google-explicit-constructor): tables of members read better without
        : get([&place] { return static_cast<std::uint32_t>(place); }), set([&place](std::uint32_t number) {
              using Given = std::conditional_t<std::is_signed_v<Integer>, std::int32_t, std::uint32_t>;
              place = static_cast<Integer>(static_cast<Given>(number));
          }) {}

    std::function<std::uint32_t()> get;
    std::function<void(std::uint32_t)> set;
};

Number member(const Line &line, const std::map<std::string, Number> &members, const std::string &name) {
    const auto found = members.find(name);
    demand(found != members.end(), line, "a member that is a number");
    return found->second;
}

Number member(const Line &line, fake::Request &request, const std::string &name) {
    yfw_map_request &state = request.state;
    return member(line,
                  {{"request whole_subtree_walk", state.whole_subtree_walk},
                   {"request delete_walk", state.delete_walk},
                   {"request replace_flags", state.replace_flags},
                   {"request replace_marker", state.replace_marker},
                   {"request read_selection", state.read_selection},
                   {"request xpath_error", state.xpath_error},
                   {"request output_depth", state.output_depth},
                   {"request hierarchy_length", state.hierarchy_length},
                   {"context list_operation", request.context.list_operation},
                   {"context data_printed", request.context.data_printed},
                   {"context trace_enabled", request.context.trace_enabled},
                   {"context enabled_levels", request.context.debug_log_filter.enabled_levels}},
                  name);
}

Number member(const Line &line, kidl_yfw_datatree &node, const std::string &name) {
    return member(line,
                  {{"operation", node.operation},
                   {"flags", node.flags},
                   {"second_flags", node.second_flags},
                   {"hierarchy_kind", node.hierarchy_kind},
                   {"consumed_mark", node.consumed_mark},
                   {"child_count", node.child_count}},
                  name);
}

} // namespace

const std::map<std::string, Scene::Step> &Scene::steps() {
#define STEP(word, function) {word, &Scene::function},
#define STEP_TOO(word, function) STEP(word, function)
    static const std::map<std::string, Step> all{
#include "steps.def"
    };
    return all;
}

// ---- the request ----

void Scene::kind(const Line &line, const Words &all) {
    demand(all.size() == 2, line, "kind NUMBER");
    stage_.request.set_kind(code(line, all[1]));
}

void Scene::selection(const Line &line, const Words &all) {
    demand(all.size() == 3, line, "selection MODE BITS");
    stage_.request.state.selection_mode = code(line, all[1]);
    stage_.request.state.leaf_selection = code(line, all[2]);
}

void Scene::channels(const Line &line, const Words &all) {
    demand(all.size() == 2, line, "channels both|log|errors|trace|none");
    stage_.request.set_channels(all[1] == "both" || all[1] == "log", all[1] == "both" || all[1] == "trace");
    if (all[1] == "errors") {
        stage_.request.context.debug_log_filter.enabled_levels = 1;
    }
}

void Scene::error_node(const Line &line, const Words &all) {
    if (all.size() == 3 && all[1] == "is") {
        compare(line, "the error node", {text_of(line, all[2])}, {stage_.request.error_node()});
        return;
    }
    demand(all.size() == 2, line, "error-node NAME, or error-node is NAME");
    stage_.request.set_error_node(text_of(line, all[1]).c_str());
}

void Scene::record(const Line &line, const Words &all) {
    if (all.size() == 2 && all[0] == "context" && all[1] == "without-request") {
        stage_.request.context.request = nullptr;
    } else if (all.size() == 4 && all[2] == "is") {
        compare(line, all[1], {std::to_string(code(line, all[3]))},
                {std::to_string(member(line, stage_.request, all[0] + " " + all[1]).get())});
    } else {
        demand(all.size() == 3, line, "request|context MEMBER [is] NUMBER");
        member(line, stage_.request, all[0] + " " + all[1]).set(code(line, all[2]));
    }
}

// ---- trees ----

void Scene::name_space(const Line &line, const Words &all) {
    demand(all.size() == 2, line, "namespace NAME|URI");
    namespace_ = fake::namespace_of(text_of(line, all[1]));
}

// TAG [= VALUE] [op N] [ns NAME|URI|null] [flags N] [without N] [count N] [untagged]
// A node from its words, "TAG ..." or "PATH/OF/TAGS ..."; what is below the line are its children.
fake::Node Scene::described(const Line &line, const Words &all) const {
    const std::size_t slash = all[0].front() == '"' ? std::string::npos : all[0].find('/');
    fake::Node node = fake::leaf(text_of(line, all[0].substr(0, slash)));
    if (namespace_) {
        node.namespace_uri = namespace_;
    }
    if (slash != std::string::npos) {
        Words rest = all;
        rest[0].erase(0, slash + 1);
        node.children.push_back(described(line, rest));
        node.with_children = true;
        return node;
    }
    for (std::size_t i = 1; i < all.size(); i += 2) {
        if (all[i] == "untagged") {
            node.tag.reset();
            --i;
            continue;
        }
        demand(i + 1 < all.size(), line, "TAG [= VALUE] [op N] [ns NAME] [flags N] [without N] [count N] [untagged]");
        const std::string &word = all[i + 1];
        if (all[i] == "=") {
            node.value = meant(line, word);
        } else if (all[i] == "op") {
            node.operation = code(line, word);
        } else if (all[i] == "ns") {
            const std::optional<std::string> uri = meant(line, word);
            node.namespace_uri = uri == "foreign" ? std::string(fake::foreign) : uri;
            if (uri && uri != "foreign") {
                node.namespace_uri = fake::namespace_of(*uri);
            }
        } else if (all[i] == "flags") {
            node.flags |= code(line, word);
        } else if (all[i] == "without") {
            node.cleared_flags |= code(line, word);
        } else {
            demand(all[i] == "count", line, "= op ns flags without count untagged");
            node = node.without_array(static_cast<std::int32_t>(number(line, word)));
        }
    }
    for (const Line &below : line.block) {
        node.children.push_back(described(below, words(below, below.text)));
        node.with_children = true;
    }
    return node;
}

// The root of a tree, in the words of the line behind those of the step or as the one line below it.
fake::Node Scene::root_of(const Line &line, const Words &all, std::size_t of_step) const {
    if (all.size() > of_step) {
        return described(line, {all.begin() + static_cast<std::ptrdiff_t>(of_step), all.end()});
    }
    demand(line.block.size() == 1, line, "a root behind the name, or one below it");
    return described(line.block.front(), words(line.block.front(), line.block.front().text));
}

void Scene::tree(const Line &line, const Words &all) {
    demand(all.size() >= 2, line, "tree NAME, with its root");
    fake::Tree &tree = stage_.build(root_of(line, all, 2), all[1]);
    if (const auto old = trees_.find(all[1]); old != trees_.end()) {
        stage_.platform.detach(*old->second);
    }
    trees_[all[1]] = &tree;
}

void Scene::list_entry(const Line &line, const Words &all) {
    if (all.size() == 2 && all[1] == "null") {
        stage_.request.state.list_node = nullptr;
        return;
    }
    stage_.request.set_list_entry(root_of(line, all, 1));
}

void Scene::root(const Line &line, const Words &all) {
    demand(all.size() == 3 && (all[1] == "request" || all[1] == "answer"), line, "root request|answer TREE");
    kidl_yfw_datatree *const node = node_at(line, all[2]);
    (all[1] == "request" ? stage_.request.state.request_root : stage_.request.state.answer_root) = node;
}

void Scene::node(const Line &line, const Words &all) {
    demand(all.size() >= 4, line, "node PATH [is] MEMBER NUMBER...");
    kidl_yfw_datatree &node = *node_at(line, all[1]);
    const bool asked = all[2] == "is";
    for (std::size_t i = asked ? 3 : 2; i + 1 < all.size(); i += 2) {
        const Number number = member(line, node, all[i]);
        if (asked) {
            compare(line, all[1] + " " + all[i], {std::to_string(code(line, all[i + 1]))},
                    {std::to_string(number.get())});
        } else {
            number.set(code(line, all[i + 1]));
        }
    }
}

void Scene::hierarchy(const Line &line, const Words &all) {
    if (all.size() >= 2 && all[1] == "is") {
        std::vector<std::string> actual;
        for (const yfw_map_hierarchy_level &level : stage_.platform.hierarchy) {
            actual.push_back(stage_.platform.name_of(level.node) + " " + std::to_string(level.kind));
        }
        compare(line, "the hierarchy", texts_below(line), actual);
        return;
    }
    demand(all.size() == 3, line, "hierarchy NODE KIND, or hierarchy is");
    yfw_map_add_to_node_hierarchy(stage_.request.ctx(), node_at(line, all[1]), code(line, all[2]));
}

void Scene::push(const Line &line, const Words &all) {
    demand(all.size() == 3, line, "push NODE|null COUNT");
    kidl_yfw_datatree *const node = node_at(line, all[1]);
    stage_.platform.itree_stack.push_back(
        {node == nullptr ? nullptr : node->children, static_cast<std::int32_t>(number(line, all[2]))});
}

void Scene::stack(const Line &line, const Words &all) {
    demand(all.size() == 3 && all[1] == "is", line, "stack is NUMBER");
    compare(line, "the height of the instance-tree stack", {all[2]},
            {std::to_string(stage_.platform.itree_stack.size())});
}

void Scene::modules(const Line & /*line*/, const Words & /*all*/) {
    static int list = 0; // opaque
    stage_.request.state.module_list = reinterpret_cast<yfw_map_module_list *>(&list);
    stage_.platform.name(&list, "modules");
}

// ---- the platform ----

void Scene::node_info(const Line &line, const Words &all) {
    if (all.size() == 2 && all[1] == "from-hierarchy") {
        stage_.platform.node_info_from_hierarchy = true;
    } else if (all.size() == 3 && all[1] == "result") {
        stage_.platform.node_info_result = code(line, all[2]);
    } else {
        demand(all.size() == 4 && all[2] == "=", line, "node-info KEY = TEXT|null");
        stage_.platform.node_info[all[1]] = meant(line, all[3]);
    }
}

void Scene::answer(const Line &line, const Words &all) {
    const Rule rule = rule_of(line, all);
    demand(!rule.result.empty(), line, "answer OPERATION [nth N] [of TEXT] = RESULT");
    stage_.platform.answer(rule.operation, code(line, rule.result), rule.nth, rule.containing);
}

void Scene::when(const Line &line, const Words &all) {
    const Rule rule = rule_of(line, all);
    demand(!line.block.empty(), line, "when OPERATION [nth N] [of TEXT], with steps below");
    const auto calls = std::make_shared<std::size_t>(0);
    stage_.platform.before(
        rule.operation,
        [this, rule, calls, &line](const std::string &) {
            if (++*calls == rule.nth || rule.nth == 0) {
                play_below(line);
            }
        },
        rule.containing);
}

// The nth add of a call returns 0x5a000000 + n.
void Scene::numbered_adds(const Line &line, const Words &all) {
    demand(all.size() == 1, line, "numbered-adds");
    for (std::uint32_t nth = 1; nth <= 60; ++nth) {
        stage_.platform.answer("add", 0x5a000000 + nth, nth);
    }
}

void Scene::relative_adds(const Line &line, const Words &all) {
    demand(all.size() == 3 && all[1] == "give" && all[2] == "null", line, "relative-adds give null");
    stage_.platform.relative_add_gives_node = false;
}

void Scene::callbacks(const Line &line, const Words &all) {
    using Mode = fake::Platform::Callbacks;
    demand(all.size() == 2, line, "callbacks unseen|recorded|scripted");
    demand(all[1] == "unseen" || all[1] == "recorded" || all[1] == "scripted", line, "unseen|recorded|scripted");
    stage_.platform.callbacks = all[1] == "unseen"     ? Mode::unseen
                                : all[1] == "recorded" ? Mode::recorded
                                                       : Mode::scripted;
}

// Every add and every callback says what this node and, if wanted, the request are at that time.
void Scene::watch(const Line &line, const Words &all) {
    demand(all.size() == 2 || (all.size() == 3 && all[2] == "request"), line, "watch NODE [request]");
    const kidl_yfw_datatree *const node = node_at(line, all[1]);
    const yfw_map_request *const state = all.size() == 3 ? &stage_.request.state : nullptr;
    stage_.platform.annotation = [node, state] {
        std::string text = " | op " + std::to_string(node->operation);
        text += (node->flags & YFW_NODE_OPERATION_REWRITTEN) != 0 ? " rewritten" : "";
        if (state != nullptr) {
            text += " children " + std::to_string(node->children == nullptr ? 0 : node->child_count);
            text += (node->flags & YFW_NODE_CHILDREN_VALID) != 0 ? "" : " hidden";
            text += " | whole " + std::to_string(state->whole_subtree_walk) + " delete " +
                    std::to_string(state->delete_walk) + " replace " + std::to_string(state->replace_flags) +
                    " marker " + std::to_string(state->replace_marker) + " selection " +
                    fake::hex(state->read_selection);
        }
        return text;
    };
}

void Scene::item(const Line &line, const Words &all) {
    demand(all.size() == 2, line, "item PATH, with its content below");
    stage_.platform.items[all[1]] = item_of(line);
}

void Scene::bag(const Line &line, const Words & /*all*/) {
    stage_.platform.bag_at(bag_.data(), bag_of(line));
}

void Scene::no_item(const Line &line, const Words &all) {
    demand(all.size() == 2, line, "no-item PATH|all");
    if (all[1] == "all") {
        stage_.platform.items.clear();
    } else {
        demand(stage_.platform.items.erase(all[1]) == 1, line, "an item that is there");
    }
}

void Scene::listing(const Line &line, const Words &all) {
    demand(all.size() >= 3 && all[2] == "=", line, "listing PATH = NAME...");
    std::vector<std::string> &names = stage_.platform.listings[all[1]];
    names.clear();
    std::transform(all.begin() + 3, all.end(), std::back_inserter(names),
                   [&](const std::string &word) { return text_of(line, word); });
}

void Scene::database(const Line &line, const Words &all) {
    demand(all.size() == 2, line, "database library-present|library-absent|without-handles");
    if (all[1] == "without-handles") {
        stage_.platform.bind_gives_handle = false;
    } else {
        demand(all[1] == "library-absent" || all[1] == "library-present", line, "library-present|library-absent");
        stage_.platform.client_library_present = all[1] == "library-present";
    }
}

// ---- what is looked at ----

void Scene::look(const Line &line, const Words &all) {
    static const std::map<std::string, unsigned> groups{
        {"output", fake::Output},     {"walk", fake::Walk},           {"questions", fake::Questions},
        {"heap", fake::Heap},         {"texts", fake::Texts},         {"messages", fake::Channels},
        {"filter", fake::Filter},     {"database", fake::Database},   {"bags", fake::Bags},
        {"releases", fake::Releases}, {"callbacks", fake::Callbacks}, {"nothing", 0}};
    view_.groups = 0;
    for (std::size_t i = 1; i < all.size(); ++i) {
        const auto group = groups.find(all[i]);
        demand(group != groups.end(), line, "look GROUP...");
        view_.groups |= group->second;
    }
}

void Scene::hide(const Line &line, const Words &all) {
    for (std::size_t i = 1; i < all.size(); ++i) {
        view_.hidden.push_back(text_of(line, all[i]));
    }
}

void Scene::mute(const Line & /*line*/, const Words &all) {
    view_.muted.insert(view_.muted.end(), all.begin() + 1, all.end());
}

void Scene::hear(const Line & /*line*/, const Words &all) {
    view_.heard.insert(view_.heard.end(), all.begin() + 1, all.end());
}

void Scene::tolerate(const Line &line, const Words &all) {
    using Tolerance = fake::Checker::Tolerance;
    static const std::map<std::string, Tolerance> tolerances{
        {"nothing", Tolerance::nothing}, {"keys", Tolerance::keys}, {"walk", Tolerance::walk}};
    demand(all.size() == 2 && tolerances.contains(all[1]), line, "tolerate nothing|keys|walk");
    tolerance_ = tolerances.at(all[1]);
}

void Scene::count(const Line &line, const Words &all) {
    demand(all.size() == 4 && all[2] == "is", line, "count OPERATION is NUMBER");
    compare(line, "the number of calls of " + all[1], {all[3]}, {std::to_string(stage_.platform.count(all[1]))});
}

// The first add or stitch of the last call holds a text.
void Scene::first_write(const Line &line, const Words &all) {
    demand(all.size() == 2, line, "first-write TEXT");
    const std::vector<std::string> calls = stage_.platform.calls(fake::Output);
    const auto first = std::find_if(calls.begin(), calls.end(), [](const std::string &call) {
        return call.compare(0, 4, "add(") == 0 || call.compare(0, 7, "stitch(") == 0;
    });
    if (first == calls.end() || first->find(text_of(line, all[1])) == std::string::npos) {
        fail(line, "what is written first is " + (first == calls.end() ? "nothing" : *first));
    }
}

void Scene::heap(const Line &line, const Words &all) {
    demand(all.size() == 2 && all[1] == "is", line, "heap is, with \"text (tag)\" below");
    compare(line, "the heap", texts_below(line), stage_.platform.heap());
}

} // namespace cases

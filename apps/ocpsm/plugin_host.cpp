#include "plugin_host.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "framework/answer/writer.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/host/plugin.hpp"
#include "framework/mapping/request_table.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/instance_read.hpp"
#include "native_models.hpp"

namespace ocpsm {
namespace {

using framework::AddRecord;
using framework::AnswerWriter;
using framework::Callback;
using framework::Channels;
using framework::DataTree;
using framework::MappingContext;

constexpr char module_key[] = "0/1-PSM-OM";

std::vector<std::string> steps_of(std::string_view path) {
    std::vector<std::string> steps;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::size_t end = std::min(path.find('/'), path.size());
        steps.emplace_back(path.substr(0, end));
        path.remove_prefix(end);
    }
    return steps;
}

// ---- requests ----

// A request that names one leaf of the module.
std::string request_text(const std::string &leaf, RequestMode mode, const std::string &value) {
    const std::vector<std::string> steps = steps_of(leaf);
    const std::string name_element = std::string("<name>") + module_key + "</name>";
    std::string text;
    std::string ends;
    std::string path;
    for (const std::string &step : steps) {
        path.append("/").append(step);
        if (path == YMAP_MODULE "/name") {
            break;
        }
        const bool top = &step == &steps.front();
        const bool last = &step == &steps.back();
        text.append("<").append(step);
        text.append(top ? std::string(" xmlns='") + ymap::openconfig + "'" : "");
        text.append(last && mode == RequestMode::remove
                        ? std::string(" xmlns:nc='") + std::string(netconf_namespace) + "' nc:operation='delete'"
                        : "");
        text.append(">").append(last ? value : "").append(path == YMAP_MODULE ? name_element : "");
        ends.insert(0, "</" + step + ">");
    }
    return text + ends;
}

NativeAddition addition_of(const Addition &addition) {
    const auto node = models::Schema::native().describe(addition.path);
    NativeAddition added;
    added.module = module_name(addition.namespace_uri);
    added.path = addition.path;
    added.value = addition.value.value_or("");
    added.is_leaf = node && node->kind == models::NodeKind::leaf;
    const auto list = models::Schema::native().describe(addition.path.substr(0, addition.path.rfind('/')));
    added.is_key = node && list && std::find(list->keys.begin(), list->keys.end(), node->name) != list->keys.end();
    added.deletes = addition.source_operation && takes_away(*addition.source_operation);
    return added;
}

// ---- answers ----

std::string controller_of(EntryPort port) {
    switch (port) {
    case EntryPort::primary:
        return "Ots0/1/0/1";
    case EntryPort::secondary:
        return "Ots0/1/0/2";
    default:
        return "Ots0/1/0/0";
    }
}

std::string key_value(std::string_view key, EntryPort port) {
    constexpr std::pair<std::string_view, std::string_view> values[] = {
        {"active", "act"}, {"node-name", "0/RP0/CPU0"}, {"rx-threshold-type", "low"}};
    if (key == "interface-name" || key == "name") {
        return controller_of(port);
    }
    const auto *const found =
        std::find_if(std::begin(values), std::end(values), [&](const auto &pair) { return pair.first == key; });
    return found == std::end(values) ? "1" : std::string(found->second); // slots and numbers of a history
}

RequestNode node_of(const models::NodeInfo &info, EntryPort port) {
    RequestNode node{std::string(info.name), std::string(info.namespace_uri)};
    for (const std::string_view key : info.keys) {
        node.children.push_back({std::string(key), std::string(info.namespace_uri), key_value(key, port)});
    }
    return node;
}

// An answer that holds the native node with this path. Beside an entry of another port stands that of the primary one.
RequestNode answer_tree(const std::string &path, EntryPort port, const std::string &value) {
    const std::vector<std::string> steps = steps_of(path);
    RequestNode top;
    RequestNode *parent = nullptr;
    std::string reached;
    for (const std::string &step : steps) {
        reached.append("/").append(step);
        const auto info = models::Schema::native().describe(reached);
        RequestNode node = node_of(*info, port);
        if (parent == nullptr) {
            top = std::move(node);
            parent = &top;
            continue;
        }
        if (info->kind == models::NodeKind::leaf) {
            const bool is_key = std::any_of(parent->children.begin(), parent->children.end(),
                                            [&](const RequestNode &child) { return child.tag == step; });
            if (!is_key) {
                node.value = value;
                parent->children.push_back(std::move(node));
            }
            break;
        }
        if (info->kind == models::NodeKind::list && port != EntryPort::primary) {
            RequestNode primary = node_of(*info, EntryPort::primary);
            if (!std::equal(primary.children.begin(), primary.children.end(), node.children.begin(),
                            [](const auto &one, const auto &other) { return one.value == other.value; })) {
                parent->children.push_back(std::move(primary));
            }
        }
        parent->children.push_back(std::move(node));
        parent = &parent->children.back();
    }
    return top;
}

kidl_yfw_datatree &last_child(kidl_yfw_datatree &node, const std::string &tag) {
    for (int32_t index = node.child_count; index-- > 0;) {
        if (node.children[index].tag == tag) {
            return node.children[index];
        }
    }
    throw std::logic_error("no " + tag);
}

// Calls `callback` with the node that it belongs to, below the hierarchy that a walk would have made.
kerrno call_in_walk(MappingContext &context, Callback callback, DataTree &tree, const NativeRow &row,
                    const std::vector<std::string> &steps) {
    context.set_answer_root(tree.root());
    kidl_yfw_datatree *node = &tree.root();
    std::string path = "/" + steps.front();
    context.push_level(*node, framework::container_level);
    for (std::size_t index = 1; index < steps.size(); ++index) {
        node = &last_child(*node, steps[index]);
        path.append("/").append(steps[index]);
        if (index + 1 < steps.size() || row.kind == NativeKind::list) {
            const bool list = models::Schema::native().describe(path)->kind == models::NodeKind::list;
            context.push_level(*node, list ? framework::list_level : framework::container_level);
        }
    }
    return callback(&context, node, &context.destination());
}

// What was added stands in the records; what is in the answer besides was stitched. An answer shows a module once it
// has its name: where the conversion has not written it, it is given one to be seen.
std::vector<WrittenNode> written_nodes(MappingContext &context, AnswerWriter &answer) {
    std::vector<WrittenNode> written;
    for (const AddRecord &add : context.take_adds()) {
        written.push_back({add.path, add.value.value_or(""), add.value ? "added" : "opened"});
    }
    const std::vector<std::string> names = answer.names();
    const bool named = std::find(names.begin(), names.end(), module_key) != names.end();
    if (named) {
        written.push_back({YMAP_MODULE "/name", module_key, "stitched"});
    }
    answer.search_or_add(YMAP_MODULE, "name", module_key, ymap::openconfig);
    std::move(answer).finish().for_each_leaf([&](const std::string &leaf, std::string_view value) {
        const lysc_node &schema = *framework::schema_of(leaf);
        const std::string path = models::schema_path(schema);
        const bool known =
            path == YMAP_MODULE "/name" ||
            std::any_of(written.begin(), written.end(), [&](const WrittenNode &node) { return node.path == path; });
        if (!known) {
            // An identity is answered with the name of its module.
            const bool identity = models::describe(schema).type == "identityref";
            written.push_back({path, std::string(identity ? value.substr(value.find(':') + 1) : value), "stitched"});
        }
    });
    return written;
}

} // namespace

RequestRun PluginHost::request(const std::string &leaf, std::string_view conversion, RequestMode mode,
                               const std::string &value) {
    Options options;
    options.check_values = false;
    options.trace = true; // tells which conversion adds
    const TranslateResult translated = service_.translate({request_text(leaf, mode, value)},
                                                          mode == RequestMode::read ? Kind::get : Kind::edit, options);
    RequestRun run;
    run.accepted = !translated.error;
    for (const Addition &addition : translated.additions) {
        if (addition.conversion == conversion) {
            run.additions.push_back(addition_of(addition));
        }
    }
    return run;
}

AnswerRun PluginHost::answer(const NativeRow &row, EntryPort port, AnswerMode mode, const std::string &value) {
    const std::string path = native_path(native_rows(), row);
    DataTree tree(answer_tree(path, port, value));
    AnswerWriter answer;
    Channels channels;
    const Kind kind = mode == AnswerMode::configuration ? Kind::get_config : Kind::get;
    MappingContext context(static_cast<uint32_t>(kind), framework::read_of_instance(module_key), channels, answer);
    if (mode == AnswerMode::state_only) {
        context.select_state_leaves(1);
    }
    auto *const callback = reinterpret_cast<Callback>(service_.find(callback_name(row))); // NOLINT
    const kerrno result = call_in_walk(context, callback, tree, row, steps_of(path));
    const bool failed = answer.failure() != KERR_SUCCESS || (result != KERR_SUCCESS && result != YMAP_ERR_SKIP);
    AnswerRun run;
    run.result = failed ? AnswerResult::failed : result == KERR_SUCCESS ? AnswerResult::done : AnswerResult::skipped;
    run.written = written_nodes(context, answer);
    return run;
}

std::optional<std::string> PluginHost::read(std::string_view reader, std::string_view source) {
    auto *const function =
        reinterpret_cast<kerrno (*)(yfw_map_ctx, const char *, char *)>(service_.find(std::string(reader))); // NOLINT
    if (function == nullptr) {
        return std::nullopt;
    }
    AnswerWriter answer;
    Channels channels;
    MappingContext context(YFW_KIND_GET, framework::read_of_instance(module_key), channels, answer);
    std::array<char, 4096> text{};
    const char *const key = source == "secondary" ? "Ots0_1_0_2" : "Ots0_1_0_0";
    if (function(&context, key, text.data()) != KERR_SUCCESS) {
        return std::nullopt;
    }
    return std::string(text.data());
}

} // namespace ocpsm

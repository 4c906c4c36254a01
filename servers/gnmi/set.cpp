#include "servers/gnmi/set.hpp"

#include <algorithm>

#include "servers/gnmi/get.hpp"
#include "servers/gnmi/refusal.hpp"
#include "servers/gnmi/value.hpp"

namespace ocpsm::gnmi {
namespace {

bool is_key(const ModelNode &list, const std::string &name) {
    return std::find(list.keys.begin(), list.keys.end(), name) != list.keys.end();
}

// The value of a child that is one; null where it has none.
const std::string *child_value(const RequestNode &node, const std::string &name) {
    for (const RequestNode &child : node.children) {
        if (child.tag == name && child.value) {
            return &*child.value;
        }
    }
    return nullptr;
}

bool same_node(const RequestNode &one, const RequestNode &other, const ModelNode &model) {
    return one.tag == other.tag && std::all_of(model.keys.begin(), model.keys.end(), [&](const std::string &key) {
               const std::string *value = child_value(one, key);
               const std::string *wanted = child_value(other, key);
               return value != nullptr && wanted != nullptr && *value == *wanted;
           });
}

void keep_keys(RequestNode &node, const ModelNode &model) {
    std::erase_if(node.children, [&model](const RequestNode &child) { return !is_key(model, child.tag); });
}

/*
 * What an edit comes to while operations are added to it. A node that is taken away and then gets something below it is
 * replaced; one that is replaced by nothing is taken away.
 */
class Combined {
public:
    Tree finished() { return std::move(root_.children); }

    void remove(const Steps &path) {
        if (RequestNode *node = reach(path, Touch::take_away)) {
            take_away(*node, *node_of(path));
        }
    }

    void replace(const Steps &path, std::vector<RequestNode> content) {
        RequestNode &node = *reach(path, Touch::give);
        const ModelNode &model = *node_of(path);
        if (path.empty()) {
            for (const ModelNode &top : model.children) {
                take_away(child_for(node, {top.name, Model::openconfig().namespace_uri}, top), top);
            }
        } else {
            take_away(node, model);
        }
        merge(node, std::move(content), model);
    }

    void update(const Steps &path, std::vector<RequestNode> content) {
        merge(*reach(path, Touch::give), std::move(content), *node_of(path));
    }

    void set_leaf(const Steps &path, std::string value) {
        RequestNode &leaf = *reach(path, Touch::give);
        leaf.operation = Operation::merge;
        leaf.value = std::move(value);
    }

private:
    enum class Touch { give, take_away };

    static void take_away(RequestNode &node, const ModelNode &model) {
        node.operation = Operation::remove;
        node.value.reset();
        keep_keys(node, model);
    }

    static RequestNode &child_for(RequestNode &around, RequestNode &&wanted, const ModelNode &model) {
        const auto found = std::find_if(around.children.begin(), around.children.end(),
                                        [&](const RequestNode &child) { return same_node(child, wanted, model); });
        return found != around.children.end() ? *found : around.children.emplace_back(std::move(wanted));
    }

    static void merge(RequestNode &into, std::vector<RequestNode> &&content, const ModelNode &model) {
        for (RequestNode &from : content) {
            const ModelNode &child_model = *model.child(from.tag);
            const bool key = is_key(model, from.tag);
            if (!key && takes_away(into.operation)) {
                into.operation = Operation::replace;
            }
            if (child_model.kind == ModelNode::Kind::leaf) {
                RequestNode leaf{from.tag, from.namespace_uri};
                RequestNode &kept = child_for(into, std::move(leaf), child_model);
                kept.operation = Operation::merge;
                kept.value = std::move(from.value);
            } else {
                std::vector<RequestNode> below = std::move(from.children);
                from.children.clear();
                for (const RequestNode &child : below) {
                    if (is_key(child_model, child.tag)) {
                        from.children.push_back(child);
                    }
                }
                merge(child_for(into, std::move(from), child_model), std::move(below), child_model);
            }
        }
    }

    // The node of a path, with those around it; null where it is to be taken away and one around it is already.
    RequestNode *reach(const Steps &path, Touch touch) {
        RequestNode *node = &root_;
        const ModelNode *model = &Model::openconfig().root;
        for (const PathStep &step : path) {
            if (takes_away(node->operation)) {
                if (touch == Touch::take_away) {
                    return nullptr;
                }
                node->operation = Operation::replace;
            }
            model = model->child(step.name);
            RequestNode wanted{step.name, Model::openconfig().namespace_uri};
            for (const PathKey &key : step.keys) {
                wanted.children.push_back({key.name, Model::openconfig().namespace_uri, key.value});
            }
            node = &child_for(*node, std::move(wanted), *model);
        }
        return node;
    }

    RequestNode root_{{}, {}};
};

// ---- the operations of a request ----

// A path that can be written to: the root, or a node that has all keys on the way. A list itself can be without.
void require_writable(const Steps &path) {
    require_in_model(path);
    Steps around = path;
    if (!around.empty() && around.back().keys.empty() && node_of(path) != nullptr &&
        node_of(path)->kind == ModelNode::Kind::list) {
        around.pop_back();
    }
    if (!names_one_node(around)) {
        throw Refusal(grpc::StatusCode::INVALID_ARGUMENT,
                      "what is replaced or updated is one node: without wildcards, each list with its keys",
                      path_text(path));
    }
    if (const ModelNode *node = node_of(path); !path.empty() && !node->config) {
        throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "operational state cannot be written", path_text(path));
    }
}

// What is said of a key beside the path's: the same, or it is refused.
void require_same_keys(const Steps &path, const std::vector<RequestNode> &content) {
    for (const RequestNode &node : content) {
        for (const PathKey &key : path.empty() ? std::vector<PathKey>() : path.back().keys) {
            if (node.tag == key.name && node.value != key.value) {
                throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "the key of an entry is another in path and value",
                              path_text(path));
            }
        }
    }
}

void add_leaf(const Steps &path, const ModelNode &leaf, const messages::TypedValue &value, Combined &edit) {
    std::string text = read_value(leaf, value, path_text(path));
    const PathStep &around = path.at(path.size() - 2);
    const auto key = std::find_if(around.keys.begin(), around.keys.end(),
                                  [&leaf](const PathKey &of_path) { return of_path.name == leaf.name; });
    if (key == around.keys.end()) {
        edit.set_leaf(path, std::move(text));
    } else if (key->value == text) {
        edit.update(Steps(path.begin(), path.end() - 1), {});
    } else {
        throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "the key of an entry cannot be changed", path_text(path));
    }
}

void add_update(const messages::Path &prefix, const messages::Update &update, bool replaces, Combined &edit) {
    Steps path = read_path(prefix, update.path());
    require_writable(path);
    if (update.has_value()) {
        throw Refusal(grpc::StatusCode::UNIMPLEMENTED,
                      "values are given in val; value has been given up by the protocol", path_text(path));
    }
    const ModelNode *model = node_of(path);
    if (model->kind == ModelNode::Kind::leaf) {
        add_leaf(path, *model, update.val(), edit);
        return;
    }
    const bool whole_list = model->kind == ModelNode::Kind::list && path.back().keys.empty();
    std::vector<RequestNode> content = whole_list ? read_entries(*model, update.val(), path_text(path))
                                                  : read_tree(*model, update.val(), path_text(path));
    if (whole_list) { // it is all that its container has, and can be replaced as that only
        path.pop_back();
    }
    require_same_keys(path, content);
    replaces ? edit.replace(path, std::move(content)) : edit.update(path, std::move(content));
}

// The nodes of the configuration that a path names.
std::vector<Steps> expanded(const Steps &pattern, const Snapshot &configuration) {
    std::vector<Steps> nodes;
    for (const LeafPlace &place : configuration.places->leaves) {
        if (const auto count = matched_steps(pattern, place.steps)) {
            Steps node(place.steps.begin(), place.steps.begin() + static_cast<std::ptrdiff_t>(*count));
            if (nodes.empty() || nodes.back() != node) {
                nodes.push_back(std::move(node));
            }
        }
    }
    return nodes;
}

// Whether the entries of lists that a path names are there. What is not there is deleted already.
bool has_entries(const Steps &path, const Snapshot &configuration) {
    const auto last = std::find_if(path.rbegin(), path.rend(), [](const PathStep &step) { return !step.keys.empty(); });
    const Steps entry(path.begin(), last.base());
    return entry.empty() ||
           std::any_of(configuration.places->leaves.begin(), configuration.places->leaves.end(),
                       [&entry](const LeafPlace &place) { return matched_steps(entry, place.steps).has_value(); });
}

void require_deletable(const Steps &path) {
    const ModelNode *node = node_of(path);
    if (!node->config) {
        throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "operational state cannot be deleted", path_text(path));
    }
    if (path.size() > 1 && is_key(*node_of(Steps(path.begin(), path.end() - 1)), path.back().name)) {
        throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "the key of an entry cannot be deleted", path_text(path));
    }
}

void add_delete(const Steps &path, const std::function<const Snapshot &()> &configuration, Combined &edit) {
    require_in_model(path);
    if (path.empty()) {
        edit.replace(path, {});
    } else if (names_one_node(path)) {
        require_deletable(path);
        if (has_entries(path, configuration())) {
            edit.remove(path);
        }
    } else {
        for (const Steps &node : expanded(path, configuration())) {
            const bool key = node.size() > 1 && is_key(*node_of(Steps(node.begin(), node.end() - 1)), node.back().name);
            if (!key) { // it goes with its entry
                edit.remove(node);
            }
        }
    }
}

void add_result(const messages::Path &path, messages::UpdateResult::Operation operation,
                messages::SetResponse &response) {
    messages::UpdateResult &result = *response.add_response();
    *result.mutable_path() = path;
    result.set_op(operation);
}

} // namespace

Tree edit_tree(const messages::SetRequest &request, const ReadConfiguration &read) {
    if (request.union_replace_size() != 0) {
        throw Refusal(grpc::StatusCode::UNIMPLEMENTED, "union_replace is not served; use replace");
    }
    if (request.delete__size() + request.replace_size() + request.update_size() > static_cast<int>(max_operations)) {
        throw Refusal(grpc::StatusCode::RESOURCE_EXHAUSTED,
                      "a Set has more than " + std::to_string(max_operations) + " operations");
    }
    Combined edit;
    std::shared_ptr<const Snapshot> standing;
    const auto configuration = [&]() -> const Snapshot & {
        if (!standing) {
            standing = read();
        }
        return *standing;
    };
    for (const messages::Path &path : request.delete_()) {
        add_delete(read_path(request.prefix(), path), configuration, edit);
    }
    for (const messages::Update &replace : request.replace()) {
        add_update(request.prefix(), replace, true, edit);
    }
    for (const messages::Update &update : request.update()) {
        add_update(request.prefix(), update, false, edit);
    }
    return edit.finished();
}

messages::SetResponse answer_set(const Service &service, const messages::SetRequest &request, const std::string &peer) {
    const Tree tree = edit_tree(request, [&service] { return read_everything(service, Kind::get_config); });
    EditOptions options;
    options.user = "gnmi " + peer;
    if (!tree.empty()) {
        if (const EditResult result = service.edit(tree, options); result.error) {
            throw Error(*result.error);
        }
    }
    messages::SetResponse response;
    response.set_timestamp(time_of_day());
    if (request.has_prefix()) {
        *response.mutable_prefix() = request.prefix();
    }
    for (const messages::Path &path : request.delete_()) {
        add_result(path, messages::UpdateResult::DELETE, response);
    }
    for (const messages::Update &replace : request.replace()) {
        add_result(replace.path(), messages::UpdateResult::REPLACE, response);
    }
    for (const messages::Update &update : request.update()) {
        add_result(update.path(), messages::UpdateResult::UPDATE, response);
    }
    return response;
}

} // namespace ocpsm::gnmi

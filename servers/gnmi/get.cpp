#include "servers/gnmi/get.hpp"

#include <algorithm>
#include <chrono>

#include "servers/gnmi/refusal.hpp"
#include "servers/gnmi/value.hpp"

namespace ocpsm::gnmi {
namespace {

// ---- what is read ----

// The part of a path in front of its first wildcard, as a selection.
RequestNode selection_of(const Steps &path, std::size_t at) {
    RequestNode node{path[at].name, Model::openconfig().namespace_uri};
    for (const PathKey &key : path[at].keys) {
        if (key.value != "*") {
            node.children.push_back({key.name, Model::openconfig().namespace_uri, key.value});
        }
    }
    if (at + 1 < path.size() && path[at + 1].name != "*" && path[at + 1].name != "...") {
        node.children.push_back(selection_of(path, at + 1));
    }
    return node;
}

Selection selection_of(const std::vector<Steps> &paths) {
    Tree tops;
    for (const Steps &path : paths) {
        if (path.empty() || path.front().name == "*" || path.front().name == "...") {
            return Paths{};
        }
        tops.push_back(selection_of(path, 0));
    }
    return tops;
}

std::shared_ptr<const Snapshot> read(const Service &service, const Selection &selection, Kind kind,
                                     const std::shared_ptr<const Snapshot> &earlier) {
    const ReadResult result = service.read(selection, kind);
    if (result.error) {
        throw Error(*result.error);
    }
    return snapshot_of(result.answer.leaves(), time_of_day(), earlier);
}

// ---- what is answered ----

bool is_of_type(LeafUse use, messages::GetRequest::DataType type) {
    switch (type) {
    case messages::GetRequest::CONFIG:
        return use == LeafUse::configuration;
    case messages::GetRequest::STATE:
        return use != LeafUse::configuration;
    case messages::GetRequest::OPERATIONAL:
        return use == LeafUse::event || use == LeafUse::measurement;
    default:
        return true;
    }
}

bool is_key(const LeafPlace &place) {
    return place.steps.size() > 1 &&
           std::any_of((place.steps.end() - 2)->keys.begin(), (place.steps.end() - 2)->keys.end(),
                       [&place](const PathKey &key) { return key.name == place.steps.back().name; });
}

// A node that a path names, with those of its leaves that are asked for.
struct NamedNode {
    std::size_t depth; // steps of its path
    std::vector<DocumentLeaf> leaves = {};
    bool only_keys = true;
};

bool is_below(const LeafPlace &place, const NamedNode &node) {
    const Steps &steps = node.leaves.front().place->steps;
    return place.steps.size() >= node.depth &&
           std::equal(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(node.depth), place.steps.begin());
}

// The keys of an entry come along, whatever is asked for: what has nothing else is left out.
std::vector<NamedNode> nodes_of(const Snapshot &snapshot, const Steps &pattern, messages::GetRequest::DataType type) {
    std::vector<NamedNode> nodes;
    for (std::size_t at = 0; at < snapshot.places->leaves.size(); ++at) {
        const LeafPlace &place = snapshot.places->leaves[at];
        const auto depth = matched_steps(pattern, place.steps);
        const bool wanted = is_of_type(place.use, type);
        if (!depth || !(wanted || (is_key(place) && *depth < place.steps.size()))) {
            continue;
        }
        if (nodes.empty() || nodes.back().depth != *depth || !is_below(place, nodes.back())) {
            nodes.push_back({*depth});
        }
        nodes.back().leaves.push_back({&place, &snapshot.values[at]});
        nodes.back().only_keys = nodes.back().only_keys && !wanted;
    }
    std::erase_if(nodes, [](const NamedNode &node) { return node.only_keys; });
    return nodes;
}

void add_updates(const NamedNode &node, const messages::GetRequest &request, std::size_t taken_off,
                 messages::Notification &notification) {
    if (request.encoding() == messages::PROTO) {
        for (const DocumentLeaf &leaf : node.leaves) {
            if (is_of_type(leaf.place->use, request.type())) {
                messages::Update &update = *notification.add_update();
                write_path(leaf.place->steps, taken_off, *update.mutable_path());
                write_value(*leaf.place->node, *leaf.value, request.encoding(), *update.mutable_val());
            }
        }
        return;
    }
    const Steps &steps = node.leaves.front().place->steps;
    messages::Update &update = *notification.add_update();
    write_path({steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(node.depth)}, taken_off,
               *update.mutable_path());
    std::string document = json_document(node.leaves, node.depth, request.encoding());
    if (request.encoding() == messages::JSON) {
        update.mutable_val()->set_json_val(std::move(document));
    } else {
        update.mutable_val()->set_json_ietf_val(std::move(document));
    }
}

std::vector<Steps> paths_of(const messages::GetRequest &request) {
    if (request.path_size() > static_cast<int>(max_paths)) {
        throw Refusal(grpc::StatusCode::RESOURCE_EXHAUSTED,
                      "a Get has more than " + std::to_string(max_paths) + " paths");
    }
    std::vector<Steps> paths;
    for (const messages::Path &path : request.path()) {
        paths.push_back(read_path(request.prefix(), path));
        require_in_model(paths.back());
    }
    if (paths.empty()) { // the prefix is what is asked for
        paths.push_back(read_path(request.prefix(), {}));
        require_in_model(paths.back());
    }
    return paths;
}

} // namespace

std::int64_t time_of_day() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

std::shared_ptr<const Snapshot> read_everything(const Service &service, Kind kind,
                                                const std::shared_ptr<const Snapshot> &earlier) {
    return read(service, Paths{}, kind, earlier);
}

void require_models(const google::protobuf::RepeatedPtrField<messages::ModelData> &models) {
    const Model &served = Model::openconfig();
    for (const messages::ModelData &model : models) {
        if (model.name() != served.name || (!model.version().empty() && model.version() != served.revision)) {
            throw Refusal(grpc::StatusCode::INVALID_ARGUMENT, "the model " + model.name() + " " + model.version() +
                                                                  " is not served, only " + served.name + " " +
                                                                  served.revision);
        }
    }
}

std::size_t write_prefix(const messages::Path &asked, messages::Path &prefix) {
    prefix.set_origin(asked.origin());
    prefix.set_target(asked.target());
    const Steps steps = read_path(asked, {});
    if (!names_one_node(steps)) {
        return 0;
    }
    write_path(steps, 0, prefix);
    return steps.size();
}

messages::CapabilityResponse answer_capabilities() {
    const Model &served = Model::openconfig();
    messages::CapabilityResponse response;
    messages::ModelData &model = *response.add_supported_models();
    model.set_name(served.name);
    model.set_organization(served.organization);
    model.set_version(served.revision);
    for (const messages::Encoding encoding : served_encodings) {
        response.add_supported_encodings(encoding);
    }
    response.set_gnmi_version(protocol_version);
    return response;
}

messages::GetResponse answer_get(const Service &service, const messages::GetRequest &request) {
    require_served(request.encoding());
    require_models(request.use_models());
    const std::vector<Steps> paths = paths_of(request);
    const Kind kind = request.type() == messages::GetRequest::CONFIG ? Kind::get_config : Kind::get;
    const auto snapshot = read(service, selection_of(paths), kind, nullptr);
    messages::GetResponse response;
    for (const Steps &path : paths) {
        const std::vector<NamedNode> nodes = nodes_of(*snapshot, path, request.type());
        if (nodes.empty() && !path.empty() && names_one_node(path)) {
            throw Refusal(grpc::StatusCode::NOT_FOUND, "there is nothing of what is asked for", path_text(path));
        }
        messages::Notification &notification = *response.add_notification();
        notification.set_timestamp(snapshot->time);
        messages::Path prefix;
        const std::size_t taken_off = write_prefix(request.prefix(), prefix);
        if (request.has_prefix()) {
            *notification.mutable_prefix() = prefix;
        }
        for (const NamedNode &node : nodes) {
            add_updates(node, request, taken_off, notification);
        }
    }
    return response;
}

} // namespace ocpsm::gnmi

#include "servers/gnmi/leaf.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace ocpsm::gnmi {
namespace {

constexpr std::array<std::string_view, 4> number_types{"decimal64", "int32", "uint32", "uint64"};

// The leaf that a leaf of a container `state` repeats has its name in the container `config` beside that.
bool repeats_configuration(const ModelNode &leaf) {
    constexpr std::string_view state = "/state";
    const std::string around = leaf.path.substr(0, leaf.path.rfind('/'));
    if (!around.ends_with(state)) {
        return false;
    }
    const Steps path = steps_of(around.substr(0, around.size() - state.size()) + "/config/" + leaf.name);
    return node_of(path) != nullptr;
}

bool same_places(const Places &places, const std::vector<Leaf> &leaves) {
    return std::equal(places.leaves.begin(), places.leaves.end(), leaves.begin(), leaves.end(),
                      [](const LeafPlace &place, const Leaf &leaf) { return place.path == leaf.path; });
}

std::shared_ptr<const Places> places_of(const std::vector<Leaf> &leaves) {
    const auto places = std::make_shared<Places>();
    for (const Leaf &leaf : leaves) {
        Steps steps = steps_of(leaf.path);
        const ModelNode *node = node_of(steps);
        if (node == nullptr) {
            throw std::logic_error("an answer has a node that the model does not have");
        }
        places->by_path.emplace(leaf.path, places->leaves.size());
        places->leaves.push_back({leaf.path, std::move(steps), node, use_of(*node)});
    }
    return places;
}

} // namespace

LeafUse use_of(const ModelNode &leaf) {
    if (leaf.config) {
        return LeafUse::configuration;
    }
    if (repeats_configuration(leaf)) {
        return LeafUse::applied;
    }
    const bool number = std::find(number_types.begin(), number_types.end(), leaf.type) != number_types.end();
    return number ? LeafUse::measurement : LeafUse::event;
}

std::shared_ptr<const Snapshot> snapshot_of(std::vector<Leaf> leaves, std::int64_t time,
                                            const std::shared_ptr<const Snapshot> &earlier) {
    const auto snapshot = std::make_shared<Snapshot>();
    snapshot->time = time;
    snapshot->places = earlier && same_places(*earlier->places, leaves) ? earlier->places : places_of(leaves);
    for (Leaf &leaf : leaves) {
        snapshot->values.push_back(std::move(leaf.value));
    }
    return snapshot;
}

} // namespace ocpsm::gnmi

// A leaf of an answer as this door needs it.
#ifndef OCPSM_SERVERS_GNMI_LEAF_HPP
#define OCPSM_SERVERS_GNMI_LEAF_HPP

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "framework/service.hpp"
#include "servers/gnmi/path.hpp"

namespace ocpsm::gnmi {

enum class LeafUse {
    configuration,
    applied,     // state that repeats configuration
    event,       // state that something makes another
    measurement, // state that is read off an instrument
};

// What there is to know of a leaf of the model.
LeafUse use_of(const ModelNode &leaf);

struct LeafPlace {
    std::string path; // as the service writes it
    Steps steps;
    const ModelNode *node = nullptr; // never null
    LeafUse use = LeafUse::configuration;
};

// Which leaves there are, in document order.
struct Places {
    std::vector<LeafPlace> leaves;
    std::unordered_map<std::string, std::size_t> by_path; // their numbers
};

// What all leaves were at one moment. It is never changed.
struct Snapshot {
    std::shared_ptr<const Places> places;
    std::vector<std::string> values; // by the number of the place
    std::int64_t time = 0;           // of day, nanoseconds since 1970
};

// Takes the places over from an earlier one where they are the same.
std::shared_ptr<const Snapshot> snapshot_of(std::vector<Leaf> leaves, std::int64_t time,
                                            const std::shared_ptr<const Snapshot> &earlier = nullptr);

} // namespace ocpsm::gnmi

#endif

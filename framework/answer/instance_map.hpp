// Which native list entries belong to which OpenConfig list instance.
#ifndef OCPSM_FRAMEWORK_ANSWER_INSTANCE_MAP_HPP
#define OCPSM_FRAMEWORK_ANSWER_INSTANCE_MAP_HPP

#include <cstddef>
#include <deque>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

#include "framework/native/net_request.hpp"
#include "yfw_map.h"

namespace ocpsm::framework {

/*
 * A native node belongs to an instance when a read of that instance, and of nothing else, would be answered with it.
 * The map says where to write, never that there is such an instance.
 */
class InstanceMap {
    // One instance by its number, none, or several.
    using Owner = std::size_t;
    struct Selection;

public:
    // A native node, as the reads see it; belongs to its map, which must not get another instance meanwhile.
    class Place {
        friend class InstanceMap;
        std::vector<const Selection *> selections_; // that this very node is selected by
        Owner around_ = nobody;                     // whose reads select all that is below a node above
    };

    // `read` is what a read of the whole instance comes to.
    void add(std::string instance, const native::NetRequest &read);

    // The place above all native answers.
    Place top() const;

    // A node right below a place. Its keys are compared, and looked up once.
    Place below(const Place &above, const kidl_yfw_datatree &node) const;

    // The one instance that a node belongs to; null when it belongs to no instance or to several.
    const std::string *instance_of(const Place &place) const;

private:
    static constexpr Owner nobody = std::numeric_limits<Owner>::max();
    static constexpr Owner several = nobody - 1;

    // Selections of one schema node that name the same keys, found by their values.
    struct Family {
        const lysc_node *schema;
        std::vector<const lysc_node *> keys;
        std::unordered_map<std::string, Selection *> by_values;
    };
    // The same selection in the reads of all instances.
    struct Selection {
        Owner owner = nobody; // whose reads hold it
        Owner whole = nobody; // in whose reads there is nothing below it: all is selected
        std::vector<Family> below;
    };

    static Owner both(Owner one, Owner other);
    void add_below(Selection &above, std::span<const native::NativeNode> nodes, Owner owner);
    Selection &find_or_add(Selection &above, const native::NativeNode &node);

    std::vector<std::string> instances_;
    std::deque<Selection> selections_{Selection{}}; // the first is above all
};

} // namespace ocpsm::framework

#endif

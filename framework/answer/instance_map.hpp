// Which native list entries belong to which OpenConfig list instance.
#ifndef OCPSM_FRAMEWORK_ANSWER_INSTANCE_MAP_HPP
#define OCPSM_FRAMEWORK_ANSWER_INSTANCE_MAP_HPP

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "framework/native/net_request.hpp"
#include "yfw_map.h"

namespace ocpsm::framework {

/*
 * A native node belongs to an instance when a read of that instance, and of nothing else, would be answered with it.
 * The map says where to write, never that there is such an instance.
 */
class InstanceMap {
public:
    // `read` is what a read of the whole instance comes to.
    void add(std::string instance, native::NetRequest read);

    // The one instance that the innermost of these nodes belongs to; none when it belongs to no instance or to several.
    // `chain` begins with a top node of a native answer, each node is below the one before it.
    std::optional<std::string> instance_of(std::span<const kidl_yfw_datatree *const> chain) const;

private:
    struct Row {
        std::string instance;
        native::NetRequest read;
    };
    std::vector<Row> rows_;
};

} // namespace ocpsm::framework

#endif

#include "framework/request/passed_over.hpp"

#include "framework/host/data_tree.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

void look(const kidl_yfw_datatree &node, const std::string &schema_path, const std::string &path,
          Selections &selections) {
    const models::Schema &schema = models::Schema::openconfig();
    const std::string here = schema_path + "/" + (node.tag == nullptr ? "" : node.tag);
    const std::string instance = path + instance_step(schema, here, node);
    const auto children = children_of(node);
    if (children.empty()) {
        // Every walker says of its node what kind of node it is; without a walker nobody does.
        if ((node.second_flags & YFW_NODE2_KIND_SET) != 0) {
            ++selections.walked;
        } else {
            selections.passed_over.push_back(instance);
        }
        return;
    }
    bool only_keys = true;
    for (const kidl_yfw_datatree &child : children) {
        if ((child.flags & YFW_NODE_KEY_CONSUMED) == 0) {
            only_keys = false;
            look(child, here, instance, selections);
        }
    }
    if (only_keys) {
        ++selections.walked;
    }
}

} // namespace

Selections selections_of(const kidl_yfw_datatree &walked) {
    Selections selections;
    look(walked, "", "", selections);
    return selections;
}

} // namespace ocpsm::framework

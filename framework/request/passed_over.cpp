#include "framework/request/passed_over.hpp"

#include <libyang/libyang.h>

#include "framework/host/data_tree.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

// A node on the way down; its path is made only where it is shown.
struct PassedOver::Level {
    const Level *above;
    const kidl_yfw_datatree &node;

    std::string schema_path() const {
        return (above == nullptr ? "" : above->schema_path()) + "/" + (node.tag == nullptr ? "" : node.tag);
    }
    std::string instance_path() const {
        return (above == nullptr ? "" : above->instance_path()) +
               instance_step(models::Schema::openconfig(), schema_path(), node);
    }
};

void PassedOver::pass_over(const Level &level) {
    const lysc_node *schema = models::Schema::openconfig().find(level.schema_path());
    const bool state = kind_ == Kind::get_config && schema != nullptr && (schema->flags & LYS_CONFIG_R) != 0;
    (state ? state_ : unsupported_).add([&level] { return level.instance_path(); });
}

std::size_t PassedOver::look(const kidl_yfw_datatree &node, const Level *above) {
    const Level level{above, node};
    const auto children = children_of(node);
    if (children.empty()) {
        // Every walker says of its node what kind of node it is; without a walker nobody does.
        const bool walked = (node.second_flags & YFW_NODE2_KIND_SET) != 0;
        if (!walked) {
            pass_over(level);
        }
        return walked ? 1 : 0;
    }
    std::size_t walked = 0;
    bool only_keys = true;
    for (const kidl_yfw_datatree &child : children) {
        if ((child.flags & YFW_NODE_KEY_CONSUMED) == 0) {
            only_keys = false;
            walked += look(child, &level);
        }
    }
    return only_keys ? 1 : walked;
}

std::size_t PassedOver::add(const kidl_yfw_datatree &walked) {
    const std::size_t count = look(walked, nullptr);
    any_walked_ = any_walked_ || count != 0;
    return count;
}

std::vector<std::string> PassedOver::warnings() const {
    std::vector<std::string> texts;
    if (state_.count() != 0) {
        texts.push_back("operational state is no part of a read of configuration and left out: " + state_.in_a_row());
    }
    if (unsupported_.count() != 0) {
        texts.push_back((any_walked_ || state_.count() != 0
                             ? "not supported and left out: "
                             : "nothing that was selected is supported, the answer is empty: ") +
                        unsupported_.in_a_row());
    }
    return texts;
}

} // namespace ocpsm::framework

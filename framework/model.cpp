#include "framework/model.hpp"

#include <libyang/libyang.h>

#include <algorithm>

#include "framework/models/models.hpp"

namespace ocpsm {
namespace {

ModelNode::Kind kind_of(models::NodeKind kind) {
    switch (kind) {
    case models::NodeKind::list:
        return ModelNode::Kind::list;
    case models::NodeKind::leaf:
        return ModelNode::Kind::leaf;
    default:
        return ModelNode::Kind::container;
    }
}

std::vector<ModelNode> children_of(const models::Schema &schema, const lysc_node *parent) {
    std::vector<ModelNode> children;
    for (const lysc_node *node : schema.children(parent)) {
        const models::NodeInfo info = models::describe(*node);
        ModelNode &child = children.emplace_back();
        child.name = info.name;
        child.path = models::schema_path(*node);
        child.kind = kind_of(info.kind);
        child.config = info.config;
        child.type = info.type;
        child.keys.assign(info.keys.begin(), info.keys.end());
        child.children = children_of(schema, node);
    }
    return children;
}

std::string text_of(const char *text) {
    return text == nullptr ? std::string() : std::string(text);
}

Model read_model(const models::Schema &schema) {
    const lys_module &module = *schema.top_nodes().front()->module;
    Model model;
    model.name = module.name;
    model.revision = text_of(module.revision);
    model.prefix = module.prefix;
    model.namespace_uri = module.ns;
    model.text = models::embedded_modules().front().text;
    model.organization = text_of(module.org);
    model.root.path = "/";
    model.root.config = true;
    model.root.children = children_of(schema, nullptr);
    return model;
}

} // namespace

const ModelNode *ModelNode::child(std::string_view child_name) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [child_name](const ModelNode &node) { return node.name == child_name; });
    return found == children.end() ? nullptr : &*found;
}

const Model &Model::openconfig() {
    static const Model model = read_model(models::Schema::openconfig());
    return model;
}

} // namespace ocpsm

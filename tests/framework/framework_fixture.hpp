// A context with a tree of two modules, as an edit or a read of it would be handed over.
#ifndef TESTS_FRAMEWORK_FRAMEWORK_FIXTURE_HPP
#define TESTS_FRAMEWORK_FRAMEWORK_FIXTURE_HPP

#include <gmock/gmock.h>

#include "framework/host/mapping_context.hpp"

inline const std::string openconfig = "http://openconfig.net/yang/optical-transport-line-protection";

class FrameworkFixture : public testing::Test {
protected:
    using RequestNode = ocpsm::RequestNode;

    static RequestNode container(std::string tag, std::vector<RequestNode> children) {
        return {std::move(tag), openconfig, std::nullopt, ocpsm::Operation::merge, std::move(children)};
    }
    static RequestNode leaf(std::string tag, std::string value) {
        return {std::move(tag), openconfig, std::move(value)};
    }
    static RequestNode module(const std::string &name) {
        return container("aps-module", {leaf("name", name), container("config", {leaf("name", name)})});
    }

    kidl_yfw_datatree &aps() { return context.request_tree(); }
    kidl_yfw_datatree &modules() { return aps().children[0]; }
    kidl_yfw_datatree &entry(int index) { return modules().children[index]; }

    // Goes down to an entry as a walk does.
    void enter(int index) {
        yfw_map_add_to_node_hierarchy(&context, &aps(), 1);
        yfw_map_add_to_node_hierarchy(&context, &modules(), 1);
        yfw_map_add_to_node_hierarchy(&context, &entry(index), 2);
    }

    ocpsm::framework::Channels channels;
    ocpsm::native::NativeRequest native{ocpsm::native::RequestKind::edit};
    ocpsm::framework::MappingContext context{
        YFW_KIND_EDIT_CONFIG, container("aps", {container("aps-modules", {module("one"), module("it's")})}), channels,
        native};
};

#endif

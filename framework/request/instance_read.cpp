#include "framework/request/instance_read.hpp"

#include <string_view>
#include <utility>

#include "framework/models/models.hpp"
#include "framework/openconfig.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

RequestNode read_of_instance(const std::string &name) {
    const NamespaceName space = models::Schema::openconfig().describe(openconfig::top_path)->namespace_uri;
    RequestNode node{std::string(openconfig::key_name), space, name};
    for (const std::string_view tag : {openconfig::list_name, openconfig::container_name, openconfig::top_name}) {
        RequestNode around{std::string(tag), space};
        around.children.push_back(std::move(node));
        node = std::move(around);
    }
    return node;
}

std::optional<std::string> instance_of_read(const RequestNode &request) {
    const RequestNode *node = &request;
    for (const std::string_view tag : {openconfig::container_name, openconfig::list_name, openconfig::key_name}) {
        const RequestNode *found = nullptr;
        for (const RequestNode &child : node->children) {
            if (found == nullptr && child.tag == tag && child.namespace_uri == node->namespace_uri) {
                found = &child;
            }
        }
        if (found == nullptr) {
            return std::nullopt;
        }
        node = found;
    }
    return node->value;
}

std::string instance_path(const std::string &name) {
    return std::string(openconfig::list_path) + key_predicate(openconfig::key_name, name);
}

} // namespace ocpsm::framework

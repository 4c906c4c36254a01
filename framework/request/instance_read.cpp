#include "framework/request/instance_read.hpp"

#include <string_view>
#include <utility>

#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

constexpr std::string_view top = "aps";
constexpr std::string_view container = "aps-modules";
constexpr std::string_view list = "aps-module";
constexpr std::string_view key = "name";

} // namespace

RequestNode read_of_instance(const std::string &name) {
    const std::string space(models::Schema::openconfig().describe("/aps")->namespace_uri);
    RequestNode node{std::string(key), space, name};
    for (const std::string_view tag : {list, container, top}) {
        RequestNode around{std::string(tag), space};
        around.children.push_back(std::move(node));
        node = std::move(around);
    }
    return node;
}

std::optional<std::string> instance_of_read(const RequestNode &request) {
    const RequestNode *node = &request;
    for (const std::string_view tag : {container, list, key}) {
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
    return "/aps/aps-modules/aps-module" + key_predicate(key, name);
}

} // namespace ocpsm::framework

#include "framework/request/instance_path.hpp"

#include "framework/host/data_tree.hpp"

namespace ocpsm::framework {

std::string key_predicate(std::string_view key, std::string_view value) {
    const char quote = value.find('\'') == std::string_view::npos ? '\'' : '"';
    std::string predicate = "[";
    predicate.append(key).append("=").append(1, quote).append(value).append(1, quote).append("]");
    return predicate;
}

std::string instance_step(const models::Schema &schema, const std::string &schema_path, const kidl_yfw_datatree &node) {
    std::string step = "/";
    step += node.tag == nullptr ? "" : node.tag;
    const lysc_node *list = schema.find(schema_path);
    if (list == nullptr) {
        return step;
    }
    for (const std::string_view key : models::key_names(*list)) {
        const kidl_yfw_datatree *leaf = find_child(node, key);
        if (leaf == nullptr) {
            continue;
        }
        if (const auto value = value_of(*leaf)) {
            step += key_predicate(key, *value);
        }
    }
    return step;
}

std::string without_prefixes(std::string_view path) {
    std::string plain;
    std::size_t from = 0;
    while (from < path.size()) {
        const std::size_t slash = path.find('/', from);
        const std::size_t end = slash == std::string_view::npos ? path.size() : slash;
        const std::string_view step = path.substr(from, end - from);
        const std::size_t colon = step.find(':');
        plain.append(colon == std::string_view::npos ? step : step.substr(colon + 1));
        if (slash == std::string_view::npos) {
            break;
        }
        plain.append("/");
        from = slash + 1;
    }
    return plain;
}

} // namespace ocpsm::framework

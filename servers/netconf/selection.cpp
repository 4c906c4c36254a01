#include "servers/netconf/selection.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "servers/netconf/filter.hpp"
#include "servers/netconf/modules.hpp"
#include "servers/netconf/rpc_error.hpp"

namespace ocpsm::netconf {

namespace {

// The top nodes of the server's own data.
constexpr std::array<std::string_view, 3> own_tops{"yang-library", "netconf-state", "netconf"};

bool is_own(const RequestNode &filter) {
    return std::find(own_tops.begin(), own_tops.end(), filter.tag) != own_tops.end();
}

const RequestAttribute *attribute_of(const RequestNode &filter, std::string_view name) {
    const auto found =
        std::find_if(filter.attributes.begin(), filter.attributes.end(), [name](const RequestAttribute &attribute) {
            return attribute.name == name &&
                   (attribute.namespace_uri.empty() || attribute.namespace_uri == netconf_namespace);
        });
    return found == filter.attributes.end() ? nullptr : &*found;
}

[[noreturn]] void refuse_attribute(const std::string &tag, const std::string &name, const std::string &message) {
    throw LayerError(ErrorType::protocol,
                     Error(Error::Source::input, tag, "", message).of_node("filter").of_attribute(name));
}

// Null: the filter is one of subtrees.
const RequestAttribute *xpath_of(const RequestNode &filter) {
    const RequestAttribute *type = attribute_of(filter, "type");
    for (const RequestAttribute &attribute : filter.attributes) {
        if (attribute.name != "type" && attribute.name != "select") {
            refuse_attribute("unknown-attribute", attribute.name, "a filter has no attribute " + attribute.name);
        }
    }
    if (type == nullptr || type->value == "subtree") {
        return nullptr;
    }
    if (type->value != "xpath") {
        refuse_attribute("bad-attribute", "type", "a filter is of type subtree or xpath");
    }
    const RequestAttribute *select = attribute_of(filter, "select");
    if (select == nullptr) {
        refuse_attribute("missing-attribute", "select", "a filter of type xpath has its expression in select");
    }
    return select;
}

std::vector<std::string> expressions_of(const RequestAttribute &select) {
    std::vector<std::string_view> served;
    for (const YangModule &model : modules()) {
        served.push_back(model.namespace_uri);
    }
    return expressions(select, served);
}

Selected by_xpath(const RequestAttribute &select) {
    Selected selected{std::nullopt, Tree()};
    Paths paths;
    for (std::string &expression : expressions_of(select)) {
        auto filter = filter_of(expression);
        if (expression == "/" || expression == "/*") {
            return {Paths{}, std::nullopt};
        }
        if (filter && is_own(*filter)) {
            selected.own->push_back(std::move(*filter));
        } else {
            paths.paths.push_back(std::move(expression));
        }
    }
    if (!paths.paths.empty()) {
        selected.device = std::move(paths);
    }
    return selected;
}

Selected by_subtrees(Tree filters) {
    Selected selected{std::nullopt, Tree()};
    const Model &model = Model::openconfig();
    Tree device;
    leave_out_attributes(filters);
    for (RequestNode &filter : filters) {
        const bool any_space = filter.namespace_uri.empty();
        if (filter.namespace_uri == model.namespace_uri || (any_space && !is_own(filter))) {
            device.push_back(std::move(filter));
        } else {
            selected.own->push_back(std::move(filter));
        }
    }
    if (!device.empty()) {
        selected.device = std::move(device);
    }
    return selected;
}

} // namespace

Selected selection_of(const RequestNode *filter) {
    if (filter == nullptr) {
        return {Paths{}, std::nullopt};
    }
    const RequestAttribute *select = xpath_of(*filter);
    return select == nullptr ? by_subtrees(filter->children) : by_xpath(*select);
}

Tree event_filter_of(const RequestNode &filter) {
    const RequestAttribute *select = xpath_of(filter);
    Tree filters;
    if (select == nullptr) {
        filters = filter.children;
        leave_out_attributes(filters);
        return filters;
    }
    for (const std::string &expression : expressions_of(*select)) {
        auto path = filter_of(expression);
        if (!path) {
            throw protocol_refusal("invalid-value", "filter",
                                   "events are selected by paths, not by \"" + expression + "\"",
                                   "write /configured or /switched[module='0/1-PSM-OM']");
        }
        filters.push_back(std::move(*path));
    }
    return filters;
}

} // namespace ocpsm::netconf

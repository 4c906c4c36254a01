// What of a session's own data a filter selects (RFC 6241, 6).
#ifndef OCPSM_SERVERS_NETCONF_FILTER_HPP
#define OCPSM_SERVERS_NETCONF_FILTER_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/service.hpp"

namespace ocpsm::netconf {

// What these filters select together, in the order of the data.
Tree selected(const Tree &data, const Tree &filters);

// Takes out what selects nothing because it asks for an attribute, of which no data has any.
void leave_out_attributes(Tree &filters);

// The expressions of an XPath that are joined by |, each absolute, without the declared prefixes. Throws Error (input,
// invalid-value) for a prefix of a namespace that is not served.
std::vector<std::string> expressions(const RequestAttribute &select, const std::vector<std::string_view> &served);

// The filter that an instance path is (/netconf-state/schemas/schema[identifier='x']/version); nothing for any other
// expression. Its nodes are in no namespace.
std::optional<RequestNode> filter_of(std::string_view path);

} // namespace ocpsm::netconf

#endif

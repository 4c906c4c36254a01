// XML as a session sends it.
#ifndef OCPSM_SERVERS_NETCONF_XML_HPP
#define OCPSM_SERVERS_NETCONF_XML_HPP

#include <string>
#include <string_view>

#include "framework/service.hpp"

namespace ocpsm::netconf {

// A text as it stands between tags and in double quotes; what XML cannot carry is U+FFFD.
std::string escaped(std::string_view text);

inline constexpr std::string_view blanks = " \t\r\n";

// A text without the blanks around it.
std::string_view trimmed(std::string_view text);

// Nodes in lines of their own, indented by so many levels. A namespace is declared where it changes, beginning with
// `around`, the one that holds around them.
std::string print(const Tree &nodes, std::string_view around, std::size_t level = 0);

// The attributes of an element, each behind a blank; those of a namespace with prefixes of our own.
std::string print(const std::vector<RequestAttribute> &attributes);

// ---- nodes of one's own ----

RequestNode leaf(const NamespaceName &space, const std::string &tag, const std::string &value);
RequestNode inner(const NamespaceName &space, const std::string &tag, Tree children);

} // namespace ocpsm::netconf

#endif

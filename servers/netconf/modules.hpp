// The modules that a session serves.
#ifndef OCPSM_SERVERS_NETCONF_MODULES_HPP
#define OCPSM_SERVERS_NETCONF_MODULES_HPP

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "framework/model.hpp"
#include "framework/service.hpp"

namespace ocpsm::netconf {

// The text of one of our own, as it is embedded.
struct ModuleText {
    std::string_view name;
    std::string_view text;
};
std::span<const ModuleText> embedded_modules();

// Those of the service, then our own.
const std::vector<YangModule> &modules();

// What is said of what a session can do: the protocol's capabilities, then a URI per module.
std::vector<std::string> capabilities();

// Names what is in the library of modules; another one stands for other modules (RFC 8525).
std::string content_id();

namespace space {

inline const NamespaceName netconf{netconf_namespace};
inline const NamespaceName monitoring{"urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"};
inline const NamespaceName library{"urn:ietf:params:xml:ns:yang:ietf-yang-library"};
inline const NamespaceName datastores{"urn:ietf:params:xml:ns:yang:ietf-datastores"};
inline const NamespaceName defaults{"urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults"};
inline const NamespaceName notification{"urn:ietf:params:xml:ns:netconf:notification:1.0"};
inline const NamespaceName streams{"urn:ietf:params:xml:ns:netmod:notification"};
inline const NamespaceName journal{"urn:oc-psm:line-system-journal"};

} // namespace space

} // namespace ocpsm::netconf

#endif

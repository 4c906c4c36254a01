// What a session tells of the server itself.
#ifndef OCPSM_SERVERS_NETCONF_STATE_HPP
#define OCPSM_SERVERS_NETCONF_STATE_HPP

#include "framework/service.hpp"
#include "servers/netconf/sessions.hpp"

namespace ocpsm::netconf {

// The library of modules (RFC 8525), the state of the server (RFC 6022) and the streams of events (RFC 5277): state.
Tree server_state(const Service &service, const Sessions &sessions);

} // namespace ocpsm::netconf

#endif

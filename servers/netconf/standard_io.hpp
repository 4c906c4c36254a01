// A session on two open files.
#ifndef OCPSM_SERVERS_NETCONF_STANDARD_IO_HPP
#define OCPSM_SERVERS_NETCONF_STANDARD_IO_HPP

#include "servers/netconf/session.hpp"

namespace ocpsm::netconf {

// Until the session ends, or its client has gone. Nothing more is read while something is to be written; the signal
// SIGPIPE is ignored from then on.
void carry(Session &session, int input, int output);

} // namespace ocpsm::netconf

#endif

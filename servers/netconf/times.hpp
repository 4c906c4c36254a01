// Times of day as the protocol writes them (RFC 3339).
#ifndef OCPSM_SERVERS_NETCONF_TIMES_HPP
#define OCPSM_SERVERS_NETCONF_TIMES_HPP

#include <cstdint>
#include <optional>
#include <string>

namespace ocpsm::netconf {

// 2026-11-21T20:15:00.250Z as milliseconds since 1970 (UTC), the other way of ocpsm::date_and_time; nothing for a text
// that is no such time. Digits behind the milliseconds do not count.
std::optional<std::int64_t> milliseconds_of(const std::string &date_and_time);

} // namespace ocpsm::netconf

#endif

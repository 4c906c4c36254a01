// Get and Capabilities.
#ifndef OCPSM_SERVERS_GNMI_GET_HPP
#define OCPSM_SERVERS_GNMI_GET_HPP

#include <cstdint>
#include <memory>

#include "framework/service.hpp"
#include "gnmi.pb.h"
#include "servers/gnmi/leaf.hpp"

namespace ocpsm::gnmi {

inline constexpr char protocol_version[] = "0.10.0";
inline constexpr std::size_t max_paths = 1'024; // of one Get, and subscriptions of one Subscribe

// Nanoseconds since 1970.
std::int64_t time_of_day();

// Whatever the device answers to a read without a path. Throws Error.
std::shared_ptr<const Snapshot> read_everything(const Service &service, Kind kind,
                                                const std::shared_ptr<const Snapshot> &earlier = nullptr);

// Throws Refusal for models that are not served.
void require_models(const google::protobuf::RepeatedPtrField<messages::ModelData> &models);

/*
 * The prefix of an answer, and how many steps of a path it takes off: that of the request where it is without
 * wildcards, else its origin and target only.
 */
std::size_t write_prefix(const messages::Path &asked, messages::Path &prefix);

messages::CapabilityResponse answer_capabilities();

// All paths are answered from one state, a notification for each: in JSON an update for each node that is named, in
// PROTO one for each leaf. Throws Refusal, and Error of the service.
messages::GetResponse answer_get(const Service &service, const messages::GetRequest &request);

} // namespace ocpsm::gnmi

#endif

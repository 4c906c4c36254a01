// Set: its operations as one edit of the service.
#ifndef OCPSM_SERVERS_GNMI_SET_HPP
#define OCPSM_SERVERS_GNMI_SET_HPP

#include <cstddef>
#include <functional>
#include <vector>

#include "framework/service.hpp"
#include "gnmi.pb.h"
#include "servers/gnmi/leaf.hpp"

namespace ocpsm::gnmi {

inline constexpr std::size_t max_operations = 4'096; // of one Set

// The configuration as it stands, for deletes: their wildcards, and what is not there.
using ReadConfiguration = std::function<std::shared_ptr<const Snapshot>()>;

/*
 * What the deletes, then the replaces, then the updates come to, each kind in its order: a tree in which every node is
 * said once, its operation merge, replace or remove. `read` is called once at most. Throws Refusal for what is no path,
 * no value or not served.
 */
Tree edit_tree(const messages::SetRequest &request, const ReadConfiguration &read);

// Carries it out; `peer` is who asks. Throws Refusal, and Error of the service.
messages::SetResponse answer_set(const Service &service, const messages::SetRequest &request, const std::string &peer);

} // namespace ocpsm::gnmi

#endif

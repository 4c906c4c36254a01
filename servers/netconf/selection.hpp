// What a read selects: of the device, and of the server's own data.
#ifndef OCPSM_SERVERS_NETCONF_SELECTION_HPP
#define OCPSM_SERVERS_NETCONF_SELECTION_HPP

#include <optional>

#include "framework/service.hpp"

namespace ocpsm::netconf {

struct Selected {
    std::optional<Selection> device; // none: nothing
    std::optional<Tree> own;         // filters; none: everything
};

// What a <filter> says (RFC 6241, 6 and 8.9), by subtrees or an XPath; null: everything. Throws Error. An XPath that
// is no instance path is one of the device's data.
Selected selection_of(const RequestNode *filter);

// The filters of events: no XPath but instance paths.
Tree event_filter_of(const RequestNode &filter);

} // namespace ocpsm::netconf

#endif

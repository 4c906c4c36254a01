// The parameters of an operation.
#ifndef OCPSM_SERVERS_NETCONF_PARAMETERS_HPP
#define OCPSM_SERVERS_NETCONF_PARAMETERS_HPP

#include <initializer_list>
#include <string>
#include <string_view>

#include "framework/service.hpp"

namespace ocpsm::netconf {

// Of one operation; it must not outlive that. What is wrong throws LayerError (protocol).
class Parameters {
public:
    struct Known {
        std::string_view tag;
        std::string_view namespace_uri = {}; // none: that of the operation
    };

    // Refuses others than these, and what stands twice.
    Parameters(RequestNode &operation, std::initializer_list<Known> known);

    // Null where it does not stand there.
    RequestNode *find(std::string_view tag) const;
    RequestNode &required(std::string_view tag) const;

    // What stands in a leaf, without blanks around it; nothing where it does not stand there.
    std::string value(std::string_view tag) const;

    // The value, which is one of these; the first where it does not stand there.
    std::string choice(std::string_view tag, std::initializer_list<std::string_view> values) const;

    // Refuses any datastore but the running one.
    void require_running(std::string_view tag) const;

private:
    RequestNode &operation_;
};

std::string text_of(const RequestNode &leaf);

} // namespace ocpsm::netconf

#endif

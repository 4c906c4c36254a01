// What a client is told about a request that was refused while it was translated.
#ifndef OCPSM_FRAMEWORK_REFUSAL_HPP
#define OCPSM_FRAMEWORK_REFUSAL_HPP

#include <span>
#include <string>

#include "framework/host/add_record.hpp"
#include "framework/host/mapping_context.hpp"
#include "kerr.h"

namespace ocpsm::framework {

// Why a request was refused; all texts without line ends.
struct Refusal {
    std::string tag;            // NETCONF error-tag (RFC 6241, appendix A)
    std::string message;        // what was refused and why
    std::string location;       // OpenConfig instance path, empty when there is none
    std::string offending_node; // tag of the refused node as the plug-in recorded it, empty when it recorded none
    std::string advice;         // what to do, may be empty
};

// Makes the refusal of a request that has ended with `code`, from what the context and the adds tell.
Refusal refusal_of(kerrno code, const MappingContext &context, std::span<const AddRecord> adds);

} // namespace ocpsm::framework

#endif

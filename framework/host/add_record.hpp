// What the plug-in adds, call by call.
#ifndef OCPSM_FRAMEWORK_HOST_ADD_RECORD_HPP
#define OCPSM_FRAMEWORK_HOST_ADD_RECORD_HPP

#include <cstdint>
#include <optional>
#include <string>

#include "kerr.h"

namespace ocpsm::framework {

// One call of the platform's add operation, in the order of the calls.
struct AddRecord {
    std::string path; // as the plug-in gave it
    std::string namespace_uri;
    std::optional<std::string> value;         // none differs from the empty text
    std::optional<uint32_t> source_operation; // the operation of the source node, none without a source
    uint32_t first_flag = 0;
    uint32_t second_flag = 0;
    bool relative = false;    // below a node of the request itself (a path without a leading slash)
    std::string walker;       // innermost walker at that moment; empty without trace
    std::string conversion;   // innermost conversion at that moment; empty without trace, or outside one
    std::uint32_t origin = 0; // of an add to a native request: the node that was being walked, see Origins
    kerrno result = KERR_SUCCESS;
};

} // namespace ocpsm::framework

#endif

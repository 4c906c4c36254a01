// The framework's own error codes, and the names of all codes that a translation may end with.
#ifndef OCPSM_FRAMEWORK_HOST_CODES_HPP
#define OCPSM_FRAMEWORK_HOST_CODES_HPP

#include <string>

#include "kerr.h"

namespace ocpsm::framework {

inline constexpr kerrno leafref_mismatch = 0xaaf30200;        // a list key differs from the leaf that it refers to
inline constexpr kerrno invalid_arguments = 0xaaf30400;       // a null or malformed argument of a framework operation
inline constexpr kerrno not_served = 0xaaf30600;              // an operation that this framework cannot serve here
inline constexpr kerrno unknown_answer_node = 0xaaf30800;     // an answer names a node that its model does not have
inline constexpr kerrno unexpected_answer_value = 0xaaf30a00; // an answer has a value for a container or a list

inline constexpr kerrno out_of_memory = 0xaaf30c00; // an operation of the framework could not allocate

// The symbolic name of a code, e.g. "YMAP_ERR_UNSUPPORTED"; for one without a name its number, "0x12345678".
std::string name_of(kerrno code);

// The text of a code, of this and of the other services; never null.
const char *text_of(kerrno code);

} // namespace ocpsm::framework

#endif

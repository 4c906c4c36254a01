// What a client is told about a request that was refused while it was translated.
#ifndef OCPSM_FRAMEWORK_REFUSAL_HPP
#define OCPSM_FRAMEWORK_REFUSAL_HPP

#include <span>
#include <string>

#include "framework/error.hpp"
#include "framework/host/add_record.hpp"
#include "framework/host/mapping_context.hpp"
#include "kerr.h"

namespace ocpsm::framework {

// The error of a request that has ended with `code`, from what the context and the adds tell.
Error refusal_of(kerrno code, const MappingContext &context, std::span<const AddRecord> adds);

} // namespace ocpsm::framework

#endif

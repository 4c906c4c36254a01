// Data in the native models, as a device holds and answers it.
#ifndef OCPSM_FRAMEWORK_NATIVE_NATIVE_DATA_HPP
#define OCPSM_FRAMEWORK_NATIVE_NATIVE_DATA_HPP

#include <vector>

#include "framework/native/native_node.hpp"
#include "framework/native/net_request.hpp"

namespace ocpsm::native {

struct NativeData {
    std::vector<NativeNode> roots;
};

// What a device that holds `held` answers to a read, list by list: every entry whose keys are named (all, when none
// is), with the union of the leaves that are selected in that list; an entry without a selection whole; keys always.
// Values on selections do not filter.
NativeData answer(const NativeData &held, const NetRequest &read);

} // namespace ocpsm::native

#endif

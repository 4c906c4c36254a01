// The numbers of an edit that a device keeps in coarser steps than the OpenConfig model writes them.
#ifndef OCPSM_FRAMEWORK_KEPT_HPP
#define OCPSM_FRAMEWORK_KEPT_HPP

#include <string>
#include <vector>

#include "framework/native/net_request.hpp"
#include "framework/translation.hpp"

namespace ocpsm::framework {

// Says of each number of an edit that is cut on its way, 16 of them at most, what is kept of it. `net` is the native
// request of `handed`.
std::vector<std::string> cut_numbers(const HandedOver &handed, const native::NetRequest &net);

// Throws Error (invalid-value), with the native path, for the first number that was out of the range of its native leaf
// before it was cut.
void require_in_range(const HandedOver &handed, const native::NetRequest &net);

} // namespace ocpsm::framework

#endif

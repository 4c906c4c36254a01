// A value of the primary line controller that fills the leaf of all ports of its module: the native answer holds the
// primary port's, the system database the other ports'.
#ifndef OC_PSM_PORT_VALUES_HPP
#define OC_PSM_PORT_VALUES_HPP

#include "answer_rows.hpp"

namespace ymap {

// The steps of such a conversion.
kerrno port_values(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination);

} // namespace ymap

#endif

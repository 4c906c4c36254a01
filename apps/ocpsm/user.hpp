// Who uses the program.
#ifndef OCPSM_USER_HPP
#define OCPSM_USER_HPP

#include <string>

namespace ocpsm {

// The login name of the process's user, or the number of one that has none.
std::string user_name();

} // namespace ocpsm

#endif

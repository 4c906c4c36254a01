// The users of the system that this runs on, for the journal and whoever shows sessions.
#ifndef OCPSM_FRAMEWORK_USER_HPP
#define OCPSM_FRAMEWORK_USER_HPP

#include <cstdint>
#include <string>

namespace ocpsm {

// The login name of the user with this number, the number itself where there is none.
std::string user_name(std::uint32_t user);

// That of this process's user.
std::string user_name();

} // namespace ocpsm

#endif

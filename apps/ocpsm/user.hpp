// Who uses the program, for the journal.
#ifndef OCPSM_USER_HPP
#define OCPSM_USER_HPP

#include <string>

namespace ocpsm {

// "cli NAME", by the login name of the process's user, or the number of one that has none.
std::string cli_user();

} // namespace ocpsm

#endif

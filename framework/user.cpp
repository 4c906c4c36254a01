#include "framework/user.hpp"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace ocpsm {

std::string user_name(std::uint32_t user) {
    constexpr std::size_t longest = std::size_t{1} << 20; // of all that is known of a user, bytes
    std::vector<char> texts(1024);
    struct passwd entry {};
    struct passwd *found = nullptr;
    while (getpwuid_r(user, &entry, texts.data(), texts.size(), &found) == ERANGE && texts.size() < longest) {
        texts.resize(texts.size() * 2);
    }
    return found == nullptr ? std::to_string(user) : found->pw_name;
}

std::string user_name() {
    return user_name(getuid());
}

} // namespace ocpsm

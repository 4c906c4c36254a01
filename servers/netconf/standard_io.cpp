#include "servers/netconf/standard_io.hpp"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>

namespace ocpsm::netconf {

namespace {

constexpr int between_looks = 100; // at the journal, milliseconds

// False when nobody reads any more.
bool write_all(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

// Sends what there is to send; false when the client has gone.
bool send(Session &session, int output) {
    while (const auto text = session.next(time_of_day())) {
        if (!write_all(output, *text)) {
            return false;
        }
    }
    return true;
}

// Takes what has come within the time.
void receive(Session &session, int input) {
    struct pollfd ready {
        input, POLLIN, 0
    };
    if (poll(&ready, 1, session.subscribed() ? between_looks : -1) <= 0) {
        return;
    }
    std::array<char, 65536> bytes{};
    const ssize_t size = read(input, bytes.data(), bytes.size());
    if (size > 0) {
        session.feed({bytes.data(), static_cast<std::size_t>(size)});
    } else if (size == 0 || errno != EINTR) {
        session.end_input();
    }
}

} // namespace

void carry(Session &session, int input, int output) {
    std::signal(SIGPIPE, SIG_IGN); // NOLINT(cppcoreguidelines-pro-type-cstyle-cast)
    while (send(session, output) && !session.ended()) {
        receive(session, input);
    }
}

} // namespace ocpsm::netconf

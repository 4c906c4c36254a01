// An SSH server for sessions of NETCONF, until standard input ends.
//   ssh_server_program DIRECTORY PORT AUTHORIZED_KEYS SESSION...
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>

#include "servers/netconf/ssh_server.hpp"

int main(int count, char **words) {
    try {
        const ocpsm::netconf::SshServer server({words[1],
                                                "127.0.0.1",
                                                static_cast<std::uint16_t>(std::atoi(words[2])),
                                                words[3],
                                                {words + 4, words + count}});
        std::cout << "listening\n" << std::flush;
        char byte = 0;
        while (read(STDIN_FILENO, &byte, 1) > 0) {
        }
        return 0;
    } catch (const std::exception &error) {
        std::cout << error.what() << "\n";
        return 1;
    }
}

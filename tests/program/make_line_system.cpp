// Makes the directory of a line system for tests.
//   make_line_system DIRECTORY SLOT...
#include <cstdlib>
#include <iostream>

#include "framework/error.hpp"
#include "simulator/database/client_library.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"

int main(int argc, char **argv) {
    namespace line_system = ocpsm::line_system;
    if (argc < 2) {
        std::cerr << "make_line_system DIRECTORY SLOT...\n";
        return 2;
    }
    try {
        line_system::LineSystem system;
        for (int index = 2; index < argc; ++index) {
            system = line_system::fit(system, std::atoi(argv[index])); // NOLINT
        }
        const ocpsm::sysdb::Client client;
        line_system::create(client, argv[1], system);
    } catch (const std::exception &error) {
        std::cerr << "make_line_system: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

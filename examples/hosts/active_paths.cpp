// Tells which path carries the traffic of each protection module of a line system.
//   active_paths PLUG-IN DIRECTORY
#include <exception>
#include <iostream>

#include "framework/service.hpp"
#include "simulator/line_system.hpp"

int main(int argc, char **argv) {
    if (argc != 3) {
        std::cerr << "usage: active_paths PLUG-IN DIRECTORY\n";
        return 2;
    }
    try {
        const auto line_system = ocpsm::SimulatedLineSystem::open(argv[2]);
        const ocpsm::Service service(argv[1], line_system.device());

        const auto result =
            service.read(ocpsm::Paths{{"/aps/aps-modules/aps-module/state/active-path"}}, ocpsm::Kind::get);
        for (const std::string &warning : result.warnings) {
            std::cerr << "warning: " << warning << '\n';
        }
        if (result.error) {
            std::cerr << result.error->tag << ": " << result.error->message() << '\n';
            return 1;
        }
        for (const ocpsm::Leaf &leaf : result.answer.leaves()) {
            std::cout << leaf.path << " = " << leaf.value << '\n';
        }
        return 0;
    } catch (const std::exception &error) {
        std::cerr << error.what() << '\n';
        return 2;
    }
}

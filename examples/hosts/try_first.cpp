// Tries a change on a line system of its own before it is made on the one that counts: cuts the primary fibre there,
// lets a second pass, and makes the change only when the traffic has moved. Two line systems, each behind a service of
// its own.
//   try_first PLUG-IN DIRECTORY SLOT THRESHOLD
#include <exception>
#include <iostream>
#include <string>

#include "framework/service.hpp"
#include "simulator/line_system.hpp"

namespace {

std::string module_path(const std::string &slot) {
    return "/aps/aps-modules/aps-module[name=0/" + slot + "-PSM-OM]";
}

// True when the change was made; says why when it was not.
bool change(const ocpsm::Service &service, const std::string &slot, const std::string &threshold) {
    const std::string leaf = module_path(slot) + "/config/primary-switch-threshold";
    const auto result = service.edit(ocpsm::PathEdits{{leaf, ocpsm::Operation::merge, threshold}});
    if (result.error) {
        std::cerr << result.error->tag << ": " << result.error->message() << " at " << result.error->path << '\n';
    }
    for (const ocpsm::Change &changed : result.changes) {
        std::cout << changed.path << ": " << changed.before.value_or("not set") << " -> "
                  << changed.after.value_or("not set") << '\n';
    }
    return !result.error;
}

std::string active_path(const ocpsm::Service &service, const std::string &slot) {
    const auto result = service.read(ocpsm::Paths{{module_path(slot) + "/state/active-path"}}, ocpsm::Kind::get);
    for (const ocpsm::Leaf &leaf : result.answer.leaves()) {
        if (leaf.path.ends_with("/state/active-path")) {
            return leaf.value;
        }
    }
    return {};
}

bool works(const std::string &plugin, const std::string &slot, const std::string &threshold) {
    const auto line_system = ocpsm::SimulatedLineSystem::temporary();
    const ocpsm::Service service(plugin, line_system.device());
    if (!change(service, slot, threshold)) {
        return false;
    }
    line_system.cut(std::stoi(slot), ocpsm::Line::primary);
    line_system.tick(1000);
    return active_path(service, slot).ends_with("SECONDARY");
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 5) {
        std::cerr << "usage: try_first PLUG-IN DIRECTORY SLOT THRESHOLD\n";
        return 2;
    }
    try {
        if (!works(argv[1], argv[3], argv[4])) {
            std::cout << "left alone\n";
            return 1;
        }
        const auto line_system = ocpsm::SimulatedLineSystem::open(argv[2]);
        return change(ocpsm::Service(argv[1], line_system.device()), argv[3], argv[4]) ? 0 : 1;
    } catch (const std::exception &error) {
        std::cerr << error.what() << '\n';
        return 2;
    }
}

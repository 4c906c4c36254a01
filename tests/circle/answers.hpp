// Answers as lines of text.
#ifndef TESTS_CIRCLE_ANSWERS_HPP
#define TESTS_CIRCLE_ANSWERS_HPP

#include <string>
#include <vector>

#include "framework/service.hpp"

namespace circle {

using Lines = std::vector<std::string>;

// "/aps/aps-modules/aps-module[name='0/1-PSM-OM']" and what follows it.
inline std::string module_path(int slot, const std::string &below = {}) {
    return "/aps/aps-modules/aps-module[name='0/" + std::to_string(slot) + "-PSM-OM']" + below;
}

// A path below a module, begun with the module's slot; as it is when it is no such path.
inline std::string short_path(const std::string &path) {
    for (const int slot : {1, 2, 3}) {
        const std::string module = module_path(slot);
        if (path.starts_with(module)) {
            return std::to_string(slot) + path.substr(module.size());
        }
    }
    return path;
}

// The leaves of an answer, "1/config/revertive = true" in the slot of the module; an error and warnings stand first.
inline Lines lines_of(const ocpsm::ReadResult &result) {
    Lines lines;
    if (result.error) {
        lines.push_back("error: " + result.error->tag + " " + result.error->message());
    }
    for (const std::string &warning : result.warnings) {
        lines.push_back("warning: " + warning);
    }
    for (const ocpsm::Leaf &leaf : result.answer.leaves()) {
        lines.push_back(short_path(leaf.path) + " = " + leaf.value);
    }
    return lines;
}

} // namespace circle

#endif

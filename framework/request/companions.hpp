// Leaves that come along in answers, although a read that names them is refused.
#ifndef OCPSM_FRAMEWORK_REQUEST_COMPANIONS_HPP
#define OCPSM_FRAMEWORK_REQUEST_COMPANIONS_HPP

#include <span>
#include <string>
#include <string_view>

struct lysc_node;

namespace ocpsm::framework {

// A leaf that the plug-in refuses by name and that it writes together with others.
struct Companion {
    const lysc_node *leaf;
    const lysc_node *around; // the nearest node above it whose read has it
    std::string below;       // the path from there to the leaf
};

// All of them, worked out from the plug-in's tables.
std::span<const Companion> companions();

// The instance path of the node whose read has the leaf with this instance path; empty where there is none.
std::string read_with(std::string_view leaf_path);

} // namespace ocpsm::framework

#endif

// What of a read the plug-in has passed over.
#ifndef OCPSM_FRAMEWORK_REQUEST_PASSED_OVER_HPP
#define OCPSM_FRAMEWORK_REQUEST_PASSED_OVER_HPP

#include <cstddef>
#include <string>
#include <vector>

#include "framework/kind.hpp"
#include "framework/text.hpp"
#include "yfw_map.h"

namespace ocpsm::framework {

// Gathers it over all trees of one read. Selected are nodes without children, list keys left out.
class PassedOver {
public:
    explicit PassedOver(Kind kind) : kind_(kind) {}

    // Looks through a tree that was walked for the read. Returns how many of its selected nodes the plug-in has a
    // walker for.
    std::size_t add(const kidl_yfw_datatree &walked);

    // A text for each reason for which nodes were passed over, with their instance paths: the
    // model calls them operational state and the read is one of configuration, or there is no walker.
    std::vector<std::string> warnings() const;

private:
    struct Level;
    std::size_t look(const kidl_yfw_datatree &node, const Level *above);
    void pass_over(const Level &level);

    Kind kind_;
    bool any_walked_ = false;
    FirstTexts unsupported_; // instance paths
    FirstTexts state_;
};

} // namespace ocpsm::framework

#endif

// The OpenConfig model that a service speaks, as data: what a server has to know of it beside values.
#ifndef OCPSM_FRAMEWORK_MODEL_HPP
#define OCPSM_FRAMEWORK_MODEL_HPP

#include <string>
#include <string_view>
#include <vector>

namespace ocpsm {

struct ModelNode {
    enum class Kind { container, list, leaf };

    std::string name;
    std::string path; // schema path: "/aps/aps-modules/aps-module"
    Kind kind = Kind::container;
    bool config = false;                // false: operational state
    std::string type = {};              // of a leaf: the built-in YANG type, e.g. "decimal64"
    std::vector<std::string> keys = {}; // of a list, in their order
    std::vector<ModelNode> children = {};

    // The child of that name, or null.
    const ModelNode *child(std::string_view child_name) const;
};

struct YangModule {
    std::string name;
    std::string revision; // YYYY-MM-DD
    std::string prefix;
    std::string namespace_uri;
    std::string text;
};

// It lives for as long as the program, is never changed, and may be used by any thread.
struct Model : YangModule {
    std::string organization;
    ModelNode root; // its children are the top nodes; it has no name, and the path "/"

    static const Model &openconfig();
};

} // namespace ocpsm

#endif

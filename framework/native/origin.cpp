// Which add a node of a native request came from.
#include "framework/native/native_path.hpp"

namespace ocpsm::native {
namespace {

// What the nodes on the way to a path say, from the top.
struct Search {
    Origin exact = no_origin;
    Origin nearest = no_origin;
    std::size_t nearest_length = 0;
};

// `rest` is what of the path is below the parent of these nodes; a step ends where the next begins or the path ends.
void search(std::span<const NativeNode> nodes, std::string_view rest, std::size_t length, Search &found) {
    for (const NativeNode &node : nodes) {
        const std::string step = "/" + path_step(node);
        if (!rest.starts_with(step)) {
            continue;
        }
        const std::string_view below = rest.substr(step.size());
        const std::size_t reached = length + step.size();
        if (below.empty()) {
            found.exact = node.origin;
        } else if (below.starts_with('/')) {
            if (node.added && reached >= found.nearest_length) {
                found.nearest = node.origin;
                found.nearest_length = reached;
            }
            search(node.children, below, reached, found);
        }
    }
}

} // namespace

Origin NetRequest::origin_of(std::string_view native_path) const {
    Search found;
    search(roots, native_path, 0, found);
    return found.exact == no_origin ? found.nearest : found.exact;
}

} // namespace ocpsm::native

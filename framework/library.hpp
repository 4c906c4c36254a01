// libyang as the framework uses it: silent, its nodes owned, its failures thrown.
#ifndef OCPSM_FRAMEWORK_LIBRARY_HPP
#define OCPSM_FRAMEWORK_LIBRARY_HPP

#include <libyang/libyang.h>

#include <cstdint>
#include <memory>
#include <new>
#include <stdexcept>

namespace ocpsm {

// While it lives, this thread's messages are kept for ly_errmsg instead of being printed.
class QuietLibrary {
public:
    QuietLibrary() { ly_temp_log_options(&options_); }
    ~QuietLibrary() { ly_temp_log_options(nullptr); }
    QuietLibrary(const QuietLibrary &) = delete;
    QuietLibrary &operator=(const QuietLibrary &) = delete;

private:
    std::uint32_t options_ = LY_LOSTORE_LAST;
};

struct FreeNode {
    void operator()(lyd_node *node) const noexcept { lyd_free_tree(node); }
};

// A data node with all that is below it. Where it stands in a tree, it leaves that when it is freed.
using OwnedNode = std::unique_ptr<lyd_node, FreeNode>;

struct FreeSet {
    void operator()(ly_set *set) const noexcept { ly_set_free(set, nullptr); }
};

// Nodes that were found; they stay where they are.
using OwnedSet = std::unique_ptr<ly_set, FreeSet>;

// For operations that only fail without memory: throws std::bad_alloc then, std::logic_error for any other failure.
inline void require(LY_ERR result) {
    if (result == LY_EMEM) {
        throw std::bad_alloc();
    }
    if (result != LY_SUCCESS) {
        throw std::logic_error("libyang refuses an operation that cannot fail");
    }
}

} // namespace ocpsm

#endif

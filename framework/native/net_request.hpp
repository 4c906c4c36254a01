// What a native request says when all of it has been added: equal entries are one, what was taken away is gone. It is
// what is printed, checked and applied.
#ifndef OCPSM_FRAMEWORK_NATIVE_NET_REQUEST_HPP
#define OCPSM_FRAMEWORK_NATIVE_NET_REQUEST_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/native/native_node.hpp"

namespace ocpsm::native {

enum class RequestKind { read, edit };

// One step of what an edit changes or a read selects.
struct NativeOperation {
    std::string path; // instance path with key predicates, each step by its name without prefix
    const lysc_node *schema = nullptr;
    Operation operation = Operation::merge; // merge of a list entry makes it; in a read always merge
    std::optional<std::string> value;       // of a leaf that is set
};

struct NetRequest {
    RequestKind kind = RequestKind::read;
    std::vector<NativeNode> roots;

    // In document order: first a node's own operation, then what is below it. Below a delete or remove there is
    // nothing; a replace takes everything away and is followed by what is put there.
    std::vector<NativeOperation> operations() const;

    // Refuses an edit that no device could carry out: a list entry without one of its keys (missing-element), a value
    // that its leaf cannot hold (invalid-value), operational state (operation-not-supported). Throws ocpsm::Error with
    // the native path. A read is never refused.
    void check() const;

    // The origin of the node with a native instance path, as an error names it; of several the last one counts. Where
    // the request holds no such node, that of the nearest node above which was added itself. None: no_origin.
    Origin origin_of(std::string_view native_path) const;

    // A whole XML document: a NETCONF <filter> or <config> (base 1.0) with the request in it. Throws ocpsm::Error
    // (invalid-value, with the native path) for a text that XML 1.0 cannot carry.
    std::string to_xml() const;

    // A JSON object (RFC 7951); operations are metadata (RFC 7952), a selection is [null]. Throws ocpsm::Error
    // (invalid-value, with the native path) for a text that is not UTF-8.
    std::string to_json() const;
};

} // namespace ocpsm::native

#endif

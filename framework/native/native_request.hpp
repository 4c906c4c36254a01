// A request in the native models while it is being made: the nodes that a mapping plug-in adds, one after the other.
#ifndef OCPSM_FRAMEWORK_NATIVE_NATIVE_REQUEST_HPP
#define OCPSM_FRAMEWORK_NATIVE_NATIVE_REQUEST_HPP

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/models/models.hpp"
#include "framework/native/net_request.hpp"
#include "kerr.h"

namespace ocpsm::native {

// Codes of an add that fails; zero is success.
inline constexpr kerrno add_unknown_path = 0xaaf2c100u;      // no native model has a node with this path
inline constexpr kerrno add_wrong_namespace = 0xaaf2c200u;   // the node belongs to another module than the one named
inline constexpr kerrno add_unexpected_value = 0xaaf2c300u;  // a value for a container or a list
inline constexpr kerrno add_unknown_operation = 0xaaf2c400u; // not one of NETCONF's five
inline constexpr kerrno add_stale_node = 0xaaf2c500u;        // the node to add below is not part of the request (now)

// The text of one of these codes, for kerr_strerror; empty for any other code.
std::string_view add_error_text(kerrno code);

class NativeRequest {
public:
    // Names a node of this request for as long as the request lives.
    using NodeId = std::uint32_t;
    static constexpr NodeId root = 0;

    // What was added at a node, as it stands now.
    struct Node {
        std::string path; // schema path
        std::uint32_t operation;
        std::optional<std::string> value; // absent and empty differ
        std::uint32_t second_flag;
    };

    explicit NativeRequest(RequestKind kind, const models::Schema &schema = models::Schema::native());

    // Adds the node with an absolute schema path, or, when `path` has no leading slash, the child of that name below
    // `tree`. An absolute path runs through the current instance of every list on its way: the one opened or selected
    // last. Missing steps are made with operation 0.
    //   namespace_uri  of the module that owns the node at the end of the path
    //   value          of a leaf; absent and empty differ
    //   operation      of NETCONF: merge 0, replace 1, create 2, delete 3, remove 4; means nothing in a read
    //   first_flag     opens: a list path a new entry; the path of a leaf that stands already a new entry around it
    //   second_flag    kept on the node
    //   result         unless null, receives the node; untouched when the add fails
    // Adds nothing when it fails.
    kerrno add(std::string_view path, std::string_view namespace_uri, std::optional<std::string_view> value,
               std::uint32_t operation, bool first_flag, std::uint32_t second_flag, NodeId tree = root,
               NodeId *result = nullptr);

    RequestKind kind() const noexcept { return kind_; }

    // True until the first add.
    bool empty() const noexcept { return nodes_.size() == 1; }

    // The node as it stands; `id` must come from this request and not be root.
    Node node(NodeId id) const;

    // The instance path of a node, with the keys that are known by now.
    std::string instance_path(NodeId id) const;

    // What the request says when it is sent: see net_request.hpp.
    NetRequest net() const;

private:
    struct Entry {
        const lysc_node *schema = nullptr; // null: root
        NodeId parent = root;
        std::vector<NodeId> children;
        std::map<const lysc_node *, NodeId> current; // current instance of each list right below
        std::uint32_t operation = 0;
        std::optional<std::string> value;
        std::uint32_t second_flag = 0;
        bool attached = true; // false: taken away by a later delete
    };
    // An add of an edit, kept for the net result: keys are known, and equal entries one, only at the end.
    struct Event {
        NodeId node;
        std::uint32_t operation;
        std::optional<std::string> value;
        bool names_only; // a key of an entry that is being deleted
    };
    class Adding;     // one add
    class EditReplay; // the adds of an edit, in order, on what will be sent
    class ReadUnion;  // the selections of a read, by list

    std::vector<NetKey> keys_of(NodeId list_entry) const;
    std::vector<NetNode> net_of_edit() const;
    std::vector<NetNode> net_of_read() const;

    RequestKind kind_;
    const models::Schema *schema_;
    std::deque<Entry> nodes_;
    std::vector<Event> events_;
};

} // namespace ocpsm::native

#endif

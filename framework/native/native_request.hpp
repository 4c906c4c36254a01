// A request in the native models while it is being made: the nodes that a mapping plug-in adds, one after the other.
#ifndef OCPSM_FRAMEWORK_NATIVE_NATIVE_REQUEST_HPP
#define OCPSM_FRAMEWORK_NATIVE_NATIVE_REQUEST_HPP

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/models/models.hpp"
#include "framework/native/draft_tree.hpp"
#include "framework/native/net_request.hpp"
#include "kerr.h"

namespace ocpsm::native {

// Codes of an add that fails; zero is success.
inline constexpr kerrno add_unknown_path = 0xaaf2c100u;      // no native model has a node with this path
inline constexpr kerrno add_wrong_namespace = 0xaaf2c200u;   // the node belongs to another module than the one named
inline constexpr kerrno add_unexpected_value = 0xaaf2c300u;  // a value for a container or a list
inline constexpr kerrno add_unknown_operation = 0xaaf2c400u; // not one of NETCONF's five

// The text of one of these codes, for kerr_strerror; empty for any other code.
std::string_view add_error_text(kerrno code);

// Time and memory of all adds together, and of net(), grow with their number and the length of their texts.
class NativeRequest {
public:
    explicit NativeRequest(RequestKind kind, const models::Schema &schema = models::Schema::native());

    // Adds the node with an absolute schema path, which runs through the current instance of every list on its way: the
    // one opened or selected last. Missing steps are made with operation 0.
    //   namespace_uri  of the module that owns the node at the end of the path
    //   value          of a leaf; absent and empty differ
    //   operation      of NETCONF: merge 0, replace 1, create 2, delete 3, remove 4; means nothing in a read
    //   opens          a list path: a new entry; the path of a leaf that stands already: a new entry around it
    //   origin         where the add comes from, kept on the nodes of the net request
    // Adds nothing when it fails.
    kerrno add(std::string_view path, std::string_view namespace_uri, std::optional<std::string_view> value,
               std::uint32_t operation, bool opens, Origin origin = no_origin);

    RequestKind kind() const noexcept { return kind_; }

    // True until the first add.
    bool empty() const noexcept { return nodes_.size() == 1; }

    // What the request says when it is sent: see net_request.hpp.
    NetRequest net() const;

private:
    // An add of an edit, kept for the net result: keys are known, and equal entries one, only at the end.
    struct EditAdd {
        DraftId node;
        Operation operation;
        Origin origin;
        bool names_only; // a key of an entry that is being deleted
        std::optional<std::string> value;
    };
    class Adding;     // one add
    class EditReplay; // the adds of an edit, in order, on what will be sent
    class ReadUnion;  // the selections of a read, by list

    std::vector<NativeNode> net_of_edit() const;
    std::vector<NativeNode> net_of_read() const;

    RequestKind kind_;
    const models::Schema *schema_;
    DraftTree nodes_; // as they were added: entries with equal keys are several

    // The instance of a list below a node that paths run through, unless an instance around it was selected since.
    struct Current {
        DraftId entry;
        std::uint32_t since;
    };
    std::map<std::pair<DraftId, const lysc_node *>, Current> current_;
    std::map<DraftId, std::uint32_t> selected_; // when an entry that stood already was selected
    std::uint32_t clock_ = 0;

    std::deque<EditAdd> edit_adds_;
};

} // namespace ocpsm::native

#endif

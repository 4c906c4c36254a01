// Values of gNMI in each encoding, and the lexical representations of the model (RFC 7950, 9) that they stand for.
#ifndef OCPSM_SERVERS_GNMI_VALUE_HPP
#define OCPSM_SERVERS_GNMI_VALUE_HPP

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "framework/request_tree.hpp"
#include "gnmi.pb.h"
#include "servers/gnmi/leaf.hpp"

namespace ocpsm::gnmi {

inline constexpr std::array<messages::Encoding, 3> served_encodings{messages::JSON, messages::PROTO,
                                                                    messages::JSON_IETF};

// Throws Refusal (UNIMPLEMENTED) for an encoding that is not served.
void require_served(messages::Encoding encoding);

// ---- out ----

// A leaf's value. JSON is without the names of modules and has every number as a number; JSON_IETF is RFC 7951.
void write_value(const ModelNode &leaf, const std::string &value, messages::Encoding encoding,
                 messages::TypedValue &message);

// One leaf of those that are written as a document.
struct DocumentLeaf {
    const LeafPlace *place; // never null
    const std::string *value;
};

// The leaves of a node, in document order, as the value of the node whose path has `depth` steps: of a leaf its value,
// else a JSON object.
std::string json_document(const std::vector<DocumentLeaf> &leaves, std::size_t depth, messages::Encoding encoding);

// ---- in ----

/*
 * All throw Refusal: INVALID_ARGUMENT with the path for a value that is none of the node's type, or no JSON;
 * UNIMPLEMENTED for the encodings that are not served. Whether the model allows the value is for the service to say.
 */

// A leaf's value.
std::string read_value(const ModelNode &leaf, const messages::TypedValue &message, const std::string &path);

// What a JSON object says is below a node that is no leaf; the root's children are the top nodes. Entries of lists
// begin with their keys.
std::vector<RequestNode> read_tree(const ModelNode &node, const messages::TypedValue &message, const std::string &path);

// The entries of a list that a JSON array gives.
std::vector<RequestNode> read_entries(const ModelNode &list, const messages::TypedValue &message,
                                      const std::string &path);

} // namespace ocpsm::gnmi

#endif

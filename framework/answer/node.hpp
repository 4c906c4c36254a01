// Nodes of an OpenConfig answer.
#ifndef OCPSM_FRAMEWORK_ANSWER_NODE_HPP
#define OCPSM_FRAMEWORK_ANSWER_NODE_HPP

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct lysc_node;

namespace ocpsm::framework {

// A node with what is below it. The children stand in the order of the model, the keys of a list entry first, the
// entries of a list in the order of their keys.
struct AnswerNode {
    const lysc_node *schema = nullptr;
    std::optional<std::string> value = {}; // of a leaf
    std::vector<AnswerNode> children = {};

    bool operator==(const AnswerNode &) const = default;
};

// The name of a node.
std::string_view name_of(const AnswerNode &node);

// The first child with this schema, or null.
const AnswerNode *find_child(const AnswerNode &parent, const lysc_node &schema);

// The child with this name, or null.
const AnswerNode *find_child(const AnswerNode &parent, std::string_view name);

// A node's step of an instance path, with a predicate for each of its keys: "/aps-module[name='0/1-PSM-OM']".
std::string answer_step(const AnswerNode &node);

// Calls `visit` for every leaf in document order, with its instance path.
void for_each_leaf(const std::vector<AnswerNode> &tops,
                   const std::function<void(const std::string &path, const AnswerNode &leaf)> &visit);

// Puts `more` into `nodes`: containers and entries with the same keys become one, a leaf that stands keeps its value.
void join(std::vector<AnswerNode> &nodes, const std::vector<AnswerNode> &more);

} // namespace ocpsm::framework

#endif

#include "framework/answer/check.hpp"

#include <libyang/libyang.h>

#include <string>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

void check_below(std::vector<AnswerNode> &nodes, const std::string &above) {
    for (AnswerNode &node : nodes) {
        const std::string path = above + answer_step(node);
        if (node.schema->nodetype == LYS_LEAF) {
            std::optional<std::string> value = node.value ? models::canonical(*node.schema, *node.value) : std::nullopt;
            if (!value) {
                throw Error(Error::Source::refused, "operation-failed", path,
                            "the device's value '" + one_line(node.value.value_or("")) +
                                "' is none that the model allows");
            }
            node.value = std::move(value);
        }
        check_below(node.children, path);
    }
}

} // namespace

void check_answer(std::vector<AnswerNode> &tops) {
    check_below(tops, "");
}

} // namespace ocpsm::framework

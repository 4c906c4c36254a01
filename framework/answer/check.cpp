#include "framework/answer/check.hpp"

#include <string>

#include "framework/error.hpp"
#include "framework/models/models.hpp"
#include "framework/native/native_path.hpp"
#include "framework/quiet_library.hpp"

namespace ocpsm::framework {

namespace {

// The value as the model writes it; none when the model does not allow it.
std::optional<std::string> canonical(const lysc_node &leaf, const std::string &value) {
    ly_ctx *context = models::Schema::openconfig().context();
    const QuietLibrary quiet;
    const char *text = nullptr;
    const LY_ERR result = lyd_value_validate(context, &leaf, value.c_str(), value.size(), nullptr, nullptr, &text);
    std::optional<std::string> stored;
    // A reference to another leaf is complete only with the data around it, which need not have been asked for.
    if (result == LY_SUCCESS || result == LY_EINCOMPLETE) {
        stored = text == nullptr ? value : text;
    }
    if (text != nullptr) {
        lydict_remove(context, text);
    }
    return stored;
}

void check_below(std::vector<AnswerNode> &nodes, const std::string &above) {
    for (AnswerNode &node : nodes) {
        const std::string path = above + answer_step(node);
        if (node.schema->nodetype == LYS_LEAF) {
            std::optional<std::string> value = node.value ? canonical(*node.schema, *node.value) : std::nullopt;
            if (!value) {
                throw Error(Error::Source::refused, "operation-failed", path,
                            "the device's value '" + native::one_line(node.value.value_or("")) +
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

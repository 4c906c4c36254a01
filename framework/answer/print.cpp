#include "framework/answer/print.hpp"

#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "framework/models/models.hpp"
#include "framework/quiet_library.hpp"

namespace ocpsm::framework {

namespace {

struct FreeTree {
    void operator()(lyd_node *tree) const noexcept { lyd_free_all(tree); }
};

struct FreeText {
    void operator()(char *text) const noexcept {
        std::free(text); // NOLINT(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)
    }
};

void require(LY_ERR result) {
    if (result != LY_SUCCESS && result != LY_EINCOMPLETE) {
        throw std::logic_error("a checked answer cannot be printed");
    }
}

using Tree = std::unique_ptr<lyd_node, FreeTree>;

// `top` takes the node that has no parent.
void make(lyd_node *parent, const AnswerNode &node, Tree &top) {
    lyd_node *made = nullptr;
    const lys_module *module = node.schema->module;
    if (node.schema->nodetype == LYS_LEAF) {
        require(lyd_new_term(parent, module, node.schema->name, node.value.value_or("").c_str(), 0, &made));
        return;
    }
    if (node.schema->nodetype == LYS_CONTAINER) {
        require(lyd_new_inner(parent, module, node.schema->name, 0, &made));
    } else {
        require(lyd_new_list(parent, module, node.schema->name, 0, &made, node.children.front().value->c_str()));
    }
    if (parent == nullptr) {
        top.reset(made);
    }
    for (const AnswerNode &child : node.children) {
        if (!lysc_is_key(child.schema)) {
            make(made, child, top);
        }
    }
}

} // namespace

std::string print_answer(const std::vector<AnswerNode> &tops, Format format) {
    if (tops.empty()) {
        return format == Format::json ? "{}\n" : "";
    }
    const QuietLibrary quiet;
    Tree tree;
    make(nullptr, tops.front(), tree);
    char *printed = nullptr;
    const LY_ERR result =
        lyd_print_mem(&printed, tree.get(), format == Format::json ? LYD_JSON : LYD_XML, LYD_PRINT_WITHSIBLINGS);
    const std::unique_ptr<char, FreeText> text(printed);
    require(result);
    return text.get();
}

} // namespace ocpsm::framework

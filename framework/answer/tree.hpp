// The OpenConfig answer while the plug-in writes it.
#ifndef OCPSM_FRAMEWORK_ANSWER_TREE_HPP
#define OCPSM_FRAMEWORK_ANSWER_TREE_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/answer/node.hpp"
#include "kerr.h"
#include "yfw_map.h"

namespace ocpsm::framework {
class AnswerTree;
}

// What the plug-in hands on to yfw_map_search_or_add_list.
struct yfw_map_module_list {
    ocpsm::framework::AnswerTree *tree;
};

namespace ocpsm::framework {

/*
 * The entries of /aps/aps-modules/aps-module, the only list of the model. What is written without a key goes to the
 * current entry, or nowhere when none is current. An entry is part of the answer once the plug-in has written its name:
 * its key leaf, or by search-or-add. Leaves are written again and again: the last value counts.
 */
class AnswerTree {
public:
    AnswerTree();
    AnswerTree(const AnswerTree &) = delete;
    AnswerTree &operator=(const AnswerTree &) = delete;

    yfw_map_module_list *module_list() { return &list_; }

    // Writes to the current entry. The path of the list itself makes a new entry, which has no name yet, when
    // `opens`. A value that is absent or empty leaves one that stands.
    kerrno add(std::string_view path, std::string_view namespace_uri, std::optional<std::string_view> value,
               bool opens);

    // Finds or makes the entry with this name and makes it current.
    kerrno search_or_add(std::string_view list_path, std::string_view key_name, std::string_view key,
                         std::string_view namespace_uri);

    // Writes a leaf of the entry that the instance path names, which becomes the current one.
    kerrno stitch(const yfw_map_stitch_entry &stitched);

    // Keeps the first failure of a stitch: the plug-in does not look at it.
    void note_failure(kerrno result);
    kerrno failure() const { return failure_; }

    // The entry with this name becomes current, which does not make it part of the answer; without a name, none.
    void point_to(const std::optional<std::string> &name);

    // The output scope of a native list entry: closing it makes the entry current that was so around it.
    void open_scope();
    void close_scope();

    // Names of the entries of the answer, in the order in which they were first written.
    std::vector<std::string> names() const;

    // The answer as it stands: the top node, or nothing.
    std::vector<AnswerNode> answer() const;

private:
    struct Entry {
        std::optional<std::string> name; // none: it has been opened, and nobody has said which one it is
        bool part_of_answer = false;
        AnswerNode node;
    };
    using Index = std::optional<std::size_t>;

    Index entry(std::string_view name);
    void write(const lysc_node &leaf, std::string_view value);
    kerrno write_key(std::string_view value);

    yfw_map_module_list list_;
    const lysc_node *list_schema_;
    std::vector<Entry> entries_;
    Index current_;
    std::vector<Index> scopes_;
    kerrno failure_ = KERR_SUCCESS;
};

} // namespace ocpsm::framework

#endif

// The OpenConfig answer while the plug-in writes it.
#ifndef OCPSM_FRAMEWORK_ANSWER_WRITER_HPP
#define OCPSM_FRAMEWORK_ANSWER_WRITER_HPP

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "framework/answer/tree.hpp"
#include "kerr.h"
#include "yfw_map.h"

namespace ocpsm::framework {
class AnswerWriter;
}

// What the plug-in hands on to yfw_map_search_or_add_list.
struct yfw_map_module_list {
    ocpsm::framework::AnswerWriter *writer;
};

namespace ocpsm::framework {

/*
 * The entries of /aps/aps-modules/aps-module, the only list of the model. What is written without a key goes to the
 * current entry, or nowhere when none is current. An entry is part of the answer once the plug-in has written its name:
 * its key leaf, or by search-or-add. Leaves are written again and again: the last value counts, also one that the model
 * does not allow.
 */
class AnswerWriter {
public:
    AnswerWriter();
    AnswerWriter(const AnswerWriter &) = delete;
    AnswerWriter &operator=(const AnswerWriter &) = delete;

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

    // The answer; nothing can be written any more. Throws ocpsm::Error (refused, operation-failed) with the path of
    // the first leaf in document order that has a value which the model does not allow.
    AnswerTree finish() &&;

private:
    struct Entry {
        std::optional<std::string> name; // none: it has been opened, and nobody has said which one it is
        bool part_of_answer = false;
        OwnedNode node;                                   // its key says nothing yet; null before the first leaf
        std::map<const lysc_node *, std::string> refused; // leaves with values that the model does not allow
    };
    using Index = std::optional<std::size_t>;

    Index entry(std::string_view name);
    Index add_entry(std::optional<std::string> name);
    lyd_node &node_of(Entry &entry) const;
    lyd_node &place(lyd_node &entry, const lysc_node &schema) const;
    void write(const lysc_node &leaf, const std::string &value);
    kerrno write_key(std::string_view value);
    void check(const Entry &entry) const;
    [[noreturn]] void refuse(const Entry &entry, const lysc_node &leaf, const std::string &value) const;

    yfw_map_module_list list_;
    const lysc_node *list_schema_;
    OwnedNode bench_; // the top node with the list's container, where entries are made and at last put
    std::vector<Entry> entries_;
    std::unordered_map<std::string, std::size_t> by_name_;
    Index current_;
    std::vector<Index> scopes_;
    kerrno failure_ = KERR_SUCCESS;
};

} // namespace ocpsm::framework

#endif

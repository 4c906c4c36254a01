// The native models as the tests know them, written out by hand: every walker with its node, its children in the order
// in which their tags are tried, and for a list its path and keys.
#ifndef TESTS_PLUGIN_NATIVE_ROWS_HPP
#define TESTS_PLUGIN_NATIVE_ROWS_HPP

#include <string>
#include <vector>

namespace native_test {

using Lines = std::vector<std::string>;

inline constexpr char name_prefix[] = "ymap_n2o_oc_opt_psm_";

struct Model {
    std::string module; // its part of the exported names
    std::string namespace_uri;
    std::string files; // of its sources, without the ending
    bool operational;  // its nodes are known in reads of kind 10 only
};

enum class Kind { augment, container, list, leaf };

struct Child {
    std::string tag;
    std::string walker; // the end of its name
};

struct Row {
    std::string walker; // the end of its name, which is no other model's
    std::string tag;    // of its node, of an augment entry that of the augmenting one
    std::vector<Child> children;
    std::string path; // of a list
    Lines keys;       // of a list
};

struct Walker {
    const Model *model;
    Kind kind;
    Row row;

    [[nodiscard]] const std::string &suffix() const { return row.walker; }
    [[nodiscard]] std::string function() const { return name_prefix + model->module + "_" + row.walker; }
    [[nodiscard]] std::string hook() const { return function() + "_parse_augments"; }
    // The callback without and with what stands in front of all names; an augment entry has none.
    [[nodiscard]] std::string short_callback() const;
    [[nodiscard]] std::string callback() const { return name_prefix + model->module + "_" + short_callback(); }
};

[[nodiscard]] const std::vector<Walker> &walkers();
[[nodiscard]] std::vector<const Walker *> walkers_of(Kind kind);
// Throws std::out_of_range when there is none.
[[nodiscard]] const Walker &walker(const std::string &suffix);

// The containers whose children are entries of a list.
[[nodiscard]] const Lines &list_parents();

} // namespace native_test

#endif

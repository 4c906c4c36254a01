// The YANG models, embedded in the program: the OpenConfig model and the device's own ones,
// each set in a libyang context of its own.
#ifndef OCPSM_FRAMEWORK_MODELS_MODELS_HPP
#define OCPSM_FRAMEWORK_MODELS_MODELS_HPP

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct ly_ctx;
struct lysc_node;

namespace ocpsm::models {

// The text of one module, as it is embedded.
struct ModuleText {
    std::string_view name;
    std::string_view text;
};

// The embedded modules: the OpenConfig one first, then the native ones, each after those that it augments.
std::span<const ModuleText> embedded_modules();

enum class NodeKind { container, list, leaf };

// The numbers that a leaf may hold, both ends among them.
struct Range {
    std::int64_t minimum;
    std::int64_t maximum;

    bool operator==(const Range &) const = default;
};

// What is asked about a schema node. The texts belong to the schema's context.
struct NodeInfo {
    const lysc_node *node;
    NodeKind kind;
    bool config; // false: operational state
    std::string_view name;
    std::string_view module;                       // name of the module that owns the node
    std::string_view namespace_uri;                // of that module
    std::string_view type;                         // of a leaf: the built-in YANG type, e.g. "decimal64"; else empty
    std::string_view units;                        // of a leaf; empty when it has none
    std::optional<std::string_view> default_value; // of a leaf, in canonical form
    std::vector<std::string_view> keys;            // of a list, in the order of its key statement
    std::vector<std::string_view> choices;         // of an enumeration or identityref leaf: its values
    unsigned fraction_digits;                      // of a decimal64 leaf; else 0
    std::optional<Range> range;                    // of an integer leaf that its model restricts
};

// Facts about a schema node; the node must be a container, a list or a leaf.
NodeInfo describe(const lysc_node &node);

// A list's keys, in the order of its key statement; none when the node is no list.
std::vector<const lysc_node *> key_leaves(const lysc_node &node);

// Their names.
std::vector<std::string_view> key_names(const lysc_node &node);

// The value of a leaf as its model writes it (RFC 7950, 9); none when the model does not allow it. Whether the leaf
// that a reference names has that value is not looked at.
std::optional<std::string> canonical(const lysc_node &leaf, std::string_view value);

// The schema path of a node, each step by its name without prefix.
std::string schema_path(const lysc_node &node);

// A set of modules, compiled. Its context may be used by several threads for reading, parsing and validating.
class Schema {
public:
    // The sets that everybody uses: made at the first call, thread-safe, never changed afterwards.
    static const Schema &openconfig();
    static const Schema &native();

    // Compiles modules of one's own, imported ones first. Throws std::runtime_error with libyang's message.
    explicit Schema(std::span<const ModuleText> modules);

    // The context; the schema keeps it. libyang takes it as non-const even for reading.
    ly_ctx *context() const noexcept { return context_.get(); }

    // Top nodes of the set's modules, in the order in which the modules were given.
    std::span<const lysc_node *const> top_nodes() const noexcept { return top_nodes_; }

    // The data children of a node, in the order of the model, augments last; `parent` null: the top nodes.
    std::vector<const lysc_node *> children(const lysc_node *parent) const;

    // The node with an absolute schema path such as "/aps/aps-modules", each step by its name without prefix, or null.
    const lysc_node *find(std::string_view path) const;

    // A data child by name, whatever module owns it; `parent` null: a top node. Where models of several namespaces give
    // a child of that name, the one of `preferred_namespace`. Null when there is none.
    const lysc_node *child(const lysc_node *parent, std::string_view name,
                           std::string_view preferred_namespace = {}) const;

    // Like find, described.
    std::optional<NodeInfo> describe(std::string_view path) const;

private:
    struct Destroy {
        void operator()(ly_ctx *context) const noexcept;
    };
    std::unique_ptr<ly_ctx, Destroy> context_;
    std::vector<const lysc_node *> top_nodes_;
};

} // namespace ocpsm::models

#endif

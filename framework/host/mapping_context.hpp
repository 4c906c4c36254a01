// The mapping context of one tree that is handed to the plug-in, and everything that the plug-in reaches through it.
#ifndef OCPSM_FRAMEWORK_HOST_MAPPING_CONTEXT_HPP
#define OCPSM_FRAMEWORK_HOST_MAPPING_CONTEXT_HPP

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framework/answer/instance_map.hpp"
#include "framework/answer/writer.hpp"
#include "framework/host/add_record.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/host/log_service.hpp"
#include "framework/host/origins.hpp"
#include "framework/models/models.hpp"
#include "framework/native/native_request.hpp"
#include "yfw_map.h"

namespace ocpsm::framework {

// The kinds of levels, as the plug-in and the platform number them.
inline constexpr std::uint32_t container_level = 1;
inline constexpr std::uint32_t list_level = 2;

// A node of the walked tree on the hierarchy, with its step of the instance path as it was when it was pushed: the walk
// hides children later.
struct HierarchyEntry {
    std::string schema_path;
    std::string step;
    std::optional<InstanceMap::Place> place; // found when it is first asked for

    // Children that have been looked for, by tag (null: there is none), in the array that the node had then.
    const kidl_yfw_datatree *children = nullptr;
    int32_t child_count = 0;
    std::map<std::string, const kidl_yfw_datatree *, std::less<>> found;
};

/*
 * The plug-in's handle is the address of the base object. Everything that the handle leads to belongs to this object
 * and has its lifetime; it stays where it is. The channels and what is written to must outlive it.
 */
class MappingContext : public yfw_map_context {
public:
    // Registers a request of a numbered kind: its tree is built, and duplicated. What the plug-in adds goes to
    // `native`.
    MappingContext(uint32_t kind, const RequestNode &registered, Channels &channels, native::NativeRequest &native);
    // The same for the way back: native answers to the request are walked, what the plug-in writes goes to `answer`.
    MappingContext(uint32_t kind, const RequestNode &registered, Channels &channels, AnswerWriter &answer);
    ~MappingContext();
    MappingContext(const MappingContext &) = delete;
    MappingContext &operator=(const MappingContext &) = delete;
    MappingContext(MappingContext &&) = delete;
    MappingContext &operator=(MappingContext &&) = delete;

    // The object behind a handle; null for the null handle.
    static MappingContext *of(yfw_map_ctx ctx) { return static_cast<MappingContext *>(ctx); }

    // Switches the two channels on or off: the log at all levels, the trace buffer.
    void switch_channels(bool log, bool trace);

    kidl_yfw_datatree &request_tree() { return tree_.root(); }
    const kidl_yfw_datatree &duplicate() const { return duplicate_.root(); }
    kidl_yfw_datatree &destination() { return destination_.root(); }
    uint32_t kind() const { return registration_.operation_kind; }

    // ---- answers ----
    // What the plug-in writes to; null while a request is translated.
    AnswerWriter *answer() { return answer_; }
    // The answer of a model is going to be walked.
    void set_answer_root(kidl_yfw_datatree &root);
    // From now on the native list entries that become current make their instances current too.
    void set_instance_map(const InstanceMap &map) { map_ = &map; }
    // Says that the read names nothing but this many state leaves.
    void select_state_leaves(std::size_t count);

    // ---- hierarchy ----
    void push_level(const kidl_yfw_datatree &node, uint32_t kind); // container_level or list_level
    void pop_level(const kidl_yfw_datatree &node);
    std::string hierarchy_path() const; // the instance path of the hierarchy as it stands
    // The entry on top becomes the current one of the list with this path (without prefixes); any other node on top
    // leaves no current entry. A native one makes the instance current that the map gives it to.
    void update_list_node(const std::string &list_path);
    // The value of this key in the innermost list entry that shows one, null when there is none.
    const char *innermost_key(std::string_view key);

    // ---- instance-tree stack ----
    std::vector<yfw_map_itree_entry> &itree_stack() { return itree_stack_; }

    // ---- output ----
    kerrno add_absolute(AddRecord &add, const kidl_yfw_datatree *source);
    // Adds a leaf one step below a node of the walked tree; an equal one that stands there is taken instead.
    kidl_yfw_datatree &add_below(kidl_yfw_datatree &parent, const RequestNode &leaf);
    // Keeps a call of the add operation when that is asked for. Of the calls that fail the first with each code is
    // always kept.
    void keep_adds(bool keep) { keeps_adds_ = keep; }
    void record(AddRecord add);
    std::vector<AddRecord> take_adds() { return std::move(adds_); }
    void push_output(const kidl_yfw_datatree *source, const kidl_yfw_datatree *destination);
    void pop_output();

    // ---- origins ----
    // The plug-in has asked for the operation of a node: a conversion asks before it adds. The question does not say in
    // which context.
    static void note_question(const kidl_yfw_datatree *node) noexcept;
    // The node that is walked: the source of an add where it has one, else the node that was asked about last; the
    // innermost one of the hierarchy when neither is part of what is walked.
    std::uint32_t origin(const kidl_yfw_datatree *source);
    Origins take_origins() { return std::exchange(origins_, {}); }

    // ---- error location ----
    void record_error_path() { error_path_ = hierarchy_path(); }
    const std::optional<std::string> &error_path() const { return error_path_; }
    // Where an operation of the framework itself refused something.
    void record_own_refusal(std::string path) { own_refusal_ = std::move(path); }
    const std::optional<std::string> &own_refusal() const { return own_refusal_; }

    // True when hierarchy, instance-tree stack and output scopes are empty and the walk's modes are off, as they are
    // before a request and must be after it.
    bool at_rest() const;

private:
    MappingContext(uint32_t kind, const RequestNode &registered, Channels &channels, native::NativeRequest *native,
                   AnswerWriter *answer);

    void show_hierarchy();
    void point_answer();
    const kidl_yfw_datatree *child_at(std::size_t level, std::string_view tag);
    std::optional<std::string> path_of(const kidl_yfw_datatree *node) const;

    Channels &channels_;
    native::NativeRequest *native_; // of the two one is null
    AnswerWriter *answer_;
    const InstanceMap *map_ = nullptr;
    const models::Schema &schema_; // of the tree that is walked
    yfw_map_registration registration_{};
    yfw_map_request request_{};
    DataTree tree_;
    DataTree duplicate_;
    DataTree destination_;
    std::optional<DataTree> list_copy_;
    std::size_t list_depth_ = 0; // there is a current entry while the hierarchy has more levels than this
    std::vector<yfw_map_hierarchy_level> levels_;
    std::vector<HierarchyEntry> entries_; // one for each level
    std::vector<yfw_map_itree_entry> itree_stack_;
    std::vector<yfw_map_output_entry> output_;
    bool keeps_adds_ = true;
    std::vector<AddRecord> adds_;
    Origins origins_;
    // The origin that was asked for last, while what it depends on stays as it is.
    struct LastOrigin {
        const kidl_yfw_datatree *source;
        const kidl_yfw_datatree *asked;
        uint32_t whole;
        std::uint32_t number;
    };
    std::optional<LastOrigin> last_origin_;
    std::optional<std::string> error_path_;
    std::optional<std::string> own_refusal_;
};

} // namespace ocpsm::framework

#endif

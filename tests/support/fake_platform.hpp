// A platform that records every call of the plug-in and answers as a test has scripted it.
//
// One Platform stands at a time; the platform's operations (platform/include) reach it while it lives. Every call
// becomes one line; all lines stand in one list in the order of the calls, and a test compares the groups that it is
// about. Where nothing is scripted an operation does what its declaration promises.
//
//   add(ctx, dest, "/path", ns=ifmgr-cfg, value="act", src=name, result=none, 0, 1)
//   add_to_hierarchy(ctx, aps, 1)              remove_from_hierarchy(ctx, aps)
//   update_current_list(ctx, "/aps/...")       check_leafref(ctx, "/aps/...", "config", name, entry)
//   itree_size(ctx)  itree_push(ctx, children of entry, 1, 0)  itree_pop(ctx)  itree_peak(ctx)
//   error_path(ctx)                            is_request_delete(node)   is_request_add(ctx, node, dest)
//   match("a", "b")                            get_node_info(ctx, "/path", "key")
//   search_or_add_list(ctx, dest, modules, "/path", "key value", "key name", ns=openconfig)
//   stitch(ctx, in_use=1, dest, kind=3, ns=openconfig, value="1", "/instance", "/schema")
//   output_push(ctx, source, dest)  output_pop(ctx, source, dest)  print_datatree(ctx, node, "label")
//   strdup("text", "YFW MAP")  named_free("text")
//   strcpy_s(200, "text")  strcat_s(200, "text")  strncpy_s(200, "text", 5)
//   should_log(0)  trace_index()
//   log ERR text                               the log channel, what stands behind the prefix with the context
//   trace ERR #1 function text                 the trace channel, the line number taken out
//   sysdb_bind("/oper/ots/if/", 0)  sysdb_unbind(handle 1)  sysdb_item_get(handle 1, "item", type 7, 0)
//   sysdb_list(handle 1, "", "pattern", 0)  sysdb_list_next(list 1)  sysdb_list_free(list 1)
//   bag_header_info(bag "type")  bag_init(bag "type", 40)  bag_token(#1)  bag_free_token(#1)  bag_destroy()
//   strerror(0x8081c200)  memset_s(200, 0, 200)  inet_ntoa_r(1.2.3.4, 16)  access(client library)
//
// Texts stand in quotes, a null text is null. A node prints its registered name, else its path in the tree that it
// belongs to ("aps-module/config"); null prints null, for src and result none.
#ifndef TESTS_SUPPORT_FAKE_PLATFORM_HPP
#define TESTS_SUPPORT_FAKE_PLATFORM_HPP

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <bag_generic.h>
#include <sysdb_client.h>
#include <yfw_map.h>

#include "tree.hpp"

namespace fake {

// The groups of calls, to be joined by |.
enum Group : unsigned {
    Output = 1,       // add, search_or_add_list, stitch, output_push, output_pop, get_node_info, print_datatree
    Walk = 2,         // hierarchy, current list, leafref, instance-tree stack, error_path
    Questions = 4,    // match, is_request_delete, is_request_add
    Heap = 8,         // strdup, named_free
    Texts = 16,       // bounded copies, memset_s, inet_ntoa_r, strerror
    Log = 32,         // log lines
    Trace = 64,       // trace lines
    Filter = 128,     // should_log, trace_index
    Database = 256,   // sysdb_..., access
    Bags = 512,       // bag_...
    Callbacks = 1024, // the plug-in's own callbacks, where a test program stands in between
    Releases = 2048,  // items of the database that the plug-in gives back: free(item)
    Channels = Log | Trace,
    Everything = 4095,
};

// A log line as it arrived.
struct LogRecord {
    hvs_dt_handle handle = nullptr;
    const std::uint32_t *site = nullptr;
    std::string format;
    std::string text;
};

// A trace line as it arrived, and taken to pieces.
struct TraceRecord {
    std::string whole;
    std::uint32_t sequence = 0;
    std::string level; // ERR or TRC
    std::string function;
    unsigned line = 0;
    std::string text; // behind the context
};

// One token of a scripted bag. Build with the functions below.
struct Token {
    bag_token_type_td type = BAG_TOKEN_END;
    std::optional<std::string> name;
    std::int64_t number = 0; // of every type that is not a text
    std::optional<std::string> text;
};

[[nodiscard]] Token text_token(std::string name, std::optional<std::string> text);
[[nodiscard]] Token mark_token(bag_token_type_td type, std::optional<std::string> name = std::nullopt);

struct GivenToken {
    std::size_t number = 0; // of the bag's tokens, from 1
    bag_token_td token{};
    std::vector<std::unique_ptr<char[]>> texts;
};

struct Bag {
    std::string type_name = "record";
    std::int32_t version_major = 1;
    std::int32_t version_minor = 0;
    std::vector<Token> tokens; // without an end token the decoder fails behind the last one
    kerrno header_result = KERR_SUCCESS;
    kerrno init_result = KERR_SUCCESS;
    std::map<std::size_t, kerrno> token_results; // by the number of the token, from 0
};

// What the database holds at one bind path + item path.
struct Item {
    kerrno result = KERR_SUCCESS;
    std::optional<Bag> bag;
    std::string bytes;                   // without a bag
    std::optional<std::uint32_t> length; // when it is not the size of the bytes
    bool no_data = false;                // success or failure with a null pointer
    bool data_on_failure = false;        // the data is handed out although the result is a failure
    std::optional<sysdb_item_datatype_td> updated_type;
};

// A token as the decoder gives it, with its texts.
[[nodiscard]] GivenToken given_token(const Token &token);

[[nodiscard]] Item integer_item(std::int32_t value);
[[nodiscard]] Item bag_item(Bag bag);

class Platform {
public:
    Platform();
    ~Platform();
    Platform(const Platform &) = delete;
    Platform &operator=(const Platform &) = delete;

    // The one that stands; ends the process loudly when there is none.
    static Platform &current();

    // ---- what was called ----
    [[nodiscard]] std::vector<std::string> calls(unsigned groups = Output | Walk) const;
    void forget(); // empties the lists, keeps script, trees, names and allocations
    [[nodiscard]] const std::vector<LogRecord> &logged() const { return log_; }
    [[nodiscard]] const std::vector<TraceRecord> &traced() const { return trace_; }
    // How often an operation was called, by the word in front of the parenthesis.
    [[nodiscard]] std::size_t count(const std::string &operation) const;
    // Breaches of the platform's contracts so far (double free, wrong handle, ...). RequestTest asserts that none is.
    [[nodiscard]] const std::vector<std::string> &faults() const { return faults_; }
    void fault(std::string what) { faults_.push_back(std::move(what)); }
    // Takes the faults away, for the test of a breach.
    [[nodiscard]] std::vector<std::string> take_faults() { return std::exchange(faults_, {}); }

    // ---- names and trees ----
    void name(const void *object, std::string name) { names_[object] = std::move(name); }
    [[nodiscard]] std::string name_of(const void *object) const;
    // A child array, which has the address of its first node: "children of aps-module".
    [[nodiscard]] std::string array_name_of(const void *array) const;
    // A tree in which nodes are named by path and to which relative adds add. It must outlive the platform's use.
    void attach(Tree &tree) { trees_.push_back(&tree); }
    void detach(const Tree &tree) { std::erase(trees_, &tree); }
    [[nodiscard]] Tree *tree_of(const void *node) const;
    [[nodiscard]] const std::vector<Tree *> &trees() const { return trees_; }

    // ---- script ----
    // From now on `operation` returns `result`: at its nth call only (from 1; 0: at every one), and only when the line
    // contains `containing`. The first rule that fits counts. An operation that fails so has no effect.
    void answer(std::string operation, std::uint32_t result, std::size_t nth = 0, std::string containing = "");
    // Runs before the effect of every call of `operation` whose line contains `containing`.
    void before(std::string operation, std::function<void(const std::string &line)> hook, std::string containing = "");
    bool relative_add_gives_node = true;
    std::map<std::string, std::optional<std::string>> node_info; // key name -> text of yfw_map_get_node_info
    kerrno node_info_result = KERR_SUCCESS;                      // returned although a text is given
    bool node_info_from_hierarchy = false; // the texts are those of the innermost entry, as the framework's are
    // What is appended to the line of an add or of one of the plug-in's own callbacks.
    std::function<std::string()> annotation;
    // What the plug-in's own callbacks do when the plug-in calls them (callbacks.cpp).
    enum class Callbacks {
        unseen,   // run, and no line is recorded
        recorded, // run
        scripted, // those of leaves and lists return what is scripted, else zero; the others run
    };
    Callbacks callbacks = Callbacks::unseen;

    // ---- database ----
    bool client_library_present = true;
    std::map<std::string, Item> items; // bind path + item path
    bool bind_gives_handle = true;
    // Listings: bind path + pattern -> names. Without one the list is empty.
    std::map<std::string, std::vector<std::string>> listings;
    // The bytes at this address decode as this bag (for calls with a bag of the test's own).
    void bag_at(const void *data, Bag bag);

    // ---- allocations ----
    [[nodiscard]] std::vector<std::string> heap() const; // outstanding: text and tag, "text (tag)"
    // An item that the database hands out; the program's own free (--wrap) tells when it comes back.
    void hand_out(const void *item) { items_out_.insert(item); }
    static void take_back(const void *item);
    void keep(const void *item) { items_out_.erase(item); } // the test has it now
    [[nodiscard]] std::size_t items_outstanding() const { return items_out_.size(); }
    [[nodiscard]] std::size_t tokens_outstanding() const { return tokens_.size(); }
    [[nodiscard]] std::size_t handles_outstanding() const { return handles_.size(); }
    [[nodiscard]] std::size_t lists_outstanding() const { return lists_.size(); }
    [[nodiscard]] std::size_t decoders_outstanding() const { return decoders_.size(); }

    // ---- framework state that operations keep ----
    struct StackEntry {
        kidl_yfw_datatree *children;
        std::int32_t count;
    };
    std::vector<StackEntry> itree_stack;
    std::vector<yfw_map_hierarchy_level> hierarchy;

    // ---- for the operations themselves ----
    // Appends a line, runs its hooks, gives the scripted result if there is one.
    std::optional<std::uint32_t> record(Group group, const std::string &operation, const std::string &arguments);
    void record_message(Group group, std::string line) { lines_.push_back({group, std::move(line)}); }
    void add_log(LogRecord record) { log_.push_back(std::move(record)); }
    void add_trace(TraceRecord record) { trace_.push_back(std::move(record)); }
    std::uint32_t draw_sequence_number() { return ++sequence_; }
    [[nodiscard]] std::uint32_t last_sequence_number() const { return sequence_; }
    char *duplicate(const char *text, const char *tag);
    void release(void *text);
    void keep_current_entry(yfw_map_ctx ctx, const char *list_path);

    struct Allocation {
        std::unique_ptr<char[]> text;
        std::string tag;
    };
    struct Decoder {
        Bag bag;
        std::size_t next = 0;
    };
    struct Listing {
        std::vector<std::string> names;
        std::size_t next = 0;
    };
    struct Numbered {
        std::size_t number = 0;
        std::string text;
    };
    std::map<const void *, Bag> bags_;
    std::map<const void *, std::unique_ptr<Decoder>> decoders_;
    std::vector<GivenToken> tokens_;
    std::map<const void *, std::unique_ptr<Numbered>> handles_; // text: the bind path
    std::map<const void *, std::unique_ptr<Listing>> lists_;
    std::size_t next_number = 1;

private:
    struct Line {
        Group group;
        std::string text;
    };
    struct Rule {
        std::string operation;
        std::uint32_t result;
        std::size_t nth;
        std::string containing;
    };
    struct Hook {
        std::string operation;
        std::function<void(const std::string &)> run;
        std::string containing;
    };
    std::vector<Line> lines_;
    std::map<std::string, std::size_t> counts_;
    std::vector<LogRecord> log_;
    std::vector<TraceRecord> trace_;
    std::vector<std::string> faults_;
    std::map<const void *, std::string> names_;
    std::vector<Tree *> trees_;
    std::vector<Rule> rules_;
    std::vector<Hook> hooks_;
    std::map<const void *, Allocation> heap_;
    std::set<const void *> items_out_;
    std::uint32_t sequence_ = 0;
    std::unique_ptr<Tree> current_entry_;
};

// Text of arguments, as the lines show them.
[[nodiscard]] std::string quoted(const char *text);
[[nodiscard]] std::string namespace_name(const char *uri);
[[nodiscard]] std::string namespace_of(const std::string &name); // the other way; another text is itself
[[nodiscard]] std::string hex(std::uint32_t number);

} // namespace fake

#endif

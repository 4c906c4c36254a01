/*
 * OpenConfig requests to a device, through a mapping plug-in: what is asked is translated, what the device answers is
 * mapped back.
 *
 * Threads: one service may be used by any number of threads at a time, and a process may hold any number of services.
 * Reads go on beside each other and beside an edit, each on one state of the device; edits wait for each other, in this
 * and any other process. A request runs on the thread that makes it. What a request returns belongs to the caller, may
 * outlive the service, and may be read by several threads.
 */
#ifndef OCPSM_FRAMEWORK_SERVICE_HPP
#define OCPSM_FRAMEWORK_SERVICE_HPP

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "framework/error.hpp"
#include "framework/journal.hpp"
#include "framework/kind.hpp"
#include "framework/lock.hpp"
#include "framework/operation.hpp"
#include "framework/request_tree.hpp"

namespace ocpsm {

class Device;
namespace native {
struct NetRequest;
}

enum class Format { json, xml };

// What becomes of leaves with a default of the model in an answer (RFC 6243, 2).
enum class Defaults {
    as_set,  // there where the device has them, whatever they say
    trimmed, // not there where they say what the default says
    all,     // configuration that the device does not have has its default
};

// What may be asked for with any request.
struct Options {
    bool check_values = true;             // check the values of an edit against the model before the plug-in sees them
    bool log = false;                     // keep the plug-in's debug log, both levels
    bool trace = false;                   // keep the plug-in's trace buffer
    Defaults defaults = Defaults::as_set; // of a read
};

// What every request comes back with.
struct Outcome {
    std::vector<std::string> warnings;
    std::vector<std::string> log;   // lines as the plug-in wrote them
    std::vector<std::string> trace; // lines as the plug-in wrote them
    std::optional<Error> error;     // none: the request was carried out
};

// ---- reads ----

// Instance paths, the value of a key with or without quotes: /aps/aps-modules/aps-module[name=0/1-PSM-OM]/config. No
// path: everything.
struct Paths {
    std::vector<std::string> paths;
};

// A text in XML (the content of a NETCONF <filter> or <config>, with or without what stands around it in a message) or
// JSON (RFC 7951), within the limits of docs/bench.md. A <get-config> reads no operational state; the default-operation
// of an <edit-config> comes before the options.
struct Text {
    std::string text;
};

// A tree that its maker has read already: the top nodes.
using Tree = std::vector<RequestNode>;

using Selection = std::variant<Paths, Text, Tree>;

// A leaf of an answer.
struct Leaf {
    std::string path;  // OpenConfig instance path
    std::string value; // as the model writes it

    bool operator==(const Leaf &) const = default;
};

// An answer, cut to what was selected, its values canonical. Copies share the data.
class Answer {
public:
    Answer();
    struct Data;
    explicit Answer(std::shared_ptr<const Data> data);

    bool empty() const;

    // In lines that are indented; nothing is no text in XML and "{}" in JSON (RFC 7951).
    std::string print(Format format) const;

    // In document order.
    std::vector<Leaf> leaves() const;

    // Of an answer that is not empty, for the framework itself.
    const Data &data() const { return *data_; }

private:
    std::shared_ptr<const Data> data_; // null: nothing
};

struct ReadResult : Outcome {
    Answer answer; // empty with an error, and when the device has nothing of what was selected
};

// ---- edits ----

// What happens to one node. Every list on the way needs its key.
struct PathEdit {
    std::string path;
    Operation operation = Operation::merge; // merge of a leaf, or delete or remove of any node
    std::string value = {};                 // of a leaf that is merged
};

using PathEdits = std::vector<PathEdit>;

// A node that several of the paths name is one node.
using Edit = std::variant<PathEdits, Text, Tree>;

// What becomes of a node without an operation of its own or of a node around it (RFC 6241, 7.2).
enum class DefaultOperation {
    merge,
    replace, // the whole configuration becomes what the edit says
    none,    // nothing: it only says where the nodes with an operation are
};

struct EditOptions : Options {
    DefaultOperation default_operation = DefaultOperation::merge;
    bool dry_run = false;  // do everything but the last step: the device stays as it is
    std::string user = {}; // who asks, for the journal: the door, and the user or peer there

    // Looks at what is to change before it is made to last; what it throws refuses the edit. None: everything may.
    std::function<void(const std::vector<Change> &changes)> check = {};
};

// What whoever reads twice finds changed, in document order.
std::vector<Change> changes_between(const Answer &before, const Answer &after);

struct DeviceOperation {
    Operation operation = Operation::merge; // merge of a list entry makes it; in a read always merge
    std::string path;                       // native instance path, each step by its name without prefix
    std::optional<std::string> value;       // of a leaf that is set
};

// What a device was asked in its own models. Copies share the data.
class DeviceRequest {
public:
    DeviceRequest();
    explicit DeviceRequest(std::shared_ptr<const native::NetRequest> request);

    // In document order: a node's own operation, then what is below it.
    std::vector<DeviceOperation> operations() const;

    // A NETCONF <filter> or <config> with the request in it, or a JSON object (RFC 7951, RFC 7952), with a line end.
    // Throws Error (invalid-value) for a text that the format cannot carry.
    std::string print(Format format) const;

private:
    std::shared_ptr<const native::NetRequest> request_; // never null
};

struct EditResult : Outcome {
    DeviceRequest native;
    std::vector<Change> changes; // of the configuration of the modules that were touched, in document order
};

// ---- translations ----

// One call of the platform's add operation.
struct Addition {
    std::string path; // as the plug-in gave it
    std::string namespace_uri;
    std::optional<std::string> value;          // none differs from the empty text
    std::optional<Operation> source_operation; // the operation of the source node, none without a source
    std::uint32_t first_flag = 0;
    std::uint32_t second_flag = 0;
    bool relative = false;  // below a node of the request itself (a path without a leading slash)
    std::string walker;     // the exported function that was walking
    std::string conversion; // the conversion that added; empty outside one
    std::string result;     // "KERR_SUCCESS", or the name of the code with which the add failed
};

struct TranslateResult : Outcome {
    std::vector<DeviceRequest> requests; // of a read one per instance that it names; of an edit one, or none
    std::vector<Addition> additions;     // in the order of the calls; none without Options::trace
    std::string result;                  // of the plug-in: "KERR_SUCCESS", "YMAP_ERR_UNSUPPORTED", ...
};

// ---- the service ----

class Service {
public:
    // Loads a mapping plug-in. The database client that it reads must be loaded by then (a device of the simulator has
    // done that). Throws Error (input) with the loader's reason. Without a device there are translations only.
    explicit Service(const std::filesystem::path &plugin, std::shared_ptr<Device> device = nullptr);
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;
    ~Service();

    /*
     * A request that never reaches the plug-in throws Error: `input` for a text or path that cannot be read, `refused`,
     * with its OpenConfig path, for one that the model does not allow. What is refused later is in the result, and
     * nothing has changed.
     */

    // `kind` is get or get_config.
    ReadResult read(const Selection &selection, Kind kind, const Options &options = {}) const;

    // Whole or not at all. A module that is named has to be in place.
    EditResult edit(const Edit &edit, const EditOptions &options = {}) const;

    // What a request becomes, without doing it.
    TranslateResult translate(const Text &request, Kind kind, const Options &options = {}) const;

    // What has happened to the device: the entries behind the one with the sequence number `after`, oldest first, at
    // most `most`. Of an `after` that has been dropped already, the oldest there are.
    std::vector<JournalEntry> journal(std::uint64_t after, std::size_t most) const;

    // The sequence number of the youngest entry, 0 while there is none.
    std::uint64_t last_sequence() const;

    // Keeps everybody else from editing for as long as the result lives: edits of other processes are in-use. It is
    // this process's, whose other edits go on; its end frees it, however it comes. Waits for edits that are under way.
    // Throws Error: lock-denied, with the holder, where it is held, by this process too.
    std::shared_ptr<void> lock() const;

    std::optional<LockHolder> lock_holder() const;

    // An XML text within the limits of a request as it was written, with all that stands around a request in it. The
    // nodes of a filter or an edit among them may be read or edited as they are. Throws Error (input).
    static Tree elements_of(const Text &text);

    // What a text itself says about its kind: nothing where it may be any.
    static std::optional<Kind> kind_of(const Text &request) noexcept;

    // The exported object or function of the plug-in, null when there is none.
    void *find(const std::string &name) const;

private:
    struct Parts;
    std::unique_ptr<const Parts> parts_;
};

} // namespace ocpsm

#endif

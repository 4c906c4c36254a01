// Requests to a line system through the real plug-in.
#ifndef TESTS_FRAMEWORK_SESSION_FIXTURE_HPP
#define TESTS_FRAMEWORK_SESSION_FIXTURE_HPP

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "framework/error.hpp"
#include "framework/native/native_data.hpp"
#include "framework/requests.hpp"
#include "native/native_test.hpp"
#include "simulator/database/client_library.hpp"
#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"
#include "simulator/line_system/temporary_state.hpp"

using Lines = std::vector<std::string>;

// A request with this content in /aps/aps-modules.
inline std::string modules_text(const std::string &content) {
    return "<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
           "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules>" +
           content + "</aps-modules></aps>";
}

inline std::string module_text(const std::string &name, const std::string &content,
                               const std::string &attributes = {}) {
    return "<aps-module" + attributes + "><name>" + name + "</name>" + content + "</aps-module>";
}

inline std::string module_text(int slot, const std::string &content, const std::string &attributes = {}) {
    return module_text("0/" + std::to_string(slot) + "-PSM-OM", content, attributes);
}

// "/aps/aps-modules/aps-module[name='0/1-PSM-OM']" and what follows it.
inline std::string module_path(int slot, const std::string &below = {}) {
    return "/aps/aps-modules/aps-module[name='0/" + std::to_string(slot) + "-PSM-OM']" + below;
}

// Requests in a transaction, from the text to the result. A text holds what stands in /aps/aps-modules, unless it
// begins with /aps itself.
namespace requests {

using ocpsm::DeviceTransaction;
using ocpsm::EditOptions;
using ocpsm::EditResult;
using ocpsm::Kind;
using ocpsm::Options;
using ocpsm::ReadResult;
using ocpsm::framework::Plugin;

ReadResult read(const Plugin &plugin, const std::string &text, Kind kind, DeviceTransaction &device,
                const Options &options = {});
ReadResult read_paths(const Plugin &plugin, const std::vector<std::string> &paths, Kind kind, DeviceTransaction &device,
                      const Options &options = {});
EditResult edit(const Plugin &plugin, const std::string &text, DeviceTransaction &device,
                const EditOptions &options = {});
EditResult set_leaf(const Plugin &plugin, const std::string &path, const std::string &value, DeviceTransaction &device);
EditResult delete_node(const Plugin &plugin, const std::string &path, DeviceTransaction &device);

} // namespace requests

// Leaves in document order, a line for those beside each other: "1/config: name = 0/1-PSM-OM, revertive = true" in the
// slot of the module.
Lines grouped(const std::vector<ocpsm::Leaf> &leaves);
Lines leaves_of(const ocpsm::Answer &answer);

// An instance path below a module, begun with the module's slot: "1/config/revertive"; any other path as it is.
std::string short_path(const std::string &path);

// "tag|location|message|advice|offending node"; "none" without an error.
std::string refusal_of(const ocpsm::Outcome &outcome);

// How often the trace of a request tells of a walk of the client's tree; other walks are the framework's own.
int root_walks(const ocpsm::Outcome &outcome);

// A line system with modules that nobody has set anything of.
inline ocpsm::line_system::LineSystem bare(const std::vector<int> &slots) {
    return ocpsm::line_system::with_modules(slots);
}

// The changes of an edit: "1/config/revertive: true -> -".
Lines changes_of(const ocpsm::EditResult &result);

class SessionFixture : public testing::Test {
protected:
    using Kind = ocpsm::Kind;
    using LineSystem = ocpsm::line_system::LineSystem;

    // The plug-in stays loaded, so that a leak report can name its functions.
    static const ocpsm::framework::Plugin &plugin();

    void SetUp() override { use(ocpsm::line_system::example()); }

    // The line system that the next requests go to; the store is left as it was made.
    void use(const LineSystem &system);

    ocpsm::DeviceTransaction &device() { return *device_; }
    LineSystem system() const { return ocpsm::line_system::load(*transaction_); }

    // A read of a path, or of what a text holds in /aps/aps-modules. A path may begin with a module's slot.
    ocpsm::ReadResult read(const std::string &what, Kind kind = Kind::get, const ocpsm::Options &options = {});

    // The leaves of an answer without error and warning.
    Lines get(const std::string &what) { return answered(read(what, Kind::get)); }
    Lines get_config(const std::string &what) { return answered(read(what, Kind::get_config)); }

    // An edit of what a text holds in /aps/aps-modules; of everything, when it holds /aps itself.
    ocpsm::EditResult edit(const std::string &text, const ocpsm::EditOptions &options = {}) {
        return requests::edit(plugin(), text, device(), options);
    }

    // The changes of an edit that must succeed.
    Lines changes(const std::string &text) { return changes_of(successful(edit(text))); }
    static ocpsm::EditResult successful(ocpsm::EditResult result);

    // What a refused edit is answered with; nothing may have changed.
    std::string refused(const std::string &text);

    // No edit that finds something to do.
    void expect_nothing_done(const std::string &text);

    void TearDown() override;

private:
    Lines answered(const ocpsm::ReadResult &result);

    std::optional<ocpsm::sysdb::Client> client_;
    std::optional<ocpsm::line_system::TemporaryState> state_;
    std::unique_ptr<ocpsm::sysdb::WriteTransaction> transaction_;
    std::optional<ocpsm::line_system::LineSystemDevice> device_;
};

// A device that answers from what a test has written down, as native_test::net_text shows it.
class HeldDevice : public ocpsm::DeviceTransaction {
public:
    explicit HeldDevice(const std::string &held) : held_(native_test::read_net(held)) {}

    ocpsm::native::NativeData answer(const ocpsm::native::NetRequest &read) override;
    std::vector<std::string> apply(const ocpsm::native::NetRequest &edit) override;
    void record(const std::string & /*user*/, const std::vector<ocpsm::Change> & /*changes*/) override {}
    void commit() override {}

    // How an edit is refused; none: it is accepted, and changes nothing.
    std::optional<ocpsm::Error> refusal;
    // Answers with all that it holds, whatever is asked for.
    bool answers_everything = false;
    std::vector<std::string> edits; // the paths of the operations of all edits

private:
    ocpsm::native::NativeData held_;
};

#endif

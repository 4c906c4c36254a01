// What the tests of native requests share: the native names, written out once more, and short ways to add and compare.
#ifndef TESTS_NATIVE_NATIVE_TEST_HPP
#define TESTS_NATIVE_NATIVE_TEST_HPP

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "framework/native/native_data.hpp"
#include "framework/native/native_request.hpp"

namespace native_test {

inline constexpr char ifmgr[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-ifmgr-cfg";
inline constexpr char optics[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-optics-cfg";
inline constexpr char mda[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-config-mda-cfg";
inline constexpr char ots[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-tlm2200-ots-cfg";
inline constexpr char ots_oper[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-controller-tlm2200-ots-oper";
inline constexpr char pm[] = "http://vexlo.example/ns/yang/Vexlo-ORBIT-pmengine-oper";

inline const std::string node_path = "/active-nodes/active-node";
inline const std::string slot_path = "/active-nodes/active-node/slot";
inline const std::string psm_path = "/active-nodes/active-node/slot/psm";
inline const std::string interface_path = "/interface-configurations/interface-configuration";
inline const std::string optics_path = "/interface-configurations/interface-configuration/optics";
inline const std::string threshold_path =
    "/interface-configurations/interface-configuration/optics/rx-thresholds/rx-threshold";
inline const std::string port_path = "/ots-oper/ots-ports/ots-port";
inline const std::string info_path = "/ots-oper/ots-ports/ots-port/ots-info";
inline const std::string history_path =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history";
inline const std::string second30_path =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
    "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history";
inline const std::string time_line_path =
    "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
    "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history"
    "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance";

using Value = std::optional<std::string_view>;
inline constexpr Value none = std::nullopt;

// Operations of a source node.
inline constexpr std::uint32_t merge = 0;
inline constexpr std::uint32_t replace = 1;
inline constexpr std::uint32_t create = 2;
inline constexpr std::uint32_t erase = 3;
inline constexpr std::uint32_t remove = 4;

// A request that fails the test when an add fails.
class Request : public ocpsm::native::NativeRequest {
public:
    using NativeRequest::NativeRequest;

    void put(const std::string &path, const char *namespace_uri, Value value, std::uint32_t operation, bool opens,
             ocpsm::native::Origin origin);
};

inline Request edit() {
    return Request(ocpsm::native::RequestKind::edit);
}
inline Request read() {
    return Request(ocpsm::native::RequestKind::read);
}

// "source tag at native path: message | advice" of the error that a call ends with, "none" without one.
std::string error_of(const std::function<void()> &call);

// What a call makes, or the error that it ends with.
std::string text_or_error(const std::function<std::string()> &make);

// A net request: a node that has nothing but one inner node below it is followed by that, NODE/NODE; any other by its
// leaves behind ": " and by its inner nodes on lines of their own, two blanks deeper.
//   NODE  NAME, of an entry [KEY,...] ("?" selected, "-" not named), "+" made, <OPERATION> unless it is merge
//   LEAF  NAME, ='VALUE' when it has one, <OPERATION>
std::string net_text(std::span<const ocpsm::native::NativeNode> roots);

// Data that a device holds, as net_text shows it; its values and keys hold no comma.
ocpsm::native::NativeData read_net(const std::string &text);

// A line per step of the net request: the operation's name, the path and, when there is one, "= value".
std::string steps(const ocpsm::native::NativeRequest &request);

} // namespace native_test

#endif

#include "simulator/line_system/native_side.hpp"

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "native/shown_data.hpp"
#include "simulator/line_system/operations.hpp"

namespace ocpsm::line_system {
namespace {

using native_test::shown;

// The same lines, deeper.
std::string below(const std::string &name, const std::vector<std::string> &parts) {
    std::string out = name + "\n";
    for (const std::string &part : parts) {
        for (std::size_t start = 0; start < part.size();) {
            const std::size_t end = part.find('\n', start) + 1;
            out.append("  ").append(part, start, end - start);
            start = end;
        }
    }
    return out;
}

std::string leaf(const std::string &name, const std::string &value) {
    return name + "=|" + value + "|\n";
}

std::string interface(const std::string &active, const std::string &name, const std::string &optics = "") {
    return below("interface-configuration", {leaf("active", active), leaf("interface-name", name), optics});
}

std::string optics(const std::string &low, const std::string &rx, const std::string &delta, const std::string &tx) {
    return below(
        "optics",
        {below("rx-thresholds", {below("rx-threshold", {leaf("rx-threshold-type", "low"), leaf("rx-threshold", low)})}),
         leaf("optics-ots-rx-voa-attenuation", rx),
         delta.empty() ? "" : leaf("optics-ots-rx-low-threshold-delta", delta),
         leaf("optics-ots-tx-voa-attenuation", tx)});
}

std::string node(const std::string &name, const std::vector<std::string> &slots) {
    std::vector<std::string> parts{leaf("node-name", "0/RP0/CPU0")};
    parts.insert(parts.end(), slots.begin(), slots.end());
    return below(name + "s", {below(name, parts)});
}

const std::string first_slot = below(
    "slot",
    {leaf("slot-id", "1"),
     below("psm", {below("relative-switch-threshold", {leaf("psm-relative-switch-threshold", "0"),
                                                       leaf("psm-relative-switch-threshold-offset", "0")}),
                   below("revertive", {leaf("enable", "true"), leaf("wtr", "10000")}), leaf("lockout-from", "")})});

const std::string third_slot = below(
    "slot",
    {leaf("slot-id", "3"),
     below("psm", {below("relative-switch-threshold", {leaf("psm-relative-switch-threshold", "30"),
                                                       leaf("psm-relative-switch-threshold-offset", "5")}),
                   below("revertive", {leaf("enable", "false"), leaf("wtr", "300000")}), leaf("lockout-from", "")})});

const std::string first_interfaces = interface("act", "Ots0/1/0/1", optics("-250", "25", "10", "10")) +
                                     interface("act", "Ots0/1/0/2", optics("-280", "15", "", "10"));

std::string lane(const std::string &transmit, const std::string &receive) {
    return below("lane-data", {leaf("transmit-power", transmit), leaf("receive-power", receive),
                               leaf("transmit-power-dbm", transmit), leaf("receive-power-dbm", receive)});
}

std::string port(const std::string &name, const std::vector<std::string> &info) {
    return below("ots-port", {leaf("name", name), below("ots-info", info)});
}

std::string statistics(const std::string &name, const std::array<const char *, 3> &values) {
    return below(name, {leaf("minimum", values[0]), leaf("average", values[1]), leaf("maximum", values[2])});
}

std::string history(const std::string &name, const std::array<const char *, 3> &opt,
                    const std::array<const char *, 3> &opr) {
    const std::string instance = below("optics-second30-optics-time-line-instance",
                                       {leaf("number", "1"), statistics("opt", opt), statistics("opr", opr)});
    return below("optics-port-history",
                 {leaf("name", name),
                  below("optics-second30-history",
                        {below("optics-second30-optics-histories",
                               {below("optics-second30-optics-history",
                                      {leaf("number", "1"),
                                       below("optics-second30-optics-time-line-instances", {instance})})})})});
}

std::string histories(const std::vector<std::string> &entries) {
    return below(
        "performance-management-history",
        {below("global", {below("periodic", {below("optics-history", {below("optics-port-histories", entries)})})})});
}

std::string optics_port(const std::string &name) {
    return below("optics-port", {leaf("name", name)});
}

std::string ports(const std::vector<std::string> &entries) {
    return below("ots-oper", {below("ots-ports", entries)});
}

std::string optics_ports(const std::vector<std::string> &entries) {
    return below("optics-oper", {below("optics-ports", entries)});
}

const std::vector<std::string> third_ports = {
    port("Ots0/3/0/1",
         {lane("-251", "-4000"), leaf("tx-voa-attenuation", "0"), leaf("rx-voa-attenuation", "0"),
          leaf("port-status", "standby"), leaf("rx-low-threshold", "-265"), leaf("rx-thr-fail-low-delta-val", "15")}),
    port("Ots0/3/0/2", {lane("-248", "-1659"), leaf("tx-voa-attenuation", "0"), leaf("rx-voa-attenuation", "75"),
                        leaf("port-status", "active"), leaf("rx-low-threshold", "-300")})};

const std::vector<std::string> third_histories = {
    history("Ots0/3/0/1", {"    -2.56 ", "    -2.50 ", "    -2.44 "}, {"   -40.00 ", "   -40.00 ", "   -40.00 "}),
    history("Ots0/3/0/2", {"    -2.55 ", "    -2.47 ", "    -2.40 "}, {"   -16.83 ", "   -16.61 ", "   -16.40 "})};

const std::string third_interfaces = interface("act", "Ots0/3/0/1", optics("-265", "0", "15", "0")) +
                                     interface("act", "Ots0/3/0/2", optics("-300", "8", "", "0"));

TEST(NativeData, OfTheExample) {
    EXPECT_EQ(
        shown(native_data(example())),
        below("interface-configurations", {first_interfaces, third_interfaces}) +
            node("active-node", {first_slot, third_slot}) +
            ports({port("Ots0/1/0/1", {lane("-215", "-1234"), leaf("tx-voa-attenuation", "100"),
                                       leaf("rx-voa-attenuation", "250"), leaf("port-status", "active"),
                                       leaf("rx-low-threshold", "-250"), leaf("rx-thr-fail-low-delta-val", "10")}),
                   port("Ots0/1/0/2",
                        {lane("-223", "-1587"), leaf("tx-voa-attenuation", "100"), leaf("rx-voa-attenuation", "150"),
                         leaf("port-status", "standby"), leaf("rx-low-threshold", "-280")}),
                   third_ports[0], third_ports[1]}) +
            optics_ports({optics_port("Ots0/1/0/1"), optics_port("Ots0/1/0/2"), optics_port("Ots0/3/0/1"),
                          optics_port("Ots0/3/0/2")}) +
            histories({history("Ots0/1/0/1", {"    -2.20 ", "    -2.14 ", "    -2.09 "},
                               {"   -12.51 ", "   -12.30 ", "   -12.18 "}),
                       history("Ots0/1/0/2", {"    -2.31 ", "    -2.22 ", "    -2.17 "},
                               {"   -16.12 ", "   -15.90 ", "   -15.77 "}),
                       third_histories[0], third_histories[1]}));
}

// What is configured stands under "pre" and a preconfigured node; what was operational is gone.
TEST(NativeData, OfAPulledModuleIsConfiguredInAdvance) {
    EXPECT_EQ(shown(native_data(pull(example(), 1))),
              below("interface-configurations",
                    {third_interfaces, interface("pre", "Ots0/1/0/1", optics("-250", "25", "10", "10")),
                     interface("pre", "Ots0/1/0/2", optics("-280", "15", "", "10"))}) +
                  node("active-node", {third_slot}) + node("preconfigured-node", {first_slot}) + ports(third_ports) +
                  optics_ports({optics_port("Ots0/3/0/1"), optics_port("Ots0/3/0/2")}) + histories(third_histories));
}

TEST(NativeData, OfAModuleThatIsFittedAgainHasItsSettings) {
    const std::string data = shown(native_data(fit(pull(example(), 1), 1)));
    EXPECT_EQ(data.substr(0, data.find("ots-oper")),
              below("interface-configurations", {first_interfaces, third_interfaces}) +
                  node("active-node", {first_slot, third_slot}));
    // It has seen no full interval yet.
    EXPECT_EQ(data.substr(data.find("performance-management-history")), histories(third_histories));
}

TEST(NativeData, HoldsNothingOfWhatIsAbsent) {
    EXPECT_EQ(shown(native_data({})), node("active-node", {}));
    const LineSystem fresh = with_modules(std::array{2});
    const std::string configuration =
        below("interface-configurations", {interface("act", "Ots0/2/0/1"), interface("act", "Ots0/2/0/2")}) +
        node("active-node", {below("slot", {leaf("slot-id", "2")})}) +
        ports({port("Ots0/2/0/1", {lane("-240", "-1250"), leaf("tx-voa-attenuation", "0"),
                                   leaf("rx-voa-attenuation", "0"), leaf("port-status", "active")}),
               port("Ots0/2/0/2", {lane("-240", "-1450"), leaf("tx-voa-attenuation", "0"),
                                   leaf("rx-voa-attenuation", "0"), leaf("port-status", "standby")})}) +
        optics_ports({optics_port("Ots0/2/0/1"), optics_port("Ots0/2/0/2")});
    EXPECT_EQ(shown(native_data(fresh)), configuration);
    EXPECT_EQ(shown(native_data(tick(fresh, 30'000))),
              configuration + histories({history("Ots0/2/0/1", {"    -2.40 ", "    -2.40 ", "    -2.40 "},
                                                 {"   -12.50 ", "   -12.50 ", "   -12.50 "}),
                                         history("Ots0/2/0/2", {"    -2.40 ", "    -2.40 ", "    -2.40 "},
                                                 {"   -14.50 ", "   -14.50 ", "   -14.50 "})}));
}

TEST(NativeData, HoldsThresholdsAsTheyAreNamed) {
    LineSystem system = with_modules(std::array{2});
    slot(system, 2).lines[1].rx_thresholds = {{"high", 25}, {"a <b>", -1}, {"low", std::nullopt}};
    const std::string data = shown(native_data(system));
    EXPECT_EQ(
        data.substr(0, data.find("active-nodes")),
        below(
            "interface-configurations",
            {interface("act", "Ots0/2/0/1"),
             interface(
                 "act", "Ots0/2/0/2",
                 below("optics",
                       {below("rx-thresholds",
                              {below("rx-threshold", {leaf("rx-threshold-type", "a <b>"), leaf("rx-threshold", "-1")}),
                               below("rx-threshold", {leaf("rx-threshold-type", "high"), leaf("rx-threshold", "25")}),
                               below("rx-threshold", {leaf("rx-threshold-type", "low")})})}))}));
    EXPECT_EQ(data.find("rx-low-threshold"), std::string::npos);
}

TEST(NativeData, NamesTheLineThatCarriesTheTraffic) {
    const auto status_of = [](const std::string &controller) {
        const std::string data = shown(native_data(tick(cut(example(), 1, Path::primary), 100)));
        const std::size_t entry = data.find("name=|" + controller + "|", data.find("ots-ports"));
        const std::size_t status = data.find("port-status", entry);
        return data.substr(status, data.find('\n', status) - status);
    };
    EXPECT_EQ(status_of("Ots0/1/0/1"), "port-status=|standby|");
    EXPECT_EQ(status_of("Ots0/1/0/2"), "port-status=|active|");
}

} // namespace
} // namespace ocpsm::line_system

// What a client is answered of the example's modules, worked out by hand from the numbers of the example: its slots in
// simulator/line_system/line_system.cpp, in hundredths and tenths there and in the comments here.
#ifndef TESTS_CIRCLE_EXAMPLE_ANSWERS_HPP
#define TESTS_CIRCLE_EXAMPLE_ANSWERS_HPP

#include <string>
#include <utility>
#include <vector>

namespace circle {

// The values of a port, in the order of an answer; an empty one is not answered.
struct PortAnswer {
    std::string port;
    std::string target; // attenuation that is set: configuration, and told again as state
    std::string attenuation;
    std::string instant; // powers
    std::string avg = {};
    std::string min = {};
    std::string max = {};
};

// The leaves of a module, "1/config/revertive = true" in its slot. Settings are configuration, and told again as state.
inline std::vector<std::string> module_answer(const std::string &slot,
                                              const std::vector<std::pair<std::string, std::string>> &settings,
                                              const std::string &active_path, const std::vector<PortAnswer> &ports) {
    std::vector<std::string> lines;
    const auto add = [&](const std::string &leaf, const std::string &value) {
        if (!value.empty()) {
            lines.push_back(slot + "/" + leaf + " = " + value);
        }
    };
    const std::string name = "0/" + slot + "-PSM-OM";
    add("name", name);
    for (const std::string container : {"config/", "state/"}) {
        add(container + "name", name);
        for (const auto &[leaf, value] : settings) {
            add(container + leaf, value);
        }
    }
    add("state/active-path", "openconfig-transport-line-protection:" + active_path);
    for (const auto &[port, target, attenuation, instant, avg, min, max] : ports) {
        add("ports/" + port + "/config/target-attenuation", target);
        add("ports/" + port + "/state/target-attenuation", target);
        add("ports/" + port + "/state/attenuation", attenuation);
        add("ports/" + port + "/state/optical-power/instant", instant);
        add("ports/" + port + "/state/optical-power/avg", avg);
        add("ports/" + port + "/state/optical-power/min", min);
        add("ports/" + port + "/state/optical-power/max", max);
    }
    return lines;
}

// Those of its leaves that stand in config, and the name.
inline std::vector<std::string> configuration(std::vector<std::string> module) {
    std::erase_if(module, [](const std::string &line) { return line.find("/state/") != std::string::npos; });
    return module;
}

// clang-format off
inline const std::vector<std::string> first_answer = module_answer("1", {
    {"revertive", "true"},
    {"wait-to-restore-time", "10000"},
    {"primary-switch-threshold", "-25.0"},   // low threshold of the primary line: -250 tenths
    {"primary-switch-hysteresis", "1.0"},    // its margin: 10 tenths
    {"secondary-switch-threshold", "-28.0"}, // low threshold of the secondary line: -280 tenths
    {"relative-switch-threshold", "0.0"},
    {"relative-switch-threshold-offset", "0.0"},
    {"force-to-port", "NONE"},               // lock-out from neither line, the empty text
}, "PRIMARY", {                              // where a module begins
    // 25 tenths, 250; the whole fibre delivers -1234; history of port 1, received: -1230
    {"line-primary-in", "2.5", "2.5", "-12.34", "-12.3", "-12.51", "-12.18"},
    // 10 tenths, 100; client 405 - 100, offset -520: -215; history of port 1, transmitted: -214
    {"line-primary-out", "1.0", "1.0", "-2.15", "-2.14", "-2.2", "-2.09"},
    // 15 tenths, 150; fibre: -1587; history of port 2, received: -1590
    {"line-secondary-in", "1.5", "1.5", "-15.87", "-15.9", "-16.12", "-15.77"},
    // 10 tenths, 100; client 405 - 100, offset -528: -223; history of port 2, transmitted: -222
    {"line-secondary-out", "1.0", "1.0", "-2.23", "-2.22", "-2.31", "-2.17"},
    // primary -1234 - 250, offset 2: -1482; history of port 0, transmitted: -1480
    {"common-output", "", "", "-14.82", "-14.8", "-14.95", "-14.71"},
});

inline const std::vector<std::string> third_answer = module_answer("3", {
    {"revertive", "false"},
    {"wait-to-restore-time", "300000"},
    {"primary-switch-threshold", "-26.5"},       // -265 tenths
    {"primary-switch-hysteresis", "1.5"},        // 15 tenths
    {"secondary-switch-threshold", "-30.0"},     // -300 tenths
    {"relative-switch-threshold", "3.0"},        // 30 tenths
    {"relative-switch-threshold-offset", "0.5"}, // 5 tenths
    {"force-to-port", "NONE"},
}, "SECONDARY", {
    // Set to 0, so it is answered; the fibre is cut: dark; history of port 1, received: dark
    {"line-primary-in", "0.0", "0.0", "-40.0", "-40.0", "-40.0", "-40.0"},
    // client 88 - 0, offset -339: -251; history of port 1, transmitted: -250
    {"line-primary-out", "0.0", "0.0", "-2.51", "-2.5", "-2.56", "-2.44"},
    // Set to 8 tenths, came to rest at 75; fibre: -1659; history of port 2, received: -1661
    {"line-secondary-in", "0.8", "0.75", "-16.59", "-16.61", "-16.83", "-16.4"},
    // client 88 - 0, offset -336: -248; history of port 2, transmitted: -247
    {"line-secondary-out", "0.0", "0.0", "-2.48", "-2.47", "-2.55", "-2.4"},
    // secondary -1659 - 75, offset -27: -1761; history of port 0, transmitted: -1760
    {"common-output", "", "", "-17.61", "-17.6", "-17.74", "-17.52"},
});
// clang-format on

} // namespace circle

#endif

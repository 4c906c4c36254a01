#include "servers/netconf/modules.hpp"

#include <array>
#include <cstdint>
#include <cstdio>

namespace ocpsm::netconf {

namespace {

constexpr std::string_view base = "urn:ietf:params:netconf:";

// What a statement of a module says, the first of that name.
std::string_view said(std::string_view text, std::string_view statement) {
    text.remove_prefix(text.find("\n  " + std::string(statement) + " ") + statement.size() + 4);
    text = text.substr(0, text.find_first_of(";{"));
    const std::size_t begin = text.find_first_not_of(" \"");
    return text.substr(begin, text.find_last_not_of(" \"") + 1 - begin);
}

YangModule model_of(const ModuleText &module) {
    const auto says = [&module](std::string_view statement) { return std::string(said(module.text, statement)); };
    return {std::string(module.name), says("revision"), says("prefix"), says("namespace"), std::string(module.text)};
}

} // namespace

const std::vector<YangModule> &modules() {
    static const std::vector<YangModule> all = [] {
        std::vector<YangModule> models{Model::openconfig()};
        for (const ModuleText &module : embedded_modules()) {
            models.push_back(model_of(module));
        }
        return models;
    }();
    return all;
}

std::vector<std::string> capabilities() {
    std::vector<std::string> all;
    for (const char *own : {"base:1.0", "base:1.1", "capability:writable-running:1.0",
                            "capability:rollback-on-error:1.0", "capability:validate:1.1", "capability:xpath:1.0",
                            "capability:with-defaults:1.0?basic-mode=explicit&also-supported=report-all,trim",
                            "capability:notification:1.0", "capability:interleave:1.0"}) {
        all.push_back(std::string(base) + own);
    }
    for (const YangModule &model : modules()) {
        if (model.name == "ietf-yang-library") {
            all.push_back(std::string(base) + "capability:yang-library:1.1?revision=" + model.revision +
                          "&content-id=" + content_id());
        }
    }
    for (const YangModule &model : modules()) {
        all.push_back(model.namespace_uri + "?module=" + model.name + "&revision=" + model.revision);
    }
    return all;
}

// FNV-1a, 64 bits.
std::string content_id() {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const YangModule &model : modules()) {
        for (const char c : model.name + "@" + model.revision + "\n") {
            hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
        }
    }
    std::array<char, 17> digits{};
    static_cast<void>(std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash)));
    return digits.data();
}

} // namespace ocpsm::netconf

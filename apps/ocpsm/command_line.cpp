#include "command_line.hpp"

#include "device.hpp"

namespace ocpsm {

std::filesystem::path Program::plugin_file() const {
    return plugin.empty() ? library_directory() / "oc-psm.so" : plugin;
}

CLI::Validator one_of(const std::vector<std::string> &values) {
    return CLI::IsMember(values).description("");
}

void add_state_option(CLI::App &command, std::optional<std::string> &state) {
    command
        .add_option("--state", state,
                    "The directory of the line system, else $OCPSM_STATE, $XDG_STATE_HOME/ocpsm or "
                    "~/.local/state/ocpsm")
        ->type_name("DIR");
}

void add_format_option(CLI::App &command, std::string &format, const std::string &help) {
    command.add_option("--format", format, help)->type_name("json|xml")->check(one_of({"json", "xml"}));
}

std::optional<Format> format_named(const std::string &name) {
    if (name.empty()) {
        return std::nullopt;
    }
    return name == "json" ? Format::json : Format::xml;
}

} // namespace ocpsm

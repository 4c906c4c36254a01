#include "command_line.hpp"

#include <charconv>

#include "framework/text.hpp"
#include "libraries.hpp"

namespace ocpsm {

std::filesystem::path Program::plugin_file() const {
    return plugin.empty() ? own_plugin() : plugin;
}

CLI::Validator one_of(const std::vector<std::string> &values) {
    return CLI::IsMember(values).description("");
}

CLI::Validator whole_number(std::uint64_t minimum, std::uint64_t maximum) {
    return CLI::Validator(
        [=](const std::string &text) -> std::string {
            const std::size_t sign = text.starts_with('-') ? 1 : 0;
            const std::string_view digits = std::string_view(text).substr(sign);
            if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) {
                return one_line(text) + " is no whole number";
            }
            std::uint64_t number = 0;
            const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
            const bool below = sign != 0 && number != 0;
            if (failure != std::errc() || below || number < minimum || number > maximum) {
                return one_line(text) + " is not within " + std::to_string(minimum) + " to " + std::to_string(maximum);
            }
            return {};
        },
        "");
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

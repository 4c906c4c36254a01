#include "table_words.hpp"

#include <algorithm>
#include <utility>

#include "native_models.hpp"

namespace ocpsm {
namespace {

constexpr UnsupportedRow unsupported_table[] = {
#define OCPSM_UNSUPPORTED(path, reason) {path, reason},
#include "unsupported_nodes.def"
#undef OCPSM_UNSUPPORTED
};

constexpr std::pair<std::string_view, std::string_view> step_texts[] = {
    {"revertive", "the leaf in the module's slot"},
    {"wait_to_restore", "the leaf in the module's slot"},
    {"slot_setting", "the leaf in the module's slot"},
    {"force_to_port", "the leaf in the module's slot"},
    {"attenuation", "in edits the interface entry of the port's controller; then the leaf"},
    {"hysteresis", "the interface entry of the port's controller; then the leaf"},
    {"primary_threshold", "the interface entry of the port's controller; threshold type \"low\" and the leaf"},
    {"secondary_threshold", "the interface entry of the port's controller; threshold type \"low\" and the leaf"},
    {"state_leaf", "in reads a selection of the leaf"},
    {"state_force_to_port", "in reads a selection of the leaf"},
    {"state_power", "in reads selections of the leaf and of its twin in dBm"},
    {"state_history", "in reads a selection of the leaf in time-line instance 1"},
};

} // namespace

std::span<const UnsupportedRow> unsupported_rows() {
    return unsupported_table;
}

std::string schema_path(const UnsupportedRow &row) {
    return std::string(YMAP_MODULE "/").append(row.path);
}

std::string describe_value(const ConversionRow &row, std::string_view units) {
    const auto scaled = [&](std::string_view step, std::string_view factor) {
        return std::string(step).append(units.empty() ? "" : " ").append(units).append(", ").append(factor);
    };
    if (row.value == "tenths") {
        return scaled("0.1", "x10");
    }
    if (row.value == "hundredths") {
        return scaled("0.01", "x100");
    }
    if (row.value == "lockout") {
        return "PRIMARY: protected, SECONDARY: working, NONE: empty";
    }
    if (row.value == "empty") {
        return "selection only";
    }
    return units.empty() ? std::string("as it stands") : std::string(units).append(", as it stands");
}

std::string_view describe_steps(std::string_view steps) {
    const auto *const text = std::find_if(std::begin(step_texts), std::end(step_texts),
                                          [&](const auto &pair) { return pair.first == steps; });
    return text == std::end(step_texts) ? steps : text->second;
}

std::string describe_answer_value(std::string_view value, std::string_view units) {
    const auto scaled = [&](std::string_view step, std::string_view divisor) {
        return std::string(step).append(units.empty() ? "" : " ").append(units).append(", ").append(divisor);
    };
    if (value == "tenths") {
        return scaled("0.1", "/10");
    }
    if (value == "hundredths") {
        return scaled("0.01", "/100");
    }
    if (value == "units") {
        return scaled("1", "/1");
    }
    if (value == "lockout") {
        return "protected: PRIMARY, working: SECONDARY, else NONE";
    }
    if (value == "status") {
        return "active: PRIMARY, else SECONDARY";
    }
    if (value == "module") {
        return "the module of the controller";
    }
    return units.empty() ? std::string("as it stands") : std::string(units).append(", as it stands");
}

std::string describe_source(const AnswerRow &row) {
    if (row.reader != "answer") {
        return std::string(row.reader)
            .append(" of the ")
            .append(row.source)
            .append(" port, with the primary port's answer");
    }
    if (row.source == "slot") {
        return "the answer for the slot";
    }
    return row.source == "controller" ? std::string("the name of the controller")
                                      : std::string("the answer for the ").append(row.source).append(" port");
}

std::string_view describe_kinds(std::string_view kinds) {
    if (kinds == "unless_state_only") {
        return "not where only state leaves are named";
    }
    if (kinds == "with_state") {
        return "not in a read of configuration only";
    }
    return kinds == "without_state" ? "only in a read of configuration" : "";
}

} // namespace ocpsm

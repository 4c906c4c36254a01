#include "simulator/line_system/risks.hpp"

#include "simulator/line_system.hpp"
#include "simulator/line_system/controllers.hpp"

namespace ocpsm::line_system {
namespace {

constexpr std::string_view line_name(Path line) {
    return line_names[line == Path::primary ? 0 : 1];
}

constexpr Path other(Path line) {
    return line == Path::primary ? Path::secondary : Path::primary;
}

// One module before and after an edit.
class ModuleRisks {
public:
    ModuleRisks(const LineSystem &before, const LineSystem &after, int number)
        : was_(switch_settings(slot(before, number))), now_(switch_settings(slot(after, number))),
          protection_(slot(after, number).module->protection), clock_(after.clock), name_(module_name(number)) {
        const std::array<Power, port_count> seen = powers(slot(after, number));
        light_ = {seen[1].received, seen[2].received};
    }

    std::vector<std::string> take() {
        look_at_threshold(Path::primary, was_.primary_threshold, now_.primary_threshold);
        look_at_threshold(Path::secondary, was_.secondary_threshold, now_.secondary_threshold);
        look_at_relative();
        look_at_revertive();
        look_at_force();
        look_at_traffic();
        return std::move(texts_);
    }

private:
    void say(const std::string &text) { texts_.push_back(name_ + ": " + text); }

    int received(Path line) const { return line == Path::primary ? light_.primary : light_.secondary; }
    bool is_dark(Path line) const { return received(line) <= dark; }

    // Every threshold is above a dark line.
    void look_at_threshold(Path line, const std::optional<int> &was, const std::optional<int> &now) {
        if (now && now != was && !is_dark(line) && received(line) < *now) {
            say("the switch threshold of the " + std::string(line_name(line)) + " line, " + hundredths(*now) +
                " dBm, is above the " + hundredths(received(line)) + " dBm that it receives now");
        }
    }

    void look_at_relative() {
        const bool changed =
            now_.relative_threshold != was_.relative_threshold || now_.relative_offset != was_.relative_offset;
        if (!changed || now_.relative_threshold == 0) {
            return;
        }
        const std::string threshold = "a relative threshold of " + hundredths(now_.relative_threshold) + " dB ";
        if (now_.relative_threshold < 0) {
            say(threshold + "is negative: at no difference the traffic stays where it is");
        } else if (survives_failure()) {
            say(threshold + "is more than the lines differ when the " + std::string(line_name(protection_.active)) +
                " line goes dark: its failure does not switch");
        }
        const std::optional<Path> better = better_line(now_, light_);
        if (better && is_dark(*better) && !is_dark(other(*better))) {
            say("with an offset of " + hundredths(now_.relative_offset) + " dB the " + std::string(line_name(*better)) +
                " line counts as the better one, although it is dark");
        }
    }

    // Whether the traffic stays on its line when that line fails and the other does not.
    bool survives_failure() const {
        const Path active = protection_.active;
        LineLight failed = light_;
        (active == Path::primary ? failed.primary : failed.secondary) = dark;
        return !is_dark(active) && !is_dark(other(active)) && better_line(now_, failed) != other(active);
    }

    void look_at_revertive() {
        const bool changed = now_.revertive != was_.revertive || now_.wait_to_restore != was_.wait_to_restore;
        if (changed && now_.revertive && now_.wait_to_restore == 0) {
            say("revertive without a wait-to-restore time: the traffic goes back as soon as the primary line is good, "
                "however short");
        }
    }

    void look_at_force() {
        const Path forced = now_.lockout == Lockout::working ? Path::secondary : Path::primary;
        if (now_.lockout != was_.lockout && now_.lockout != Lockout::none && is_dark(forced)) {
            say("the traffic is forced to the " + std::string(line_name(forced)) + " line, which is dark");
        }
    }

    // Whoever forces the traffic knows that it moves.
    void look_at_traffic() {
        const Path next = evaluate(protection_, now_, light_, clock_).state.active;
        const bool moved_anyway = evaluate(protection_, was_, light_, clock_).state.active == next;
        if (next != protection_.active && !moved_anyway && now_.lockout == Lockout::none) {
            say("the traffic moves to the " + std::string(line_name(next)) + " line at once");
        }
    }

    SwitchSettings was_;
    SwitchSettings now_;
    SwitchState protection_;
    std::uint64_t clock_;
    LineLight light_{};
    std::string name_;
    std::vector<std::string> texts_;
};

} // namespace

std::vector<std::string> risks(const LineSystem &before, const LineSystem &after) {
    std::vector<std::string> all;
    for (const int number : fitted_slots(after)) {
        for (std::string &text : ModuleRisks(before, after, number).take()) {
            all.push_back(std::move(text));
        }
    }
    return all;
}

} // namespace ocpsm::line_system

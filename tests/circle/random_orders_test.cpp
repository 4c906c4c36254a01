// Edits, fibres, light, modules and time in random orders, with up to three modules: what a client is answered is what
// the model says. What fails is told as the shortest sequence that was found to fail.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "answers.hpp"
#include "line_system.hpp"
#include "model.hpp"

namespace {

using circle::Line;
using circle::Lines;
using circle::lines_of;
using circle::LineSystem;
using circle::Model;
using circle::SettingEdit;
using ocpsm::Operation;

constexpr unsigned seed = 20181121;
constexpr unsigned parts = 8; // of the sequences, each a test of its own
constexpr unsigned sequences_per_part = 125;
constexpr unsigned longest = 20; // steps of a sequence
constexpr unsigned shortest = 10;

// ---- steps ----

enum class Do { edit, clear, cut, splice, light, tick, pull, fit };

struct Step {
    Do what = Do::tick;
    int slot = 1;
    Line line = Line::primary;
    int amount = 0; // light: hundredths of a dBm; tick: milliseconds; clear: the settings before this one
    std::vector<SettingEdit> edits = {};
    bool compare = false; // the whole answer afterwards
};

// How a sequence begins: bare with modules in these slots, none for the example.
struct Sequence {
    std::vector<int> slots;
    std::vector<Step> steps;
};

std::string text_of(Line line) {
    return line == Line::primary ? "primary" : "secondary";
}

std::ostream &operator<<(std::ostream &out, const Step &step) {
    switch (step.what) {
    case Do::edit:
        out << "edit";
        for (const SettingEdit &edit : step.edits) {
            out << ", " << operation_name(edit.operation) << " " << edit.slot << "/"
                << circle::settings.at(edit.setting).leaf << " " << edit.text;
        }
        return out;
    case Do::clear:
        return out << (step.amount == circle::first_attenuation ? "remove " : "delete ") << step.slot
                   << (step.amount == circle::first_attenuation ? "/config" : "");
    case Do::cut:
        return out << "cut " << step.slot << " " << text_of(step.line);
    case Do::splice:
        return out << "splice " << step.slot << " " << text_of(step.line);
    case Do::light:
        return out << "light " << step.slot << " " << text_of(step.line) << " " << step.amount;
    case Do::tick:
        return out << "tick " << step.amount;
    case Do::pull:
        return out << "pull " << step.slot;
    case Do::fit:
        return out << "fit " << step.slot;
    }
    return out;
}

std::ostream &operator<<(std::ostream &out, const Sequence &sequence) {
    out << "begin";
    for (const int slot : sequence.slots) {
        out << " " << slot;
    }
    out << (sequence.slots.empty() ? " as the example\n" : " bare\n");
    for (const Step &step : sequence.steps) {
        out << step << "\n";
    }
    return out;
}

// ---- at random ----

// The standard fixes what the engine gives, and leaves the distributions to the library: they are not used.
class Random {
public:
    explicit Random(unsigned start) : engine_(start) {}

    unsigned below(unsigned end) { return static_cast<unsigned>(engine_()) % end; }

    template <class Values>
    auto one_of(const Values &values) {
        return values[below(static_cast<unsigned>(std::size(values)))];
    }

    bool one_in(unsigned count) { return below(count) == 0; }

private:
    std::mt19937 engine_;
};

std::string hundredths_text(int value) {
    const int size = std::abs(value);
    const std::string fraction = std::to_string(100 + size % 100).substr(1);
    return (value < 0 ? "-" : "") + std::to_string(size / 100) + "." + fraction;
}

// Powers and thresholds lie close together, so that all the comparisons go both ways.
constexpr std::array powers{-4000, -2101, -2100, -2099, -2000, -1900, -1801, -1800, -1799, -1700, -1650, -1600, -1500};
constexpr std::array thresholds{-2100, -2100, -2000, -1800, -1800, -1805, -1650};
constexpr std::array margins{0, 0, 50, 100, 150, 200, 300, 119};
constexpr std::array relatives{0, 50, 50, 100, 100, 300, -100, 19};
constexpr std::array offsets{0, 50, -50, 100, -150, 200, -200, 350, -39};
constexpr std::array attenuations{0, 10, 25, 80, 150, 999, 1234};
constexpr std::array extremes{-4010, -4009, -4000, -10, -9, -1, 9, 3000, 3001, 3010, 4000, 4009, 4010};
constexpr std::array waits{0, 0, 100, 200, 250, 400, 1000, 5000, 300'000};

int random_decimal(Random &random, std::size_t setting) {
    if (random.one_in(30)) {
        return random.one_of(extremes);
    }
    switch (setting) {
    case 2:
    case 4:
        return random.one_of(thresholds);
    case 3:
        return random.one_of(margins);
    case 5:
        return random.one_of(relatives);
    case 6:
        return random.one_of(offsets);
    default:
        return random.one_of(attenuations);
    }
}

// Now and then one that is none of the leaf's type.
void choose_value(Random &random, SettingEdit &edit) {
    const auto is_none = [&](const char *text) {
        edit.text = text;
        edit.value.reset();
    };
    const bool wrong = random.one_in(60);
    switch (circle::settings.at(edit.setting).type) {
    case circle::Type::truth:
        edit.value = random.one_in(4) ? 0 : 1;
        edit.text = *edit.value != 0 ? "true" : "false";
        return wrong ? is_none("yes") : void();
    case circle::Type::milliseconds:
        edit.value = random.one_of(waits);
        edit.text = std::to_string(*edit.value);
        return wrong ? is_none("-1") : void();
    case circle::Type::line:
        edit.value = random.one_in(3) ? static_cast<int>(random.below(3)) : 0;
        edit.text = std::array{"NONE", "PRIMARY", "SECONDARY"}.at(static_cast<std::size_t>(*edit.value));
        return wrong ? is_none("primary") : void();
    case circle::Type::decimal:
        break;
    }
    const int value = random_decimal(random, edit.setting);
    edit.value = value / 10;
    edit.uncut = value;
    edit.text = hundredths_text(value);
    return wrong ? is_none("1.234") : void();
}

// Settings of one module or of all, each once. Mostly merged; a share of the rest is refused, for what is there or is
// not.
std::vector<SettingEdit> random_edit(Random &random, int slot) {
    constexpr std::array others{Operation::remove, Operation::remove, Operation::replace, Operation::create,
                                Operation::delete_existing};
    std::vector<SettingEdit> edits;
    const unsigned share = 2 + random.below(8); // one setting in so many
    const bool all = random.one_in(6);
    for (const int each : {1, 2, 3}) {
        for (std::size_t setting = 0; setting < circle::settings.size(); ++setting) {
            if ((each == slot || all) && random.one_in(share)) {
                SettingEdit &edit = edits.emplace_back(SettingEdit{.slot = each, .setting = setting});
                edit.operation = random.one_in(6) ? random.one_of(others) : Operation::merge;
                if (!takes_away(edit.operation)) {
                    choose_value(random, edit);
                }
            }
        }
    }
    return edits;
}

// What makes a module switch on its two powers: both thresholds and that it goes back soon, or the difference.
std::vector<SettingEdit> usual_edit(Random &random, int slot) {
    const std::vector<std::vector<std::size_t>> sets{{0, 1, 2, 3, 4}, {0, 1, 2, 3, 4, 8, 9, 10, 11}, {5, 6}};
    std::vector<SettingEdit> edits;
    for (const std::size_t setting : random.one_of(sets)) {
        SettingEdit &edit = edits.emplace_back(SettingEdit{.slot = slot, .setting = setting});
        choose_value(random, edit);
    }
    return edits;
}

Step random_step(Random &random, int usual_slot) {
    constexpr std::array kinds{Do::edit,  Do::edit,  Do::cut,   Do::splice, Do::splice, Do::splice,
                               Do::light, Do::light, Do::light, Do::light,  Do::light,  Do::tick,
                               Do::tick,  Do::tick,  Do::tick,  Do::tick};
    constexpr std::array rare{Do::pull, Do::pull, Do::fit, Do::clear};
    constexpr std::array times{50, 100, 100, 200, 300, 1000, 4900, 12'345, 30'000, 47'000};
    Step step{.what = random.one_in(14) ? random.one_of(rare) : random.one_of(kinds)};
    step.slot = random.one_in(5) ? static_cast<int>(1 + random.below(3)) : usual_slot;
    step.line = random.one_in(3) ? Line::secondary : Line::primary;
    if (step.what == Do::tick) {
        step.amount = random.one_of(times);
    } else if (step.what == Do::light) {
        step.amount = random.one_in(20) ? random.one_of(std::array{-4001, 3001, 3000}) : random.one_of(powers);
    } else if (step.what == Do::clear) {
        step.amount = static_cast<int>(random.one_in(2) ? circle::first_attenuation : circle::settings.size());
    } else if (step.what == Do::edit) {
        step.edits = random_edit(random, step.slot);
    }
    return step;
}

// A primary line that fails, is good again, and fails once more before or after the module has gone back.
void add_failures(Random &random, int slot, std::vector<Step> &steps) {
    for (const int power : {-2200, -1300, -2200, -1300}) {
        steps.push_back({.what = Do::light, .slot = slot, .line = Line::primary, .amount = power});
        steps.push_back({.what = Do::tick, .amount = random.one_of(std::array{100, 200, 200, 300, 700})});
    }
}

Sequence random_sequence(unsigned number) {
    Random random(seed + number);
    const std::vector<std::vector<int>> begins{{}, {1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {2}, {1, 3}};
    Sequence sequence{random.one_of(begins), {}};
    const unsigned length = shortest + random.below(longest - shortest + 1);
    const int usual_slot =
        sequence.slots.empty() ? 1 : sequence.slots.at(random.below(static_cast<unsigned>(sequence.slots.size())));
    if (!random.one_in(4)) {
        sequence.steps.push_back({.what = Do::edit, .slot = usual_slot, .edits = usual_edit(random, usual_slot)});
    }
    if (random.one_in(3)) {
        add_failures(random, usual_slot, sequence.steps);
        sequence.steps.back().compare = true;
    }
    while (sequence.steps.size() < length) {
        sequence.steps.push_back(random_step(random, usual_slot));
        // A module is mostly fitted again, and what has changed counts when the switch is evaluated the next time.
        if (sequence.steps.back().what == Do::pull && !random.one_in(3)) {
            sequence.steps.push_back({.what = Do::fit, .slot = sequence.steps.back().slot});
        }
        if (sequence.steps.back().what != Do::tick && random.one_in(2)) {
            sequence.steps.push_back({.what = Do::tick, .amount = random.one_of(std::array{100, 100, 200, 30'000})});
        }
    }
    for (Step &step : sequence.steps) {
        step.compare = step.compare || random.one_in(100);
    }
    sequence.steps.back().compare = true;
    return sequence;
}

// ---- a sequence on both ----

std::string xml_of(const std::vector<SettingEdit> &edits, int slot) {
    std::string config;
    std::string ports;
    for (const SettingEdit &edit : edits) {
        if (edit.slot != slot) {
            continue;
        }
        const std::string path(circle::settings.at(edit.setting).leaf);
        const std::string leaf = path.substr(path.rfind('/') + 1);
        const std::string element = "<" + leaf + " nc:operation=\"" + std::string(operation_name(edit.operation)) +
                                    "\">" + edit.text + "</" + leaf + ">";
        if (edit.setting < circle::first_attenuation) {
            config += element;
        } else {
            const std::string port = path.substr(6, path.find('/', 6) - 6);
            ports += "<" + port + "><config>" + element + "</config></" + port + ">";
        }
    }
    if (config.empty() && ports.empty()) {
        return {};
    }
    return "<aps-module><name>0/" + std::to_string(slot) + "-PSM-OM</name>" +
           (config.empty() ? "" : "<config>" + config + "</config>") +
           (ports.empty() ? "" : "<ports>" + ports + "</ports>") + "</aps-module>";
}

// One setting that is merged or deleted by its path, all else as XML.
ocpsm::Edit request_of(const std::vector<SettingEdit> &edits) {
    const SettingEdit &first = edits.front();
    const bool by_path = first.operation == Operation::merge || ocpsm::takes_away(first.operation);
    if (edits.size() == 1 && by_path) {
        const std::string leaf(circle::settings.at(first.setting).leaf);
        return ocpsm::PathEdits{{circle::module_path(first.slot, "/" + leaf), first.operation, first.text}};
    }
    return ocpsm::Text{"<aps xmlns=\"http://openconfig.net/yang/optical-transport-line-protection\" "
                       "xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><aps-modules>" +
                       xml_of(edits, 1) + xml_of(edits, 2) + xml_of(edits, 3) + "</aps-modules></aps>"};
}

std::string joined(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\n";
    }
    return text;
}

// Those lines that only one of the two has.
std::string difference(const Lines &actual, const Lines &expected) {
    if (actual == expected) {
        return {};
    }
    std::string text;
    const auto only_in = [&](const Lines &here, const Lines &there, const std::string &whose) {
        for (const std::string &line : here) {
            if (std::find(there.begin(), there.end(), line) == there.end()) {
                text += "  " + whose + ": " + line + "\n";
            }
        }
    };
    only_in(actual, expected, "answered");
    only_in(expected, actual, "the model");
    return text.empty() ? "  the order or the number differs:\n" + joined(actual) : text;
}

// That the sequences are about something.
struct Counts {
    unsigned done = 0; // edits
    unsigned refused = 0;
    unsigned switched = 0; // times that a module went to its other line
    unsigned measured = 0; // history intervals that ended
};

class Run {
public:
    Run(LineSystem &system, const Sequence &sequence, Counts &counts) : system_(system), counts_(counts) {
        if (sequence.slots.empty()) {
            system_.become_example();
            model_ = Model::example();
        } else {
            system_.become_bare(sequence.slots);
            model_ = Model::bare(sequence.slots);
        }
    }

    // What is wrong after the step; nothing when all is well.
    std::string carry_out(const Step &step) {
        const Model before = model_;
        switch (step.what) {
        case Do::edit:
            return step.edits.empty() ? "" : carry_out(request_of(step.edits), model_.edit(step.edits), before);
        case Do::clear:
            return clear(step, before);
        case Do::cut:
            return agree([&](auto &real) { real.cut(step.slot, step.line); }, model_.cut(step.slot, step.line, true));
        case Do::splice:
            return agree([&](auto &real) { real.splice(step.slot, step.line); },
                         model_.cut(step.slot, step.line, false));
        case Do::light:
            return agree([&](auto &real) { real.light(step.slot, step.line, step.amount); },
                         model_.light(step.slot, step.line, step.amount));
        case Do::tick:
            count(model_.tick(static_cast<std::uint32_t>(step.amount)));
            return agree([&](auto &real) { real.tick(static_cast<std::uint32_t>(step.amount)); }, true);
        case Do::pull:
            return agree([&](auto &real) { real.pull(step.slot); }, model_.pull(step.slot));
        case Do::fit:
            return agree([&](auto &real) { real.fit(step.slot); }, model_.fit(step.slot));
        }
        return "no step";
    }

    std::string compare() const {
        return difference(lines_of(system_.service().read(ocpsm::Paths{}, ocpsm::Kind::get)), model_.answer());
    }

private:
    void count(const circle::Passed &passed) {
        counts_.switched += passed.switched;
        counts_.measured += passed.measured;
    }

    template <class Operation>
    std::string agree(Operation operation, bool expected) const {
        const bool done = system_.does(operation);
        return done == expected ? "" : std::string("  was ") + (done ? "done" : "refused") + "\n";
    }

    // A container is removed, a module is deleted: it is there as long as it is fitted.
    std::string clear(const Step &step, const Model &before) {
        const auto end = static_cast<std::size_t>(step.amount);
        const bool whole = end == circle::settings.size();
        const ocpsm::PathEdits request{{circle::module_path(step.slot, whole ? "" : "/config"),
                                        whole ? Operation::delete_existing : Operation::remove}};
        return carry_out(request, model_.clear(step.slot, end), before);
    }

    // A refused edit tells one of the reasons; that it has changed nothing shows when the answer is compared.
    std::string carry_out(const ocpsm::Edit &request, const std::set<std::string> &reasons, const Model &before) {
        ocpsm::EditResult result;
        try {
            result = system_.service().edit(request);
        } catch (const ocpsm::Error &error) {
            result.error = error;
        }
        const std::string tag = result.error ? result.error->tag : "";
        if (reasons.empty() ? !tag.empty() : !reasons.contains(tag)) {
            return "  was " + (tag.empty() ? "done" : "refused with " + tag) + ", and should have been " +
                   (reasons.empty() ? "done" : "refused with " + *reasons.begin()) + "\n";
        }
        ++(reasons.empty() ? counts_.done : counts_.refused);
        Lines changes;
        for (const ocpsm::Change &change : result.changes) {
            changes.push_back(circle::short_path(change.path) + ": " + change.before.value_or("-") + " -> " +
                              change.after.value_or("-"));
        }
        return difference(changes, model_.changes_since(before));
    }

    LineSystem &system_;
    Counts &counts_;
    Model model_;
};

// The first step after which something is wrong, and what; the whole answer is compared after each step or, for speed,
// where the sequence says so.
struct Failure {
    std::size_t step;
    std::string what;
};

std::optional<Failure> run(LineSystem &system, const Sequence &sequence, bool compare_always, Counts &counts) {
    Run both(system, sequence, counts);
    for (std::size_t index = 0; index < sequence.steps.size(); ++index) {
        const Step &step = sequence.steps.at(index);
        std::string wrong = both.carry_out(step);
        if (wrong.empty() && (compare_always || step.compare)) {
            wrong = both.compare();
        }
        if (!wrong.empty()) {
            return Failure{index, wrong};
        }
    }
    return std::nullopt;
}

// Cut behind the step that fails, then without each step that the failure does not need.
std::string shrunk(LineSystem &system, Sequence sequence) {
    Counts ignored;
    std::optional<Failure> failure = run(system, sequence, true, ignored);
    if (!failure) {
        return "fails, but not when the answer is compared after each step\n";
    }
    sequence.steps.resize(failure->step + 1);
    for (std::size_t index = sequence.steps.size(); index-- != 0;) {
        Sequence shorter = sequence;
        shorter.steps.erase(shorter.steps.begin() + static_cast<std::ptrdiff_t>(index));
        if (const auto still = run(system, shorter, true, ignored)) {
            shorter.steps.resize(still->step + 1);
            sequence = shorter;
            failure = still;
            index = std::min(index, sequence.steps.size());
        }
    }
    std::ostringstream text;
    text << sequence << failure->what;
    return text.str();
}

class RandomOrders : public testing::TestWithParam<unsigned> {};

TEST_P(RandomOrders, AreAnsweredAsTheModelSays) {
    LineSystem system;
    Counts counts;
    for (unsigned count = 0; count < sequences_per_part && !HasFailure(); ++count) {
        const unsigned number = GetParam() * sequences_per_part + count;
        const Sequence sequence = random_sequence(number);
        if (const auto failure = run(system, sequence, false, counts)) {
            ADD_FAILURE() << "sequence " << number << ": " << failure->what << "shrunk:\n" << shrunk(system, sequence);
        }
    }
    RecordProperty("done", static_cast<int>(counts.done));
    RecordProperty("refused", static_cast<int>(counts.refused));
    RecordProperty("switched", static_cast<int>(counts.switched));
    RecordProperty("measured", static_cast<int>(counts.measured));
    if (HasFailure()) {
        return;
    }
    EXPECT_GE(counts.done, 100U);
    EXPECT_GE(counts.refused, 25U);
    EXPECT_GE(counts.switched, 35U);
    EXPECT_GE(counts.measured, 100U);
}

INSTANTIATE_TEST_SUITE_P(InParts, RandomOrders, testing::Range(0U, parts));

} // namespace

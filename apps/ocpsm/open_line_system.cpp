#include "open_line_system.hpp"

#include "framework/error.hpp"

namespace ocpsm {

SimulatedLineSystem open_line_system(const std::filesystem::path &state) {
    try {
        return SimulatedLineSystem::open(state);
    } catch (const Error &error) {
        if (error.tag != "data-missing") {
            throw;
        }
        throw Error(Error::Source::input, {}, {}, "there is no line system in " + state.string(),
                    "make one with ocpsm device init, or name its directory with --state");
    }
}

SimulatedLineSystem make_line_system(const std::filesystem::path &state, const std::vector<int> &slots) {
    return SimulatedLineSystem::make(state, slots);
}

} // namespace ocpsm

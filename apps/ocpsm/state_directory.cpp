#include "state_directory.hpp"

#include <cstdlib>

#include "framework/error.hpp"

namespace ocpsm {

std::optional<std::string> process_environment(const std::string &name) {
    const char *value = std::getenv(name.c_str()); // NOLINT(concurrency-mt-unsafe)
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::filesystem::path state_directory(const std::optional<std::string> &named, const Environment &environment) {
    if (named) {
        if (named->empty()) {
            throw Error(Error::Source::input, {}, {}, "the state directory has no name", "name one with --state DIR");
        }
        return *named;
    }
    if (const auto own = environment("OCPSM_STATE"); own && !own->empty()) {
        return *own;
    }
    if (const auto base = environment("XDG_STATE_HOME"); base && std::filesystem::path(*base).is_absolute()) {
        return std::filesystem::path(*base) / "ocpsm";
    }
    if (const auto home = environment("HOME"); home && !home->empty()) {
        return std::filesystem::path(*home) / ".local" / "state" / "ocpsm";
    }
    throw Error(Error::Source::input, {}, {}, "nothing says where the line system is kept: HOME is not set",
                "name a directory with --state DIR");
}

} // namespace ocpsm

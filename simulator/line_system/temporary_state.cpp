#include "simulator/line_system/temporary_state.hpp"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include "framework/error.hpp"
#include "simulator/line_system/storage.hpp"

namespace ocpsm::line_system {

TemporaryState::Directory::Directory() {
    const char *configured = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe)
    const std::filesystem::path parent = configured == nullptr || *configured == '\0' ? "/tmp" : configured;
    std::string name = (parent / "ocpsm-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw Error(Error::Source::input, "operation-failed", "",
                    "no temporary directory can be made in " + parent.string() + ": " +
                        std::generic_category().message(errno),
                    "set TMPDIR to a directory that can be written");
    }
    path = name;
}

TemporaryState::Directory::~Directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

TemporaryState::TemporaryState(const sysdb::Client &client, const LineSystem &system)
    : store_(create(client, directory_.path, system)) {}

} // namespace ocpsm::line_system

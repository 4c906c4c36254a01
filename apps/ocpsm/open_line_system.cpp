#include "open_line_system.hpp"

#include "device.hpp"
#include "framework/error.hpp"
#include "simulator/line_system/storage.hpp"

namespace ocpsm {
namespace {

namespace line_system = ocpsm::line_system;
using ocpsm::Error;

} // namespace

OpenLineSystem::OpenLineSystem(const std::filesystem::path &state) : client_(load_installed_client()) {
    std::error_code ignored;
    if (!std::filesystem::exists(state / "data.mdb", ignored)) {
        throw Error(Error::Source::input, {}, {}, "there is no line system in " + state.string(),
                    "make one with ocpsm device init, or name its directory with --state");
    }
    line_system::open(client_.store(), state);
}

OpenLineSystem::OpenLineSystem(const std::filesystem::path &state, const line_system::LineSystem &made)
    : client_(load_installed_client()) {
    std::error_code failed;
    std::filesystem::create_directories(state, failed);
    if (failed) {
        throw Error(Error::Source::input, {}, {}, "cannot make " + state.string() + ": " + failed.message(),
                    "name another directory with --state");
    }
    line_system::create(client_.store(), state, made);
}

OpenLineSystem::~OpenLineSystem() {
    client_.store().close();
}

line_system::LineSystem OpenLineSystem::load() const {
    return line_system::load(*store().read());
}

} // namespace ocpsm

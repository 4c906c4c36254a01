// The line system of a state directory, open for a command's work.
#ifndef OCPSM_OPEN_LINE_SYSTEM_HPP
#define OCPSM_OPEN_LINE_SYSTEM_HPP

#include <filesystem>

#include "simulator/database/client_library.hpp"
#include "simulator/line_system/line_system.hpp"

namespace ocpsm {

// Must be there before the plug-in is loaded, whose database operations it provides. Every transaction must have ended
// before it ends.
class OpenLineSystem {
public:
    // Opens what is in a directory. Throws ocpsm::Error for a directory without a line system, and where the database
    // client is not installed.
    explicit OpenLineSystem(const std::filesystem::path &state);

    // Makes a line system in a directory that holds none; the directories on the way are made too.
    OpenLineSystem(const std::filesystem::path &state, const ocpsm::line_system::LineSystem &made);

    OpenLineSystem(const OpenLineSystem &) = delete;
    OpenLineSystem &operator=(const OpenLineSystem &) = delete;
    ~OpenLineSystem();

    ocpsm::sysdb::Store &store() const { return client_.store(); }

    // As it stands now.
    ocpsm::line_system::LineSystem load() const;

private:
    ocpsm::sysdb::Client client_;
};

} // namespace ocpsm

#endif

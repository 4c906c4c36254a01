// A line system in a directory of its own, behind a service. Everything that these tests use of the simulator is here.
#ifndef TESTS_CIRCLE_LINE_SYSTEM_HPP
#define TESTS_CIRCLE_LINE_SYSTEM_HPP

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "framework/error.hpp"
#include "framework/service.hpp"
#include "simulator/line_system.hpp"

namespace circle {

using ocpsm::Line;

// Everything that a line system's store holds, by table and key; of the journal's entries all but the time of day, by
// which equal courses differ.
using Records = std::map<std::string, std::string>;

// A directory that is removed at the end; in memory where the machine has such a place, for edits wait for the disk.
struct Directory {
    Directory();
    Directory(const Directory &) = delete;
    Directory &operator=(const Directory &) = delete;
    ~Directory();

    const std::filesystem::path path;
};

// In a directory of its own; one at a time in a process.
class LineSystem {
public:
    LineSystem() { become_example(); }

    // Begins anew: as the example, and with modules in these slots, fitted at the time 0, without any setting.
    void become_example() { begin(ocpsm::SimulatedLineSystem::example_slots()); }
    void become_bare(const std::vector<int> &slots);

    const ocpsm::Service &service() const { return *service_; }

    // Does something to it. False when that is refused.
    template <class Operation>
    bool does(Operation operation) const {
        try {
            operation(*system_);
        } catch (const ocpsm::Error &) {
            return false;
        }
        return true;
    }

    // Takes a module's inventory out of the system database, and nothing else.
    void lose_inventory(int slot);

private:
    void begin(const std::vector<int> &slots);

    std::optional<Directory> directory_;
    std::optional<ocpsm::SimulatedLineSystem> system_;
    std::optional<ocpsm::Service> service_;
};

// Makes the example in a directory that is not there.
void make_example(const std::filesystem::path &directory);

// Everything that the store of a directory holds. It must hold a line system that can be read, and whose write lock
// nobody has: else this throws, or waits.
Records records(const std::filesystem::path &directory);

// An edit of the line system in a directory, as by a process that does nothing else.
ocpsm::EditResult edit_in(const std::filesystem::path &directory, const ocpsm::Edit &edit);

// A service without a device, in a process that has no database client: there is nothing but its stand-in.
ocpsm::Service service_without_database();

} // namespace circle

#endif

#include "line_system.hpp"

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "simulator/database/client_library.hpp"
#include "simulator/line_system/journal.hpp"
#include "simulator/line_system/storage.hpp"

namespace circle {
namespace {

namespace simulated = ocpsm::line_system;
namespace sysdb = ocpsm::sysdb;

std::filesystem::path make_directory() {
    for (const std::filesystem::path &parent :
         {std::filesystem::path("/dev/shm"), std::filesystem::temp_directory_path()}) {
        std::string name = (parent / "ocpsm-circle-XXXXXX").string();
        if (mkdtemp(name.data()) != nullptr) {
            return name;
        }
    }
    throw std::runtime_error("no temporary directory");
}

std::string without_time(const ocpsm::JournalEntry &entry) {
    std::string text = std::to_string(entry.clock) + " " + std::string(name_of(entry.kind)) + " " + entry.module + " " +
                       entry.line + " " + entry.before + " " + entry.after + " " + entry.reason;
    for (const ocpsm::Change &change : entry.changes) {
        text += "\n" + change.path + ": " + change.before.value_or("-") + " -> " + change.after.value_or("-");
    }
    return text;
}

} // namespace

Directory::Directory() : path(make_directory()) {}

Directory::~Directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

// The service goes before the line system, and that before its directory.
void LineSystem::begin(const std::vector<int> &slots) {
    service_.reset();
    system_.reset();
    system_ = ocpsm::SimulatedLineSystem::make(directory_.emplace().path / "system", slots);
    service_.emplace(PLUGIN, system_->device());
}

void LineSystem::become_bare(const std::vector<int> &slots) {
    begin({});
    for (const int slot : slots) {
        system_->fit(slot);
    }
}

void LineSystem::lose_inventory(int slot) {
    const auto store = simulated::open(sysdb::Client(), directory_->path / "system");
    const auto transaction = store->write();
    const std::string item = "/oper/inventory/gl/entity/0%2f" + std::to_string(slot) + "-PSM-OM/";
    if (transaction->erase_all(sysdb::Table::items, item) != 1) {
        throw std::logic_error("there is no " + item);
    }
    transaction->commit();
}

void make_example(const std::filesystem::path &directory) {
    ocpsm::SimulatedLineSystem::make(directory);
}

Records records(const std::filesystem::path &directory) {
    Records all;
    const auto opened = simulated::open(sysdb::Client(), directory);
    const auto transaction = opened->write();
    for (const sysdb::Table table : {sysdb::Table::items, sysdb::Table::line_system}) {
        transaction->for_each(table, "", [&](std::string_view key, std::string_view value) {
            all[std::to_string(static_cast<int>(table)) + " " + std::string(key)] = value;
            return true;
        });
    }
    for (const ocpsm::JournalEntry &entry : simulated::read_journal(*transaction, 0, simulated::max_journal_entries)) {
        all["journal " + std::to_string(entry.sequence)] = without_time(entry);
    }
    simulated::load(*transaction);
    return all;
}

ocpsm::EditResult edit_in(const std::filesystem::path &directory, const ocpsm::Edit &edit) {
    return ocpsm::Service(PLUGIN, ocpsm::SimulatedLineSystem::open(directory).device()).edit(edit);
}

ocpsm::Service service_without_database() {
    const sysdb::Client stand_in("/nowhere/libsysdb_client.so");
    return ocpsm::Service(PLUGIN);
}

} // namespace circle

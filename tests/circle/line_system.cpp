#include "line_system.hpp"

#include <array>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <system_error>

#include "framework/device.hpp"
#include "framework/error.hpp"
#include "simulator/database/client_library.hpp"
#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"

namespace circle {
namespace {

namespace simulated = ocpsm::line_system;
namespace sysdb = ocpsm::sysdb;

simulated::Path path_of(Line line) {
    return line == Line::primary ? simulated::Path::primary : simulated::Path::secondary;
}

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

// Makes the example, or opens what there is.
template <class Transaction>
class OwnedTransaction : public simulated::LineSystemDevice {
public:
    explicit OwnedTransaction(std::unique_ptr<Transaction> transaction)
        : LineSystemDevice(*transaction), transaction_(std::move(transaction)) {}

private:
    std::unique_ptr<Transaction> transaction_;
};

class StoreDevice : public ocpsm::Device {
public:
    explicit StoreDevice(sysdb::Store &store) : store_(store) {}

    std::unique_ptr<ocpsm::DeviceTransaction> read() override {
        return std::make_unique<OwnedTransaction<sysdb::ReadTransaction>>(store_.read());
    }
    std::unique_ptr<ocpsm::DeviceTransaction> write() override {
        return std::make_unique<OwnedTransaction<sysdb::WriteTransaction>>(store_.write());
    }

private:
    sysdb::Store &store_;
};

} // namespace

Directory::Directory() : path(make_directory()) {}

Directory::~Directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

struct LineSystem::Parts {
    Parts()
        : store(simulated::create(client, directory.path, simulated::example())),
          service(PLUGIN, std::make_shared<StoreDevice>(*store)) {}

    bool change(const std::function<simulated::LineSystem(const simulated::LineSystem &)> &how) const {
        try {
            simulated::change(*store, how);
        } catch (const ocpsm::Error &) {
            return false;
        }
        return true;
    }

    Directory directory;
    sysdb::Client client;
    std::unique_ptr<sysdb::Store> store;
    ocpsm::Service service;
};

LineSystem::LineSystem() : parts_(std::make_unique<Parts>()) {}

LineSystem::~LineSystem() = default;

void LineSystem::become_example() {
    parts_->change([](const auto &) { return simulated::example(); });
}

void LineSystem::become_bare(const std::vector<int> &slots) {
    parts_->change([&](const auto &) { return simulated::with_modules(slots); });
}

const ocpsm::Service &LineSystem::service() const {
    return parts_->service;
}

bool LineSystem::fit(int slot) {
    return parts_->change([&](const auto &system) { return simulated::fit(system, slot); });
}

bool LineSystem::pull(int slot) {
    return parts_->change([&](const auto &system) { return simulated::pull(system, slot); });
}

bool LineSystem::cut(int slot, Line line) {
    return parts_->change([&](const auto &system) { return simulated::cut(system, slot, path_of(line)); });
}

bool LineSystem::splice(int slot, Line line) {
    return parts_->change([&](const auto &system) { return simulated::splice(system, slot, path_of(line)); });
}

bool LineSystem::light(int slot, Line line, int hundredths_of_dbm) {
    return parts_->change(
        [&](const auto &system) { return simulated::light(system, slot, path_of(line), hundredths_of_dbm); });
}

bool LineSystem::tick(std::uint32_t milliseconds) {
    return parts_->change([&](const auto &system) { return simulated::tick(system, milliseconds); });
}

void LineSystem::lose_inventory(int slot) {
    const auto transaction = parts_->store->write();
    const std::string item = "/oper/inventory/gl/entity/0%2f" + std::to_string(slot) + "-PSM-OM/";
    if (transaction->erase_all(sysdb::Table::items, item) != 1) {
        throw std::logic_error("there is no " + item);
    }
    transaction->commit();
}

void make_example(const std::filesystem::path &directory) {
    simulated::create(sysdb::Client(), directory, simulated::example());
}

Records records(const std::filesystem::path &directory) {
    Records all;
    const auto opened = simulated::open(sysdb::Client(), directory);
    const auto transaction = opened->write();
    for (std::size_t table = 0; table < sysdb::table_count; ++table) {
        transaction->for_each(static_cast<sysdb::Table>(table), "", [&](std::string_view key, std::string_view value) {
            all[std::to_string(table) + " " + std::string(key)] = value;
            return true;
        });
    }
    simulated::load(*transaction);
    return all;
}

ocpsm::EditResult edit_in(const std::filesystem::path &directory, const ocpsm::Edit &edit) {
    const auto opened = simulated::open(sysdb::Client(), directory);
    return ocpsm::Service(PLUGIN, std::make_shared<StoreDevice>(*opened)).edit(edit);
}

ocpsm::Service service_without_database() {
    const sysdb::Client stand_in("/nowhere/libsysdb_client.so");
    return ocpsm::Service(PLUGIN);
}

} // namespace circle

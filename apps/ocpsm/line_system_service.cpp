#include "line_system_service.hpp"

#include <memory>

#include "device.hpp"
#include "framework/device.hpp"
#include "messages.hpp"
#include "open_line_system.hpp"
#include "simulator/line_system/line_system_device.hpp"
#include "simulator/line_system/storage.hpp"
#include "simulator/line_system/temporary_state.hpp"

namespace ocpsm {
namespace {

template <class Transaction>
class OwnedTransaction : public line_system::LineSystemDevice {
public:
    explicit OwnedTransaction(std::unique_ptr<Transaction> transaction)
        : LineSystemDevice(*transaction), transaction_(std::move(transaction)) {}

private:
    std::unique_ptr<Transaction> transaction_;
};

template <class Owner>
class StoreDevice : public Device {
public:
    template <class... Arguments>
    explicit StoreDevice(sysdb::Store &store, Arguments &&...arguments)
        : store_(store), owner_(std::forward<Arguments>(arguments)...) {}

    std::unique_ptr<DeviceTransaction> read() override {
        return std::make_unique<OwnedTransaction<sysdb::ReadTransaction>>(store_.read());
    }
    std::unique_ptr<DeviceTransaction> write() override {
        return std::make_unique<OwnedTransaction<sysdb::WriteTransaction>>(store_.write());
    }

private:
    sysdb::Store &store_;
    Owner owner_;
};

} // namespace

Service open_service(const RequestOptions &options) {
    sysdb::Store &store = load_installed_client().store();
    return Service(options.plugin, std::make_unique<StoreDevice<OpenLineSystem>>(store, *options.state));
}

Service open_service_to_translate(const RequestOptions &options, std::ostream &errors) {
    const sysdb::Client client = load_database_client();
    if (!client.installed()) {
        print_warning(errors,
                      "the system database's client library " + sysdb::client_library().string() +
                          " is not there, so the plug-in reads no database: it finds no module that is not named");
        return Service(options.plugin);
    }
    if (options.state) {
        return open_service(options);
    }
    return Service(options.plugin,
                   std::make_unique<StoreDevice<line_system::TemporaryState>>(client.store(), client.store()));
}

} // namespace ocpsm

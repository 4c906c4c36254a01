#include "framework/service.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "framework/host/codes.hpp"
#include "framework/kept.hpp"
#include "framework/request/envelope.hpp"
#include "framework/request/existence.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/parse.hpp"
#include "framework/requests.hpp"

namespace ocpsm {

// ---- answers ----

Answer::Answer() = default;

Answer::Answer(std::shared_ptr<const Data> data) : data_(std::move(data)) {}

bool Answer::empty() const {
    return data_ == nullptr;
}

std::string Answer::print(Format format) const {
    return framework::tree_of(*this).print(format);
}

std::vector<Leaf> Answer::leaves() const {
    std::vector<Leaf> leaves;
    framework::tree_of(*this).for_each_leaf([&leaves](const std::string &path, std::string_view value) {
        leaves.push_back({path, std::string(value)});
    });
    return leaves;
}

// ---- native requests ----

DeviceRequest::DeviceRequest() : request_(std::make_shared<native::NetRequest>()) {}

DeviceRequest::DeviceRequest(std::shared_ptr<const native::NetRequest> request) : request_(std::move(request)) {}

std::vector<DeviceOperation> DeviceRequest::operations() const {
    std::vector<DeviceOperation> operations;
    for (native::NativeOperation &operation : request_->operations()) {
        operations.push_back({operation.operation, std::move(operation.path), std::move(operation.value)});
    }
    return operations;
}

std::vector<Change> changes_between(const Answer &before, const Answer &after) {
    return framework::changes_between(framework::tree_of(before), framework::tree_of(after));
}

std::string DeviceRequest::print(Format format) const {
    return format == Format::json ? request_->to_json() : request_->to_xml();
}

// ---- the service ----

struct Service::Parts {
    Parts(const std::filesystem::path &library, std::shared_ptr<Device> given)
        : plugin(library), device(std::move(given)) {}

    framework::Plugin plugin;
    std::shared_ptr<Device> device; // null: translations only

    Device &required_device() const {
        if (!device) {
            throw std::logic_error("a service without a device only translates");
        }
        return *device;
    }

    // The trees that an edit is handed over as.
    Tree trees_of(const Text &request, const Options &options, DeviceTransaction *transaction) const {
        EditOptions with;
        static_cast<Options &>(with) = options;
        Tree tops = framework::typed(Edit(request), with);
        std::vector<std::string> modules;
        if (transaction != nullptr && framework::concerns_all_modules(tops)) {
            const Answer standing = framework::configuration(plugin, *transaction, std::nullopt);
            modules = framework::tree_of(standing).entry_names();
        }
        return framework::hand_over_edit(std::move(tops), modules);
    }
};

namespace {

Addition addition_of(framework::AddRecord &&add) {
    Addition addition;
    addition.path = std::move(add.path);
    addition.namespace_uri = std::move(add.namespace_uri);
    addition.value = std::move(add.value);
    if (add.source_operation) {
        addition.source_operation = static_cast<Operation>(*add.source_operation);
    }
    addition.first_flag = add.first_flag;
    addition.second_flag = add.second_flag;
    addition.relative = add.relative;
    addition.walker = std::move(add.walker);
    addition.conversion = std::move(add.conversion);
    addition.result = framework::name_of(add.result);
    return addition;
}

} // namespace

Service::Service(const std::filesystem::path &plugin, std::shared_ptr<Device> device)
    : parts_(std::make_unique<const Parts>(plugin, std::move(device))) {}

Service::~Service() = default;

ReadResult Service::read(const Selection &selection, Kind kind, const Options &options) const {
    framework::TypedRead read = framework::typed(selection, kind);
    const auto transaction = parts_->required_device().read();
    return framework::answer_read(parts_->plugin, std::move(read), *transaction, options);
}

EditResult Service::edit(const Edit &edit, const EditOptions &options) const {
    Tree tops = framework::typed(edit, options);
    const auto transaction = parts_->required_device().write();
    EditResult result = framework::carry_out(parts_->plugin, std::move(tops), *transaction, options);
    try {
        if (!result.error && options.check) {
            options.check(result.changes);
        }
        if (!result.error && !options.dry_run) {
            transaction->record(options.user, result.changes);
            transaction->commit();
        }
    } catch (const Error &error) {
        result.error = error;
    }
    if (result.error) {
        result.changes.clear();
    }
    return result;
}

TranslateResult Service::translate(const Text &request, Kind kind, const Options &options) const {
    const auto transaction = parts_->device ? parts_->device->read() : nullptr;
    TranslateResult result;
    Tree trees;
    if (kind == Kind::edit) {
        trees = parts_->trees_of(request, options, transaction.get());
    } else {
        framework::TypedRead read = framework::typed(Selection(request), kind);
        kind = read.kind;
        result.warnings = std::move(read.warnings);
        trees = framework::hand_over_read(std::move(read.tops));
    }
    framework::Translation translation =
        framework::translate_trees(parts_->plugin.callback(framework::openconfig_root_walker), std::move(trees), kind,
                                   options, options.trace ? framework::Adds::kept : framework::Adds::dropped);
    result.result = framework::name_of(translation.result);
    for (framework::HandedOver &handed : translation.handed_over) {
        auto net = std::make_shared<native::NetRequest>(handed.native.net());
        if (kind == Kind::edit) {
            std::vector<std::string> cut = framework::cut_numbers(handed, *net);
            std::move(cut.begin(), cut.end(), std::back_inserter(translation.warnings));
        }
        result.requests.emplace_back(std::move(net));
        std::transform(std::make_move_iterator(handed.adds.begin()), std::make_move_iterator(handed.adds.end()),
                       std::back_inserter(result.additions), addition_of);
    }
    framework::take_messages(result, translation);
    return result;
}

std::vector<JournalEntry> Service::journal(std::uint64_t after, std::size_t most) const {
    return parts_->required_device().journal(after, most);
}

std::uint64_t Service::last_sequence() const {
    return parts_->required_device().last_sequence();
}

std::shared_ptr<void> Service::lock() const {
    return parts_->required_device().lock();
}

std::optional<LockHolder> Service::lock_holder() const {
    return parts_->required_device().lock_holder();
}

Tree Service::elements_of(const Text &text) {
    return framework::read_elements(text.text);
}

std::optional<Kind> Service::kind_of(const Text &request) noexcept {
    return framework::kind_named(request.text);
}

void *Service::find(const std::string &name) const {
    return parts_->plugin.find(name);
}

} // namespace ocpsm

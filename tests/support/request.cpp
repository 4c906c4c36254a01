#include "request.hpp"

#include <array>

namespace fake {
namespace {

yfw_map_ctx standing_context = nullptr;

// Handles are opaque: any distinct addresses serve.
std::array<char, 3> handles{};

} // namespace

yfw_map_ctx current_context() {
    return standing_context;
}

Request::Request(std::uint32_t kind) {
    registration.operation_kind = kind;
    state.registration = &registration;
    context.request = &state;
    context.error_log = reinterpret_cast<hvs_dt_handle>(handles.data());
    context.trace_log = reinterpret_cast<hvs_dt_handle>(&handles[1]);
    context.trace_buffer = reinterpret_cast<hvs_trace_handle>(&handles[2]);
    set_channels(true, true);
    standing_context = &context;
}

Request::~Request() {
    Platform::current().release(state.error_node_name);
    standing_context = nullptr;
}

std::string Request::error_node() const {
    return state.error_node_name == nullptr ? "none" : state.error_node_name;
}

void Request::set_channels(bool log_on, bool trace_on) {
    context.debug_log_filter.enabled_levels = log_on ? (1u << 0) | (1u << 3) : 0;
    context.trace_enabled = trace_on ? 1 : 0;
}

void Request::set_error_node(const char *name) {
    Platform::current().release(state.error_node_name);
    state.error_node_name = Platform::current().duplicate(name, "YFW MAP");
}

void Request::set_list_entry(const Node &entry) {
    list_entry_ = std::make_unique<Tree>(entry);
    state.list_node = list_entry_->root();
}

Stage::Stage() : destination_(container("dest")) {
    dest = destination_.root();
    platform.attach(destination_);
    platform.name(request.ctx(), "ctx");
}

std::vector<std::string> Stage::complaints() const {
    std::vector<std::string> all = platform.faults();
    const std::vector<std::string> heap = platform.heap();
    if (heap.size() != (request.state.error_node_name == nullptr ? 0u : 1u)) {
        all.emplace_back("more than the error-node name outlived the call");
    }
    const auto count = [&](std::size_t number, const char *what) {
        if (number != 0) {
            all.push_back(std::to_string(number) + what);
        }
    };
    count(platform.tokens_outstanding(), " tokens were not released");
    count(platform.handles_outstanding(), " database handles were not released");
    count(platform.lists_outstanding(), " database listings were not released");
    count(platform.decoders_outstanding(), " bag decoders were not released");
    return all;
}

Tree &Stage::build(const Node &description, const std::string &name) {
    trees_.push_back(std::make_unique<Tree>(description));
    if (!name.empty()) {
        trees_.back()->rename(name);
    }
    platform.attach(*trees_.back());
    return *trees_.back();
}

void Stage::drop_trees() {
    for (const auto &tree : trees_) {
        platform.detach(*tree);
    }
    trees_.clear();
}

} // namespace fake

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

RequestTest::RequestTest() : destination_(container("dest")) {
    dest = destination_.root();
    platform.attach(destination_);
    platform.name(request.ctx(), "ctx");
}

void RequestTest::TearDown() {
    EXPECT_EQ(platform.faults(), std::vector<std::string>{});
    std::vector<std::string> heap = platform.heap();
    if (request.state.error_node_name != nullptr) {
        EXPECT_EQ(heap.size(), 1u) << "more than the error-node name outlived the call";
    } else {
        EXPECT_EQ(heap, std::vector<std::string>{});
    }
    EXPECT_EQ(platform.tokens_outstanding(), 0u) << "tokens were not released";
    EXPECT_EQ(platform.handles_outstanding(), 0u) << "a database handle was not released";
    EXPECT_EQ(platform.lists_outstanding(), 0u) << "a database listing was not released";
    EXPECT_EQ(platform.decoders_outstanding(), 0u) << "a bag decoder was not released";
}

Tree &RequestTest::build(const Node &description, const std::string &name) {
    trees_.push_back(std::make_unique<Tree>(description));
    if (!name.empty()) {
        trees_.back()->rename(name);
    }
    platform.attach(*trees_.back());
    return *trees_.back();
}

void RequestTest::drop_trees() {
    for (const auto &tree : trees_) {
        platform.detach(*tree);
    }
    trees_.clear();
}

} // namespace fake

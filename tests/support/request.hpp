// A request and its context, and the base of all tests that call the plug-in through the fake platform.
#ifndef TESTS_SUPPORT_REQUEST_HPP
#define TESTS_SUPPORT_REQUEST_HPP

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <yfw_map.h>

#include "fake_platform.hpp"

namespace fake {

// The context whose filter, handles and address the messages must carry; null when none stands.
[[nodiscard]] yfw_map_ctx current_context();

// A context with its request. Both log levels (0 and 3) and the trace are on. Its error-node name is released with it.
class Request {
public:
    explicit Request(std::uint32_t kind = YFW_KIND_GET_CONFIG);
    ~Request();
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    [[nodiscard]] yfw_map_ctx ctx() { return &context; }
    [[nodiscard]] std::string error_node() const; // "none" when null

    void set_kind(std::uint32_t kind) { registration.operation_kind = kind; }
    // Switches the channels: the log filter's levels and the trace flag.
    void set_channels(bool log_on, bool trace_on);
    // Sets an error-node name as an earlier refusal would have.
    void set_error_node(const char *name);
    // The request's current list entry (list_node): an aps-module with this key.
    void set_list_entry(const Node &entry);

    yfw_map_registration registration{};
    yfw_map_request state{};
    yfw_map_context context{};

private:
    std::unique_ptr<Tree> list_entry_;
};

// A platform, a request (get-config unless set otherwise), a destination named "dest", and trees.
class Stage {
public:
    Stage();

    // Builds a tree and attaches it; its nodes print as their paths. With a name the root prints as that.
    Tree &build(const Node &description, const std::string &name = "");
    // Releases all trees that were built so far, for tests that run through many.
    void drop_trees();
    // Breaches of the platform's contracts, and what outlived the calls but for the error-node name; one line each.
    [[nodiscard]] std::vector<std::string> complaints() const;

    Platform platform;
    Request request;
    kidl_yfw_datatree *dest = nullptr;

private:
    std::vector<std::unique_ptr<Tree>> trees_;
    Tree destination_;
};

// A fixture on a stage. At the end of every test it asserts that there is no complaint.
class RequestTest : public ::testing::Test, protected Stage {
protected:
    void TearDown() override { EXPECT_EQ(complaints(), std::vector<std::string>{}); }
};

} // namespace fake

#endif

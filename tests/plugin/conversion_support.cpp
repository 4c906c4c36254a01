#include "conversion_support.hpp"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace conversion_test {
namespace {

constexpr std::size_t scripted_adds = 60;

// "TRC #7 function text" without level and sequence number.
std::string without_number(const std::string &trace) {
    return trace.substr(trace.find(' ', trace.find('#')) + 1);
}

// A log line and its trace line as one line. The trace may be cut, and names the function.
std::string joined(const std::string &log, const std::string &trace) {
    const std::string level = log.substr(4, 3);
    const std::string log_text = log.substr(8);
    const std::string rest = without_number(trace.substr(6));
    const std::string trace_text = rest.substr(rest.find(' ') + 1);
    if (trace.compare(6, 3, level) != 0 || log_text.compare(0, trace_text.size(), trace_text) != 0) {
        return "the channels differ: " + log + " | " + trace;
    }
    return (level == "ERR" ? "ERROR " : "") + rest;
}

bool begins(const std::string &line, const char *prefix) {
    return line.compare(0, std::strlen(prefix), prefix) == 0;
}

std::string replaced(std::string text, const std::string &pattern, const std::string &replacement) {
    const std::size_t position = text.find(pattern);
    return position == std::string::npos ? text : text.replace(position, pattern.size(), replacement);
}

// What a conversion may not touch, but for the source's flag 16 and a dump's mark in the context.
auto members(const kidl_yfw_datatree &node) {
    return std::make_tuple(node.tag, node.namespace_uri, node.value, node.operation, node.second_flags,
                           node.hierarchy_kind, node.consumed_mark, node.child_count, node.children);
}

auto members(const yfw_map_request &state) {
    return std::make_tuple(state.registration, state.registration->operation_kind, state.whole_subtree_walk,
                           state.delete_walk, state.replace_flags, state.replace_marker, state.read_selection,
                           state.selection_mode, state.leaf_selection, state.xpath_error, state.error_node_name,
                           state.hierarchy_length, state.hierarchy, state.output_depth, state.list_node,
                           state.request_root, state.answer_root, state.module_list);
}

auto members(const yfw_map_context &context) {
    return std::make_tuple(context.request, context.debug_log_filter.enabled_levels, context.error_log,
                           context.trace_log, context.trace_buffer, context.trace_enabled, context.list_operation,
                           context.output_count, context.output, context.root_node, context.parent_node,
                           context.current_node, context.pending_list, context.xpath_count, context.xpaths);
}

bool holds(const Lines &all, const char *line) {
    return std::find(all.begin(), all.end(), line) != all.end();
}

bool is_delete(std::uint32_t operation) {
    return operation == 3 || operation == 4;
}

// The source's operation at each add: its own, but none while the key of an interface is added below a delete.
std::vector<std::uint32_t> expected_operations(const Lines &expected, std::uint32_t operation) {
    std::vector<std::uint32_t> all;
    bool in_key = false;
    for (const std::string &line : expected) {
        in_key = line == "add_interface_key Start" || (in_key && line != "add_interface_key End");
        if (begins(line, "add(")) {
            all.push_back(in_key && is_delete(operation) ? 0 : operation);
        }
    }
    return all;
}

} // namespace

std::string add(const std::string &path, const std::string &native_namespace, const char *value,
                const std::string &source, unsigned first_flag, unsigned second_flag) {
    const std::string text = value != nullptr && std::strcmp(value, "$") == 0 ? "$" : fake::quoted(value);
    return "add(ctx, dest, \"" + path + "\", ns=" + native_namespace + ", value=" + text + ", src=" + source +
           ", result=none, " + std::to_string(first_flag) + ", " + std::to_string(second_flag) + ")";
}

std::string port_info(const std::string &rest) {
    return "/ots-oper/ots-ports/ots-port/ots-info" + rest;
}

std::string time_line(const std::string &rest) {
    return "/performance-management-history/global/periodic/optics-history/optics-port-histories/optics-port-history"
           "/optics-second30-history/optics-second30-optics-histories/optics-second30-optics-history"
           "/optics-second30-optics-time-line-instances/optics-second30-optics-time-line-instance" +
           rest;
}

Lines interface_key(const char *controller) {
    return {"add_interface_key Start",
            add("/interface-configurations/interface-configuration", "ifmgr-cfg", nullptr, src, 1, 0),
            add("/interface-configurations/interface-configuration/interface-name", "ifmgr-cfg", controller, src, 0, 1),
            add("/interface-configurations/interface-configuration/active", "ifmgr-cfg", "act", none, 0, 1),
            add("/interface-configurations/interface-configuration/optics", "optics-cfg", nullptr, src, 0, 1),
            "add_interface_key End"};
}

Lines dump() {
    return {"print_data  list index 0",
            "print_data  hierarchy_len  0",
            "print_datatree(ctx, null, \"root_node\")",
            "print_datatree(ctx, null, \"parent_node\")",
            "print_datatree(ctx, null, \"current_node\")",
            "print_datatree(ctx, registered, \"reg_dup_datatree\")",
            "print_datatree(ctx, null, \"plist\")"};
}

std::ostream &operator<<(std::ostream &out, const Situation &situation) {
    return out << situation.name << " (kind " << situation.kind << ", operation " << situation.operation << ")";
}

// A read is a read whatever the operation of the leaf; the kinds 8 and 15 are edits as 1 is.
const std::vector<Situation> &reads() {
    static const std::vector<Situation> all = {
        {"get-config", 0, 0}, {"get", 10, 0}, {"get-config of a deleted leaf", 0, 3}, {"get of a removed leaf", 10, 4}};
    return all;
}

const std::vector<Situation> &merges() {
    static const std::vector<Situation> all = {
        {"merge", 1, 0}, {"replace", 1, 1}, {"create", 1, 2}, {"merge", 8, 0}, {"merge", 15, 0}};
    return all;
}

const std::vector<Situation> &deletes() {
    static const std::vector<Situation> all = {{"delete", 1, 3}, {"remove", 1, 4}, {"delete", 8, 3}, {"delete", 15, 3}};
    return all;
}

const std::vector<Value> &values(Scale scale) {
    static const std::vector<Value> text = {{"true", "true"}, {nullptr, nullptr}, {"", ""}, {"abc", "abc"}};
    static const std::vector<Value> tenths = {{"12.5", "125"}, {nullptr, ""}, {"", "0"}, {"abc", "0"}};
    static const std::vector<Value> hundredths = {{"12.5", "1250"}, {nullptr, ""}, {"", "0"}, {"abc", "0"}};
    static const std::vector<Value> lockout = {
        {"PRIMARY", "protected"}, {"SECONDARY", "working"}, {"NONE", ""}, {nullptr, ""}, {"", ""}, {"abc", ""},
        {"primary", ""}};
    static const std::vector<Value> empty = {{"PRIMARY", ""}, {nullptr, ""}, {"", ""}, {"abc", ""}};
    switch (scale) {
    case Scale::text:
        return text;
    case Scale::tenths:
        return tenths;
    case Scale::hundredths:
        return hundredths;
    case Scale::lockout:
        return lockout;
    case Scale::empty:
        break;
    }
    return empty;
}

Lines filled(const Lines &expected, const std::string &conversion, const Value &value) {
    Lines all;
    for (const std::string &line : expected) {
        std::string text = begins(line, "@") ? conversion + line.substr(1) : line;
        text = replaced(text, "$", fake::quoted(value.written));
        all.push_back(replaced(text, "^", value.given == nullptr ? "(null)" : value.given));
    }
    return all;
}

ConversionTest::ConversionTest() {
    request.set_list_entry(fake::container("aps-module", {fake::leaf("name", "0/2-PSM-OM")}));
    request.state.request_root =
        build(fake::container("aps",
                              {fake::container("aps-modules",
                                               {fake::container("aps-module", {fake::leaf("name", "0/3-PSM-OM")})})}),
              "registered")
            .root();
    for (std::size_t nth = 1; nth <= scripted_adds; ++nth) {
        platform.answer("add", add_result(nth), nth);
    }
    platform.before("add", [this](const std::string &) {
        if (running_ != nullptr) {
            operations_.push_back(running_->operation);
        }
    });
}

kidl_yfw_datatree *ConversionTest::leaf_with(const char *value, std::uint32_t operation) {
    const fake::Node node = value == nullptr ? fake::leaf("leaf") : fake::leaf("leaf", value);
    return build(node.with_operation(operation), src).root();
}

Lines ConversionTest::told() const {
    Lines all;
    const Lines calls = platform.calls(fake::Output | fake::Walk | fake::Channels);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (begins(calls[i], "log ") && i + 1 < calls.size() && begins(calls[i + 1], "trace ")) {
            all.push_back(joined(calls[i], calls[i + 1]));
            ++i;
        } else {
            all.push_back(calls[i]);
        }
    }
    return all;
}

ConversionTest::Outcome ConversionTest::run(const std::string &conversion, kidl_yfw_datatree *source) {
    platform.forget();
    operations_.clear();
    running_ = source;
    const kerrno result = fake::conversion(conversion)(request.ctx(), source, dest);
    running_ = nullptr;
    return {result, told(), operations_};
}

void ConversionTest::expect_run(const std::string &conversion, const Situation &situation, const Value &value,
                                const Lines &expected) {
    std::ostringstream name;
    name << conversion << ", " << situation << ", value " << fake::quoted(value.given);
    SCOPED_TRACE(name.str());
    request.set_kind(situation.kind);
    request.context.data_printed = 0;
    kidl_yfw_datatree *const source = leaf_with(value.given, situation.operation);
    const kidl_yfw_datatree before = *source;
    const yfw_map_request state = request.state;
    const yfw_map_context context = request.context;

    const Outcome outcome = run(conversion, source);

    EXPECT_EQ(outcome.lines, filled(expected, conversion, value));
    const std::vector<std::uint32_t> operations = expected_operations(expected, situation.operation);
    EXPECT_EQ(outcome.operations, operations);
    EXPECT_EQ(outcome.result, operations.empty() ? KERR_SUCCESS : add_result(operations.size()));
    EXPECT_TRUE(members(*source) == members(before)) << "the source was changed";
    EXPECT_EQ(source->flags, before.flags | (holds(expected, "add_interface_key Start") ? 16u : 0u));
    EXPECT_TRUE(members(request.state) == members(state)) << "the request was changed";
    EXPECT_TRUE(members(request.context) == members(context)) << "the context was changed";
    EXPECT_EQ(request.context.data_printed, holds(expected, "print_data  list index 0") ? 1u : 0u);
}

} // namespace conversion_test

#include "commands.hpp"

#include <algorithm>
#include <ostream>

#include "framework/host/codes.hpp"
#include "framework/models/models.hpp"
#include "mapping_table.hpp"
#include "messages.hpp"
#include "request_run.hpp"

namespace ocpsm {
namespace {

using ocpsm::framework::AddRecord;
using ocpsm::framework::Kind;

constexpr std::string_view walker_prefix = "ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_";

std::string_view short_walker(std::string_view walker) {
    if (walker.substr(0, walker_prefix.size()) == walker_prefix) {
        walker.remove_prefix(walker_prefix.size());
    }
    return walker.empty() ? "?" : walker;
}

// A value as it can stand in a line: in quotes where it would not be seen or could be mistaken for something else.
std::string printed_value(const AddRecord &add) {
    if (!add.value) {
        return "no value";
    }
    const std::string line = on_one_line(*add.value);
    const bool is_plain = !line.empty() && line.find_first_of(" \"[(") == std::string::npos;
    return is_plain ? line : "\"" + line + "\"";
}

// Unit and scaling of the leaf that the conversion is there for; empty for the keys and types that stand around it.
std::string printed_scaling(const AddRecord &add) {
    const ConversionRow *row = find_conversion(conversion_rows(), add.conversion);
    if (row == nullptr || (add.path != row->path && add.path != std::string(row->path) + "-dbm")) {
        return {};
    }
    const auto leaf = std::find_if(node_rows().begin(), node_rows().end(),
                                   [&](const NodeRow &node) { return node.conversion == add.conversion; });
    if (leaf == node_rows().end()) {
        return {};
    }
    const auto info = ocpsm::models::Schema::openconfig().describe(schema_path(node_rows(), *leaf));
    return " [" + describe_value(*row, info ? info->units : std::string_view()) + "]";
}

std::string printed_operation(const AddRecord &add, Kind kind) {
    std::string text = "read";
    if (kind == Kind::edit) {
        // Without a source the new node carries none, which is merge.
        const auto operation = static_cast<ocpsm::Operation>(add.source_operation.value_or(0));
        text = ocpsm::operation_name(operation);
    }
    text.append(add.source_operation ? ", source" : ", no source");
    return text + ", flags " + std::to_string(add.first_flag) + " " + std::to_string(add.second_flag);
}

void print_add(std::ostream &output, const AddRecord &add, Kind kind) {
    const std::string_view model = std::string_view(add.namespace_uri).substr(add.namespace_uri.rfind('/') + 1);
    output << short_walker(add.walker) << " -> " << (add.conversion.empty() ? "walk" : add.conversion) << " -> ";
    if (add.relative) {
        output << on_one_line(add.path);
    } else {
        output << model << ":" << on_one_line(add.path);
    }
    output << " = " << printed_value(add) << printed_scaling(add) << " (" << printed_operation(add, kind) << ")";
    if (add.result != KERR_SUCCESS) {
        output << " failed: " << ocpsm::framework::name_of(add.result);
    }
    output << '\n';
}

} // namespace

int explain_command(const RequestOptions &options, std::ostream &output, std::ostream &errors) {
    const RequestRun run = run_request(options, true, errors);
    for (const auto &handed_over : run.translation.handed_over) {
        for (const AddRecord &add : handed_over.adds) {
            print_add(output, add, run.kind);
        }
    }
    return print_result(run.translation, output, errors);
}

} // namespace ocpsm

#include "port_values.hpp"

#include <cstdio>

namespace ymap {

namespace {

constexpr char secondary_key[] = "Ots0_%d_0_2";
constexpr char common_key[] = "Ots0_%d_0_0";

// The module that a value belongs to, and where its leaves go.
struct Target {
    const PortRow &row;
    yfw_map_ctx ctx;
    Node *destination;
    const char *module;
};

struct LeafPath {
    char text[200] = {};

    LeafPath(const char *port, const char *leaf) { std::snprintf(text, sizeof text, "/ports/%s/%s", port, leaf); }
};

void write_state(const Target &target, const char *port, const char *leaf, const char *value) {
    char state_leaf[100] = {};
    std::snprintf(state_leaf, sizeof state_leaf, "state/%s", leaf);
    trace_module(target.row.function, target.ctx, target.module);
    stitch_module_leaf(target.ctx, target.destination, target.module, LeafPath(port, state_leaf).text, value);
}

// The text of a database value of another port of the module. A read that fails writes nothing; a field that is not
// there leaves the text empty.
class DatabaseText {
public:
    DatabaseText(const Target &target, Reader &reader, const char *key_format) {
        char key[psm_key_size] = {};
        psm_key_to_sysdb_key(target.module, key_format, key);
        read_ = reader(target.ctx, key, {text_, sizeof text_}) == KERR_SUCCESS;
    }

    bool was_read() const { return read_; }
    const char *text() { return strstrip(text_); } // a history text has blanks around it

private:
    char text_[200] = {};
    bool read_ = false;
};

void write_from_database(const Target &target, const char *key_format, const char *port) {
    DatabaseText read(target, *target.row.reader, key_format);
    if (read.was_read()) {
        write_state(target, port, target.row.leaf, ScaledValue(read.text(), target.row.divisor).text());
    }
}

void write_configured(const Target &target, const char *port) {
    DatabaseText read(target, *target.row.config_reader, secondary_key);
    if (!read.was_read()) {
        return;
    }
    const ScaledValue value(read.text(), 10);
    if (answers_configuration(target.ctx)) {
        trace_module(target.row.function, target.ctx, target.module);
        add_module_leaf(target.ctx, target.destination, LeafPath(port, "config/target-attenuation").text, value.text());
    }
    if (is_operational_read(target.ctx)) {
        write_state(target, port, "target-attenuation", value.text());
    }
}

void write_ports(const Target &target, const char *native) {
    const bool receives = target.row.direction == Direction::receive;
    const char *secondary = receives ? "line-secondary-in" : "line-secondary-out";
    write_state(target, receives ? "line-primary-in" : "line-primary-out", target.row.leaf,
                ScaledValue(native, target.row.divisor).text());
    write_from_database(target, secondary_key, secondary);
    if (target.row.ports == Ports::all) {
        write_from_database(target, common_key, "common-output");
    }
    if (target.row.config_reader != nullptr) {
        write_configured(target, secondary);
    }
}

kerrno answer_for_others(Others others, yfw_map_ctx ctx, const char *name, kerrno lookup) {
    char module[psm_key_size] = {};
    switch (others) {
    case Others::keep:
        return lookup;
    case Others::secondary:
        return check_controller_name_ots_is_good_by_port(ctx, name, module, 2) == 1 ? lookup : YMAP_ERR_SKIP;
    default:
        return YMAP_ERR_SKIP;
    }
}

} // namespace

kerrno port_to_high(const PortRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    return convert_to_high(row.function, ctx, source, destination, [&] {
        const char *name = nullptr;
        const char *list_path = row.entry == PortEntry::ots_port ? YMAP_OTS_PORT : YMAP_HISTORY;
        const kerrno lookup = yfw_map_get_node_info(ctx, list_path, "name", &name);
        char module[psm_key_size] = {};
        if (check_controller_name_ots_is_good(ctx, name, module) != 1) {
            return answer_for_others(row.others, ctx, name, lookup);
        }
        if (has_value(*source)) {
            write_ports({row, ctx, destination, module}, source->value);
        }
        return lookup;
    });
}

} // namespace ymap

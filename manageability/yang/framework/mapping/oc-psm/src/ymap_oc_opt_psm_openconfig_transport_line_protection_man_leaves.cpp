// The leaves of a protection module become native settings and selections. Every conversion is a row of the table; the
// few ways in which a row is carried out stand here.
#include <cstdio>
#include <cstring>

#include "to_low.hpp"
#include "utility.hpp"
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man.hpp"

namespace {

using namespace ymap;

enum class Value { text, tenths, hundredths, lockout, empty };
enum class LinePort { none, primary, secondary };

struct LeafRow {
    Function function;
    Value value;
    LinePort port;
    const char *model;
    const char *path; // of the native leaf
    const char *twin; // the same path ended in "-dbm", the twin of a power
};

// The native side of one leaf: its scaled or mapped text, null when there is none to pass on.
class NativeValue {
public:
    NativeValue(const LeafRow &row, const Node &leaf) {
        switch (row.value) {
        case Value::text:
            text_ = value_of(leaf);
            break;
        case Value::tenths:
            scale(leaf, 10);
            break;
        case Value::hundredths:
            scale(leaf, 100);
            break;
        case Value::lockout:
            map_lockout(leaf);
            break;
        case Value::empty:
            break;
        }
    }
    NativeValue(const NativeValue &) = delete;
    NativeValue &operator=(const NativeValue &) = delete;

    const char *text() const { return text_; }

private:
    void scale(const Node &leaf, int multiplier) {
        if (has_value(leaf)) {
            convert_data_to_low(held_value_of(leaf), buffer_, sizeof buffer_, multiplier);
        }
    }

    // Traffic is forced to one path by locking it out from the other.
    void map_lockout(const Node &leaf) {
        constexpr std::size_t lockout_size = 20;
        if (!has_value(leaf)) {
            return;
        }
        if (std::strcmp(held_value_of(leaf), "PRIMARY") == 0) {
            yfw_strcpy_s(buffer_, lockout_size, "protected");
        } else if (std::strcmp(held_value_of(leaf), "SECONDARY") == 0) {
            yfw_strcpy_s(buffer_, lockout_size, "working");
        }
    }

    char buffer_[text_size] = {};
    const char *text_ = buffer_;
};

// One call of a conversion.
struct Leaf {
    const LeafRow &row;
    yfw_map_ctx ctx;
    const Node *source;
    Node *destination;

    void add(const char *path, const char *value, const Node *operation_source, AddFlags flags = belongs) {
        adds(row.model, path, value, operation_source, flags);
    }

    Adds adds{ctx, destination};
};

// ---- settings of the module's slot ----

void wait_to_restore(Leaf &leaf) {
    const NativeValue value(leaf.row, *leaf.source);
    if (!is_read(leaf.ctx) && is_delete(leaf.source)) {
        leaf.add(leaf.row.path, nullptr, leaf.source);
    } else {
        leaf.add(leaf.row.path, value.text(), nullptr);
    }
}

// A merge looks up the slot for the trace only: the slot entry comes from the module's key.
void trace_slot(const Leaf &leaf) {
    char path[path_size] = {};
    char key[text_size] = {};
    int slot = -1;
    compare_path(leaf.ctx, list_node_of(*request_of(leaf.ctx)), "aps-module/name", path, key);
    std::sscanf(key, "0/%d-PSM-OM", &slot);
    YMAP_TRACE(leaf.row.function, leaf.ctx, "psm_slot = %d", slot);
}

void revertive(Leaf &leaf) {
    const NativeValue value(leaf.row, *leaf.source);
    if (is_read(leaf.ctx)) {
        leaf.add(leaf.row.path, value.text(), nullptr);
    } else if (is_delete(leaf.source)) {
        leaf.add(leaf.row.path, nullptr, leaf.source);
    } else {
        trace_slot(leaf);
        leaf.add(leaf.row.path, value.text(), nullptr);
    }
    print_data(leaf.ctx);
}

void slot_setting(Leaf &leaf) {
    const NativeValue value(leaf.row, *leaf.source);
    if (is_read(leaf.ctx)) {
        YMAP_TRACE(leaf.row.function, leaf.ctx, "is get");
        leaf.add(leaf.row.path, value.text(), nullptr);
    } else if (is_delete(leaf.source)) {
        YMAP_TRACE(leaf.row.function, leaf.ctx, "delete");
        leaf.add(leaf.row.path, nullptr, leaf.source);
    } else {
        YMAP_TRACE(leaf.row.function, leaf.ctx, "else");
        leaf.add(leaf.row.path, value.text(), nullptr);
    }
}

void force_to_port(Leaf &leaf) {
    YMAP_TRACE(leaf.row.function, leaf.ctx, " get_data %s ", shown(value_of(*leaf.source)));
    print_data(leaf.ctx);
    slot_setting(leaf);
}

// ---- settings of a line port's controller ----

struct ControllerKey {
    char name[text_size] = {};
    bool found = false;

    explicit ControllerKey(const Leaf &leaf)
        : found(build_interface_key(leaf.ctx, leaf.row.port == LinePort::primary ? "Ots0/%d/0/1" : "Ots0/%d/0/2",
                                    name) == 1) {}

    void add_entry(const Leaf &leaf) const { add_interface_key(leaf.ctx, leaf.source, leaf.destination, name); }
};

void attenuation(Leaf &leaf) {
    const ControllerKey controller(leaf);
    const NativeValue value(leaf.row, *leaf.source);
    const Node *operation_source = nullptr;
    if (!is_read(leaf.ctx)) {
        controller.add_entry(leaf);
        operation_source = is_delete(leaf.source) ? leaf.source : nullptr;
    }
    leaf.add(leaf.row.path, value.text(), operation_source);
}

void hysteresis(Leaf &leaf) {
    const ControllerKey controller(leaf);
    if (controller.found) {
        controller.add_entry(leaf);
    }
    const NativeValue value(leaf.row, *leaf.source);
    if (is_read(leaf.ctx)) {
        leaf.add(leaf.row.path, value.text(), nullptr);
    } else {
        leaf.add(leaf.row.path, is_delete(leaf.source) ? nullptr : value.text(), leaf.source);
    }
}

constexpr char rx_thresholds[] = YMAP_OPTICS "/rx-thresholds";
constexpr char rx_threshold[] = YMAP_OPTICS "/rx-thresholds/rx-threshold";
constexpr char rx_threshold_type[] = YMAP_OPTICS "/rx-thresholds/rx-threshold/rx-threshold-type";

void add_deleted_threshold_entry(Leaf &leaf) {
    leaf.add(rx_thresholds, nullptr, leaf.source);
    leaf.add(rx_threshold, nullptr, leaf.source);
}

void add_threshold(Leaf &leaf, const NativeValue &value) {
    leaf.add(rx_threshold_type, "low", leaf.source);
    leaf.add(leaf.row.path, value.text(), leaf.source);
}

// The primary threshold opens its interface entry once more in a merge, and in a delete names the value before the
// type: both are part of what the device is sent, and are kept.
void primary_threshold(Leaf &leaf) {
    const ControllerKey controller(leaf);
    if (controller.found) {
        controller.add_entry(leaf);
    }
    const NativeValue value(leaf.row, *leaf.source);
    if (is_read(leaf.ctx)) {
        add_threshold(leaf, value);
    } else if (is_delete(leaf.source)) {
        add_deleted_threshold_entry(leaf);
        leaf.add(leaf.row.path, value.text(), leaf.source);
        leaf.add(rx_threshold_type, "low", leaf.source);
    } else {
        controller.add_entry(leaf);
        add_threshold(leaf, value);
    }
}

void secondary_threshold(Leaf &leaf) {
    print_data(leaf.ctx);
    const ControllerKey controller(leaf);
    if (controller.found) {
        controller.add_entry(leaf);
    }
    const NativeValue value(leaf.row, *leaf.source);
    if (!is_read(leaf.ctx) && is_delete(leaf.source)) {
        add_deleted_threshold_entry(leaf);
    }
    add_threshold(leaf, value);
}

// ---- selections of state ----

// State cannot be edited: outside a read nothing is added, which is no failure.
bool is_state_read(const Leaf &leaf) {
    if (is_read(leaf.ctx)) {
        return true;
    }
    is_delete(leaf.source);
    return false;
}

void state_leaf(Leaf &leaf) {
    const NativeValue value(leaf.row, *leaf.source);
    if (is_state_read(leaf)) {
        leaf.add(leaf.row.path, value.text(), nullptr);
    }
}

void state_force_to_port(Leaf &leaf) {
    YMAP_TRACE(leaf.row.function, leaf.ctx, "get_data %s ", shown(value_of(*leaf.source)));
    state_leaf(leaf);
}

void state_power(Leaf &leaf) {
    const NativeValue value(leaf.row, *leaf.source);
    if (is_state_read(leaf)) {
        leaf.add(leaf.row.path, value.text(), nullptr);
        leaf.add(leaf.row.twin, value.text(), nullptr);
    }
}

// The instance number 1 is the last full interval.
void state_history(Leaf &leaf) {
    const NativeValue value(leaf.row, *leaf.source);
    if (is_state_read(leaf)) {
        leaf.add(leaf.row.path, value.text(), nullptr, plain);
        leaf.add(YMAP_TIME_LINE "/number", "1", nullptr, plain);
    }
}

kerrno run(const LeafRow &row, void (*steps)(Leaf &), yfw_map_ctx ctx, const Node *source, Node *destination) {
    return convert_to_low(row.function, ctx, source, destination, [&] {
        Leaf leaf{row, ctx, source, destination};
        steps(leaf);
        return leaf.adds.result();
    });
}

} // namespace

extern "C" {

#define YMAP_TO_LOW(conversion, steps, value, port, model, path)                                                       \
    kerrno conversion(yfw_map_ctx ctx, const Node *source, Node *destination) {                                        \
        static constexpr LeafRow row{                                                                                  \
            {#conversion, YMAP_CALLBACK_PROTOTYPE(conversion), YMAP_OPENCONFIG_SOURCE("man")},                         \
            Value::value,                                                                                              \
            LinePort::port,                                                                                            \
            model,                                                                                                     \
            path,                                                                                                      \
            path "-dbm"};                                                                                              \
        return run(row, steps, ctx, source, destination);                                                              \
    }
#include "ymap_oc_opt_psm_openconfig_transport_line_protection_man_leaves.def"
#undef YMAP_TO_LOW

} // extern "C"

#include "answer_table.hpp"

#include <algorithm>

#include "native_models.hpp"
#include "native_names.hpp"

namespace ocpsm {
namespace {

// ---- the nodes of the native models ----

#define OCPSM_TEXT(...) #__VA_ARGS__
#define OCPSM_EXPANDED_TEXT(...) OCPSM_TEXT(__VA_ARGS__)

// The list callbacks by their names in the tables: the conversion that is behind them, if any.
constexpr std::string_view list_conversion(std::string_view callback) {
    return callback == "interface_configuration" ? "oc_opt_psm_if_list_cfg_to_high" : "";
}

constexpr std::string_view leaf_conversion(std::string_view conversion) {
    return conversion == "none" ? "" : conversion;
}

#define OCPSM_ROW(kind, suffix, parent, tag, conversion, augmented)                                                    \
    {ymap::native_model(OCPSM_EXPANDED_TEXT(YMAP_NATIVE_MODULE)).module,                                               \
     OCPSM_EXPANDED_TEXT(YMAP_NATIVE_MODULE),                                                                          \
     NativeKind::kind,                                                                                                 \
     #suffix,                                                                                                          \
     parent,                                                                                                           \
     tag,                                                                                                              \
     conversion,                                                                                                       \
     augmented},

constexpr NativeRow native_table[] = {
#define YMAP_AUGMENT(suffix, list) OCPSM_ROW(augment, suffix, "none", "", "", list)
#define YMAP_CONTAINER(suffix, parent, tag) OCPSM_ROW(container, suffix, #parent, tag, "", "")
#define YMAP_LIST(suffix, parent, tag, callback, keys, path)                                                           \
    OCPSM_ROW(list, suffix, #parent, tag, list_conversion(#callback), "")
#define YMAP_LEAF(suffix, parent, tag, conversion)                                                                     \
    OCPSM_ROW(leaf, suffix, #parent, tag, leaf_conversion(OCPSM_EXPANDED_TEXT(conversion)), "")
#include "native_nodes.inc"
};

// ---- what the conversions write ----

std::string below_module(std::string_view path) {
    return std::string(YMAP_MODULE).append(path);
}

class Rows {
public:
    Rows() {
#define YMAP_SLOT_TO_HIGH(conversion, slot_list, value, leaf) add_slot(#conversion, #value, leaf);
#define YMAP_OPTICS_TO_HIGH(conversion, writes, primary, secondary)                                                    \
    add_optics(#conversion, #writes, primary, secondary);
#define YMAP_PORT_TO_HIGH(conversion, entry, direction, divisor, leaf, reader, ports, config_reader, others)           \
    add_ports(#conversion, #direction, divisor, leaf, #ports, #config_reader);
#define YMAP_MODULE_TO_HIGH(conversion, steps, primary, secondary) add_module(#conversion, #steps, primary, secondary);
#include "to_high_tables.inc"
        add_names();
    }

    std::vector<AnswerRow> take() {
        return std::move(rows_);
    }

private:
    void add(std::string_view conversion, std::string_view path, std::string_view value, std::string_view source,
             bool operational_only = false) {
        rows_.push_back({std::string(conversion), below_module(path), std::string(value), source, operational_only});
    }

    void add_slot(std::string_view conversion, std::string_view value, std::string_view leaf) {
        add(conversion, std::string("/config/").append(leaf), value, "slot");
        add(conversion, std::string("/state/").append(leaf), value, "slot", true);
    }

    void add_optics(std::string_view conversion, std::string_view writes, const char *primary, const char *secondary) {
        const std::string_view sources[] = {"primary", "secondary"};
        const char *const paths[] = {primary, secondary};
        for (std::size_t port = 0; port < 2; ++port) {
            if (paths[port] == nullptr) {
                continue;
            }
            if (writes == "setting") {
                add(conversion, paths[port], "tenths", sources[port]);
                continue;
            }
            add(conversion, std::string(paths[port]) + "/config/target-attenuation", "tenths", sources[port]);
            add(conversion, std::string(paths[port]) + "/state/target-attenuation", "tenths", sources[port], true);
        }
    }

    // The primary port's value stands in the answer, the others are read while it is handled.
    void add_ports(std::string_view conversion, std::string_view direction, int divisor, std::string_view leaf,
                   std::string_view ports, std::string_view config_reader) {
        const std::string end = direction == "receive" ? "-in" : "-out";
        const std::string state = "/state/" + std::string(leaf);
        const std::string_view value = divisor == 100 ? "hundredths" : "text";
        add(conversion, "/ports/line-primary" + end + state, value, "primary");
        add(conversion, "/ports/line-secondary" + end + state, value, "database");
        if (ports == "all") {
            add(conversion, "/ports/common-output" + state, value, "database");
        }
        if (config_reader != "no_reader") {
            add(conversion, "/ports/line-secondary" + end + "/config/target-attenuation", "tenths", "database");
            add(conversion, "/ports/line-secondary" + end + "/state/target-attenuation", "tenths", "database", true);
        }
    }

    void add_module(std::string_view conversion, std::string_view steps, const char *primary, const char *secondary) {
        const bool is_name = steps == "module_name";
        const std::string_view value = is_name ? "key" : steps == "active_path" ? "port-status" : "tenths";
        add(conversion, primary, value, "primary", is_name);
        if (secondary != nullptr) {
            add(conversion, secondary, value, "secondary");
        }
    }

    // Written by hand in the plug-in, from the names of the controllers that are configured.
    void add_names() {
        const char *const leaf_callback = OCPSM_EXPANDED_TEXT(YMAP_NATIVE_JOIN(
            vexloorbitifmgrcfg, man_leaf_lvla_interfaceconfigurations_interfaceconfiguration_interfacename));
        add("oc_opt_psm_if_list_cfg_to_high", "", "key", "controller");
        for (const char *conversion : {"oc_opt_psm_if_list_cfg_to_high", leaf_callback}) {
            add(conversion, "/name", "key", "controller");
            add(conversion, "/config/name", "key", "controller");
        }
    }

    std::vector<AnswerRow> rows_;
};

} // namespace

std::span<const NativeRow> native_rows() {
    return native_table;
}

const std::vector<AnswerRow> &answer_rows() {
    static const std::vector<AnswerRow> rows = Rows().take();
    return rows;
}

std::string native_path(std::span<const NativeRow> rows, const NativeRow &row) {
    if (row.kind == NativeKind::augment) {
        return std::string(row.augmented);
    }
    // A parent stands before its children, so that a row can never be above itself.
    const auto above = rows.first(static_cast<std::size_t>(&row - rows.data()));
    const auto parent = std::find_if(above.begin(), above.end(), [&](const NativeRow &other) {
        return other.module == row.module && other.suffix == row.parent;
    });
    std::string path = parent == above.end() ? std::string() : native_path(above, *parent);
    return path.append("/").append(row.tag);
}

std::vector<std::string> exported_names(const NativeRow &row) {
    const auto name = [&](std::string_view kind, std::string_view ending) {
        return std::string("ymap_n2o_oc_opt_psm_")
            .append(row.module)
            .append("_")
            .append(kind)
            .append(row.suffix)
            .append(ending);
    };
    std::vector<std::string> names = {name("", ""), name("", "_parse_augments")};
    if (row.kind != NativeKind::augment) {
        names.push_back(name(row.kind == NativeKind::leaf   ? "leaf_"
                             : row.kind == NativeKind::list ? "list_"
                                                            : "cont_",
                             ""));
    }
    if (!row.conversion.empty()) {
        names.emplace_back(row.conversion);
    }
    return names;
}

std::string describe_answer_value(std::string_view value, std::string_view units) {
    const auto scaled = [&](std::string_view step, std::string_view divisor) {
        return std::string(step).append(units.empty() ? "" : " ").append(units).append(", ").append(divisor);
    };
    if (value == "tenths") {
        return scaled("0.1", "/10");
    }
    if (value == "hundredths") {
        return scaled("0.01", "/100");
    }
    if (value == "lockout") {
        return "protected: PRIMARY, working: SECONDARY, else NONE";
    }
    if (value == "port-status") {
        return "active: PRIMARY, else SECONDARY";
    }
    if (value == "key") {
        return "the module of the controller";
    }
    return units.empty() ? std::string("as it stands") : std::string(units).append(", as it stands");
}

std::string_view describe_source(std::string_view source) {
    if (source == "slot") {
        return "the answer for the slot";
    }
    if (source == "database") {
        return "the system database, with the primary port's answer";
    }
    if (source == "controller") {
        return "the name of the controller";
    }
    return source == "primary" ? "the answer for the primary port" : "the answer for the secondary port";
}

} // namespace ocpsm

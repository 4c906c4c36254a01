#include "leaf_table.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <iterator>
#include <map>

#include "columns.hpp"
#include "framework/models/models.hpp"
#include "framework/openconfig.hpp"
#include "framework/text.hpp"

namespace ocpsm {
namespace {

constexpr std::size_t gap = 2;
constexpr std::string_view key_step = "/name";
static_assert(key_step.substr(1) == openconfig::key_name);

struct Row {
    std::string path;                          // below its group
    std::map<std::size_t, std::string> values; // by column
    std::string unit;
};

struct Group {
    std::string path; // below a module
    std::vector<Row> rows;
};

// A container of configuration or of state, with all that is below it.
std::size_t end_of_group(const std::string &path) {
    for (const std::string_view container : {"/config/", "/state/"}) {
        const std::size_t found = ("/" + path).find(container);
        if (found != std::string::npos) {
            return found + container.size() - 2;
        }
    }
    return path.rfind('/');
}

// An identity of the model itself goes without its prefix.
std::string shortened(const std::string &value, const lysc_node &leaf) {
    const std::string prefix = std::string(leaf.module->name) + ":";
    const bool is_identity = reinterpret_cast<const lysc_node_leaf &>(leaf).type->basetype == LY_TYPE_IDENT;
    return is_identity && value.starts_with(prefix) ? value.substr(prefix.size()) : value;
}

class Table {
public:
    explicit Table(const std::vector<Leaf> &leaves) {
        std::string module; // whose leaves follow
        for (const Leaf &leaf : leaves) {
            const bool below = !module.empty() && leaf.path.starts_with(module);
            if (!below) { // the key of the next one
                module = leaf.path.substr(0, leaf.path.size() - key_step.size()) + "/";
                modules_.push_back(one_line(leaf.value, whole_text));
            } else {
                add(leaf.path.substr(module.size()), leaf.value);
            }
        }
    }

    std::string text() const {
        if (modules_.empty()) {
            return {};
        }
        std::size_t name_width = 0;
        std::vector<std::size_t> widths;
        std::transform(modules_.begin(), modules_.end(), std::back_inserter(widths), width_of);
        for_each_row([&](const Row &row) {
            name_width = std::max(name_width, gap + row.path.size());
            for (const auto &[column, value] : row.values) {
                widths[column] = std::max(widths[column], width_of(value));
            }
        });
        std::string text = std::string(name_width, ' ');
        for (std::size_t column = 0; column < modules_.size(); ++column) {
            text += cell(modules_[column], widths[column]);
        }
        text += "\n";
        for (const Group &group : groups_) {
            text += "\n" + group.path + "\n";
            for (const Row &row : group.rows) {
                text += std::string(gap, ' ') + to_the_left(row.path, name_width - gap);
                for (std::size_t column = 0; column < modules_.size(); ++column) {
                    const auto value = row.values.find(column);
                    text += cell(value == row.values.end() ? "-" : value->second, widths[column]);
                }
                text += (row.unit.empty() ? "" : std::string(gap, ' ') + row.unit) + "\n";
            }
        }
        return text;
    }

private:
    static std::string cell(std::string_view text, std::size_t column_width) {
        return std::string(gap, ' ') + to_the_right(text, column_width);
    }

    template <class Visit>
    void for_each_row(Visit visit) const {
        for (const Group &group : groups_) {
            std::for_each(group.rows.begin(), group.rows.end(), visit);
        }
    }

    template <class Entry>
    static Entry &entry(std::vector<Entry> &entries, const std::string &path) {
        const auto found =
            std::find_if(entries.begin(), entries.end(), [&path](const Entry &other) { return other.path == path; });
        if (found != entries.end()) {
            return *found;
        }
        entries.emplace_back().path = path;
        return entries.back();
    }

    void add(const std::string &path, const std::string &value) {
        const std::size_t end = end_of_group(path);
        Row &row = entry(entry(groups_, path.substr(0, end)).rows, path.substr(end + 1));
        const lysc_node &leaf = *models::Schema::openconfig().find(std::string(openconfig::list_path) + "/" + path);
        row.unit = models::describe(leaf).units;
        row.values[modules_.size() - 1] = value.empty() ? "\"\"" : one_line(shortened(value, leaf), whole_text);
    }

    std::vector<std::string> modules_;
    std::vector<Group> groups_;
};

} // namespace

std::string leaf_table(const std::vector<Leaf> &leaves) {
    return Table(leaves).text();
}

} // namespace ocpsm

#include "simulator/line_system/native_side.hpp"

#include <libyang/libyang.h>

#include <algorithm>
#include <utility>

#include "simulator/line_system/native_table.hpp"

namespace ocpsm::line_system {
namespace {

class Builder {
public:
    explicit Builder(const LineSystem &system) : system_(system) {}

    // The data below a node; containers with nothing in them are not there.
    std::vector<native::NativeNode> below(const lysc_node *parent, const Place &place) const {
        std::vector<native::NativeNode> nodes;
        for (const lysc_node *step : table_.schema().children(parent)) {
            add(*step, place, nodes);
        }
        return nodes;
    }

private:
    void add(const lysc_node &schema, const Place &place, std::vector<native::NativeNode> &nodes) const {
        if (schema.nodetype == LYS_LIST) {
            for (const ListEntry &entry : entries(table_.list(schema).kind, system_, place)) {
                nodes.push_back(list_entry(schema, entry));
            }
        } else if (schema.nodetype == LYS_LEAF) {
            if (is_key(schema)) {
                return;
            }
            if (auto value = value_of(table_.leaf(schema).field, system_, place)) {
                nodes.push_back({&schema, std::move(value)});
            }
        } else if (std::vector<native::NativeNode> children = below(&schema, place); !children.empty()) {
            nodes.push_back({&schema, std::nullopt, std::move(children)});
        }
    }

    native::NativeNode list_entry(const lysc_node &schema, const ListEntry &entry) const {
        native::NativeNode node{&schema};
        std::size_t index = 0;
        for (const lysc_node *key : models::key_leaves(schema)) {
            node.children.push_back({key, entry.keys.at(index++)});
        }
        std::vector<native::NativeNode> others = below(&schema, entry.place);
        std::move(others.begin(), others.end(), std::back_inserter(node.children));
        return node;
    }

    const LineSystem &system_;
    const NativeTable &table_ = NativeTable::device();
};

} // namespace

native::NativeData native_data(const LineSystem &system) {
    return {Builder(system).below(nullptr, {})};
}

} // namespace ocpsm::line_system

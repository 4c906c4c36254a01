#include "framework/request/companions.hpp"

#include <algorithm>
#include <vector>

#include "framework/mapping/answer_table.hpp"
#include "framework/mapping/request_table.hpp"
#include "framework/models/models.hpp"
#include "framework/request/instance_path.hpp"

namespace ocpsm::framework {

namespace {

std::vector<std::string> refused_leaves() {
    std::vector<std::string> refused;
    for (const NodeRow &row : node_rows()) {
        if (row.kind == NodeKind::leaf && row.conversion.empty()) {
            refused.push_back(schema_path(node_rows(), row));
        }
    }
    return refused;
}

std::string_view common_node(std::string_view one, std::string_view other) {
    const auto *const end = std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first;
    return one.substr(0, one.substr(0, static_cast<std::size_t>(end - one.begin())).rfind('/'));
}

// Asking for a leaf has the conversion run that gets its value: all that this writes comes along.
std::vector<Companion> make_companions() {
    const models::Schema &schema = models::Schema::openconfig();
    const std::vector<std::string> refused = refused_leaves();
    const auto is_refused = [&refused](std::string_view path) {
        return std::find(refused.begin(), refused.end(), path) != refused.end();
    };
    // A conversion gets the value of the leaf that the native answer holds, and no other's.
    const auto gets = [](const AnswerRow &row) { return row.reader == "answer"; };
    std::vector<Companion> found;
    for (const std::string &leaf : refused) {
        std::string_view around;
        for (const AnswerRow &row : answer_rows()) {
            for (const AnswerRow &other : answer_rows()) {
                if (row.path == leaf && other.conversion == row.conversion && gets(other) && !is_refused(other.path)) {
                    const std::string_view common = common_node(leaf, other.path);
                    around = common.size() > around.size() ? common : around;
                }
            }
        }
        if (!around.empty()) {
            found.push_back({schema.find(leaf), schema.find(around), leaf.substr(around.size())});
        }
    }
    return found;
}

} // namespace

std::span<const Companion> companions() {
    static const std::vector<Companion> all = make_companions();
    return all;
}

std::string read_with(std::string_view leaf_path) {
    const lysc_node *leaf = schema_of(leaf_path);
    for (const Companion &companion : companions()) {
        if (companion.leaf == leaf && leaf_path.ends_with(companion.below)) {
            return std::string(leaf_path.substr(0, leaf_path.size() - companion.below.size()));
        }
    }
    return {};
}

} // namespace ocpsm::framework

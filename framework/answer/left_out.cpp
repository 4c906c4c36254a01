#include "framework/answer/left_out.hpp"

#include <libyang/libyang.h>

#include "framework/models/models.hpp"
#include "framework/openconfig.hpp"
#include "framework/request/companions.hpp"
#include "framework/request/instance_path.hpp"
#include "framework/request/instance_read.hpp"
#include "framework/text.hpp"

namespace ocpsm::framework {

namespace {

bool is_below(const lysc_node &node, const lysc_node &above) {
    return node.parent != nullptr && (node.parent == &above || is_below(*node.parent, above));
}

// The node with this schema in an entry of the list, or null.
const lyd_node *find_in(const lyd_node &entry, const lysc_node &schema) {
    const lyd_node *parent = schema.parent == entry.schema ? &entry : find_in(entry, *schema.parent);
    return parent == nullptr ? nullptr : find_sibling(lyd_child(parent), schema);
}

class LeftOut {
public:
    LeftOut(const AnswerTree &answer, Kind kind) : answer_(answer), kind_(kind), names_(answer.entry_names()) {}

    // `names`: the entries around the node, none in front of the list.
    void look(const RequestNode &node, const lysc_node *parent, std::span<const std::string> names) {
        const lysc_node *schema = models::Schema::openconfig().child(parent, node.tag, node.namespace_uri);
        if (schema == nullptr) {
            return;
        }
        std::vector<std::string> name;
        if (schema->nodetype == LYS_LIST) {
            const RequestNode *key = find_key(node, openconfig::key_name);
            name = key == nullptr ? names_ : std::vector{*key->value};
            names = name;
        }
        if (node.children.empty()) {
            look_below(*schema, names);
        }
        for (const RequestNode &child : node.children) {
            look(child, schema, names);
        }
    }

    std::vector<std::string> take() {
        return found_.count() == 0 ? std::vector<std::string>() : std::vector{start + found_.in_a_row()};
    }

private:
    static inline const std::string start = "what cannot be asked for by itself is left out: ";

    void look_below(const lysc_node &selected, std::span<const std::string> names) {
        for (const Companion &companion : companions()) {
            const bool wanted = kind_ == Kind::get || models::describe(*companion.leaf).config;
            if (!wanted || !is_below(*companion.leaf, selected) || !is_below(selected, *companion.around)) {
                continue;
            }
            for (const std::string &name : names) {
                const lyd_node *entry = answer_.find_entry(name);
                if (entry != nullptr && find_in(*entry, selected) != nullptr &&
                    find_in(*entry, *companion.leaf) == nullptr) {
                    add(companion, name);
                }
            }
        }
    }

    void add(const Companion &companion, const std::string &name) {
        found_.add([&] {
            const std::string around =
                instance_path(name) + models::schema_path(*companion.around).substr(openconfig::list_path.size());
            return around + companion.below + " (a read of " + around + " has it)";
        });
    }

    const AnswerTree &answer_;
    Kind kind_;
    std::vector<std::string> names_;
    FirstTexts found_;
};

} // namespace

std::vector<std::string> left_out(std::span<const HandedOver> handed_over, const AnswerTree &answer, Kind kind) {
    if (answer.empty()) {
        return {};
    }
    LeftOut found(answer, kind);
    for (const HandedOver &handed : handed_over) {
        found.look(handed.request, nullptr, {});
    }
    return found.take();
}

} // namespace ocpsm::framework

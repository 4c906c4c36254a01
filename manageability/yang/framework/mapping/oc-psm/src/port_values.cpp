#include "port_values.hpp"

namespace ymap {

namespace {

// The text of a database value of another port of the module. A read that fails writes nothing; a field that is not
// there leaves the text empty.
class DatabaseText {
public:
    DatabaseText(yfw_map_ctx ctx, const AnswerLeaf &leaf, const char *module) {
        char key[psm_key_size] = {};
        psm_key_to_sysdb_key(module, leaf.source == Source::secondary ? "Ots0_%d_0_2" : "Ots0_%d_0_0", key);
        read_ = leaf.reader(ctx, key, {text_, sizeof text_}) == KERR_SUCCESS;
    }

    bool was_read() const { return read_; }
    const char *text() { return strstrip(text_); } // a history text has blanks around it

private:
    char text_[200] = {};
    bool read_ = false;
};

void write_ports(const Target &target, const char *native) {
    for (AnswerLeaves rest = target.row.leaves; !rest.empty();) {
        const AnswerLeaves group = first_group(rest);
        rest = rest.subspan(group.size());
        if (group.front().reader == answer) {
            write_native(target, group, native, KERR_SUCCESS);
            continue;
        }
        DatabaseText read(target.ctx, group.front(), target.module);
        if (read.was_read()) {
            write_native(target, group, read.text(), KERR_SUCCESS);
        }
    }
}

} // namespace

kerrno port_values(const AnswerRow &row, yfw_map_ctx ctx, const Node *source, Node *destination) {
    const char *name = nullptr;
    const kerrno lookup = yfw_map_get_node_info(ctx, row.key_list, "name", &name);
    char module[psm_key_size] = {};
    if (check_controller_name_ots_is_good(ctx, name, module) != 1) {
        return answer_for_others(row.others, ctx, name, lookup);
    }
    if (has_value(*source)) {
        write_ports({row, ctx, destination, module, ModuleTrace::all}, held_value_of(*source));
    }
    return lookup;
}

} // namespace ymap

#include "framework/answer/walk.hpp"

#include <libyang/libyang.h>

#include <array>
#include <list>
#include <string>

#include "framework/answer/cut.hpp"
#include "framework/answer/instance_map.hpp"
#include "framework/answer/writer.hpp"
#include "framework/error.hpp"
#include "framework/host/codes.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/native/native_request.hpp"
#include "framework/request/instance_read.hpp"

namespace ocpsm::framework {

namespace {

constexpr uint32_t container_level = 1;
constexpr uint32_t list_level = 2;

// Walkers of the answers of whole models, in the order in which they are called.
struct TopWalker {
    const char *tag;
    const char *callback;
};

constexpr std::array top_walkers{
    TopWalker{"interface-configurations", "ymap_n2o_oc_opt_psm_vexloorbitifmgrcfg_lvla_interfaceconfigurations"},
    TopWalker{"active-nodes", "ymap_n2o_oc_opt_psm_vexloorbitconfigmdacfg_lvla_activenodes"},
    TopWalker{"ots-oper", "ymap_n2o_oc_opt_psm_vexloorbitcontrollertlm2200otsoper_lvla_otsoper"},
    TopWalker{"optics-oper", "ymap_n2o_oc_opt_psm_vexloorbitcontrolleropticsoper_lvla_opticsoper"},
    TopWalker{"performance-management-history",
              "ymap_n2o_oc_opt_psm_vexloorbitpmengineoper_lvla_performancemanagementhistory"},
};

// Walkers of the nodes that augment the entries of another model's list, right below its top container.
struct AugmentWalker {
    const char *top;
    const char *list;
    const char *tag;
    const char *callback;
};

constexpr std::array augment_walkers{
    AugmentWalker{"active-nodes", "active-node", "slot",
                  "ymap_n2o_oc_opt_psm_vexloorbittlm2200otscfg_augment_lvla_active_node"},
    AugmentWalker{"preconfigured-nodes", "preconfigured-node", "slot",
                  "ymap_n2o_oc_opt_psm_vexloorbittlm2200otscfg_augment_lvla_preconfigured_node"},
    AugmentWalker{"interface-configurations", "interface-configuration", "optics",
                  "ymap_n2o_oc_opt_psm_vexloorbitcontrolleropticscfg_augment_lvla_interface_configuration"},
};

RequestNode tree_of(const native::DataNode &native) {
    RequestNode node{native.schema->name, native.schema->module->ns, native.value};
    for (const native::DataNode &child : native.children) {
        node.children.push_back(tree_of(child));
    }
    return node;
}

std::string request_path(const RequestNode &request) {
    const auto name = instance_of_read(request);
    return name ? instance_path(*name) : "/" + request.tag;
}

[[noreturn]] void fail(const RequestNode &request, kerrno code, const std::string &where) {
    throw Error(Error::Source::refused, "operation-failed", request_path(request),
                "the device's answer cannot be mapped: " + name_of(code) + " (" + text_of(code) + ") in " + where);
}

class AnswerWalk {
public:
    AnswerWalk(const Plugin &plugin, Kind kind, const RequestNode &request, const native::NativeData &data,
               Channels &channels, const Options &options)
        : plugin_(plugin), request_(request), context_(static_cast<uint32_t>(kind), request, channels, answer_) {
        context_.switch_channels(options.log, options.trace);
        if (kind == Kind::get) {
            context_.select_state_leaves(state_leaves_only({request}));
        }
        for (const native::DataNode &root : data.roots) {
            models_.emplace_back(tree_of(root));
        }
    }

    AnswerTree run() {
        for (const TopWalker &walker : top_walkers) {
            walk_tops(walker);
        }
        make_map();
        context_.set_instance_map(map_);
        for (const AugmentWalker &walker : augment_walkers) {
            walk_augmented(walker);
        }
        return std::move(answer_).finish();
    }

private:
    void call(const char *callback, kidl_yfw_datatree &node, const std::string &where) {
        const kerrno result = plugin_.callback(callback)(&context_, &node, &context_.destination());
        const kerrno failure = result != KERR_SUCCESS ? result : answer_.failure();
        if (failure != KERR_SUCCESS) {
            const std::string told = context_.own_refusal().value_or(context_.error_path().value_or(""));
            fail(request_, failure, told.empty() ? where : told);
        }
    }

    void walk_tops(const TopWalker &walker) {
        for (DataTree &model : models_) {
            if (yfw_map_do_these_match(model.root().tag, walker.tag) != 0) {
                context_.set_answer_root(model.root());
                call(walker.callback, model.root(), std::string("/") + walker.tag);
                check_rest(walker.tag);
            }
        }
    }

    void walk_augmented(const AugmentWalker &walker) {
        for (DataTree &model : models_) {
            if (yfw_map_do_these_match(model.root().tag, walker.top) == 0) {
                continue;
            }
            context_.set_answer_root(model.root());
            context_.push_level(model.root(), container_level);
            for (int32_t index = 0; index < model.root().child_count; ++index) {
                kidl_yfw_datatree &entry = model.root().children[index];
                if (yfw_map_do_these_match(entry.tag, walker.list) != 0) {
                    walk_entry(walker, entry);
                }
            }
            context_.pop_level(model.root());
            check_rest(walker.top);
        }
    }

    // The entry's hierarchy and scope are those that its own walker would have made.
    void walk_entry(const AugmentWalker &walker, kidl_yfw_datatree &entry) {
        context_.push_level(entry, list_level);
        context_.update_list_node(std::string("/") + walker.top + "/" + walker.list);
        context_.push_output(&entry, &context_.destination());
        for (int32_t index = 0; index < entry.child_count; ++index) {
            kidl_yfw_datatree &child = entry.children[index];
            if (yfw_map_do_these_match(child.tag, walker.tag) != 0 &&
                yfw_map_do_these_match(child.namespace_uri, entry.namespace_uri) == 0) {
                call(walker.callback, child, context_.hierarchy_path() + "/" + walker.tag);
            }
        }
        context_.pop_output();
        context_.pop_level(entry);
    }

    void check_rest(const std::string &tag) {
        if (!context_.at_rest()) {
            throw Error(Error::Source::refused, "operation-failed", request_path(request_),
                        "the plug-in has not ended its walk of /" + tag + " as it began it");
        }
    }

    void make_map() {
        const auto named = instance_of_read(request_);
        for (const std::string &name : named ? std::vector<std::string>{*named} : answer_.names()) {
            Channels silent;
            native::NativeRequest read(native::RequestKind::read);
            MappingContext context(YFW_KIND_GET, read_of_instance(name), silent, read);
            const kerrno result =
                plugin_.callback(openconfig_root_walker)(&context, &context.request_tree(), &context.destination());
            if (result != KERR_SUCCESS) {
                fail(request_, result, "a read of " + instance_path(name));
            }
            map_.add(name, read.net());
        }
    }

    const Plugin &plugin_;
    const RequestNode &request_;
    std::list<DataTree> models_; // one for each top node of the answer
    AnswerWriter answer_;
    InstanceMap map_;
    MappingContext context_;
};

} // namespace

AnswerTree walk_answer(const Plugin &plugin, Kind kind, const RequestNode &request, const native::NativeData &data,
                       Channels &channels, const Options &options) {
    return AnswerWalk(plugin, kind, request, data, channels, options).run();
}

} // namespace ocpsm::framework

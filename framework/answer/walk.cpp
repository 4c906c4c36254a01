#include "framework/answer/walk.hpp"

#include <libyang/libyang.h>

#include <list>
#include <string>

#include "framework/answer/cut.hpp"
#include "framework/answer/instance_map.hpp"
#include "framework/answer/writer.hpp"
#include "framework/error.hpp"
#include "framework/host/allocation.hpp"
#include "framework/host/codes.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/native/native_request.hpp"
#include "framework/request/instance_read.hpp"
#include "native_entries.hpp"

namespace ocpsm::framework {

namespace {

RequestNode tree_of(const native::NativeNode &native) {
    RequestNode node{native.schema->name, native.schema->module->ns, native.value};
    for (const native::NativeNode &child : native.children) {
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
        context_.keep_adds(false);
        for (const native::NativeNode &root : data.roots) {
            models_.emplace_back(tree_of(root));
        }
    }

    AnswerTree run() {
        for (const ymap::NativeEntry &entry : ymap::native_entries) {
            if (entry.list.empty()) {
                walk_tops(entry);
            }
        }
        make_map();
        context_.set_instance_map(map_);
        for (const ymap::NativeEntry &entry : ymap::native_entries) {
            if (!entry.list.empty()) {
                walk_augmented(entry);
            }
        }
        watch_.require_none(request_path(request_));
        return std::move(answer_).finish();
    }

private:
    void call(Callback callback, kidl_yfw_datatree &node, const std::string &where) {
        const kerrno result = callback(&context_, &node, &context_.destination());
        watch_.require_none(request_path(request_));
        const kerrno failure = result != KERR_SUCCESS ? result : answer_.failure();
        if (failure != KERR_SUCCESS) {
            const std::string told = context_.own_refusal().value_or(context_.error_path().value_or(""));
            fail(request_, failure, told.empty() ? where : told);
        }
    }

    void walk_tops(const ymap::NativeEntry &entry) {
        for (DataTree &model : models_) {
            if (entry.tag == model.root().tag) {
                context_.set_answer_root(model.root());
                call(callback_of(entry), model.root(), "/" + std::string(entry.tag));
                check_rest(model.root());
            }
        }
    }

    // The list stands right below the top of the model that is augmented.
    void walk_augmented(const ymap::NativeEntry &entry) {
        const std::size_t slash = entry.list.rfind('/');
        for (DataTree &model : models_) {
            kidl_yfw_datatree &root = model.root();
            if (entry.list.substr(1, slash - 1) != root.tag) {
                continue;
            }
            context_.set_answer_root(root);
            context_.push_level(root, container_level);
            for (int32_t index = 0; index < root.child_count; ++index) {
                if (entry.list.substr(slash + 1) == root.children[index].tag) {
                    walk_entry(entry, root.children[index]);
                }
            }
            context_.pop_level(root);
            check_rest(root);
        }
    }

    // The hierarchy and scope of a list entry are those that its own walker would have made.
    void walk_entry(const ymap::NativeEntry &entry, kidl_yfw_datatree &node) {
        const Callback callback = callback_of(entry);
        context_.push_level(node, list_level);
        context_.update_list_node(std::string(entry.list));
        context_.push_output(&node, &context_.destination());
        for (int32_t index = 0; index < node.child_count; ++index) {
            kidl_yfw_datatree &child = node.children[index];
            if (entry.tag == child.tag && yfw_map_do_these_match(child.namespace_uri, node.namespace_uri) == 0) {
                call(callback, child, context_.hierarchy_path() + "/" + child.tag);
            }
        }
        context_.pop_output();
        context_.pop_level(node);
    }

    Callback callback_of(const ymap::NativeEntry &entry) const { return plugin_.callback(std::string(entry.walker)); }

    void check_rest(const kidl_yfw_datatree &root) {
        if (!context_.at_rest()) {
            throw Error(Error::Source::refused, "operation-failed", request_path(request_),
                        "the plug-in has not ended its walk of /" + std::string(root.tag) + " as it began it");
        }
    }

    void make_map() {
        const auto named = instance_of_read(request_);
        for (const std::string &name : named ? std::vector<std::string>{*named} : answer_.names()) {
            Channels silent;
            native::NativeRequest read(native::RequestKind::read);
            MappingContext context(YFW_KIND_GET, read_of_instance(name), silent, read);
            context.keep_adds(false);
            const kerrno result =
                plugin_.callback(openconfig_root_walker)(&context, &context.request_tree(), &context.destination());
            watch_.require_none(request_path(request_));
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
    AllocationWatch watch_;
};

} // namespace

AnswerTree walk_answer(const Plugin &plugin, Kind kind, const RequestNode &request, const native::NativeData &data,
                       Channels &channels, const Options &options) {
    return AnswerWalk(plugin, kind, request, data, channels, options).run();
}

} // namespace ocpsm::framework

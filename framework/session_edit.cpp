// Edits: from the request to what has changed.
#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "framework/native_origin.hpp"
#include "framework/request/existence.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/instance_read.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/session_parts.hpp"

namespace ocpsm::framework {

namespace {

std::vector<Change> changes_between(const std::vector<AnswerNode> &before, const std::vector<AnswerNode> &after) {
    using Values = std::map<std::string, std::optional<std::string>>;
    const auto values_of = [](const std::vector<AnswerNode> &tops) {
        Values values;
        for_each_leaf(tops, [&values](const std::string &path, const AnswerNode &leaf) { values[path] = leaf.value; });
        return values;
    };
    const Values old_values = values_of(before);
    const Values new_values = values_of(after);
    std::vector<AnswerNode> both = before;
    join(both, after);
    std::vector<Change> changes;
    for_each_leaf(both, [&](const std::string &path, const AnswerNode & /*leaf*/) {
        const auto in = [&path](const Values &values) {
            const auto found = values.find(path);
            return found == values.end() ? std::optional<std::string>() : found->second;
        };
        Change change{path, in(old_values), in(new_values)};
        if (change.before != change.after) {
            changes.push_back(std::move(change));
        }
    });
    return changes;
}

class Edit {
public:
    Edit(const Plugin &plugin, ocpsm::DeviceTransaction &device, const SessionOptions &options)
        : plugin_(plugin), device_(device), options_(options) {}

    // Throws ocpsm::Error for what is refused anywhere on the way.
    void run(std::vector<RequestNode> tops) {
        const std::vector<std::string> named = named_modules(tops);
        const bool all = concerns_all_modules(tops);
        const std::vector<AnswerNode> before = configuration(named, all);
        settle_existence(tops, before);
        translate(std::move(tops), before);
        if (result_.error) {
            return;
        }
        apply();
        result_.changes = changes_between(before, configuration(named, all));
    }

    EditResult &result() { return result_; }

private:
    // The configuration of the named modules, or of all.
    std::vector<AnswerNode> configuration(const std::vector<std::string> &named, bool all) {
        std::vector<RequestNode> selected;
        if (all) {
            selected = type_request(read_of("/"), Kind::get_config, true);
        } else {
            std::transform(named.begin(), named.end(), std::back_inserter(selected), read_of_instance);
        }
        Answer answer = answer_read(plugin_, selected, Kind::get_config, device_, {});
        if (answer.error) {
            const Refusal &refusal = *answer.error;
            throw Error(Error::Source::refused, refusal.tag, refusal.location, refusal.message, refusal.advice);
        }
        return std::move(answer.tree);
    }

    void translate(std::vector<RequestNode> tops, const std::vector<AnswerNode> &before) {
        TranslationOptions options = translation_options(options_);
        options.trace = true; // it tells where each native node comes from
        const std::vector<RequestNode> trees = hand_over_edit(std::move(tops), named_in(before));
        Translation translation = translate_trees(plugin_.callback(openconfig_root_walker), trees, Kind::edit, options);
        take_messages(result_, translation);
        if (!options_.trace) {
            result_.trace.clear();
        }
        handed_over_ = std::move(translation.handed_over);
    }

    static std::vector<std::string> named_in(const std::vector<AnswerNode> &tops) {
        std::vector<std::string> names;
        for_each_leaf(tops, [&names](const std::string &path, const AnswerNode &leaf) {
            if (path.ends_with("]/name")) {
                names.push_back(leaf.value.value_or(""));
            }
        });
        return names;
    }

    void apply() {
        result_.native.kind = native::RequestKind::edit;
        for (const HandedOver &handed : handed_over_) {
            result_.native = handed.native.net();
            try {
                result_.native.check();
                device_.apply(result_.native);
            } catch (const Error &error) {
                if (!error.native_path.empty()) {
                    throw Error(Error::Source::refused, error.tag, openconfig_origin(handed, error.native_path),
                                error.message() + " (native: " + error.native_path + ")");
                }
                throw Error(error.source, error.tag, openconfig_origin(handed, error.what()), error.what(),
                            error.advice);
            }
        }
    }

    const Plugin &plugin_;
    ocpsm::DeviceTransaction &device_;
    const SessionOptions &options_;
    std::vector<HandedOver> handed_over_;
    EditResult result_;
};

EditResult edit_nodes(const Plugin &plugin, const std::vector<WrittenNode> &nodes, ocpsm::DeviceTransaction &device,
                      const SessionOptions &options) {
    std::vector<RequestNode> tops = type_request(nodes, Kind::edit, options.check_values);
    Edit edit(plugin, device, options);
    try {
        edit.run(std::move(tops));
    } catch (const Error &error) {
        edit.result().error = refusal_from(error);
    }
    return std::move(edit.result());
}

} // namespace

EditResult edit(const Plugin &plugin, std::string_view text, ocpsm::DeviceTransaction &device, const SessionOptions &options) {
    return edit_nodes(plugin, parse_request(text, Kind::edit), device, options);
}

EditResult set_leaf(const Plugin &plugin, const std::string &path, const std::string &value, ocpsm::DeviceTransaction &device,
                    const SessionOptions &options) {
    return edit_nodes(plugin, setting_of(path, value), device, options);
}

EditResult delete_node(const Plugin &plugin, const std::string &path, ocpsm::DeviceTransaction &device,
                       const SessionOptions &options) {
    return edit_nodes(plugin, deletion_of(path), device, options);
}

} // namespace ocpsm::framework

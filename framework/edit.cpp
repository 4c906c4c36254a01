// Edits: from the request to what has changed.
#include <map>
#include <utility>

#include "framework/native_origin.hpp"
#include "framework/request/existence.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/node_path.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/requests.hpp"

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

std::vector<WrittenNode> written(const PathEdit &edit) {
    return takes_away(edit.operation) ? deletion_of(edit.path) : setting_of(edit.path, edit.value);
}

// The native request, carried out in the transaction.
native::NetRequest apply_all(const std::vector<HandedOver> &all, DeviceTransaction &device) {
    native::NetRequest request{native::RequestKind::edit, {}};
    for (const HandedOver &handed : all) {
        request = handed.native.net();
        try {
            request.check();
            device.apply(request);
        } catch (Error &error) {
            error.path = openconfig_origin(handed, error.native_path.empty() ? error.message() : error.native_path);
            throw;
        }
    }
    return request;
}

} // namespace

std::vector<RequestNode> typed(const Edit &edit, const EditOptions &options) {
    const auto *text = std::get_if<Text>(&edit);
    return type_request(text != nullptr ? parse_request(text->text, Kind::edit) : written(std::get<PathEdit>(edit)),
                        Kind::edit, options.check_values);
}

EditResult carry_out(const Plugin &plugin, std::vector<RequestNode> tops, DeviceTransaction &device,
                     const EditOptions &options) {
    EditResult result;
    try {
        const auto modules = concerns_all_modules(tops) ? std::nullopt : std::optional(named_modules(tops));
        const std::vector<AnswerNode> before = configuration(plugin, device, modules);
        settle_existence(tops, before);
        Options traced = options;
        traced.trace = true; // it tells where each native node comes from
        Translation translation =
            translate_trees(plugin.callback(openconfig_root_walker),
                            hand_over_edit(std::move(tops), modules_in(before)), Kind::edit, traced);
        take_messages(result, translation);
        if (!options.trace) {
            result.trace.clear();
        }
        if (result.error) {
            return result;
        }
        result.native = DeviceRequest(std::make_shared<native::NetRequest>(apply_all(translation.handed_over, device)));
        if (options.report_changes) {
            result.changes = changes_between(before, configuration(plugin, device, modules));
        }
    } catch (const Error &error) {
        result.error = error;
    }
    return result;
}

} // namespace ocpsm::framework

#include "framework/translation.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "framework/host/codes.hpp"
#include "framework/host/mapping_context.hpp"
#include "framework/refusal.hpp"
#include "framework/request/passed_over.hpp"

namespace ocpsm::framework {

namespace {

bool is_read(Kind kind) {
    return kind != Kind::edit;
}

// All trees of one request: channels and what was said of them belong together.
class Run {
public:
    Run(Callback root, Kind kind, const Options &options) : root_(root), kind_(kind), options_(options) {}

    // False when the plug-in has refused the tree.
    bool hand_over(const RequestNode &tree) {
        HandedOver handed{tree,
                          native::NativeRequest(is_read(kind_) ? native::RequestKind::read : native::RequestKind::edit),
                          {},
                          KERR_SUCCESS,
                          false};
        MappingContext context(static_cast<uint32_t>(kind_), tree, channels_, handed.native);
        context.switch_channels(options_.log, options_.trace);
        handed.result = root_(&context, &context.request_tree(), &context.destination());
        handed.adds = context.take_adds();
        if (!context.at_rest()) {
            warn("the plug-in has not ended its walk as it began it; this is a defect of the plug-in");
        }
        if (handed.result != KERR_SUCCESS) {
            translation_.error = refusal_of(handed.result, context, handed.adds);
        } else if (is_read(kind_)) {
            note_selections(context.request_tree(), handed);
        }
        translation_.result = handed.result;
        translation_.handed_over.push_back(std::move(handed));
        return translation_.result == KERR_SUCCESS;
    }

    Translation finish() {
        if (!passed_over_.empty()) {
            std::string text = any_walked_ ? "not supported and left out: "
                                           : "nothing that was selected is supported, the answer is empty: ";
            for (const std::string &path : passed_over_) {
                text.append(&path == &passed_over_.front() ? "" : ", ").append(path);
            }
            warn(std::move(text));
        }
        translation_.result_name = name_of(translation_.result);
        translation_.log = channels_.log();
        translation_.trace = channels_.trace();
        return std::move(translation_);
    }

    void warn(std::string text) { translation_.warnings.push_back(std::move(text)); }

private:
    void note_selections(const kidl_yfw_datatree &walked, HandedOver &handed) {
        const Selections selections = selections_of(walked);
        handed.nothing_supported = selections.walked == 0;
        any_walked_ = any_walked_ || selections.walked != 0;
        passed_over_.insert(passed_over_.end(), selections.passed_over.begin(), selections.passed_over.end());
    }

    Callback root_;
    Kind kind_;
    const Options &options_;
    Channels channels_;
    Translation translation_;
    std::vector<std::string> passed_over_;
    bool any_walked_ = false;
};

} // namespace

Translation translate_trees(Callback root, const std::vector<RequestNode> &trees, Kind kind, const Options &options) {
    Run run(root, kind, options);
    if (trees.empty()) {
        run.warn(is_read(kind) ? "the request selects nothing" : "the request changes nothing");
    }
    for (const RequestNode &tree : trees) {
        if (!run.hand_over(tree)) {
            break;
        }
    }
    return run.finish();
}

} // namespace ocpsm::framework

#include "framework/translation.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "framework/host/allocation.hpp"
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
    Run(Callback root, Kind kind, const Options &options, Adds adds)
        : root_(root), kind_(kind), options_(options), adds_(adds), passed_over_(kind) {}

    // False when the plug-in has refused the tree.
    bool hand_over(RequestNode tree) {
        HandedOver handed{std::move(tree),
                          native::NativeRequest(is_read(kind_) ? native::RequestKind::read : native::RequestKind::edit),
                          {},
                          {},
                          false};
        const AllocationWatch watch;
        MappingContext context(static_cast<uint32_t>(kind_), handed.request, channels_, handed.native);
        context.switch_channels(options_.log, options_.trace);
        context.keep_adds(adds_ == Adds::kept);
        kerrno &result = translation_.result;
        result = root_(&context, &context.request_tree(), &context.destination());
        handed.adds = context.take_adds();
        handed.origins = context.take_origins();
        if (!context.at_rest()) {
            warn("the plug-in has not ended its walk as it began it; this is a defect of the plug-in");
        }
        if (watch.has_failed()) {
            result = out_of_memory;
            translation_.error = no_memory("");
        } else if (result != KERR_SUCCESS) {
            translation_.error = refusal_of(result, context, handed.adds);
        } else if (is_read(kind_)) {
            note_selections(context.request_tree(), handed);
        }
        translation_.handed_over.push_back(std::move(handed));
        return result == KERR_SUCCESS;
    }

    Translation finish() {
        for (std::string &text : passed_over_.warnings()) {
            warn(std::move(text));
        }
        translation_.log = channels_.take_log();
        translation_.trace = channels_.take_trace();
        return std::move(translation_);
    }

    void warn(std::string text) { translation_.warnings.push_back(std::move(text)); }

private:
    void note_selections(const kidl_yfw_datatree &walked, HandedOver &handed) {
        handed.nothing_supported = passed_over_.add(walked) == 0;
    }

    Callback root_;
    Kind kind_;
    const Options &options_;
    Adds adds_;
    Channels channels_;
    Translation translation_;
    PassedOver passed_over_;
};

} // namespace

Translation translate_trees(Callback root, std::vector<RequestNode> trees, Kind kind, const Options &options,
                            Adds adds) {
    Run run(root, kind, options, adds);
    if (trees.empty()) {
        run.warn(is_read(kind) ? "the request selects nothing" : "the request changes nothing");
    }
    for (RequestNode &tree : trees) {
        if (!run.hand_over(std::move(tree))) {
            break;
        }
    }
    return run.finish();
}

} // namespace ocpsm::framework

// From OpenConfig requests to native requests, through the plug-in.
#ifndef OCPSM_FRAMEWORK_TRANSLATION_HPP
#define OCPSM_FRAMEWORK_TRANSLATION_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/host/add_record.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/host/log_service.hpp"
#include "framework/host/origins.hpp"
#include "framework/host/plugin.hpp"
#include "framework/kind.hpp"
#include "framework/native/native_request.hpp"
#include "framework/service.hpp"
#include "kerr.h"

namespace ocpsm::framework {

// One tree that was handed to the plug-in, and what came of it.
struct HandedOver {
    RequestNode request; // as it was handed over: the walk changes its own copy
    native::NativeRequest native;
    std::vector<AddRecord> adds; // those that failed, at most one of a code, and all where they are to be kept
    Origins origins;
    bool nothing_supported = false; // a read of nodes without support only: it is answered empty
};

struct Translation {
    // A read of several instances: one each. An edit: one, or none when there is nothing to do.
    std::vector<HandedOver> handed_over;
    kerrno result = KERR_SUCCESS; // of the plug-in; the first refusal ends a translation
    std::vector<LogLine> log;
    std::vector<LogLine> trace;
    std::optional<Error> error; // there exactly when `result` is not success
    std::vector<std::string> warnings;
};

// Whether the calls of the add operation are kept, which takes far more room than what they add.
enum class Adds { dropped, kept };

// Hands trees, as hand_over_read and hand_over_edit make them, to the plug-in's root walker. What the plug-in refuses
// is in the result, and so is an allocation that has failed meanwhile.
Translation translate_trees(Callback root, std::vector<RequestNode> trees, Kind kind, const Options &options,
                            Adds adds);

} // namespace ocpsm::framework

#endif

// From the text of an OpenConfig request to native requests, through the plug-in.
#ifndef OCPSM_FRAMEWORK_TRANSLATION_HPP
#define OCPSM_FRAMEWORK_TRANSLATION_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/host/add_record.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/host/log_service.hpp"
#include "framework/host/plugin.hpp"
#include "framework/native/native_request.hpp"
#include "framework/refusal.hpp"
#include "framework/request/kind.hpp"
#include "kerr.h"

namespace ocpsm::framework {

struct TranslationOptions {
    bool check_values = true; // check the values of an edit against the model before the plug-in sees them
    bool log = false;         // switch the debug log on, both levels
    bool trace = false;       // switch the trace buffer on; AddRecord's function names come from it
    std::vector<std::string> fitted_modules; // names of the modules that there are, for operations on all of them
};

// One tree that was handed to the plug-in, and what came of it.
struct HandedOver {
    RequestNode request; // as it was handed over: the walk changes its own copy
    native::NativeRequest native;
    std::vector<AddRecord> adds;
    kerrno result = KERR_SUCCESS;
    bool nothing_supported = false; // a read of nodes without support only: it is answered empty
};

struct Translation {
    // A read of several instances: one each. An edit: one, or none when there is nothing to do.
    std::vector<HandedOver> handed_over;
    kerrno result = KERR_SUCCESS; // of the plug-in; the first refusal ends a translation
    std::string result_name;      // "KERR_SUCCESS", "YMAP_ERR_UNSUPPORTED", ...
    std::vector<LogLine> log;
    std::vector<TraceLine> trace;
    std::optional<Refusal> error; // there exactly when `result` is not success
    std::vector<std::string> warnings;
};

/*
 * Parses `text` (XML: the content of a NETCONF <filter> or <config>, with or without that element; or JSON, RFC 7951),
 * and hands it to the plug-in's root walker. What the plug-in refuses is in the result; a text that never reaches it
 * throws ocpsm::Error: `input` for one that cannot be read, `refused` (with its OpenConfig path) for one that the model
 * does not allow.
 */
Translation translate(Callback root, std::string_view text, Kind kind, const TranslationOptions &options);

// The same for the trees themselves, as hand_over_read and hand_over_edit make them.
Translation translate_trees(Callback root, const std::vector<RequestNode> &trees, Kind kind,
                            const TranslationOptions &options);

} // namespace ocpsm::framework

#endif

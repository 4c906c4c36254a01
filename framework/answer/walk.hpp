// The way back: a native answer is walked by the plug-in and becomes an OpenConfig answer.
#ifndef OCPSM_FRAMEWORK_ANSWER_WALK_HPP
#define OCPSM_FRAMEWORK_ANSWER_WALK_HPP

#include "framework/answer/tree.hpp"
#include "framework/host/data_tree.hpp"
#include "framework/host/log_service.hpp"
#include "framework/host/plugin.hpp"
#include "framework/kind.hpp"
#include "framework/native/native_data.hpp"
#include "framework/service.hpp"

namespace ocpsm::framework {

/*
 * Has the plug-in walk the answer to one request, which was handed over as `request`: first the answers of the models
 * from the top, then the subtrees with which a model augments a list entry of another. What it has written is checked
 * against the model, not yet cut to what was selected. Throws ocpsm::Error (refused, operation-failed) when a walker
 * fails or a value is refused.
 */
AnswerTree walk_answer(const Plugin &plugin, Kind kind, const RequestNode &request, const native::NativeData &data,
                       Channels &channels, const Options &options);

} // namespace ocpsm::framework

#endif

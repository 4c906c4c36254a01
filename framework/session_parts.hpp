// What reads and edits have in common.
#ifndef OCPSM_FRAMEWORK_SESSION_PARTS_HPP
#define OCPSM_FRAMEWORK_SESSION_PARTS_HPP

#include <vector>

#include "framework/error.hpp"
#include "framework/request/node.hpp"
#include "framework/session.hpp"
#include "framework/translation.hpp"

namespace ocpsm::framework {

// Answers a typed read.
Answer answer_read(const Plugin &plugin, const std::vector<RequestNode> &tops, Kind kind, ocpsm::DeviceTransaction &device,
                   const SessionOptions &options);

// What a client is told of an error.
Refusal refusal_from(const Error &error);

TranslationOptions translation_options(const SessionOptions &options);

// Takes over what a translation says, but its result.
void take_messages(Outcome &outcome, Translation &translation);

} // namespace ocpsm::framework

#endif

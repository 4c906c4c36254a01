// What reads and edits have in common.
#ifndef BENCH_FRAMEWORK_SESSION_PARTS_HPP
#define BENCH_FRAMEWORK_SESSION_PARTS_HPP

#include <vector>

#include "bench/error.hpp"
#include "bench/framework/request_node.hpp"
#include "bench/framework/session.hpp"
#include "bench/framework/translation.hpp"

namespace bench::framework {

// Answers a typed read.
Answer answer_read(const Plugin &plugin, const std::vector<DataNode> &tops, Kind kind, native::Device &device,
                   const SessionOptions &options);

// What a client is told of an error.
Refusal refusal_from(const Error &error);

TranslationOptions translation_options(const SessionOptions &options);

// Takes over what a translation says, but its result.
void take_messages(Outcome &outcome, Translation &translation);

} // namespace bench::framework

#endif

// What a request has come to, as one document: for programs that read what this one prints.
#ifndef OCPSM_RESULT_DOCUMENT_HPP
#define OCPSM_RESULT_DOCUMENT_HPP

#include <string>

#include "framework/service.hpp"

namespace ocpsm {

// An object with the members "native", an array of the native requests, "changes", an array of objects with "path",
// "before" and "after" (texts; what is not set is left out), and "warnings", an array of texts. In XML a <result> of a
// <native> with the requests, a <change> and a <warning> for each.
// Throws Error (invalid-value) for a native text that the format cannot carry.
std::string document(const EditResult &result, Format format);

// The same with "result", the name of the plug-in's result, in place of the changes. A request that was refused has no
// native one.
std::string document(const TranslateResult &result, Format format);

// A JSON object in one line, with a line end: "path", and "value" of a leaf, or "before" and "after" of a change.
std::string json_line(const Leaf &leaf);
std::string json_line(const Change &change);

// The same of an entry of the journal: "sequence", "time" (RFC 3339), "clock" (milliseconds) and "kind", and of the
// other members those that are not empty, by their names.
std::string json_line(const JournalEntry &entry);

} // namespace ocpsm

#endif

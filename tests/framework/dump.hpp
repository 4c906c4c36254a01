// Trees as a test writes them down.
#ifndef TESTS_FRAMEWORK_DUMP_HPP
#define TESTS_FRAMEWORK_DUMP_HPP

#include <string>
#include <vector>

#include "framework/error.hpp"
#include "framework/request_tree.hpp"

// One node per line, two blanks per level: tag, " {namespace}" unless it is the OpenConfig model's, " = value", and the
// name of an operation other than merge. A node of which there is no more to say than one child stands in front of
// that, and so does the name of a module: aps/aps-modules/aps-module[0/1-PSM-OM]/config/revertive = true.
std::string dump(const std::vector<ocpsm::RequestNode> &nodes);

// The trees that such lines tell.
std::vector<ocpsm::RequestNode> read_dump(const std::string &text);

// The protocol error that `call` throws, as "source|tag|path|message|advice"; "nothing" when it throws none.
template <typename Call>
std::string error_of(Call call) {
    try {
        call();
    } catch (const ocpsm::Error &error) {
        const char *source = error.source == ocpsm::Error::Source::input ? "input" : "refused";
        return std::string(source) + "|" + error.tag + "|" + error.path + "|" + error.what() + "|" + error.advice;
    }
    return "nothing";
}

#endif

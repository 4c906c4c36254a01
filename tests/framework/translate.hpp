// Translations of a request that is written as XML, as JSON, or as dump() writes it.
#ifndef TESTS_FRAMEWORK_TRANSLATE_HPP
#define TESTS_FRAMEWORK_TRANSLATE_HPP

#include <string>

#include "dump.hpp"
#include "framework/request/hand_over.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/translation.hpp"

inline ocpsm::framework::Translation translate(ocpsm::framework::Callback root, const std::string &text,
                                               ocpsm::Kind kind, const ocpsm::Options &options = {},
                                               const std::vector<std::string> &fitted_modules = {}) {
    using namespace ocpsm::framework;
    auto tops = type_request(text.find_first_of("<{") == 0 ? parse_request(text, kind).tops : read_dump(text), kind,
                             options.check_values);
    return translate_trees(root,
                           kind == ocpsm::Kind::edit ? hand_over_edit(std::move(tops), fitted_modules)
                                                     : hand_over_read(std::move(tops)),
                           kind, options, ocpsm::framework::Adds::kept);
}

#endif

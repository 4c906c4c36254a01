// Translations from the text of a request.
#ifndef TESTS_FRAMEWORK_TRANSLATE_HPP
#define TESTS_FRAMEWORK_TRANSLATE_HPP

#include <string_view>

#include "framework/request/hand_over.hpp"
#include "framework/request/parse.hpp"
#include "framework/request/type.hpp"
#include "framework/translation.hpp"

inline ocpsm::framework::Translation translate(ocpsm::framework::Callback root, std::string_view text, ocpsm::Kind kind,
                                               const ocpsm::Options &options = {},
                                               const std::vector<std::string> &fitted_modules = {}) {
    using namespace ocpsm::framework;
    auto tops = type_request(parse_request(text, kind), kind, options.check_values);
    return translate_trees(root,
                           kind == ocpsm::Kind::edit ? hand_over_edit(std::move(tops), fitted_modules)
                                                     : hand_over_read(std::move(tops)),
                           kind, options, ocpsm::framework::Adds::kept);
}

#endif

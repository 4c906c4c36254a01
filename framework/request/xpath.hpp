// Reads by XPath 1.0, for what an instance path cannot say: //leaf, steps of *, predicates other than keys.
#ifndef OCPSM_FRAMEWORK_REQUEST_XPATH_HPP
#define OCPSM_FRAMEWORK_REQUEST_XPATH_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ocpsm::framework {

// What evaluation takes grows with a power of the depth of predicates.
inline constexpr std::size_t max_xpath_size = 1024; // bytes
inline constexpr std::size_t max_predicate_depth = 1;

// Whether a path can be read as an instance path.
bool is_instance_path(std::string_view path);

// The expression that a path is, when it is no instance path or one of the key of a named entry, which says nothing in
// a request; names stand with or without the module's name or prefix. Nothing for other instance paths, and for a text
// that is neither. Throws ocpsm::Error (input) with the path for an
// expression that exceeds the bounds, names a node that the model does not have, or selects nothing of the OpenConfig
// model.
std::optional<std::string> xpath_of(std::string_view path);

} // namespace ocpsm::framework

#endif

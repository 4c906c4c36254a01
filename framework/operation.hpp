// The operations of an edit.
#ifndef OCPSM_FRAMEWORK_OPERATION_HPP
#define OCPSM_FRAMEWORK_OPERATION_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ocpsm {

// Operations of RFC 6241, 7.2, by their numbers on a node.
enum class Operation : std::uint32_t { merge = 0, replace = 1, create = 2, delete_existing = 3, remove = 4 };

// Their names in the protocol, by number.
inline constexpr std::array<std::string_view, 5> operation_names{"merge", "replace", "create", "delete", "remove"};

constexpr std::string_view operation_name(Operation operation) {
    return operation_names.at(static_cast<std::size_t>(operation));
}

// The operation with this name; none for any other text.
constexpr std::optional<Operation> operation_named(std::string_view name) {
    for (std::size_t number = 0; number < operation_names.size(); ++number) {
        if (operation_names.at(number) == name) {
            return static_cast<Operation>(number);
        }
    }
    return std::nullopt;
}

// Whether nothing of the node stays.
constexpr bool takes_away(Operation operation) {
    return operation == Operation::delete_existing || operation == Operation::remove;
}

} // namespace ocpsm

#endif

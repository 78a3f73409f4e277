// SPDX-License-Identifier: Apache-2.0
// The model's enumerations and their conversions between value and name.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Zorvane {

/// The names of one enumeration, for the values 1, 2, 3 and so on.
struct EnumNames {
    const char* enumeration;
    std::span<const char* const> names;

    /// "EMPTY" for 0 and for any value that is not in the list.
    [[nodiscard]] const char* name(std::int32_t value) const;
    /// Exact and with case; 0 for a name that is not in the list.
    [[nodiscard]] std::int32_t value(std::string_view name) const;
};

#define ENUMERATION(E) enum class E : std::int32_t { EMPTY = 0,
#define VALUE(NAME, number) NAME = (number),
#define END_ENUMERATION(E)                                                                                   \
    }                                                                                                        \
    ;
#include "model/records/enumerations.def"

/// The names of each enumeration, under the enumeration's own name.
namespace enumNames {
#define ENUMERATION(E) extern const EnumNames E;
#define VALUE(NAME, number)
#define END_ENUMERATION(E)
#include "model/records/enumerations.def"
} // namespace enumNames

#define ENUMERATION(E)                                                                                       \
    inline const EnumNames& namesOf(E) {                                                                     \
        return enumNames::E;                                                                                 \
    }
#define VALUE(NAME, number)
#define END_ENUMERATION(E)
#include "model/records/enumerations.def"

/// An enumeration of the model.
template <class E>
concept ModelEnum = std::is_enum_v<E> && requires(E value) {
    { namesOf(value) } -> std::same_as<const EnumNames&>;
};

/// Stores the value of a name and returns it; a name that is not in the list gives 0.
template <ModelEnum E>
E fromName(E* value, const std::string& name) {
    return *value = static_cast<E>(namesOf(E{}).value(name));
}

/// The value's name; "EMPTY" for 0 and for any value that is not in the list.
template <ModelEnum E>
std::string toName(E value) {
    return namesOf(value).name(static_cast<std::int32_t>(value));
}

/// Every enumeration of the model, in the order of their declaration.
std::span<const EnumNames* const> allEnumerations();

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "model/enumerations.h"

#include <algorithm>
#include <array>

namespace Zorvane {

namespace {

// The names of each enumeration, and the proof that the values count from 1 in the order of the list.
#define ENUMERATION(E)                                                                                       \
    struct E##Values {                                                                                       \
        struct Entry {                                                                                       \
            int number;                                                                                      \
            const char* name;                                                                                \
        };                                                                                                   \
        static constexpr std::array entries = std::to_array<Entry>({
#define VALUE(NAME, number) {number, #NAME},
#define END_ENUMERATION(E)                                                                                   \
    });                                                                                                      \
    }                                                                                                        \
    ;
#include "model/records/enumerations.def"

template <class Values>
constexpr auto namesInOrder() {
    std::array<const char*, Values::entries.size()> names{};
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = Values::entries[i].number == static_cast<int>(i) + 1
                       ? Values::entries[i].name
                       : throw "the values of an enumeration count from 1 without a gap";
    return names;
}

template <class Values>
constexpr auto names = namesInOrder<Values>();

} // namespace

namespace enumNames {
#define ENUMERATION(E) constinit const EnumNames E{#E, names<E##Values>};
#define VALUE(NAME, number)
#define END_ENUMERATION(E)
#include "model/records/enumerations.def"
} // namespace enumNames

namespace {

constexpr std::array all = std::to_array<const EnumNames*>({
#define ENUMERATION(E) &enumNames::E,
#define VALUE(NAME, number)
#define END_ENUMERATION(E)
#include "model/records/enumerations.def"
});
static_assert(all.size() == 60);

} // namespace

const char* EnumNames::name(std::int32_t value) const {
    return value >= 1 && static_cast<std::size_t>(value) <= names.size()
               ? names[static_cast<std::size_t>(value) - 1]
               : "EMPTY";
}

std::int32_t EnumNames::value(std::string_view name) const {
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? 0 : static_cast<std::int32_t>(found - names.begin()) + 1;
}

std::span<const EnumNames* const> allEnumerations() {
    return all;
}

} // namespace Zorvane

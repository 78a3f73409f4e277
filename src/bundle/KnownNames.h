// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <bitset>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace Zorvane {

/// Names and their stand-ins, to be found in texts: what a place of a text costs does not grow with the text,
/// nor to speak of with the number of names.
class KnownNames {
  public:
    struct Found {
        std::size_t length = 0; ///< 0: nothing
        std::string_view standIn{};
    };

    KnownNames() = default;
    KnownNames(const KnownNames&) = delete;
    KnownNames& operator=(const KnownNames&) = delete;

    /// Of two bytes at least. False if the name is known already, in whatever case: it keeps its stand-in.
    bool add(std::string_view name, const std::string& standIn);
    /// Null if the name is not known.
    [[nodiscard]] const std::string* standInOf(std::string_view lower) const;
    /// The longest name that begins at a place; one that is no distinct name only as a word of its own.
    [[nodiscard]] Found at(std::string_view lower, std::size_t at) const;

  private:
    struct Known;
    using Entry = std::pair<const std::string, Known>;
    struct Known {
        std::string standIn{};
        bool isDistinct = false;
        const Entry* shorter = nullptr; ///< the longest other name that this one begins with
    };

    std::map<std::string, Known, std::less<>> m_names; ///< in small letters
    std::bitset<1U << 16> m_starts;                    ///< the first two bytes of all
};

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "info/check/similarNames.h"

#include "platform/stringManipulation.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Zorvane {

namespace {

constexpr std::size_t MOST_OFFERED = 3;
constexpr std::size_t MOST_LISTED = 8;
// Names come from outside; the distance costs the product of two lengths.
constexpr std::size_t LONGEST_COMPARED = 256;

std::size_t editDistance(const std::string& first, const std::string& second) {
    std::vector<std::size_t> row(second.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < first.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < second.size(); ++j) {
            const std::size_t substituted = diagonal + (first[i] == second[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({substituted, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// How far a name is from one that exists, both in small letters: from the whole of it, the last part of a
// path, or the name of a host without its domain.
std::size_t distanceTo(const std::string& wanted, const std::string& known) {
    if (wanted.size() > LONGEST_COMPARED || known.size() > LONGEST_COMPARED)
        return wanted == known ? 0 : std::string::npos;
    const std::string component = known.substr(known.rfind('/') + 1);
    std::size_t distance = std::min(editDistance(wanted, known), editDistance(wanted, component));
    if (wanted.find('.') == std::string::npos)
        distance = std::min(distance, editDistance(wanted, known.substr(0, known.find('.'))));
    // Data centers are listed by the last part of the path that the user writes.
    if (known.find('/') == std::string::npos && wanted.find('/') != std::string::npos)
        distance = std::min(distance, editDistance(wanted.substr(wanted.rfind('/') + 1), known));
    return distance;
}

std::string quotedList(const std::vector<std::string>& names, std::size_t most) {
    std::string text;
    for (std::size_t i = 0; i < std::min(most, names.size()); ++i)
        text += (i == 0 ? "\"" : ", \"") + names[i] + "\"";
    return names.size() > most ? text + " and " + std::to_string(names.size() - most) + " more" : text;
}

} // namespace

std::vector<std::string> similarNames(const std::string& name, const std::vector<std::string>& known) {
    const std::string wanted = StrToLower(name);
    if (name.empty())
        return {};
    const std::size_t farthest = wanted.size() / 3;
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& other : known) {
        const std::size_t distance = distanceTo(wanted, StrToLower(other));
        if (distance <= farthest)
            near.emplace_back(distance, other);
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto& first, const auto& second) { return first.first < second.first; });
    // Names of one domain resemble each other: beside a slip of the hand, the others are no candidates.
    std::vector<std::string> names;
    const std::size_t reach = near.empty() || near.front().first == 0 ? 0 : 2 * near.front().first + 1;
    for (const auto& [distance, other] : near)
        if (distance <= reach && std::find(names.begin(), names.end(), other) == names.end())
            names.push_back(other);
    return names;
}

std::string suggestionFor(const std::string& name, const std::vector<std::string>& known) {
    std::vector<std::string> near = similarNames(name, known);
    if (!near.empty()) {
        near.resize(std::min(near.size(), MOST_OFFERED));
        return "Did you mean " + quotedList(near, MOST_OFFERED) + "?";
    }
    std::vector<std::string> sorted = known;
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    return sorted.empty() ? std::string() : "There are " + quotedList(sorted, MOST_LISTED) + ".";
}

} // namespace Zorvane

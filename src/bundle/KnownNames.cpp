// SPDX-License-Identifier: Apache-2.0
#include "bundle/KnownNames.h"

#include "bundle/names.h"
#include "bundle/utf8.h"

#include <iterator>

namespace Zorvane {

namespace {

std::size_t startOf(std::string_view name) {
    return static_cast<std::size_t>(static_cast<unsigned char>(name[0]) << 8 |
                                    static_cast<unsigned char>(name[1]));
}

} // namespace

bool KnownNames::add(std::string_view name, const std::string& standIn) {
    const auto [place, isNew] = m_names.try_emplace(folded(name));
    if (!isNew)
        return false;
    const std::string& lower = place->first;
    const Entry* shorter = place == m_names.begin() ? nullptr : &*std::prev(place);
    while (shorter && !lower.starts_with(shorter->first))
        shorter = shorter->second.shorter;
    place->second = {standIn, isDistinct(lower), shorter};
    for (auto longer = std::next(place); longer != m_names.end() && longer->first.starts_with(lower);
         ++longer)
        if (longer->second.shorter == shorter)
            longer->second.shorter = &*place;
    m_starts.set(startOf(lower));
    return true;
}

const std::string* KnownNames::standInOf(std::string_view lower) const {
    const auto known = m_names.find(lower);
    return known == m_names.end() ? nullptr : &known->second.standIn;
}

// Every name that a text begins with is the last one that stands before the text in order, or one that this
// begins with.
KnownNames::Found KnownNames::at(std::string_view lower, std::size_t at) const {
    const std::string_view rest = lower.substr(at);
    if (rest.size() < 2 || !m_starts.test(startOf(rest)))
        return {};
    const auto behind = m_names.upper_bound(rest);
    const Entry* name = behind == m_names.begin() ? nullptr : &*std::prev(behind);
    while (name && !rest.starts_with(name->first))
        name = name->second.shorter;
    const bool isAtStart = startsWord(lower, at);
    for (; name; name = name->second.shorter)
        if (name->second.isDistinct || (isAtStart && !isWordAt(rest, name->first.size())))
            return {name->first.size(), name->second.standIn};
    return {};
}

} // namespace Zorvane

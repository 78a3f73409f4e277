// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "model/BaseTable.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace Zorvane {

/// A value for each identifier of a set. Identifiers of one table mostly follow each other: then the values
/// stand in a row, and a walk in the order of the identifiers is one through memory.
template <class Value>
class IdMap {
  public:
    explicit IdMap(const std::vector<ID>& ids) {
        if (ids.empty())
            return;
        const auto [lowest, highest] = std::minmax_element(ids.begin(), ids.end());
        m_lowest = *lowest;
        if (const std::size_t span = std::size_t{*highest} - *lowest + 1; span / SPARSEST <= ids.size())
            m_row.resize(span);
        else
            for (const ID id : ids)
                m_scattered.try_emplace(id);
    }

    /// Null for an identifier that is not of the set; one between those of the set may have a value of its
    /// own.
    Value* find(ID id) {
        if (!m_row.empty())
            return id >= m_lowest && id - m_lowest < m_row.size() ? &m_row[id - m_lowest] : nullptr;
        const auto found = m_scattered.find(id);
        return found == m_scattered.end() ? nullptr : &found->second;
    }

  private:
    static constexpr std::size_t SPARSEST =
        8; ///< a row with more gaps than that takes more memory than it is worth

    ID m_lowest = 0;
    std::vector<Value> m_row;
    std::unordered_map<ID, Value> m_scattered;
};

} // namespace Zorvane

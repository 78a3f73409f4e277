// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <unordered_map>

namespace Zorvane {

struct XmlName;

/// What the names of one document mean to a reader. A name is known by its place, since a document keeps one
/// copy of each. The names of a document follow each other in much the same order again and again: a name is
/// first sought behind the one before it.
template <class Meaning, class Name = XmlName>
class XmlNames {
  public:
    XmlNames() = default;
    XmlNames(const XmlNames&) = delete;
    XmlNames& operator=(const XmlNames&) = delete;

    /// The meaning of a name, which `find` makes at the name's first appearance. It stays where it is.
    template <class Find>
    Meaning& of(const Name* name, Find find) {
        Entry* next = m_last->next;
        if (m_last->nextName != name) {
            const auto [place, isNew] = m_entries.try_emplace(name);
            next = &place->second;
            if (isNew)
                find(next->meaning);
            m_last->nextName = name;
            m_last->next = next;
        }
        m_last = next;
        return next->meaning;
    }

    [[nodiscard]] std::size_t size() const { return m_entries.size(); }

    void clear() {
        m_entries.clear();
        m_start = Entry();
        m_last = &m_start;
    }

  private:
    struct Entry {
        Meaning meaning{};
        const Name* nextName = nullptr;
        Entry* next = nullptr;
    };

    std::unordered_map<const Name*, Entry> m_entries;
    Entry m_start;
    Entry* m_last = &m_start;
};

} // namespace Zorvane

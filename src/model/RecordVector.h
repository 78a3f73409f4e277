// SPDX-License-Identifier: Apache-2.0
// The container's vectors: typed for their users, one type for generic code.
#pragma once

#include "model/BaseTable.h"

#include <cstddef>
#include <iterator>
#include <vector>

namespace Zorvane {

/// Pointers to records of one table. The vector does not own them by itself: the container that it is part of
/// does.
class RecordVector {
  public:
    using Pointers = std::vector<BaseTable*>;

    [[nodiscard]] std::size_t size() const { return m_records.size(); }
    [[nodiscard]] bool empty() const { return m_records.empty(); }
    /// Forgets the records without destroying them.
    void clear() { m_records.clear(); }
    /// All records, for code that knows the table by its descriptor. Whoever appends keeps to the vector's
    /// class.
    [[nodiscard]] Pointers& records() { return m_records; }
    [[nodiscard]] const Pointers& records() const { return m_records; }

  protected:
    RecordVector() = default;
    ~RecordVector() = default;
    // Copying a vector of owned pointers is the container's business.
    RecordVector(const RecordVector&) = delete;
    RecordVector& operator=(const RecordVector&) = delete;

    Pointers m_records;
};

/// The vector of one record class. Elements are pointers to records, which may be null.
template <class Record>
class RecordRows : public RecordVector {
  public:
    using value_type = Record*;

    class iterator {
      public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = Record*;
        using difference_type = std::ptrdiff_t;
        using pointer = Record* const*;
        using reference = Record*;

        iterator() = default;
        explicit iterator(Pointers::const_iterator at) : m_at(at) {}
        Record* operator*() const { return static_cast<Record*>(*m_at); }
        Record* operator[](difference_type n) const { return static_cast<Record*>(m_at[n]); }
        iterator& operator++() {
            ++m_at;
            return *this;
        }
        iterator operator++(int) { return iterator(m_at++); }
        iterator& operator--() {
            --m_at;
            return *this;
        }
        iterator operator--(int) { return iterator(m_at--); }
        iterator& operator+=(difference_type n) {
            m_at += n;
            return *this;
        }
        iterator& operator-=(difference_type n) {
            m_at -= n;
            return *this;
        }
        friend iterator operator+(iterator it, difference_type n) { return it += n; }
        friend iterator operator+(difference_type n, iterator it) { return it += n; }
        friend iterator operator-(iterator it, difference_type n) { return it -= n; }
        friend difference_type operator-(iterator a, iterator b) { return a.m_at - b.m_at; }
        friend auto operator<=>(iterator a, iterator b) { return a.m_at <=> b.m_at; }
        friend bool operator==(iterator a, iterator b) { return a.m_at == b.m_at; }

      private:
        Pointers::const_iterator m_at;
    };

    RecordRows() = default;

    [[nodiscard]] iterator begin() const { return iterator(m_records.begin()); }
    [[nodiscard]] iterator end() const { return iterator(m_records.end()); }
    [[nodiscard]] Record* operator[](std::size_t index) const {
        return static_cast<Record*>(m_records[index]);
    }
    [[nodiscard]] Record* front() const { return static_cast<Record*>(m_records.front()); }
    [[nodiscard]] Record* back() const { return static_cast<Record*>(m_records.back()); }
    /// The first record, or null if there is none.
    [[nodiscard]] Record* first() const { return empty() ? nullptr : front(); }

    /// The vector's container owns the record from now on.
    void push_back(Record* record) { m_records.push_back(record); }
    /// Takes the record out and hands it to the caller.
    void erase(iterator at) { m_records.erase(m_records.begin() + (at - begin())); }
};

} // namespace Zorvane

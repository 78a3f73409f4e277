// SPDX-License-Identifier: Apache-2.0
// What all records share: one object is one row of a table.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace Zorvane {

/// A row identifier; a new record has 0.
using ID = std::uint32_t;
/// The value of a reference: the identifier of another row. Records keep it as a Reference.
using IDREF = ID;
/// The peer's word for a signed 64-bit integer; apart from `long`, which is another type of the same size.
using __int64 = long long; // NOLINT(bugprone-reserved-identifier): the name is part of the codec's interface

/// A reference to another row, by number; no record holds a pointer to another.
struct Reference {
    ID id = 0;
    bool fromDb = false; ///< whether `id` was given out by the database or made up in memory

    bool operator==(const Reference&) const = default;
};

class XmlParser;
struct Field;
struct TableDescriptor;

/// What the database stubs of every record return.
inline constexpr int ZOR_NOT_IMPLEMENTED = 1101;

/// Base of all records: the identifier and the flags that tell what the database knows of the row.
class BaseTable {
  public:
    virtual ~BaseTable();
    virtual int tableHook1() = 0;
    virtual int tableHook2() = 0;
    virtual int tableHook3() = 0;
    /// A client writes to the database through requests only: these print a message and return 1101.
    virtual int insertDb() = 0;
    virtual int updateDb() = 0;

    [[nodiscard]] ID getId() const { return m_id; }
    void setId(ID id) {
        m_id = id;
        m_changed = true;
    }

    /// Whether Id was given out by the database.
    [[nodiscard]] bool isFromDb() const { return m_fromDb; }
    /// Marks the record alone; the form of each class with an argument marks its references too.
    void setFromDb() { m_fromDb = true; }

    /// Whether a setter ran since construction, reading or clearChanged().
    [[nodiscard]] bool isChanged() const { return m_changed; }
    void setChanged() { m_changed = true; }
    void clearChanged() { m_changed = false; }

    /// Gives the row a number of the database; the old number stays readable. Not a change of the row's
    /// content.
    void changeId(ID newId) {
        m_oldId = m_id;
        m_id = newId;
        m_fromDb = true;
    }
    [[nodiscard]] ID getOldId() const { return m_oldId; }

  protected:
    BaseTable() = default;
    BaseTable(const BaseTable&) = default;
    BaseTable& operator=(const BaseTable&) = default;

  private:
    friend class RecordCodec;

    bool m_changed = false;
    bool m_fromDb = false;
    ID m_id = 0;
    ID m_oldId = 0;
};

} // namespace Zorvane

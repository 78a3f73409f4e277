// SPDX-License-Identifier: Apache-2.0
// What the declaration of a record class needs; for the headers of the families only.
#pragma once

#include "model/BaseTable.h"
#include "model/FixedText.h"
#include "model/RecordCodec.h"
#include "model/enumerations.h"

namespace Zorvane {

struct Field;

using FieldType_string = std::string;
using FieldType_bool = bool;
using FieldType_int32 = std::int32_t;
using FieldType_uint32 = std::uint32_t;
using FieldType_int64 = __int64;
using FieldType_long = long;

} // namespace Zorvane

// The members that every record class has, whatever its fields.
#define ZOR_RECORD_MEMBERS(T)                                                                                \
  public:                                                                                                    \
    using Column = T##Columns<"ZorDba.ZOR_" #T>;                                                             \
    static constexpr const char* TableName = "ZorDba.ZOR_" #T;                                               \
    [[nodiscard]] static const TableDescriptor& table();                                                     \
                                                                                                             \
    C##T();                                                                                                  \
    C##T(const C##T&);                                                                                       \
    C##T& operator=(const C##T&);                                                                            \
    ~C##T() override;                                                                                        \
    int tableHook1() override;                                                                               \
    int tableHook2() override;                                                                               \
    int tableHook3() override;                                                                               \
    int insertDb() override;                                                                                 \
    int updateDb() override;                                                                                 \
                                                                                                             \
    int writeXml(XmlParser* xml) const {                                                                     \
        return RecordCodec::write(table(), *this, *xml);                                                     \
    }                                                                                                        \
    int readXml(XmlParser* xml) {                                                                            \
        return RecordCodec::read(table(), *this, *xml);                                                      \
    }                                                                                                        \
    void dump(std::ostream& out) const {                                                                     \
        RecordCodec::dump(table(), *this, out);                                                              \
    }                                                                                                        \
    void dump() const {                                                                                      \
        RecordCodec::dump(table(), *this);                                                                   \
    }                                                                                                        \
    void setFromDb(bool fromDb) {                                                                            \
        RecordCodec::setFromDb(table(), *this, fromDb);                                                      \
    }                                                                                                        \
    void clearFromDb() {                                                                                     \
        setFromDb(false);                                                                                    \
    }                                                                                                        \
    using BaseTable::setFromDb;

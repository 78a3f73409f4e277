// SPDX-License-Identifier: Apache-2.0
// Finding rows of a container: by the values of their fields, and along the references between them.
//
// Nothing here knows a table by name, so a table has its lookups as soon as it is declared. Fields are named
// by their accessors; the reference that leads from one table to another is found in the table's descriptor,
// since no table refers to another one twice. All scans go in the order of the vector and pass over null
// elements. What is returned is borrowed from the container; nothing found is null or an empty list.
#pragma once

#include "model/CZor.h"
#include "model/TableDescriptor.h"
#include "storage/IdMap.h"

#include <algorithm>
#include <cassert>
#include <concepts>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace Zorvane {

/// The container's vector of a record class; null for a class whose rows it doesn't hold.
template <class Record>
inline constexpr RecordRows<Record> CZor::*vectorOf = nullptr;
#define VECTOR(T)                                                                                            \
    template <>                                                                                              \
    inline constexpr RecordRows<C##T> CZor::*vectorOf<C##T> = &CZor::m_v##T;
#include "model/records/vectors.def"

/// A record class, whose family's header is included.
template <class T>
concept RecordClass = std::derived_from<T, BaseTable> && requires {
    { T::table() } -> std::same_as<const TableDescriptor&>;
};

/// A record class that the container has a vector of.
template <class T>
concept Stored = RecordClass<T> && static_cast<bool>(vectorOf<T>);

/// A record class with a name field.
template <class T>
concept Named = RecordClass<T> && requires(const T& row) {
    { row.getName() } -> std::same_as<std::string>;
};

/// An accessor of a record, such as &CWindowsDisk::getArcName, with a value to compare the field with.
template <class Getter, class Record, class Value>
concept Reads = std::invocable<Getter, const Record&> &&
    std::equality_comparable_with<std::remove_cvref_t<std::invoke_result_t<Getter, const Record&>>, Value>;

/// Rows stand apart in memory, and a walk over many of them is mostly a wait for it: calls `see` with each
/// row, null elements too, while `expect` gives the address in a later row that `see` is going to read.
template <class Rows, class Expect, class See>
void Walk(const Rows& rows, Expect expect, See see) {
    constexpr std::ptrdiff_t ahead = 16; // that many rows' work is longer than a wait
    const auto last = rows.end();
    for (auto row = rows.begin(); row != last; ++row) {
        if (last - row > ahead && row[ahead])
            __builtin_prefetch(expect(*row[ahead]));
        see(*row);
    }
}

/// The container's rows of a class.
template <Stored Record>
const RecordRows<Record>& Rows(const CZor& zor) {
    return zor.*vectorOf<Record>;
}

/// The first row that fulfils a condition.
template <class Record, std::predicate<const Record&> Condition>
Record* FindIf(const RecordRows<Record>& rows, Condition condition) {
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const Record* row) { return row && condition(*row); });
    return found == rows.end() ? nullptr : *found;
}

/// All of them.
template <class Record, std::predicate<const Record&> Condition>
std::vector<Record*> FindAllIf(const RecordRows<Record>& rows, Condition condition) {
    std::vector<Record*> found;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(found),
                 [&](const Record* row) { return row && condition(*row); });
    return found;
}

/// The first row whose field has the value. Texts are compared byte by byte.
template <class Record, class Value, Reads<Record, Value> Getter>
Record* FindBy(const RecordRows<Record>& rows, Getter getter, const Value& value) {
    return FindIf(rows, [&](const Record& row) { return std::invoke(getter, row) == value; });
}

/// All rows whose field has the value, as the rows with a foreign key.
template <class Record, class Value, Reads<Record, Value> Getter>
std::vector<Record*> FindAllBy(const RecordRows<Record>& rows, Getter getter, const Value& value) {
    return FindAllIf(rows, [&](const Record& row) { return std::invoke(getter, row) == value; });
}

/// The first row that has both values, as the pair of a group's number and a member's name.
template <class Record, class Value1, Reads<Record, Value1> Getter1, class Value2,
          Reads<Record, Value2> Getter2>
Record* FindBy(const RecordRows<Record>& rows, Getter1 getter1, const Value1& value1, Getter2 getter2,
               const Value2& value2) {
    return FindIf(rows, [&](const Record& row) {
        return std::invoke(getter1, row) == value1 && std::invoke(getter2, row) == value2;
    });
}

template <RecordClass Record>
Record* FindById(const RecordRows<Record>& rows, ID id) {
    return FindBy(rows, &Record::getId, id);
}

template <Named Record>
Record* FindByName(const RecordRows<Record>& rows, const std::string& name) {
    return FindBy(rows, &Record::getName, name);
}

/// The first row whose flag is set: FindByFlag(zor.m_vWindowsVolume, &CWindowsVolume::getIsBoot).
template <class Record, Reads<Record, bool> Flag>
Record* FindByFlag(const RecordRows<Record>& rows, Flag flag) {
    return FindBy(rows, flag, true);
}

/// Whether a row agrees with the record in all the fields named.
template <class Record, std::invocable<const Record&>... Getters>
bool HasEqual(const RecordRows<Record>& rows, const Record& record, Getters... identity) {
    return FindIf(rows, [&](const Record& row) {
               return (... && (std::invoke(identity, row) == std::invoke(identity, record)));
           }) != nullptr;
}

/// What a record holds of the other table's row.
template <RecordClass Target, RecordClass Record>
const Reference& ReferenceField(const Record& record) {
    static const Field& reference = []() -> const Field& {
        const auto& fields = Record::table().fields;
        const auto found = std::find_if(fields.begin(), fields.end(), [](const Field& field) {
            return field.kind == FieldKind::Reference &&
                   std::string_view(field.target) == Target::table().name;
        });
        assert(found != fields.end());
        return *found;
    }();
    return record.*reference.reference;
}

/// The identifier that a record holds of the other table's row.
template <RecordClass Target, RecordClass Record>
ID ReferenceTo(const Record& record) {
    return ReferenceField<Target>(record).id;
}

/// The rows that refer to an owner.
template <Stored Record, RecordClass Owner>
std::vector<Record*> FindReferring(const CZor& zor, const Owner& owner) {
    return FindAllIf(Rows<Record>(zor),
                     [&](const Record& row) { return ReferenceTo<Owner>(row) == owner.getId(); });
}

/// The first of them.
template <Stored Record, RecordClass Owner>
Record* FindFirstReferring(const CZor& zor, const Owner& owner) {
    return FindIf(Rows<Record>(zor),
                  [&](const Record& row) { return ReferenceTo<Owner>(row) == owner.getId(); });
}

/// Rows of one owner, strung together by their places in a list of all that are found.
inline constexpr std::size_t NO_LINK = static_cast<std::size_t>(-1);
template <class Record>
struct ChainLink {
    Record* row;
    std::size_t next;
};
struct ChainEnds {
    std::size_t first = NO_LINK, last = NO_LINK;
};

/// The rows that refer to any of the owners, owner by owner.
template <Stored Record, RecordClass Owner>
std::vector<Record*> FindReferring(const CZor& zor, const std::vector<Owner*>& owners) {
    // One pass over the rows, however many owners there are, which strings each owner's rows together.
    std::vector<ID> ids;
    std::transform(owners.begin(), owners.end(), std::back_inserter(ids),
                   [](const Owner* owner) { return owner->getId(); });
    IdMap<ChainEnds> ends(ids);
    std::vector<ChainLink<Record>> links;
    const auto addressOfReference = [](const Record& row) { return &ReferenceField<Owner>(row); };
    Walk(Rows<Record>(zor), addressOfReference, [&](Record* row) {
        ChainEnds* owned = row ? ends.find(ReferenceTo<Owner>(*row)) : nullptr;
        if (!owned)
            return;
        (owned->first == NO_LINK ? owned->first : links[owned->last].next) = links.size();
        owned->last = links.size();
        links.push_back({row, NO_LINK});
    });
    std::vector<Record*> found;
    found.reserve(links.size());
    for (const ID id : ids)
        for (std::size_t at = ends.find(id)->first; at != NO_LINK; at = links[at].next)
            found.push_back(links[at].row);
    return found;
}

/// The row that a record refers to.
template <Stored Target, RecordClass Record>
Target* FindReferred(const CZor& zor, const Record& record) {
    return FindById(Rows<Target>(zor), ReferenceTo<Target>(record));
}

/// The rows that the records refer to, each once (by its identifier), in the order of first appearance.
template <Stored Target, RecordClass Record>
std::vector<Target*> FindReferred(const CZor& zor, const std::vector<Record*>& records) {
    // One pass over the targets, however many records there are; the first row of an identifier counts.
    std::vector<ID> ids;
    ids.reserve(records.size());
    Walk(
        records, [](const Record& record) { return &ReferenceField<Target>(record); },
        [&](const Record* record) { ids.push_back(ReferenceTo<Target>(*record)); });
    IdMap<Target*> targets(ids);
    Walk(
        Rows<Target>(zor), [](const Target& row) { return &row; },
        [&](Target* row) {
            if (row)
                if (Target** place = targets.find(row->getId()); place && !*place)
                    *place = row;
        });
    std::vector<Target*> found;
    for (const ID id : ids)
        if (Target* target = std::exchange(*targets.find(id), nullptr))
            found.push_back(target);
    return found;
}

} // namespace Zorvane

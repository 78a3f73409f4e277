// SPDX-License-Identifier: Apache-2.0
// What the definition of a record class needs; for the sources of the families only.
#pragma once

#include "model/TableDescriptor.h"

namespace Zorvane {

constexpr Field makeField(const char* name, FieldKind kind) {
    Field made;
    made.name = name;
    made.kind = kind;
    return made;
}

constexpr Field keyField(const char* name) {
    return makeField(name, FieldKind::Id);
}
constexpr Field baseFields() {
    return makeField(nullptr, FieldKind::BaseFields);
}

// A member of a record is reached through the base: the pointer is narrowed back to where it came from.
template <class Class>
constexpr Field field(const char* name, std::string Class::*member) {
    Field made = makeField(name, FieldKind::Text);
    made.text = static_cast<std::string BaseTable::*>(member);
    return made;
}
template <class Class>
constexpr Field field(const char* name, bool Class::*member) {
    Field made = makeField(name, FieldKind::Flag);
    made.flag = static_cast<bool BaseTable::*>(member);
    return made;
}
template <class Class>
constexpr Field field(const char* name, std::uint32_t Class::*member) {
    Field made = makeField(name, FieldKind::UInt32);
    made.uint32 = static_cast<std::uint32_t BaseTable::*>(member);
    return made;
}
template <class Class>
constexpr Field field(const char* name, std::int32_t Class::*member) {
    Field made = makeField(name, FieldKind::Int32);
    made.int32 = static_cast<std::int32_t BaseTable::*>(member);
    return made;
}
template <class Class>
constexpr Field field(const char* name, long Class::*member) {
    Field made = makeField(name, FieldKind::Long);
    made.long64 = static_cast<long BaseTable::*>(member);
    return made;
}
template <class Class>
constexpr Field field(const char* name, __int64 Class::*member) {
    Field made = makeField(name, FieldKind::Int64);
    made.int64 = static_cast<__int64 BaseTable::*>(member);
    return made;
}
template <class Class>
constexpr Field field(const char* name, std::vector<unsigned char> Class::*member) {
    Field made = makeField(name, FieldKind::Binary);
    made.binary = static_cast<std::vector<unsigned char> BaseTable::*>(member);
    return made;
}
template <class Class>
constexpr Field ipv4Field(const char* name, std::uint32_t Class::*member) {
    Field made = field(name, member);
    made.kind = FieldKind::Ipv4;
    return made;
}
template <class Class>
constexpr Field enumField(const char* name, std::int32_t Class::*member, const EnumNames& names) {
    Field made = field(name, member);
    made.kind = FieldKind::Enumeration;
    made.names = &names;
    return made;
}
template <class Class>
constexpr Field referenceField(const char* name, Reference Class::*member, const char* target) {
    Field made = makeField(name, FieldKind::Reference);
    made.reference = static_cast<Reference BaseTable::*>(member);
    made.target = target;
    return made;
}

/// The description of a record class; made once and kept for the life of the process.
template <class Class>
const TableDescriptor& describe(const char* name, const TableDescriptor* base, std::span<const Field> rows) {
    return *new TableDescriptor(
        name, Class::TableName, base, rows, +[]() -> BaseTable* { return new Class; },
        +[](const BaseTable& row) -> BaseTable* { return new Class(static_cast<const Class&>(row)); },
        +[](BaseTable& target, const BaseTable& source) {
            static_cast<Class&>(target) = static_cast<const Class&>(source);
        });
}

} // namespace Zorvane

// The members that every record class has, whatever its fields.
#define ZOR_DEFINE_RECORD(T)                                                                                 \
    C##T::C##T() = default;                                                                                  \
    C##T::C##T(const C##T&) = default;                                                                       \
    C##T& C##T::operator=(const C##T&) = default;                                                            \
    C##T::~C##T() = default;                                                                                 \
    int C##T::tableHook1() {                                                                                 \
        return 0;                                                                                            \
    }                                                                                                        \
    int C##T::tableHook2() {                                                                                 \
        return 0;                                                                                            \
    }                                                                                                        \
    int C##T::tableHook3() {                                                                                 \
        return 0;                                                                                            \
    }                                                                                                        \
    int C##T::insertDb() {                                                                                   \
        return RecordCodec::notImplemented("insertDb", "C" #T);                                              \
    }                                                                                                        \
    int C##T::updateDb() {                                                                                   \
        return RecordCodec::notImplemented("updateDb", "C" #T);                                              \
    }

// SPDX-License-Identifier: Apache-2.0
#include "model/CZor.h"

#include "logging/Trace.h"
#include "model/RecordCodec.h"
#include "model/TableDescriptor.h"
#include "model/XmlParser.h"
#include "model/records.h"

#include <array>
#include <iostream>
#include <sstream>
#include <unordered_map>

namespace Zorvane {

namespace {

constexpr std::array vectors = std::to_array<VectorDescriptor>({
#define VECTOR(T) {#T, &C##T::table, [](CZor& zor) -> RecordVector& { return zor.m_v##T; }},
#include "model/records/vectors.def"
});
static_assert(vectors.size() == 229);

RecordVector& rowsOf(const VectorDescriptor& vector, const CZor& zor) {
    return vector.rows(const_cast<CZor&>(zor)); // the copy below only reads it
}

template <class Predicate>
void destroyIf(RecordVector& rows, Predicate predicate) {
    std::erase_if(rows.records(), [&](const BaseTable* row) {
        const bool isGone = row && predicate(*row);
        if (isGone)
            delete row;
        return isGone;
    });
}

template <class Rows, class Get, class Set>
void replaceReference(const Rows& rows, ID oldId, Get matches, Set replace) {
    for (auto* row : rows)
        if (row && matches(*row, oldId))
            replace(*row);
}

} // namespace

std::span<const VectorDescriptor> allVectors() {
    return vectors;
}

const VectorDescriptor* findVector(std::string_view name) {
    static const auto& index = *new std::unordered_map<std::string_view, const VectorDescriptor*>([] {
        std::unordered_map<std::string_view, const VectorDescriptor*> made;
        for (const VectorDescriptor& vector : vectors)
            made.emplace(vector.name, &vector);
        return made;
    }());
    const auto found = index.find(name);
    return found == index.end() ? nullptr : found->second;
}

CZor::CZor() = default;

CZor::CZor(const CZor& other) : CZor() {
    *this = other;
}

CZor& CZor::operator=(const CZor& other) {
    Trace trace(g_libLog, "CZor:CZor::operator=()");
    if (this == &other)
        return *this;
    for (const VectorDescriptor& vector : vectors) {
        auto& target = vector.rows(*this).records();
        const auto& source = rowsOf(vector, other).records();
        target.reserve(target.size() + source.size());
        for (const BaseTable* row : source)
            if (row)
                target.push_back(vector.table().clone(*row));
    }
    return *this;
}

CZor::~CZor() {
    clear(true);
}

void CZor::clear(bool deleteRecords) {
    const Trace trace(g_libLog, "CZor:CZor::clear()", ", deleteRecords=", deleteRecords);
    m_pXml.reset();
    for (const VectorDescriptor& vector : vectors) {
        RecordVector& rows = vector.rows(*this);
        if (deleteRecords)
            for (const BaseTable* row : rows.records())
                delete row;
        rows.clear();
    }
}

void CZor::dump(std::ostream& out) {
    const Trace trace(g_libLog, "CZor:CZor::dump()");
    for (const VectorDescriptor& vector : vectors) {
        const auto& records = vector.rows(*this).records();
        if (records.empty())
            continue;
        out << std::dec << records.size() << " v" << vector.name << ' '
            << (records.size() > 1 ? "Entries:" : "Entry:") << '\n';
        for (const BaseTable* row : records)
            if (row)
                RecordCodec::dump(vector.table(), *row, out);
    }
}

void CZor::dump() {
    std::ostringstream text;
    dump(text);
    std::cout << text.str();
}

void CZor::removeAfterRequest(int filter) {
    Trace trace(g_libLog, "CZor:CZor::removeAfterRequest()", ", filter=", filter);
    for (const VectorDescriptor& vector : vectors) {
        RecordVector& rows = vector.rows(*this);
        switch (filter) {
        case FOR_INSERT:
            destroyIf(rows, [](const BaseTable& row) { return !row.isFromDb(); });
            break;
        case FOR_UPDATE:
            for (BaseTable* row : rows.records())
                if (row)
                    row->clearChanged();
            break;
        case FOR_DELETE:
            destroyIf(rows, [](const BaseTable& row) { return row.isFromDb(); });
            break;
        default:
            return;
        }
    }
}

void CZor::clearFromDbFlags() {
    const Trace trace(g_libLog, "CZor:CZor::clearFromDbFlags()");
    for (const VectorDescriptor& vector : vectors)
        for (BaseTable* row : vector.rows(*this).records())
            if (row)
                RecordCodec::setFromDb(vector.table(), *row, false);
}

void CZor::replaceDeviceIdReference(ID oldId, ID newId, bool onlyNew) {
    Trace trace(g_libLog, "CZor:CZor::replaceDeviceIdReference()", ", oldId=", oldId, ", newId=", newId);
    const auto matches = [onlyNew](const auto& row, ID id) {
        return row.getDeviceIdsId() == id && !(onlyNew && row.isDeviceIdsIdFromDb());
    };
    const auto replaceIn = [&](const auto& rows, const char* what) {
        replaceReference(rows, oldId, matches, [&](auto& row) {
            trace.write(LEVEL_TRANSFER, what, oldId, " with ", newId);
            row.setDeviceIdsId(newId, true);
            // The new number is itself made up when every reference is to be replaced.
            if (!onlyNew)
                row.clearDeviceIdsIdFromDb();
        });
    };
    replaceIn(m_vPackageToDeviceIds, "Replacing DeviceIdsId in PackageToDeviceIds of ");
    replaceIn(m_vWindowsDeviceToDeviceIds, "Replacing DeviceIdsId in WindowsDeviceToDeviceIds of ");
}

void CZor::replacePackageReference(ID oldId, ID newId) {
    Trace trace(g_libLog, "CZor:CZor::replacePackageReference()", ", oldId=", oldId, ", newId=", newId);
    const auto matches = [](const auto& row, ID id) {
        return row.getPackageId() == id && !row.isPackageIdFromDb();
    };
    const auto replaceIn = [&](const auto& rows, const char* what) {
        replaceReference(rows, oldId, matches, [&](auto& row) {
            trace.write(LEVEL_TRANSFER, what, oldId, " with ", newId);
            row.setPackageId(newId, true);
        });
    };
    replaceIn(m_vPackageWinPeCompatibility, "Replacing PackageId in PackageWinPeCompatibility of ");
    replaceIn(m_vWindowsServicePack, "Replacing PackageId in WindowsServicePack of ");
    replaceIn(m_vPackageToDeviceIds, "Replacing PackageId in PackageToDeviceIds of ");
}

} // namespace Zorvane

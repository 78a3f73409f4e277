// SPDX-License-Identifier: Apache-2.0
#include "sampleRows.h"

#include "model/RecordCodec.h"
#include "model/TableDescriptor.h"

#include <memory>

namespace Zorvane::Bench {

namespace {

void fillField(const Field& field, BaseTable& row, std::size_t number) {
    switch (field.kind) {
    case FieldKind::Text:
        row.*field.text = "value " + std::to_string(number);
        break;
    case FieldKind::Flag:
        row.*field.flag = number % 2 != 0;
        break;
    case FieldKind::UInt32:
    case FieldKind::Ipv4:
        row.*field.uint32 = static_cast<std::uint32_t>(3232235520U + number);
        break;
    case FieldKind::Int32:
        row.*field.int32 = static_cast<std::int32_t>(number);
        break;
    case FieldKind::Enumeration:
        row.*field.int32 = static_cast<std::int32_t>(number % field.names->names.size()) + 1;
        break;
    case FieldKind::Long:
        row.*field.long64 = 1'700'000'000 + static_cast<long>(number);
        break;
    case FieldKind::Int64:
        row.*field.int64 = 8'589'934'592 + static_cast<long long>(number);
        break;
    case FieldKind::Reference:
        row.*field.reference = {static_cast<ID>(number + 1), true};
        break;
    case FieldKind::Binary:
        (row.*field.binary).assign(24, static_cast<unsigned char>(number));
        break;
    case FieldKind::Id:
    case FieldKind::BaseFields:
        break;
    }
}

} // namespace

void addMixedRows(CZor& zor, std::size_t count) {
    const auto vectors = allVectors();
    for (std::size_t i = 0; i < count; ++i) {
        const VectorDescriptor& vector = vectors[i % vectors.size()];
        const std::size_t number = i / vectors.size();
        BaseTable* row = vector.table().create();
        for (const Field& field : vector.table().fields)
            fillField(field, *row, number);
        row->setId(static_cast<ID>(number + 1));
        row->setFromDb();
        row->clearChanged();
        vector.rows(zor).records().push_back(row);
    }
}

std::string documentOf(CZor& zor, int filter) {
    unsigned char* xml = nullptr;
    int len = 0;
    if (zor.writeXml(&xml, &len, filter) != 0)
        return {};
    const std::unique_ptr<unsigned char[]> owned(xml);
    return {reinterpret_cast<const char*>(xml), static_cast<std::size_t>(len)};
}

std::string mixedDocument(std::size_t rows) {
    CZor zor;
    addMixedRows(zor, rows);
    return documentOf(zor);
}

} // namespace Zorvane::Bench

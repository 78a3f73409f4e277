// SPDX-License-Identifier: Apache-2.0
#include "bundle/documentNames.h"

#include "model/CZor.h"
#include "model/TableDescriptor.h"

#include <algorithm>

namespace Zorvane {

namespace {

struct NameField {
    std::string_view table; ///< empty: in any
    std::string_view field;
    NameKind kind;
};

constexpr NameField NAME_FIELDS[] = {
    {"", "ClientName", NameKind::Client},
    {"", "Hostname", NameKind::Host},
    {"", "fqdn", NameKind::Host},
    {"", "NodeName", NameKind::Host},
    {"", "MasterServerName", NameKind::Host},
    {"", "CimServerName", NameKind::Host},
    {"", "EsxServer", NameKind::Host},
    {"", "VCenterServer", NameKind::Host},
    {"", "VICName", NameKind::Host},
    {"HostList", "Name", NameKind::Host},
    {"ClusterNode", "Name", NameKind::Host},
    {"BootServer", "Name", NameKind::Host},
    {"", "DomainName", NameKind::Domain},
    {"", "Suffix", NameKind::Domain},
    {"", "Owner", NameKind::User},
    {"", "UserName", NameKind::User},
    {"", "TheGroup", NameKind::Group},
    {"", "GroupName", NameKind::Group},
    {"", "VmName", NameKind::Machine},
    {"", "DataStore", NameKind::Store},
    {"", "DataStoreName", NameKind::Store},
    {"", "Folder", NameKind::Folder},
    {"", "ResourcePool", NameKind::Pool},
    {"VmwareProfileOptions", "Network", NameKind::Network},
    {"", "DataCenter", NameKind::DataCenter},
    {"", "ESXCluster", NameKind::Cluster},
    {"", "ClusterName", NameKind::Cluster},
    {"ClusterGroup", "Name", NameKind::Cluster},
    {"", "ProfileName", NameKind::Profile},
    {"", "SerialNumber", NameKind::Serial},
    {"", "QuvmHostId", NameKind::Serial},
    {"", "Sid", NameKind::Serial},
};

// Values of the Windows registry with names, by the names of the values.
constexpr struct {
    std::string_view value;
    NameKind kind;
} REGISTRY_VALUES[] = {
    {"ComputerName", NameKind::Host},
    {"Hostname", NameKind::Host},
    {"NV Hostname", NameKind::Host},
    {"Client_Name", NameKind::Client},
    {"Domain", NameKind::Domain},
    {"NV Domain", NameKind::Domain},
    {"DefaultUserName", NameKind::User},
    {"DefaultDomainName", NameKind::Domain},
    {"RegisteredOwner", NameKind::User},
    {"RegisteredOrganization", NameKind::Name},
    {"SystemSerialNumber", NameKind::Serial},
};

bool isText(const std::vector<unsigned char>& bytes) {
    return std::ranges::all_of(
        bytes, [](unsigned char c) { return c >= ' ' || c == '\t' || c == '\n' || c == '\r'; });
}

template <class Visit>
void forEachField(CZor& rows, const Visit& visit) {
    for (const VectorDescriptor& vector : allVectors())
        for (BaseTable* row : vector.rows(rows).records())
            if (row)
                for (const Field& field : vector.table().fields)
                    visit(vector.table(), field, *row);
}

void learnRegistryValue(const TableDescriptor& table, const BaseTable& row, Mask& mask) {
    const std::string& name = row.*table.find("Name")->text;
    for (const auto& [value, kind] : REGISTRY_VALUES)
        if (value == name)
            mask.learn(kind, row.*table.find("Value")->text);
}

void maskBytes(std::vector<unsigned char>& bytes, Mask& mask) {
    if (!isText(bytes))
        return bytes.clear();
    const std::string text =
        mask.masked(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    bytes.assign(text.begin(), text.end());
}

} // namespace

std::optional<NameKind> kindOfField(std::string_view table, std::string_view field) {
    for (const NameField& row : NAME_FIELDS)
        if (row.field == field && (row.table.empty() || row.table == table))
            return row.kind;
    return std::nullopt;
}

void learnRows(CZor& rows, Mask& mask) {
    forEachField(rows, [&](const TableDescriptor& table, const Field& field, const BaseTable& row) {
        if (field.kind != FieldKind::Text)
            return;
        const std::string& text = row.*field.text;
        if (const auto kind = kindOfField(table.name, field.name))
            mask.learn(*kind, text);
        // Network cards are written with and without signs between their digits.
        else if (std::string_view(field.name) == "MacAddress" && text.find_first_of(":-") == text.npos)
            mask.learn(NameKind::Serial, text);
        else if (std::string_view(table.name) == "RegistryValue" && std::string_view(field.name) == "Value")
            learnRegistryValue(table, row, mask);
        else
            mask.survey(text);
    });
}

void maskRows(CZor& rows, Mask& mask) {
    forEachField(rows, [&](const TableDescriptor&, const Field& field, BaseTable& row) {
        if (field.kind == FieldKind::Ipv4)
            row.*field.uint32 = mask.masked(row.*field.uint32);
        else if (field.kind == FieldKind::Binary)
            maskBytes(row.*field.binary, mask);
        // "7.6.0.4" may be a version or an address.
        else if (field.kind == FieldKind::Text && !std::string_view(field.name).ends_with("Version"))
            row.*field.text = mask.masked(std::string_view(row.*field.text));
    });
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "bundle/documentNames.h"

#include "bundle/names.h"
#include "bundle/utf8.h"
#include "model/CZor.h"
#include "model/TableDescriptor.h"
#include "platform/codeSetCommon.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Zorvane {

namespace {

struct NameField {
    std::string_view table; ///< empty: any; those that are derived from it count as it
    std::string_view field;
    NameKind kind;
};

constexpr NameField NAME_FIELDS[] = {
    {"", "ClientName", NameKind::Client},
    {"", "ConfigName", NameKind::Name},
    {"Config", "Name", NameKind::Name},
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
    {"SvmHost", "Name", NameKind::Host},
    {"SolarisZone", "Name", NameKind::Host},
    {"", "ZonePath", NameKind::Folder},
    {"", "DomainName", NameKind::Domain},
    {"", "Suffix", NameKind::Domain},
    {"", "Owner", NameKind::User},
    {"", "UserName", NameKind::User},
    {"", "TheGroup", NameKind::Group},
    {"", "GroupName", NameKind::Group},
    {"", "VmName", NameKind::Machine},
    {"", "DataStore", NameKind::Store},
    {"", "DataStoreName", NameKind::Store},
    {"", "ToolPath", NameKind::Store},
    {"", "Folder", NameKind::Folder},
    {"", "ResourcePool", NameKind::Pool},
    {"VmwareProfileOptions", "Network", NameKind::Network},
    {"", "DataCenter", NameKind::DataCenter},
    {"", "ESXCluster", NameKind::Cluster},
    {"", "ClusterName", NameKind::Cluster},
    {"ClusterGroup", "Name", NameKind::Cluster},
    {"ClusterResource", "Name", NameKind::Name},
    {"", "ResourceName", NameKind::Name},
    {"DiskGroup", "Name", NameKind::Name},
    {"", "MoveDgName", NameKind::Name},
    {"SharedVolumeGroup", "Name", NameKind::Name},
    {"ZfsStoragePool", "Name", NameKind::Name},
    {"WindowsStoragePool", "FriendlyName", NameKind::Name},
    {"WindowsVirtualDisk", "FriendlyName", NameKind::Name},
    {"", "Policy", NameKind::Name},
    {"Srt", "Name", NameKind::Name},
    {"", "SrtName", NameKind::Name},
    {"Wfp", "Name", NameKind::Name},
    {"", "WfpName", NameKind::Name},
    {"", "DiscoverName", NameKind::Name},
    {"", "ProfileName", NameKind::Profile},
    {"", "SerialNumber", NameKind::Serial},
    {"", "KeyValue", NameKind::Serial},
    {"", "MacAddress", NameKind::Serial}, // of figures alone, it looks like any number
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

// In the names of values that stay behind, such as the password that Windows signs on with by itself.
constexpr std::string_view SECRETS[] = {"password", "passwd", "secret"};

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

// Of a row that is a name and a value.
bool isSecret(const TableDescriptor& table, const BaseTable& row) {
    return std::ranges::any_of(std::to_array({"Name", "Property"}), [&](const char* field) {
        const Field* const name = table.find(field);
        return name && name->kind == FieldKind::Text &&
               std::ranges::any_of(SECRETS, [lower = folded(row.*name->text)](std::string_view word) {
                   return lower.find(word) != lower.npos;
               });
    });
}

} // namespace

std::optional<NameKind> kindOfField(std::string_view table, std::string_view field) {
    const TableDescriptor* const descriptor = findTable(table);
    const std::string_view base = descriptor && descriptor->base ? descriptor->base->name : "";
    for (const NameField& row : NAME_FIELDS)
        if (row.field == field && (row.table.empty() || row.table == table || row.table == base))
            return row.kind;
    return std::nullopt;
}

bool readRows(const std::string& document, CZor& rows) {
    std::string copy = document;
    return rows.readXml(reinterpret_cast<unsigned char*>(copy.data()), static_cast<int>(copy.size())) == 0;
}

void learnRows(CZor& rows, Mask& mask) {
    forEachField(rows, [&](const TableDescriptor& table, const Field& field, const BaseTable& row) {
        if (field.kind != FieldKind::Text)
            return;
        const std::string& text = row.*field.text;
        if (const auto kind = kindOfField(table.name, field.name))
            mask.learn(*kind, text);
        else if (std::string_view(table.name) == "RegistryValue" && std::string_view(field.name) == "Value")
            learnRegistryValue(table, row, mask);
        else
            mask.survey(toUtf8(text));
    });
}

void maskRows(CZor& rows, Mask& mask) {
    forEachField(rows, [&](const TableDescriptor& table, const Field& field, BaseTable& row) {
        if (field.kind == FieldKind::Ipv4)
            row.*field.uint32 = mask.masked(row.*field.uint32);
        if (field.kind != FieldKind::Text)
            return;
        std::string& text = row.*field.text;
        if (text.size() > LONGEST_NAME && kindOfField(table.name, field.name))
            text.clear();                                            // the mask knows of it its parts at best
        else if (!std::string_view(field.name).ends_with("Version")) // "7.6.0.4" may be an address as well
            text = ZorDbToMbsCommon(mask.masked(toUtf8(text)));
    });
}

std::optional<std::string> writtenRows(CZor& rows) {
    std::string document = documentText(rows);
    CZor again;
    return readRows(document, again) ? std::optional(std::move(document)) : std::nullopt;
}

std::optional<std::string> withoutSecrets(const std::string& document) {
    CZor rows;
    if (!readRows(document, rows))
        return std::nullopt;
    forEachField(rows, [](const TableDescriptor& table, const Field& field, BaseTable& row) {
        const bool isOfFile = std::string_view(table.name) == "FileContent";
        if (field.kind == FieldKind::Binary)
            (row.*field.binary).clear();
        else if (isOfFile && field.kind == FieldKind::Int32)
            row.*field.int32 = 0;
        else if (isOfFile && field.kind == FieldKind::UInt32)
            row.*field.uint32 = 0;
        else if (field.kind == FieldKind::Text && std::string_view(field.name) == "Value" &&
                 isSecret(table, row))
            (row.*field.text).clear();
    });
    return writtenRows(rows);
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The input in words, for debugging.
#include "frontend/CZorb2vCommandLine.h"

#include <ostream>

namespace Zorvane {

namespace {

const char* veTypeText(std::uint32_t veType) {
    switch (veType) {
    case VMWARE_VE_TYPE:
        return "VeType = VMWARE_VE_TYPE";
    case HYPERV_VE_TYPE:
        return "VeType = HYPERV_VE_TYPE";
    default:
        return "Invalid VE_TYPE";
    }
}

const char* diskFormatText(std::uint32_t diskFormat) {
    switch (diskFormat) {
    case DISK_FORMAT_THIN:
        return " VM Disk Format= Thin Pro";
    case DISK_FORMAT_THICK:
        return " VM Disk Format= Thick Pro";
    case DISK_FORMAT_THICK_LAZY:
        return " VM Disk Format= Thick Lazy";
    default:
        return " Invalid VDisk Format ";
    }
}

void print(std::ostream& out, const B2VInput& input, bool isFull) {
    const auto line = [&](const char* label, const auto& value) { out << label << ' ' << value << '\n'; };
    line("ClientName =", input.clientName);
    line("Master server =", input.masterServer);
    line("Config Name =", input.configName);
    line("vmServer Name =", input.vmServer);
    if (isFull)
        line("EsxServer Name=", input.esxHost);
    line("VM proxy Name =", input.vmProxy);
    out << veTypeText(input.veType) << '\n';
    line("PowerOn option =", input.powerOn);
    line("Strip Network Option=", input.stripNetwork);
    line("Overwrite VM Option=", input.overwriteVm);
    line("Tools Iso Path =", input.toolsIsoPath);
    line("VM Display Name =", input.vmDisplayName);
    out << diskFormatText(input.diskFormat) << '\n';
    line("VM Destination Folder =", input.vmFolder);
    line("Data Center Name =", input.dataCenter);
    if (isFull)
        line("Cluster Name=", input.cluster);
    line("VM Network Name =", input.vmNetwork);
    line("Resource Pool Name =", input.resourcePool);
    line("Data Store Name =", input.dataStore);
    if (isFull)
        line("Profile Name =", input.profileName);
    for (const DiskDataStoreEntry& entry : input.diskMap)
        out << ' ' << entry.diskName << ' ' << entry.dataStoreName << ' ' << entry.availableSize << '\n';
    if (isFull) {
        out << (input.systemOnly ? "SystemOnly = true " : "SystemOnly = false") << '\n';
        out << (input.guiJob ? "Gui enabled job = true" : "Gui enabled job = false") << '\n';
    }
}

} // namespace

std::ostream& operator<<(std::ostream& out, const CZorb2vCommandLine& commandLine) {
    print(out, commandLine.input(), true);
    return out;
}

std::ostream& operator<<(std::ostream& out, const B2VInput& input) {
    print(out, input, false);
    return out;
}

} // namespace Zorvane

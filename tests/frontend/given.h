// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "frontend/CZorb2vCommandLine.h"

namespace Zorvane {

/// What an input holds beside its defaults: "C=alpha store=ds1 gui".
inline std::string given(const B2VInput& input) {
    const std::pair<const char*, std::string> values[] = {
        {"C", input.clientName},
        {"S", input.masterServer},
        {"config", input.configName == "current" ? "" : input.configName},
        {"server", input.vmServer},
        {"proxy", input.vmProxy},
        {"profile", input.profileName},
        {"type", input.veType == VMWARE_VE_TYPE ? "" : std::to_string(input.veType)},
        {"tools", input.toolsIsoPath},
        {"name", input.vmDisplayName},
        {"format", input.diskFormat == DISK_FORMAT_THIN ? "" : std::to_string(input.diskFormat)},
        {"folder", input.vmFolder},
        {"dc", input.dataCenter},
        {"cluster", input.cluster},
        {"esx", input.esxHost},
        {"network", input.vmNetwork},
        {"pool", input.resourcePool},
        {"store", input.dataStore},
    };
    const std::pair<const char*, bool> flags[] = {
        {"on", input.powerOn}, {"strip", input.stripNetwork},    {"overwrite", input.overwriteVm},
        {"gui", input.guiJob}, {"systemOnly", input.systemOnly},
    };
    std::string text;
    for (const auto& [name, value] : values)
        if (!value.empty())
            text += std::string(name) + "=" + value + " ";
    for (const DiskDataStoreEntry& entry : input.diskMap)
        text += entry.diskName + "=" + entry.dataStoreName + " ";
    for (const auto& [name, isSet] : flags)
        if (isSet)
            text += std::string(name) + " ";
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "lab/profileCheck.h"

#include "platform/stringManipulation.h"

#include <algorithm>

namespace Zorvane {

namespace {

bool same(const std::string& first, const std::string& second) {
    return StrCaseCmp(first.c_str(), second.c_str()) == 0;
}

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::ranges::any_of(names, [&](const std::string& each) { return same(each, name); });
}

// Data centers are given as a name or as a path that ends with it.
std::string lastComponent(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool hasStore(const InventoryHost& host, const std::string& name) {
    return std::ranges::any_of(host.stores, [&](const InventoryStore& store) {
        return same(store.name, name) || same(store.pod, name);
    });
}

bool hasPool(const InventoryDataCenter& dataCenter, const InventoryHost& host, const std::string& name) {
    const auto fits = [&](const std::string& pool) {
        return same(poolPath(dataCenter, host, pool), name) || same(lastComponent(pool), name);
    };
    return fits("") || same(name, "Resources") || std::ranges::any_of(host.pools, fits);
}

bool hasFolder(const InventoryDataCenter& dataCenter, const std::string& path) {
    return same(folderPath(dataCenter, ""), path) ||
           std::ranges::any_of(dataCenter.folders, [&](const auto& folder) {
               return same(folderPath(dataCenter, folder), path);
           });
}

} // namespace

std::string serverOf(const CVmwareProfileOptions& profile) {
    return profile.getVCenterServer().empty() ? profile.getEsxServer() : profile.getVCenterServer();
}

std::optional<MissingObject> findMissing(const Inventory& inventory, const CVmwareProfileOptions& profile) {
    if (!contains(inventory.proxies, profile.getVICName()))
        return MissingObject{"-vmproxy", profile.getVICName()};
    const InventoryServer* server = inventory.findServer(serverOf(profile));
    if (!server)
        return MissingObject{"-vmserver", serverOf(profile)};
    const auto [dataCenter, host] = findHost(*server, profile.getEsxServer());
    if (!host)
        return MissingObject{"esxhost", profile.getEsxServer()};

    const bool vCenter = server->type == InventoryServer::Type::VCenter;
    const struct {
        const char* kind;
        const std::string& name;
        bool there;
    } objects[] = {
        {"datacenter", profile.getDataCenter(),
         same(dataCenter->name, lastComponent(profile.getDataCenter()))},
        {"cluster", profile.getESXCluster(), same(host->cluster, profile.getESXCluster())},
        {"datastore", profile.getDataStore(), hasStore(*host, profile.getDataStore())},
        {"resourcepool", profile.getResourcePool(), hasPool(*dataCenter, *host, profile.getResourcePool())},
        {"folder", profile.getFolder(), !vCenter || hasFolder(*dataCenter, profile.getFolder())},
        {"network", profile.getNetwork(), contains(host->networks, profile.getNetwork())},
    };
    for (const auto& object : objects)
        if (!object.name.empty() && !object.there)
            return MissingObject{object.kind, object.name};
    return std::nullopt;
}

} // namespace Zorvane

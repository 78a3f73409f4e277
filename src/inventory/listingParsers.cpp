// SPDX-License-Identifier: Apache-2.0
// CZorb2vKvnrdConnect: from the replies' documents to plain collections.
#include "inventory/CZorb2vKvnrdConnect.h"
#include "logging/Trace.h"
#include "model/XmlParser.h"

#include <cstdlib>
#include <string_view>

namespace Zorvane {

namespace {

constexpr long long BYTES_PER_MB = 1048576;

// An attribute of the element that the walk stands on; empty if it is absent.
std::string attribute(XmlParser& document, const std::string& name) {
    std::string text;
    document.CopyNodeAttribute(&text, &name);
    return text;
}

long number(const std::string& text) {
    return std::strtol(text.c_str(), nullptr, 10);
}

// Calls `visit` for each element of a flat document.
template <class Visit>
int eachEntry(XmlParser& document, Visit visit) {
    if (document.initChildren() != 0)
        return 1;
    for (const std::string* tag = document.firstObjectTag(); tag; tag = document.nextValueTag())
        visit();
    return 0;
}

int nameOfEach(XmlParser& document, std::vector<std::string>& names) {
    return eachEntry(document, [&] { names.push_back(attribute(document, "Name")); });
}

// Calls `visit` with the tag of each element below the one that the walk stands on, and comes back to it
// however deep `visit` went. The tag is only good until then. Documents have a bound on their depth.
template <class Visit>
void eachChild(XmlParser& document, Visit visit) {
    for (const std::string* tag = document.firstObjectTag(); tag; tag = document.nextObjectTag()) {
        XmlNode* const node = document.getCurrentNode();
        visit(*tag);
        document.setCurrentNode(node);
    }
}

bool holdsDatastores(std::string_view tag) {
    return tag == "Folder" || tag == "Datacenter" || tag == "Datastore" || tag == "StoragePod" ||
           tag == "HostMachinesProxyView";
}

void readDatastores(XmlParser& document, std::map<std::string, long long>& stores, std::string& name,
                    Trace& trace) {
    eachChild(document, [&](std::string_view tag) {
        if (tag == "Name") {
            document.CopyNode(&name);
        } else if (tag == "Freespace") {
            std::string bytes;
            document.CopyNode(&bytes);
            const long long free = std::strtoll(bytes.c_str(), nullptr, 10) / BYTES_PER_MB;
            stores[name] = free;
            trace.write(LEVEL_TRACE, " ObjName=", name, " freeMem=", free);
        } else if (holdsDatastores(tag)) {
            readDatastores(document, stores, name, trace);
        }
    });
}

void readNodeNames(XmlParser& document, std::vector<std::string>& names) {
    for (const std::string* tag = document.firstValueTag(); tag; tag = document.nextValueTag()) {
        if (*tag != "Name")
            continue;
        std::string name;
        document.CopyNodeValue(&name);
        names.push_back(name);
    }
}

void browse(XmlParser& document, std::vector<std::string>& names, VcenterNode wanted) {
    eachChild(document, [&](std::string_view tag) {
        if (tag == "Children") {
            browse(document, names, wanted);
        } else if (tag == "VirtualCenterViewNode") {
            if (number(attribute(document, "Type")) == static_cast<int>(wanted))
                readNodeNames(document, names);
            browse(document, names, wanted);
        }
    });
}

void readPools(XmlParser& document, std::vector<std::string>& names, std::vector<std::string>& paths) {
    for (const std::string* tag = document.firstObjectTag(); tag; tag = document.nextObjectTag()) {
        if (*tag == "ResourcePool") {
            names.push_back(attribute(document, "Name"));
            paths.push_back(attribute(document, "Path"));
        }
        XmlNode* const node = document.getCurrentNode();
        // A pool without pools of its own ends its level: those behind it stay unread, and this stays so.
        if (!document.firstValueTag())
            return;
        readPools(document, names, paths);
        document.setCurrentNode(node);
    }
}

void readFolders(XmlParser& document, std::vector<std::string>& paths) {
    eachChild(document, [&](std::string_view tag) {
        if (tag == "Folder") {
            readFolders(document, paths);
        } else if (tag == "Path") {
            std::string path;
            document.CopyNode(&path);
            paths.push_back(path);
        }
    });
}

} // namespace

int CZorb2vKvnrdConnect::parseVmServersList(XmlParser& document, std::map<std::string, int>& servers) {
    const ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseVmServersList()");
    return eachEntry(document, [&] {
        servers[attribute(document, "Name")] = static_cast<int>(number(attribute(document, "Type")));
    });
}

int CZorb2vKvnrdConnect::parseVmProxyList(XmlParser& document, std::vector<std::string>& proxies) {
    const ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseVmProxyList()");
    return nameOfEach(document, proxies);
}

int CZorb2vKvnrdConnect::parseNetworksList(XmlParser& document, std::vector<std::string>& networks) {
    const ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseNetworksList()");
    return nameOfEach(document, networks);
}

int CZorb2vKvnrdConnect::parseDatastoresList(XmlParser& document, std::map<std::string, long long>& stores) {
    const ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseDatastoresList()");
    return eachEntry(document, [&] {
        stores[attribute(document, "Name")] = number(attribute(document, "AvailableMBytes"));
    });
}

int CZorb2vKvnrdConnect::parseDatastoreTree(XmlParser& document, std::map<std::string, long long>& stores) {
    ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseDatastoreTree()");
    if (document.initChildren() != 0)
        return 1;
    // A free space belongs to the name read last before it, wherever in the tree that stood; this stays so.
    std::string name;
    if (holdsDatastores(document.getRootName()))
        readDatastores(document, stores, name, trace);
    return 0;
}

int CZorb2vKvnrdConnect::parseVcentersBrowse(XmlParser& document, std::vector<std::string>& names,
                                             VcenterNode wanted) {
    const ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseVcentersBrowse()");
    if (document.initChildren() != 0)
        return 1;
    browse(document, names, wanted);
    return 0;
}

int CZorb2vKvnrdConnect::parseRpoolList(XmlParser& document, std::vector<std::string>& names,
                                        std::vector<std::string>& paths) {
    const ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseRpoolList()");
    if (document.initChildren() != 0)
        return 1;
    readPools(document, names, paths);
    return 0;
}

int CZorb2vKvnrdConnect::parseVmFoldersList(XmlParser& document, std::vector<std::string>& paths) {
    const ClassTrace trace(g_appLog, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::parseVmFoldersList()");
    if (document.initChildren() != 0)
        return 1;
    readFolders(document, paths);
    return 0;
}

} // namespace Zorvane

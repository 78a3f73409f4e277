// SPDX-License-Identifier: Apache-2.0
// The inventory's documents: each parser on any document.
#include "fuzz/fuzzing.h"
#include "inventory/CZorb2vKvnrdConnect.h"
#include "model/XmlParser.h"

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Kvnrd = CZorb2vKvnrdConnect;
    Fuzz::Input input(data, size);
    const unsigned listing = input.choice(8);
    const auto wanted = static_cast<VcenterNode>(input.choice(6));
    const std::string text = input.rest();
    XmlParser document(reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    std::vector<std::string> names;
    std::vector<std::string> paths;
    std::map<std::string, int> types;
    std::map<std::string, long long> sizes;
    switch (listing) {
    case 0:
        Kvnrd::parseVmServersList(document, types);
        break;
    case 1:
        Kvnrd::parseVmProxyList(document, names);
        break;
    case 2:
        Kvnrd::parseNetworksList(document, names);
        break;
    case 3:
        Kvnrd::parseDatastoresList(document, sizes);
        break;
    case 4:
        Kvnrd::parseDatastoreTree(document, sizes);
        break;
    case 5:
        Kvnrd::parseVcentersBrowse(document, names, wanted);
        break;
    case 6:
        Kvnrd::parseRpoolList(document, names, paths);
        Fuzz::require(names.size() == paths.size());
        break;
    default:
        Kvnrd::parseVmFoldersList(document, paths);
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
#include "inventory/FakeKvnrd.h"
#include "model/XmlParser.h"

#include <tuple>

namespace Zorvane {
namespace {

using Connect = CZorb2vKvnrdConnect;

template <class... Containers>
std::string parse(int (*parser)(XmlParser&, Containers&...), const std::string& text) {
    XmlParser document(reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    std::tuple<Containers...> collected;
    return std::apply(
        [&](auto&... each) {
            return parser(document, each...) == 0 ? (joined(each) + ...) : std::string("failed");
        },
        collected);
}

int browseHosts(XmlParser& document, std::vector<std::string>& names) {
    return Connect::parseVcentersBrowse(document, names, VcenterNode::EsxServer);
}

std::string nested(const std::string& element, int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i)
        text = "<" + element + ">" + text + "</" + element + ">";
    return text;
}

TEST(ListingParsers, readWhatTheyKnow) {
    constexpr auto servers = [](const std::string& text) { return parse(Connect::parseVmServersList, text); };
    constexpr auto proxies = [](const std::string& text) { return parse(Connect::parseVmProxyList, text); };
    constexpr auto networks = [](const std::string& text) { return parse(Connect::parseNetworksList, text); };
    constexpr auto flat = [](const std::string& text) { return parse(Connect::parseDatastoresList, text); };
    constexpr auto stores = [](const std::string& text) { return parse(Connect::parseDatastoreTree, text); };
    constexpr auto hosts = [](const std::string& text) { return parse(browseHosts, text); };
    constexpr auto pools = [](const std::string& text) { return parse(Connect::parseRpoolList, text); };
    constexpr auto folders = [](const std::string& text) { return parse(Connect::parseVmFoldersList, text); };
    const struct {
        std::string (*parse)(const std::string&);
        std::string document, collected;
    } cases[] = {
        {servers, "<L/>", ""},
        {servers, "<L>\n <S Type='1' Name='b'/>\n<S Name='a' Type='2x'/><S Name='b' Type='7'/></L>",
         "a=2;b=7;"},
        {servers, "<L><S Name='a'/><S Type='3'/><!-- the end --><S Name='b'/></L>", "=3;a=0;"},
        {proxies, "<L><P Name='b'/><P Name='a &amp; c'><P Name='x'/></P><P Name='b'/></L>", "b;a & c;b;"},
        {networks, "<L><N Name='1'/><M Name='2'/></L>", "1;2;"},
        {flat, "<L><D Name='d' AvailableMBytes='5000000000'/></L>", "d=5000000000;"},

        {stores, "<Folder><Datastore><Name>d</Name><Freespace>1048575</Freespace></Datastore></Folder>",
         "d=0;"},
        {stores,
         "<HostMachinesProxyView><Datacenter><Name>dc</Name><StoragePod><Name>pod</Name><Freespace>3145728</"
         "Freespace>"
         "<Datastore><Name>d1</Name><Type>x</Type><Freespace>10995116277760</Freespace></Datastore>"
         "</StoragePod><HostMachinesProxyView><Folder><Datastore><Name>d2</Name>"
         "<Freespace>2097152</Freespace></Datastore></Folder></HostMachinesProxyView></Datacenter></"
         "HostMachinesProxyView>",
         "d1=10485760;d2=2;pod=3;"},
        {stores, "<Folder><Other><Name>o</Name><Freespace>1048576</Freespace></Other></Folder>", ""},
        {stores, "<V><Datastore><Name>d</Name><Freespace>1048576</Freespace></Datastore></V>", ""},
        // A free space goes to the name read last, wherever that stood.
        {stores,
         "<Folder><Folder><Name>f</Name></Folder><Datastore><Freespace>1048576</Freespace></Datastore></"
         "Folder>",
         "f=1;"},

        {hosts, "<R Type='3'><Name>root</Name></R>", ""},
        {hosts,
         "<R><Children><VirtualCenterViewNode Type='3'><Id>1</Id><Name>a</Name><Children>"
         "<VirtualCenterViewNode><Name>x</Name></VirtualCenterViewNode>"
         "<VirtualCenterViewNode Type='3'><Name>b</Name></VirtualCenterViewNode></Children>"
         "</VirtualCenterViewNode><Other><VirtualCenterViewNode Type='3'><Name>y</Name>"
         "</VirtualCenterViewNode></Other><VirtualCenterViewNode Type='3'><Name>c</Name>"
         "</VirtualCenterViewNode></Children></R>",
         "a;b;c;"},

        // A pool without pools of its own ends its level, and no other.
        {pools,
         "<L><ResourcePool Name='a' Path='/a'><ResourcePool Name='b' Path='/a/b'/><ResourcePool/>"
         "</ResourcePool><ResourcePool Name='c' Path='/c'/><ResourcePool/></L>",
         "a;b;c;/a;/a/b;/c;"},
        {pools, "<L><Other><ResourcePool Name='a'/></Other><ResourcePool Name='b'/></L>", "a;b;;;"},
        {folders,
         "<V><Name>n</Name><Path>/</Path><Folder><Name>f</Name><Path>/f</Path><Folder>"
         "<Path>/f/g</Path></Folder></Folder><Other><Path>no</Path></Other></V>",
         "/;/f;/f/g;"},

        {hosts, nested("Children", 512), ""}, // as deep as is read at all
        {folders, nested("Folder", 512), ""},
        {stores, nested("Folder", 513), "failed"},
    };
    for (const auto& [read, document, collected] : cases)
        EXPECT_EQ(read(document), collected) << document.substr(0, 200);
    for (const auto& read : {+servers, +proxies, +networks, +flat, +stores, +hosts, +pools, +folders})
        EXPECT_EQ(read("<unfinished>"), "failed");
}

} // namespace
} // namespace Zorvane

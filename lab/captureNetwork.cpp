// SPDX-License-Identifier: Apache-2.0
// A machine's interfaces, addresses, routes and name servers.
#include "lab/MachineCapture.h"

#include <algorithm>

#include <arpa/inet.h>

namespace Zorvane {

namespace {

using Json = nlohmann::json;

constexpr const char* RESOLVER = "etc/resolv.conf";

// In host order; 0 for what is no IPv4 address.
std::uint32_t ipv4(const std::string& text) {
    in_addr address{};
    return ::inet_pton(AF_INET, text.c_str(), &address) == 1 ? ntohl(address.s_addr) : 0;
}

std::uint32_t netmask(std::int64_t prefix) {
    return prefix <= 0 ? 0 : ~std::uint32_t{0} << (32 - std::min<std::int64_t>(prefix, 32));
}

// The list that a command printed; empty if it printed none.
Json listOf(const std::string& output) {
    Json list = Json::parse(output, nullptr, false);
    if (!list.is_array())
        list = Json::array();
    return list;
}

const Json& childrenOf(const Json& object, const char* key) {
    static const Json none = Json::array();
    const auto found = object.is_object() ? object.find(key) : object.end();
    return found != object.end() && found->is_array() ? *found : none;
}

struct Interface {
    std::string name;
    ID row;
};

ID rowOf(const std::vector<Interface>& interfaces, const std::string& name) {
    const auto found = std::ranges::find(interfaces, name, &Interface::name);
    return found == interfaces.end() ? 0 : found->row;
}

ConnectionStatus connection(const std::string& state) {
    return state == "UP"     ? ConnectionStatus::CONNECTED
           : state == "DOWN" ? ConnectionStatus::DISCONNECTED
                             : ConnectionStatus::UNKNOWN;
}

void addAddresses(MachineCapture& capture, const Json& link, CNetworkInterface& row) {
    int instance = 0;
    for (const Json& address : childrenOf(link, "addr_info")) {
        const std::string text = jsonText(address, "local");
        if (jsonText(address, "family") != "inet") {
            if (jsonText(address, "scope") == "global")
                capture.leftOut.push_back(row.getName() + ": address " + text + ", which is not of IPv4");
            continue;
        }
        auto& identity = capture.add(capture.rows.m_vNetworkIdentity);
        identity.setfqdn(capture.file("proc/sys/kernel/hostname"));
        identity.setIPAddress(ipv4(text));
        identity.setNetmask(netmask(jsonNumber(address, "prefixlen")));
        identity.setInstance(instance++);
        identity.setNetworkInterfaceId(row.getId());
        if (jsonNumber(address, "dynamic") != 0)
            row.setDhcpEnabled(true);
    }
}

std::vector<Interface> addInterfaces(MachineCapture& capture, ID network) {
    std::vector<Interface> interfaces;
    for (const Json& link : listOf(capture.machine.addresses)) {
        const std::string name = jsonText(link, "ifname");
        const std::string folder = "sys/class/net/" + name;
        if (name.empty() || jsonText(link, "link_type") == "loopback")
            continue;
        const bool isTeam = capture.exists(folder + "/bonding");
        if (!isTeam && !capture.exists(folder + "/device")) {
            capture.leftOut.push_back(name + ": an interface without a device");
            continue;
        }
        auto& row = capture.add(capture.rows.m_vNetworkInterface);
        row.setName(name);
        row.setDescription(capture.setting(folder + "/device/uevent", "DRIVER"));
        row.setTeaming(isTeam ? 1 : 0);
        row.setMacAddress(jsonText(link, "address"));
        row.setLocation(capture.setting(folder + "/device/uevent", "PCI_SLOT_NAME"));
        row.setConnectionStatus(connection(jsonText(link, "operstate")));
        row.setNetworkId(network);
        addAddresses(capture, link, row);
        interfaces.push_back({name, row.getId()});
    }
    return interfaces;
}

void addRoutes(MachineCapture& capture, const std::vector<Interface>& interfaces, CNetwork& network) {
    const Json routes = listOf(capture.machine.routes);
    if (routes.empty())
        capture.leftOut.push_back("the routes: \"ip -json route\" told none");
    for (const Json& route : routes) {
        const std::uint32_t gateway = ipv4(jsonText(route, "gateway"));
        const ID interface = rowOf(interfaces, jsonText(route, "dev"));
        if (gateway == 0 || interface == 0)
            continue; // to a network that an interface is in, or over one that is left out
        const std::string target = jsonText(route, "dst");
        auto& row = capture.add(capture.rows.m_vGateway);
        row.setIpAddress(gateway);
        row.setNetworkInterfaceId(interface);
        if (const std::int64_t metric = jsonNumber(route, "metric"); metric != 0)
            row.setMetric(std::to_string(metric));
        if (target != "default") {
            const std::size_t slash = target.find('/');
            row.setDestNetwork(ipv4(target.substr(0, slash)));
            row.setDestNetmask(
                netmask(slash == std::string::npos ? 32 : leadingNumber(target.substr(slash + 1))));
        } else if (network.getDefaultGateway() == 0) {
            network.setDefaultGateway(gateway);
            capture.rows.m_vNetworkInterface[interface - 1]->setBoot(true);
        }
    }
}

void addHost(MachineCapture& capture, const std::string& name, std::uint32_t address, HostRole role,
             int order, const CNetwork& network) {
    auto& row = capture.add(capture.rows.m_vHostList);
    row.setName(name);
    row.setIPAddress(address);
    row.setGateway(network.getDefaultGateway());
    row.setRole(role);
    row.setDNSSearchOrder(order);
    row.setNetworkId(network.getId());
}

void addResolver(MachineCapture& capture, CNetwork& network) {
    int servers = 0;
    for (const std::string& line :
         capture.told(capture.lines(RESOLVER),
                      "the name servers and the domains sought: /etc/resolv.conf tells none")) {
        const std::vector<std::string> words = wordsOf(line);
        if (words.size() < 2)
            continue;
        if (words[0] == "nameserver") {
            if (const std::uint32_t address = ipv4(words[1]))
                addHost(capture, words[1], address, HostRole::DNS_SERVER, ++servers, network);
            else
                capture.leftOut.push_back("name server " + words[1] + ", which is not of IPv4");
        } else if (words[0] == "search" || words[0] == "domain") {
            for (std::size_t i = 1; i < words.size(); ++i) {
                auto& row = capture.add(capture.rows.m_vDomainSearchList);
                row.setSearchOrder(static_cast<int>(row.getId()));
                row.setSuffix(words[i]);
                row.setNetworkId(network.getId());
            }
            if (network.getDomainName().empty())
                network.setDomainName(words[1]);
        }
    }
}

} // namespace

void captureNetwork(MachineCapture& capture) {
    auto& network = capture.add(capture.rows.m_vNetwork);
    network.setConfigId(capture.config);
    const std::string fullName = capture.file("proc/sys/kernel/hostname");
    if (const std::size_t dot = fullName.find('.'); dot != std::string::npos)
        network.setDomainName(fullName.substr(dot + 1));
    const std::vector<Interface> interfaces = addInterfaces(capture, network.getId());
    if (interfaces.empty())
        capture.leftOut.push_back("the network's interfaces: \"ip -json address\" told none");
    addRoutes(capture, interfaces, network);
    if (const CNetworkIdentity* identity = capture.rows.m_vNetworkIdentity.first())
        addHost(capture, fullName, identity->getIPAddress(), HostRole::CLIENT, 0, network);
    addResolver(capture, network);
}

} // namespace Zorvane

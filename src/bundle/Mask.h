// SPDX-License-Identifier: Apache-2.0
// Stand-ins for names and addresses: the same name has the same one wherever it stands, so that a reader can
// follow it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Zorvane {

/// What a name names; its stand-in tells it ("host-1").
enum class NameKind : std::uint8_t {
    Host,
    Client,
    Domain,
    User,
    Group,
    Machine,
    Store,
    Folder,
    Pool,
    Network,
    DataCenter,
    Cluster,
    Profile,
    Serial,
    Name, ///< of anything
};
inline constexpr std::size_t NAME_KINDS = static_cast<std::size_t>(NameKind::Name) + 1;

/// Names are compared without the case of ASCII letters. First all names are learned, then texts are masked.
class Mask {
  public:
    /// Masks this name from now on; one that is known already keeps its stand-in. A host's or a client's
    /// short name and its domain have stand-ins of their own, of a path each part has. Passed over is what
    /// names nothing: single characters, small numbers, addresses, "localhost", "root", "current".
    void learn(NameKind kind, std::string_view name);
    /// Learns what gives itself away in any text: host names with their domain, and users' folders.
    void survey(std::string_view text);

    /// The text with stand-ins, the longest name first. IPv4 and IPv6 addresses and those of network cards
    /// get ones that keep their form and belong to nobody: 0.0.0.1, 100::1, 02:00:00:00:00:01. Loopback
    /// addresses and masks of networks stay.
    [[nodiscard]] std::string masked(std::string_view text);
    /// The same for an address in host order.
    [[nodiscard]] std::uint32_t masked(std::uint32_t address);

    /// A line for each stand-in: it, a tabulator, the name.
    [[nodiscard]] std::string legend() const;

  private:
    enum class AddressKind : std::uint8_t { Ipv4, Ipv6, Card };
    struct Known {
        std::string name; ///< in small letters
        std::string standIn;
        bool isDistinct; ///< no word of any language, so that it is found inside of words as well
    };
    struct Found {
        std::size_t length = 0; ///< 0: nothing
        std::string standIn{};
    };

    void learnHost(NameKind kind, std::string_view name, bool isSure);
    /// Whether it is a known host name that a text runs on behind: "alpha.corp.exampleand".
    [[nodiscard]] bool isTailed(std::string_view lower) const;
    void learnPath(NameKind kind, std::string_view path);
    std::string add(NameKind kind, std::string_view name);
    void add(std::string_view name, const std::string& standIn);
    Found nameAt(std::string_view lower, std::size_t at);
    Found cardAt(std::string_view lower, std::size_t at);
    Found addressAt(std::string_view lower, std::size_t at);
    std::string addressStandIn(AddressKind kind, const std::string& address);
    void makeIndex();

    std::array<std::size_t, NAME_KINDS> m_counts{};
    std::array<unsigned, 3> m_addressCounts{};
    std::map<std::string, std::string, std::less<>> m_standIns; ///< by the name in small letters
    std::map<std::string, std::string, std::less<>> m_addresses;
    std::vector<std::pair<std::string, std::string>> m_legend;
    /// By the first two bytes of the name, the longest first.
    std::unordered_map<std::uint16_t, std::vector<Known>> m_index;
    std::size_t m_indexed = 0; ///< how many names the index holds
};

} // namespace Zorvane

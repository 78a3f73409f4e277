// SPDX-License-Identifier: Apache-2.0
// Stand-ins for names and addresses: the same name has the same one wherever it stands, so that a reader can
// follow it.
#pragma once

#include "bundle/KnownNames.h"
#include "bundle/addresses.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
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

/// Names are compared without case. First all names are learned, then texts are masked. Texts and stand-ins
/// are UTF-8; a name may come in any code set.
class Mask {
  public:
    /// Masks this name from now on, as it is and as XML and SQL write it; one that is known already keeps its
    /// stand-in. A host's or a client's short name and its domain have stand-ins of their own, of a path each
    /// part has. Passed over is what names nothing (isNoName).
    void learn(NameKind kind, std::string_view name);
    /// Learns what gives itself away in any text: host names with their domain, addresses of mail, users'
    /// folders, and servers of shared folders.
    void survey(std::string_view text);

    /// The text with stand-ins, the longest name first. Addresses get ones that keep their form and belong to
    /// nobody: 0.0.0.1, 100::1, 02:00:00:00:00:01.
    [[nodiscard]] std::string masked(std::string_view text);
    /// The same for an address in host order.
    [[nodiscard]] std::uint32_t masked(std::uint32_t address);

    /// A line for each stand-in: it, a tabulator, the name.
    [[nodiscard]] std::string legend() const;

  private:
    void learnHost(NameKind kind, std::string_view name, bool isSure);
    void learnPath(NameKind kind, std::string_view path);
    std::string nextStandIn(NameKind kind);
    std::string add(NameKind kind, std::string_view name);
    std::string addPart(NameKind kind, std::string_view part);
    void add(std::string_view name, const std::string& standIn);
    void surveyMailboxes(std::string_view text);
    void surveyHosts(std::string_view text, std::string_view lower);
    void surveyUsers(std::string_view text, std::string_view lower);
    void surveyShares(std::string_view text, std::string_view lower);
    [[nodiscard]] std::size_t untilNextName(std::string_view lower, std::size_t at, std::size_t length) const;
    std::string addressStandIn(const Address& address);

    std::array<unsigned, NAME_KINDS> m_counts{};
    std::array<unsigned, 3> m_addressCounts{};
    KnownNames m_names;
    std::map<std::string, std::string, std::less<>> m_addresses;
    std::vector<std::pair<std::string, std::string>> m_legend;
};

} // namespace Zorvane

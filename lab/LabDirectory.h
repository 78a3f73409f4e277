// SPDX-License-Identifier: Apache-2.0
// A lab's directory: its files, and how it is made.
#pragma once

#include "lab/Estate.h"
#include "suite/descriptor.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace Zorvane {

/// The ports of the three services.
struct LabPorts {
    std::uint16_t zord = 0;
    std::uint16_t zorbd = 0;
    std::uint16_t kvnrd = 0;
};

class LabDirectory {
  public:
    explicit LabDirectory(const std::filesystem::path& path) : m_path(std::filesystem::absolute(path)) {}

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    [[nodiscard]] std::filesystem::path configuration() const { return m_path / "kvn.toml"; }
    [[nodiscard]] std::filesystem::path database() const { return m_path / "recovery.db"; }
    [[nodiscard]] std::filesystem::path inventory() const { return m_path / "inventory.toml"; }
    [[nodiscard]] std::filesystem::path catalogue() const { return m_path / "catalogue.toml"; }
    [[nodiscard]] std::filesystem::path requestLog() const { return m_path / "requests.log"; }
    [[nodiscard]] std::filesystem::path received() const { return m_path / "received"; }
    [[nodiscard]] std::filesystem::path logs() const { return m_path / "log"; }

    /// LabError if this is no lab's directory.
    void mustExist() const;
    /// For who serves the lab or makes it anew, as long as that takes: LabError while another one does.
    [[nodiscard]] Suite::Descriptor lock() const;
    /// From kvn.toml. LabError for a port that is missing or no port.
    [[nodiscard]] LabPorts ports() const;

  private:
    std::filesystem::path m_path;
};

struct InitOptions {
    bool force = false; ///< a lab that stands there is replaced
    std::optional<std::uint16_t>
        basePort{}; ///< the first of three ports in a row, at most 65533; else three free ones
    std::optional<std::filesystem::path>
        samples{}; ///< the folder of the documents to load; else the sample clients
    EstateOptions estate{};
    bool quiet = false; ///< tells nothing on standard output
};

/// Makes a lab and tells on standard output what it did. LabError if it can't be made, or if one stands
/// there.
void initLab(const LabDirectory& directory, const InitOptions& options);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "lab/LabDirectory.h"

#include "lab/LabError.h"
#include "lab/tomlFile.h"

namespace Zorvane {

void LabDirectory::mustExist() const {
    if (!std::filesystem::exists(database()) || !std::filesystem::exists(configuration()))
        throw LabError(m_path.string() + " is no lab directory; make one with: zorlab init " +
                       m_path.string());
}

LabPorts LabDirectory::ports() const {
    TomlTable services = readToml(configuration()).table("services");
    const auto port = [&](const char* name) {
        return static_cast<std::uint16_t>(services.integer(name, 1, 65535));
    };
    return {port("zord"), port("zorbd"), port("kvnrd")};
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "lab/LabDirectory.h"

#include "lab/LabError.h"
#include "lab/tomlFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>

namespace Zorvane {

void LabDirectory::mustExist() const {
    if (!std::filesystem::exists(database()) || !std::filesystem::exists(configuration()))
        throw LabError(m_path.string() + " is no lab directory; make one with: zorlab init " +
                       m_path.string());
}

Suite::Descriptor LabDirectory::lock() const {
    const std::filesystem::path file = m_path / "lab.lock";
    Suite::Descriptor lock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!lock.isOpen())
        throw LabError("cannot open " + file.string() + ": " + std::strerror(errno));
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0)
        throw LabError(m_path.string() + " is in use: another zorlab serves it or makes it; stop that one");
    return Suite::Descriptor(lock.release());
}

LabPorts LabDirectory::ports() const {
    TomlTable services = readToml(configuration()).table("services");
    const auto port = [&](const char* name) {
        return static_cast<std::uint16_t>(services.integer(name, 1, 65535));
    };
    return {port("zord"), port("zorbd"), port("kvnrd")};
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// A made-up host for a test: its files lie in a folder that goes with the object.
#pragma once

#include "platform/hostRoot.h"
#include "suite/Scratch.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace Zorvane {

class HostFiles {
  public:
    HostFiles() { SetHostRoot(root()); }
    HostFiles(const HostFiles&) = delete;
    HostFiles& operator=(const HostFiles&) = delete;
    ~HostFiles() { SetHostRoot(""); }

    /// Writes a file by its path on the host; its real path.
    std::string write(const std::string& path, const std::string& content) const {
        const std::filesystem::path file = root() + path;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << content;
        return file.string();
    }
    [[nodiscard]] std::string root() const { return m_scratch.path("host"); }

  private:
    Scratch m_scratch;
};

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// What clients send to keep: files and logs, in one folder of the lab.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <mutex>
#include <string_view>

namespace Zorvane {

class ReceivedFiles {
  public:
    /// The folder is made when it is needed.
    ReceivedFiles(const std::filesystem::path& folder) : m_folder(folder) {}

    [[nodiscard]] const std::filesystem::path& folder() const { return m_folder; }
    /// A place of its own for each name that a client may give its file, or itself.
    [[nodiscard]] std::filesystem::path fileOf(std::string_view client, std::string_view file) const;
    [[nodiscard]] std::filesystem::path logOf(std::string_view client) const;

    /// Keeps the bytes at one of the places, whole or not at all: what stood there before stands until then.
    /// False if they can't be written, or if there is no room for them. From any thread.
    bool keep(const std::filesystem::path& place, std::string_view bytes);

  private:
    [[nodiscard]] bool hasRoom(std::size_t size);
    void count();

    std::filesystem::path m_folder;
    std::mutex m_lock;
    std::uintmax_t m_size = std::numeric_limits<std::uintmax_t>::max() / 2; ///< too much: not counted yet
    std::uintmax_t m_count = 0;                                             ///< of files and folders
};

} // namespace Zorvane

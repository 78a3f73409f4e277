// SPDX-License-Identifier: Apache-2.0
// A .tar.gz in memory: ustar headers over zlib. A bundle needs plain files with short names and nothing else,
// for which an archive library would bring a dozen more libraries along (compressors, access lists,
// cryptography).
#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

namespace Zorvane {

class TarGz {
  public:
    /// The longest name of a member that the headers have room for.
    static constexpr std::size_t NAME_SIZE = 100;

    /// Members belong to nobody in particular and are of that time.
    explicit TarGz(std::time_t made) : m_made(made) {}

    /// `name` is a path of at most NAME_SIZE bytes: those of a bundle are fixed, and short.
    void add(std::string_view name, std::string_view content);
    /// The whole archive, compressed. Throws std::runtime_error.
    [[nodiscard]] std::string finish() const;

  private:
    std::time_t m_made;
    std::string m_tar;
};

} // namespace Zorvane

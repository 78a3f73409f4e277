// SPDX-License-Identifier: Apache-2.0
// The lab's own TOML files, read strictly: a key that nobody knows is an error, since it is a slip of the
// pen.
#pragma once

#include "suite/toml.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvane {

/// One table of a file. Every failure is a LabError that tells file, line, key and what is wanted.
class TomlTable {
  public:
    TomlTable(const toml::table& table, std::shared_ptr<const toml::table> root)
        : m_table(&table), m_root(std::move(root)) {}

    /// A text that must be there and is not empty.
    std::string text(std::string_view key);
    std::string text(std::string_view key, std::string_view otherwise);
    std::int64_t integer(std::string_view key, std::int64_t least, std::int64_t most);
    std::int64_t integer(std::string_view key, std::int64_t least, std::int64_t most, std::int64_t otherwise);
    /// Seconds since 1970, from a date and time or a whole number.
    std::int64_t time(std::string_view key);
    std::vector<std::string> texts(std::string_view key); ///< none if the key is missing
    std::vector<TomlTable> tables(std::string_view key);  ///< none if the key is missing
    TomlTable table(std::string_view key);

    /// To be called when every key was asked for: refuses the others.
    void finish() const;
    /// LabError at the table's place in the file.
    [[noreturn]] void refuse(const std::string& why) const;

  private:
    const toml::node* get(std::string_view key);
    [[noreturn]] void refuse(const toml::node& node, std::string_view key, std::string_view wanted) const;

    const toml::table* m_table;
    std::shared_ptr<const toml::table> m_root; ///< keeps the document
    std::set<std::string, std::less<>> m_known;
};

TomlTable readToml(const std::filesystem::path& file);
/// The text as a TOML string, quotes included.
std::string tomlQuoted(const std::string& text);

} // namespace Zorvane

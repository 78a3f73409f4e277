// SPDX-License-Identifier: Apache-2.0
// Columns of text on a terminal.
#pragma once

#include "info/Session.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Zorvane {

/// Rows under titles. No text is cut, for names are there to be copied: one of great length pushes the rest
/// of its row to the right, and leaves the other rows alone.
class TextTable {
  public:
    /// Control characters and the like are replaced, here and in the cells.
    explicit TextTable(const std::vector<std::string>& titles);

    /// As many cells as there are titles; an empty one is shown as "-".
    void add(const std::vector<std::string>& cells);
    [[nodiscard]] bool empty() const { return m_rows.size() == 1; }
    void write(const Session& session) const;

  private:
    [[nodiscard]] std::vector<std::size_t> widths() const;

    std::vector<std::vector<std::string>> m_rows; ///< the titles first
};

/// A time of the recovery database in local time, to the minute; "-" for none.
std::string minuteText(std::int64_t seconds);
/// The same without the year, for what is not long ago.
std::string dayText(std::int64_t seconds);
/// The same for documents: UTC, to the second; empty for none.
std::string timestampText(std::int64_t seconds);
/// A name of an enumeration in words: "VM_CREATING" is "vm creating".
std::string wordsOf(std::string name);

} // namespace Zorvane

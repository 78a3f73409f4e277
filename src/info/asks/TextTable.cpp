// SPDX-License-Identifier: Apache-2.0
#include "info/asks/TextTable.h"

#include "info/layout/labels.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <ctime>
#include <ostream>

namespace Zorvane {

namespace {

constexpr std::size_t GAP = 2;
constexpr std::size_t WIDEST = 40; ///< of a column: a text that is longer does not push the other rows

std::string dateText(std::int64_t seconds, const char* form,
                     std::tm* (*toFields)(const std::time_t*, std::tm*)) {
    const auto ticks = static_cast<std::time_t>(seconds);
    std::tm fields{};
    std::array<char, 64> text{};
    if (seconds > 0 && toFields(&ticks, &fields))
        std::strftime(text.data(), text.size(), form, &fields);
    return text.data();
}

} // namespace

TextTable::TextTable(const std::vector<std::string>& titles) {
    std::vector<std::string>& row = m_rows.emplace_back();
    for (const std::string& title : titles)
        row.push_back(shown(title));
}

void TextTable::add(const std::vector<std::string>& cells) {
    std::vector<std::string>& row = m_rows.emplace_back();
    for (const std::string& cell : cells)
        row.push_back(cell.empty() ? "-" : shown(cell));
    row.resize(m_rows.front().size());
}

std::vector<std::size_t> TextTable::widths() const {
    std::vector<std::size_t> widths(m_rows.front().size());
    for (const auto& row : m_rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            if (const std::size_t columns = terminalColumns(row[i]); columns <= WIDEST)
                widths[i] = std::max(widths[i], columns);
    return widths;
}

void TextTable::write(const Session& session) const {
    const std::vector<std::size_t> columns = widths();
    for (const auto& row : m_rows) {
        std::string line;
        std::size_t at = 0, start = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            // Behind a text that is too long the columns are caught up with as soon as blanks allow.
            const std::size_t blanks = i == 0 ? 0 : at + GAP > start ? GAP : start - at;
            line += std::string(blanks, ' ') + row[i];
            at += blanks + terminalColumns(row[i]);
            start += columns[i] + GAP;
        }
        session.out() << (&row == &m_rows.front() ? session.colored(line, color::BOLD) : line) << '\n';
    }
}

std::string minuteText(std::int64_t seconds) {
    const std::string text = dateText(seconds, "%Y-%m-%d %H:%M", ::localtime_r);
    return text.empty() ? "-" : text;
}

std::string dayText(std::int64_t seconds) {
    const std::string text = dateText(seconds, "%m-%d %H:%M", ::localtime_r);
    return text.empty() ? "-" : text;
}

std::string timestampText(std::int64_t seconds) {
    return dateText(seconds, "%Y-%m-%dT%H:%M:%SZ", ::gmtime_r);
}

std::string wordsOf(std::string name) {
    for (char& letter : name)
        letter = letter == '_' ? ' ' : static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return name;
}

} // namespace Zorvane

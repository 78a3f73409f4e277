// SPDX-License-Identifier: Apache-2.0
#include "lab/RequestLog.h"

#include "lab/LabError.h"
#include "suite/printable.h"

#include <cerrno>
#include <cstring>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

namespace Zorvane {

namespace {

// What a line shows of a condition, a name or a reason.
constexpr std::size_t MAX_COLUMN = 4000;

} // namespace

// Made new, then written at its end wherever that is: who empties the file while it is served finds no hole
// in it.
RequestLog::RequestLog(const std::filesystem::path& file)
    : m_out(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600)) {
    if (!m_out.isOpen())
        throw LabError("cannot write " + file.string() + ": " + std::strerror(errno));
}

void RequestLog::write(std::initializer_list<std::string_view> columns) noexcept {
    if (!isOpen())
        return;
    try {
        std::string line;
        for (const std::string_view column : columns) {
            line += line.empty() ? "" : "\t";
            line += column.empty() ? "-" : Suite::printable(column.substr(0, MAX_COLUMN));
            line += column.size() > MAX_COLUMN ? "..." : "";
        }
        line += '\n';
        const std::lock_guard lock(m_lock);
        if (m_isTorn)
            line.insert(0, 1, '\n');
        // Past any buffer, so that a line that finds no room is gone, and doesn't come late.
        const ssize_t written = ::write(m_out.get(), line.data(), line.size());
        m_isTorn = written < 0 ? m_isTorn : static_cast<std::size_t>(written) < line.size();
    } catch (const std::exception&) {
        // Memory was lacking for a line: better the line is lost than the answer.
    }
}

} // namespace Zorvane

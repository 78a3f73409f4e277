// SPDX-License-Identifier: Apache-2.0
#include "lab/RequestLog.h"

#include "lab/LabError.h"
#include "suite/printable.h"

#include <cerrno>
#include <cstring>

namespace Zorvane {

RequestLog::RequestLog(const std::filesystem::path& file) : m_out(file, std::ios::trunc) {
    if (!m_out)
        throw LabError("cannot write " + file.string() + ": " + std::strerror(errno));
}

void RequestLog::write(std::initializer_list<std::string_view> columns) {
    if (!isOpen())
        return;
    std::string line;
    for (const std::string_view column : columns) {
        line += line.empty() ? "" : "\t";
        line += column.empty() ? "-" : Suite::printable(column);
    }
    const std::lock_guard lock(m_lock);
    m_out << line << std::endl;
}

} // namespace Zorvane

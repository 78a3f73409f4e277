// SPDX-License-Identifier: Apache-2.0
#include "lab/RequestLog.h"

#include "lab/LabError.h"
#include "suite/printable.h"

#include <cerrno>
#include <cstring>

namespace Zorvane {

// Made new, then written at its end wherever that is: who empties the file while it is served finds no hole
// in it.
RequestLog::RequestLog(const std::filesystem::path& file) {
    const std::ofstream emptied(file, std::ios::trunc);
    m_out.open(file, std::ios::app);
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

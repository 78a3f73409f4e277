// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "storage/Rows.h"

namespace Zorvane {

/// A daemon's document of such rows as addRows takes.
inline std::string documentOf(const std::string& rows) {
    CZor zor;
    addRows(zor, rows);
    unsigned char* xml = nullptr;
    int length = 0;
    zor.writeXml(&xml, &length);
    const std::unique_ptr<unsigned char[]> owner(xml);
    return std::string(reinterpret_cast<char*>(xml), static_cast<std::size_t>(length));
}

} // namespace Zorvane

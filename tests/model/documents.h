// SPDX-License-Identifier: Apache-2.0
// Documents of containers, for tests.
#pragma once

#include "model/CZor.h"

#include <memory>
#include <string>

namespace Zorvane::Test {

inline std::string documentOf(CZor& zor, int filter = FOR_ALL) {
    unsigned char* xml = nullptr;
    int len = 0;
    if (zor.writeXml(&xml, &len, filter) != 0)
        return {};
    const std::unique_ptr<unsigned char[]> owned(xml);
    return {reinterpret_cast<const char*>(xml), static_cast<std::size_t>(len)};
}

inline int readInto(CZor& zor, std::string document, int filter = FOR_ALL) {
    return zor.readXml(reinterpret_cast<unsigned char*>(document.data()), static_cast<int>(document.size()),
                       filter);
}

/// A document of the given rows.
inline std::string zorData(const std::string& rows) {
    return "<ZorData>" + rows + "</ZorData>";
}

} // namespace Zorvane::Test

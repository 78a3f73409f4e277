// SPDX-License-Identifier: Apache-2.0
#include "resources/sqlConditions.h"

#include "platform/stringManipulation.h"

namespace Zorvane {

std::string equalsIgnoringCase(std::string_view column, const std::string& value) {
    return "lower(" + std::string(column) + ") = lower(" + QuoteSqlLiteral(value) + ")";
}

} // namespace Zorvane

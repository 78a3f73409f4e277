// SPDX-License-Identifier: Apache-2.0
// A row that would be recorded, as names and values.
#pragma once

#include "model/BaseTable.h"

#include <string>
#include <utility>
#include <vector>

namespace Zorvane {

struct TableDescriptor;

/// The fields that a reader cares for: neither identifiers nor references, and none that is empty.
std::vector<std::pair<std::string, std::string>> recordedValues(const TableDescriptor& table,
                                                                const BaseTable& row);

} // namespace Zorvane

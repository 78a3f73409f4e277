// SPDX-License-Identifier: Apache-2.0
// The names in the rows of the recovery database: which fields hold them, by the descriptors of the tables.
#pragma once

#include "bundle/Mask.h"

#include <optional>
#include <string_view>

namespace Zorvane {

class CZor;

/// What a text field names; nothing for one that names nothing of a site. Fields that are called "Name" are
/// names of hosts and the like in few tables only.
std::optional<NameKind> kindOfField(std::string_view table, std::string_view field);

void learnRows(CZor& rows, Mask& mask);
/// Masks the texts and the addresses of all rows. Of the contents of files, those that are no text go: names
/// in them can't be found.
void maskRows(CZor& rows, Mask& mask);

} // namespace Zorvane

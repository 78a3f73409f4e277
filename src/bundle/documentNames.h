// SPDX-License-Identifier: Apache-2.0
// The names in the rows of the recovery database: which fields hold them, by the descriptors of the tables.
#pragma once

#include "bundle/Mask.h"

#include <optional>
#include <string>
#include <string_view>

namespace Zorvane {

class CZor;

/// What a text field names, by the table's name and its own; nothing for one that names nothing of a site.
/// Fields that are called "Name" are names of hosts and the like in few tables only.
std::optional<NameKind> kindOfField(std::string_view table, std::string_view field);

/// Reads a document; false if it is none.
bool readRows(const std::string& document, CZor& rows);

void learnRows(CZor& rows, Mask& mask);
/// Masks the texts and the addresses of all rows.
void maskRows(CZor& rows, Mask& mask);

/// The rows as a document; nothing where that breaks off: for want of memory, or at a character that XML has
/// no place for.
std::optional<std::string> writtenRows(CZor& rows);

/// The document without the contents of files, among which are those that hold passwords, whose sizes are 0
/// then, and without values that are called passwords or secrets. Nothing for what is no document.
std::optional<std::string> withoutSecrets(const std::string& document);

} // namespace Zorvane

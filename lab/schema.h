// SPDX-License-Identifier: Apache-2.0
// The database's tables, made from the table descriptors.
#pragma once

#include "lab/Database.h"
#include "model/TableDescriptor.h"

#include <span>
#include <string>
#include <string_view>

namespace Zorvane {

/// The lab's own table: tasks whose job was submitted. Clients don't see it.
inline constexpr const char* SUBMITTED_JOBS = "ZorDba.LAB_SubmittedJob";

/// Makes the tables and indexes that the file lacks, and the columns that its tables lack. Does nothing to a
/// file that this schema was made in.
void createSchema(Database& database);

/// The statements that make the tables and indexes, for a reader: a comment tells how to run them.
std::string schemaText();

/// A reference column, from the referring side.
struct ReferenceColumn {
    const TableDescriptor* table;
    const Field* field;
};

/// The columns of all tables that refer to this one.
std::span<const ReferenceColumn> referencesTo(const TableDescriptor& table);

/// "Name", quoted for SQL.
std::string quotedName(std::string_view identifier);
/// Adds an item to a list of SQL, behind a comma if it isn't the first.
void appendItem(std::string& list, std::string_view item);

} // namespace Zorvane

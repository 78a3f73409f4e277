// SPDX-License-Identifier: Apache-2.0
// The operations on a record that walk its table's fields: written once, for all tables.
#pragma once

#include "model/BaseTable.h"
#include "model/XmlNames.h"

namespace Zorvane {

/// The fields of one table by the names of one document; null for a name that is none of them.
using FieldNames = XmlNames<const Field*>;

class RecordCodec {
  public:
    /// Appends the record to the document: one element, with a child for each field in table order. 0, or the
    /// code of a failed AppendElement.
    static int write(const TableDescriptor& table, const BaseTable& row, XmlParser& xml);
    /// Fills the record from the parser's current object, in whatever order its fields stand. Fields that are
    /// missing or empty keep their values, unknown ones are skipped. Always 0.
    static int read(const TableDescriptor& table, BaseTable& row, XmlParser& xml);
    /// The same for one of many rows of a table in a document, which share what is known of their fields'
    /// names.
    static int read(const TableDescriptor& table, BaseTable& row, XmlParser& xml, FieldNames& names);
    /// A line a field; binary fields have none.
    static void dump(const TableDescriptor& table, const BaseTable& row, std::ostream& out);
    /// The same on standard output.
    static void dump(const TableDescriptor& table, const BaseTable& row);
    /// Stores the flag in the record and in each of its references.
    static void setFromDb(const TableDescriptor& table, BaseTable& row, bool fromDb);
    /// What insertDb and updateDb do: a message on standard output, and 1101.
    static int notImplemented(const char* operation, const char* className);
};

} // namespace Zorvane

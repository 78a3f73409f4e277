// SPDX-License-Identifier: Apache-2.0
// What one request changes: its documents are read before the writer's turn, and written in it.
#pragma once

#include "lab/Insertion.h"
#include "model/CZor.h"

#include <span>
#include <vector>

namespace Zorvane {

/// Reading throws RequestError for what is no document, and for references that mean nothing.
class Changes {
  public:
    using Document = std::span<const unsigned char>;

    /// The rows that are not from the database.
    void readInserts(Document document);
    /// The rows that are. Behind the inserts: updated rows may refer to inserted ones.
    void readUpdates(Document document);
    void readDeletes(Document document);

    /// In the write transaction that is under way; may be run again when that one was undone. Throws
    /// RequestError for a row to update that isn't there.
    void run(Database& database);

    /// The document of the inserted rows as they are in the database now.
    [[nodiscard]] std::vector<unsigned char> reply();

  private:
    CZor m_inserted;
    CZor m_updated;
    CZor m_deleted;
    Insertion m_insertion{Insertion::Mode::MadeUpOnly};
};

} // namespace Zorvane

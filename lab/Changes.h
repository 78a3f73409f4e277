// SPDX-License-Identifier: Apache-2.0
// What one request changes: its documents are read before the writer's turn, and written in it.
#pragma once

#include "lab/Insertion.h"
#include "lab/RowAllowance.h"
#include "model/CZor.h"

#include <span>
#include <utility>
#include <vector>

namespace Zorvane {

/// Reading throws RequestError for what is no document, for references that mean nothing and for too many
/// rows.
class Changes {
  public:
    using Document = std::span<const unsigned char>;

    explicit Changes(RowAllowance allowance) : m_allowance(std::move(allowance)) {}

    /// The rows that are not from the database.
    void readInserts(Document document);
    /// The rows that are. Behind the inserts: updated rows may refer to inserted ones.
    void readUpdates(Document document);
    void readDeletes(Document document);

    /// In the write transaction that is under way; may be run again when that one was undone. Throws
    /// RequestError for a row to update that isn't there.
    void run(Database& database);

    /// Writes the reply but for the numbers that the rows will get: outside of the writer's turn, where it
    /// keeps nobody waiting.
    void prepareReply();
    /// The document of the inserted rows as they are in the database now.
    [[nodiscard]] std::vector<unsigned char> reply();

  private:
    RowAllowance m_allowance;
    CZor m_inserted;
    CZor m_updated;
    CZor m_deleted;
    Insertion m_insertion{Insertion::Mode::MadeUpOnly};
    std::vector<unsigned char> m_prepared;
};

} // namespace Zorvane

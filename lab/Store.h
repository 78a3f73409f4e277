// SPDX-License-Identifier: Apache-2.0
// The lab's recovery database: what the recovery daemons ask of it. Every operation may be called from any
// number of threads at once: readers see the last commit and wait for nobody, writers share their commits.
#pragma once

#include "model/CZor.h"
#include "model/core_records.h"
#include "model/task_records.h"
#include "model/xmlLibrary.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Zorvane {

/// What the daemon puts into its reply's status. The numbers stand apart from the codes of the client's own
/// steps.
enum StoreStatus : int {
    STORE_OK = 0,
    STORE_FAILED = 51,        ///< the database itself failed: disk, memory, a damaged file
    STORE_BAD_DOCUMENT = 52,  ///< no document of rows
    STORE_BAD_QUERY = 53,     ///< a clause that is no SQL, or that does more than read rows
    STORE_BAD_REFERENCE = 54, ///< a made-up number that no row of the request has, or that two have
    STORE_NO_SUCH_ROW = 55,   ///< the row to change, or the one that was named, isn't there
    STORE_IN_USE = 56,        ///< a profile that a task names
    STORE_TOO_MUCH = 57,      ///< a query beyond its run time, or a reply beyond its size
};

struct StoreResult {
    int status = STORE_OK;
    std::vector<unsigned char> reply; ///< a document of rows; empty where an operation has none
    std::string text; ///< for the log: what was wrong, with which name; may hold any character

    [[nodiscard]] bool ok() const { return status == STORE_OK; }
};

/// What one request may take.
struct StoreLimits {
    /// Processor time of a request's clauses: long enough for every sensible query on a busy machine, short
    /// enough that a join of everything with everything doesn't keep a processor.
    std::chrono::milliseconds clauseTime{1000};
    /// The rows of a request or a reply, by their sizeOf; the document and its tree take some twenty times
    /// that.
    std::size_t rowBytes = std::size_t{32} << 20;
    /// What the database library may take for what a request reads, with its sorting and its texts.
    std::int64_t libraryBytes = std::int64_t{32} << 20;
};

/// Asks for a turn among the requests that take much memory; true once there is one, and ever after. Without
/// waiting it may be false although there will be one later.
enum class Wait { No, Yes };
using LargeTurn = std::function<bool(Wait)>;
inline bool always(Wait) {
    return true;
}
/// Whether nobody waits for the answer any more, so that the work may end.
using IsGone = std::function<bool()>;
inline bool never() {
    return false;
}

class Store {
  public:
    using Document = std::span<const unsigned char>;

    /// Opens the database, and makes it (mode 0600) or completes its schema if need be. Throws
    /// std::runtime_error.
    explicit Store(const std::filesystem::path& file, StoreLimits limits = {});
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    /// The caller has seen to it that no operation is under way.
    ~Store();

    // --- The requests of clients. No exception leaves them. What proves to be large asks for a turn, while
    // nothing is held that others need.

    /// Answers every CQueryRequest of the document, by its clauses or, with a TreeId, by a tree: all from one
    /// snapshot. The reply's rows are marked as the database's; a row stands in it once.
    StoreResult query(Document document, const LargeTurn& turn = always, const IsGone& isGone = never) const;
    /// Inserts the rows that are not from the database. They get numbers of the database, and references
    /// among them follow; the reply holds these rows with their new numbers, all flags set.
    StoreResult insert(Document document, const LargeTurn& turn = always);
    /// Writes the rows that are from the database over those of the same Id.
    StoreResult update(Document document, const LargeTurn& turn = always);
    /// Deletes the rows that are from the database, by Id. A row that is gone already is no failure.
    StoreResult del(Document document, const LargeTurn& turn = always);
    /// Inserts, updates and deletes of one CTransactionRequest, all or nothing; updated rows may refer to
    /// inserted ones. No reply: clients wait for the status alone.
    StoreResult transaction(Document document, const LargeTurn& turn = always);

    // --- Configurations.

    /// Inserts every row of the container as a new one, whatever its flags; references among the rows follow
    /// their new numbers, those to rows that the container doesn't hold become 0. The rows have their numbers
    /// of the database behind it.
    StoreResult load(CZor& configuration);
    /// The same for many, each by itself in what its references mean, and all or nothing: in one commit.
    StoreResult load(std::span<const std::unique_ptr<CZor>> configurations);
    /// The same for a client's document.
    StoreResult load(Document configuration, const LargeTurn& turn);
    /// Adds a configuration's tree to the container, without the jobs that were submitted for it. Names are
    /// compared as clients do, without case; with an empty configuration name it is the one of that client
    /// that came last.
    StoreResult exportTree(const std::string& client, const std::string& configuration, CZor& tree) const;
    /// In order of their Id. Throws DatabaseError, as do all operations below that give no StoreResult.
    [[nodiscard]] std::vector<CConfig> configurations() const;

    // --- What methods and jobs need.

    [[nodiscard]] std::optional<CP2VRestoreTask> findTask(ID id) const;
    [[nodiscard]] std::optional<CVmwareProfileOptions> findProfile(ID id) const;
    /// Without case, as in the clients' queries.
    [[nodiscard]] std::optional<CVmwareProfileOptions> findProfile(const std::string& name) const;
    /// STORE_NO_SUCH_ROW, or STORE_IN_USE when a task names the profile: a task never loses its profile.
    StoreResult deleteProfile(const std::string& name);

    /// Tasks that wait or run, and the log of those that ended, each in order of Id.
    [[nodiscard]] std::vector<CP2VRestoreTask> tasks() const;
    [[nodiscard]] std::vector<CP2VRestoreTaskLog> taskLogs() const;

    /// Marks a task as submitted, so that its job is run to its end whatever happens to this process.
    StoreResult submitTask(ID id);
    /// Submitted tasks, in order of Id.
    [[nodiscard]] std::vector<ID> submittedTasks() const;
    /// Takes submitted tasks a step further, in one commit: QUEUED to ACTIVE to DONE, and from there with the
    /// disk map to the log tables, where they ended `now` (seconds since 1970). Returns those that have a
    /// further step to go.
    std::vector<ID> advanceTasks(const std::vector<ID>& ids, std::int64_t now);

  private:
    class Impl;

    XmlLibraryHold m_xmlLibrary; // documents are read and written on many threads
    std::unique_ptr<Impl> m_impl;
};

} // namespace Zorvane

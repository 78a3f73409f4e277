// SPDX-License-Identifier: Apache-2.0
#include "lab/Store.h"

#include "lab/Changes.h"
#include "lab/Insertion.h"
#include "lab/LibraryMemory.h"
#include "lab/ReaderPool.h"
#include "lab/RequestError.h"
#include "lab/RowAllowance.h"
#include "lab/Writer.h"
#include "lab/clauses.h"
#include "lab/jobs.h"
#include "lab/rows.h"
#include "lab/tree.h"

#include <algorithm>
#include <limits>

namespace Zorvane {

class Store::Impl {
  public:
    Impl(const std::filesystem::path& file, StoreLimits storeLimits)
        : limits(storeLimits), writer(file), readers(file) {}

    [[nodiscard]] RowAllowance allowance(const LargeTurn& turn) const {
        return {limits.rowBytes, turn, Wait::Yes};
    }

    const StoreLimits limits;
    Writer writer; // first: it makes the schema
    ReaderPool readers;
};

namespace {

constexpr std::chrono::nanoseconds NO_TIME_LIMIT = std::chrono::hours(24);
constexpr std::size_t NO_SIZE_LIMIT = std::numeric_limits<std::size_t>::max();

constexpr const char* BY_ID = " WHERE Id=?1";
constexpr const char* IN_ORDER = " ORDER BY Id";

bool isAny(const BaseTable&) {
    return true;
}

// Runs an operation up to its result: whatever stands against it becomes a status.
template <class Operation>
StoreResult answer(const Operation& operation) {
    try {
        return {STORE_OK, operation(), {}};
    } catch (const RequestError& error) {
        return {error.status(), {}, error.what()};
    } catch (const DatabaseError& error) {
        return {error.isLimit() ? STORE_TOO_MUCH : STORE_FAILED, {}, error.what()};
    } catch (const std::exception& error) {
        return {STORE_FAILED, {}, error.what()};
    } catch (...) {
        return {STORE_FAILED, {}, "the XML library failed"};
    }
}

const std::vector<unsigned char> NO_REPLY;

// `rowsOf` gives the container of an element.
template <class Configurations, class RowsOf>
StoreResult loadTogether(Writer& writer, const Configurations& configurations, RowsOf rowsOf) {
    std::string note; // made before the commit, behind which nothing may fail
    StoreResult result = answer([&] {
        std::size_t cleared = 0;
        std::vector<Insertion> insertions;
        for (auto& each : configurations) {
            Insertion& insertion = insertions.emplace_back(Insertion::Mode::Whole);
            forEachRow(rowsOf(each),
                       [&](const TableDescriptor& table, BaseTable& row) { insertion.add(table, row); });
            insertion.connectAll();
            cleared += insertion.clearedReferences();
        }
        if (cleared > 0)
            note = std::to_string(cleared) + " references to rows outside the document were set to 0";
        writer.run([&](Database& database) {
            for (Insertion& insertion : insertions)
                insertion.run(database);
        });
        for (auto& each : configurations)
            forEachRow(rowsOf(each), markFromDb);
        return NO_REPLY;
    });
    if (result.ok())
        result.text = std::move(note);
    return result;
}

void moveRows(CZor& from, CZor& to) {
    for (const VectorDescriptor& vector : allVectors()) {
        auto& source = vector.rows(from).records();
        auto& target = vector.rows(to).records();
        target.insert(target.end(), source.begin(), source.end());
        source.clear();
    }
}

template <class Record>
void dropRows(RecordRows<Record>& rows) {
    for (const Record* row : rows)
        delete row;
    rows.clear();
}

template <class Record>
std::optional<Record> first(const std::vector<Record>& found) {
    return found.empty() ? std::nullopt : std::optional<Record>(found.front());
}

std::string sameText(const char* column, int parameter) {
    return std::string("lower(") + column + ")=lower(?" + std::to_string(parameter) + ')';
}

void answerQuery(Database& database, const CQueryRequest& query, RequestBudget& budget, CZor& reply) {
    if (query.getTreeId() == 0) {
        selectByClauses(database, query, budget, reply);
        return;
    }
    const std::string& name = query.getTableClause();
    const auto tables = allTables();
    const auto table = std::find_if(tables.begin(), tables.end(),
                                    [&](const TableDescriptor* each) { return each->tableName == name; });
    if (table == tables.end())
        throw RequestError(STORE_BAD_QUERY, "a tree of an unknown table: " + name);
    selectTree(database, **table, query.getTreeId(), budget, reply);
}

// The rows that all queries of a request ask for, from one snapshot.
std::unique_ptr<CZor> select(ReaderPool& readers, const StoreLimits& limits, const CZor& request,
                             const LargeTurn& turn, const IsGone& isGone) {
    const auto reader = readers.take(isGone);
    const Transaction snapshot(*reader, Transaction::Kind::Read);
    const LibraryMemoryBound bound(limits.libraryBytes);
    RequestBudget budget(*reader, limits.clauseTime, limits.rowBytes, turn, isGone);
    auto reply = std::make_unique<CZor>();
    for (const CQueryRequest* query : request.m_vQueryRequest) {
        CZor part;
        answerQuery(*reader, *query, budget, part);
        moveRows(part, *reply);
    }
    return reply;
}

} // namespace

Store::Store(const std::filesystem::path& file, StoreLimits limits)
    : m_impl(std::make_unique<Impl>(file, limits)) {}

Store::~Store() = default;

StoreResult Store::query(Document document, const LargeTurn& turn, const IsGone& isGone) const {
    return answer([&] {
        CZor request;
        RowAllowance allowance = m_impl->allowance(turn);
        readDocument(document, request, isAny, allowance);
        for (;;) {
            try {
                const auto reply = select(m_impl->readers, m_impl->limits, request, turn, isGone);
                return writeDocument(*reply);
            } catch (const TurnNeeded&) {
                if (!turn(Wait::Yes)) // the reader is given back by now
                    throw RequestError(STORE_TOO_MUCH, RowAllowance::NO_TURN);
            }
        }
    });
}

StoreResult Store::insert(Document document, const LargeTurn& turn) {
    return answer([&] {
        Changes changes(m_impl->allowance(turn));
        changes.readInserts(document);
        changes.prepareReply();
        std::vector<unsigned char> reply;
        m_impl->writer.run([&](Database& database) {
            changes.run(database);
            reply = changes.reply(); // here it may still fail
        });
        return reply;
    });
}

StoreResult Store::update(Document document, const LargeTurn& turn) {
    return answer([&] {
        Changes changes(m_impl->allowance(turn));
        changes.readUpdates(document);
        m_impl->writer.run([&](Database& database) { changes.run(database); });
        return NO_REPLY;
    });
}

StoreResult Store::del(Document document, const LargeTurn& turn) {
    return answer([&] {
        Changes changes(m_impl->allowance(turn));
        changes.readDeletes(document);
        m_impl->writer.run([&](Database& database) { changes.run(database); });
        return NO_REPLY;
    });
}

StoreResult Store::transaction(Document document, const LargeTurn& turn) {
    return answer([&] {
        CZor envelope;
        RowAllowance allowance = m_impl->allowance(turn);
        readDocument(document, envelope, isAny, allowance);
        const auto& requests = envelope.m_vTransactionRequest;
        if (requests.size() != 1)
            throw RequestError(STORE_BAD_DOCUMENT, "the document holds " + std::to_string(requests.size()) +
                                                       " transaction requests, not one");
        const CTransactionRequest& request = *requests.front();
        Changes changes(allowance);
        if (request.getInsertXmlLength() > 0)
            changes.readInserts({request.getInsertXml(), request.getInsertXmlLength()});
        if (request.getUpdateXmlLength() > 0)
            changes.readUpdates({request.getUpdateXml(), request.getUpdateXmlLength()});
        if (request.getDeleteXmlLength() > 0)
            changes.readDeletes({request.getDeleteXml(), request.getDeleteXmlLength()});
        m_impl->writer.run([&](Database& database) { changes.run(database); });
        return NO_REPLY;
    });
}

StoreResult Store::load(CZor& configuration) {
    return loadTogether(m_impl->writer, std::span(&configuration, 1),
                        [](CZor& each) -> CZor& { return each; });
}

StoreResult Store::load(std::span<const std::unique_ptr<CZor>> configurations) {
    return loadTogether(m_impl->writer, configurations, [](const auto& each) -> CZor& { return *each; });
}

StoreResult Store::load(Document configuration, const LargeTurn& turn) {
    CZor rows;
    StoreResult result = answer([&] {
        RowAllowance allowance = m_impl->allowance(turn);
        readDocument(configuration, rows, isAny, allowance);
        return NO_REPLY;
    });
    return result.ok() ? load(rows) : result;
}

StoreResult Store::exportTree(const std::string& client, const std::string& configuration, CZor& tree) const {
    return answer([&] {
        const auto reader = m_impl->readers.take();
        RequestBudget budget(*reader, NO_TIME_LIMIT, NO_SIZE_LIMIT);
        const Transaction snapshot(*reader, Transaction::Kind::Read);
        const auto found = selectRecords<CConfig>(*reader,
                                                  " WHERE " + sameText("ClientName", 1) + " AND (?2='' OR " +
                                                      sameText("Name", 2) + ") ORDER BY Id DESC LIMIT 1",
                                                  client, configuration);
        if (found.empty())
            throw RequestError(STORE_NO_SUCH_ROW,
                               "client " + client + " has no configuration " + configuration);
        CZor part;
        selectTree(*reader, CConfig::table(), found.front().getId(), budget, part);
        // A job belongs to this lab: loaded elsewhere it would run again.
        dropRows(part.m_vP2VRestoreTask);
        dropRows(part.m_vDiskToDataStoreMap);
        moveRows(part, tree);
        return NO_REPLY;
    });
}

std::vector<CConfig> Store::configurations() const {
    return selectRecords<CConfig>(*m_impl->readers.take(), IN_ORDER);
}

std::optional<CP2VRestoreTask> Store::findTask(ID id) const {
    return first(selectRecords<CP2VRestoreTask>(*m_impl->readers.take(), BY_ID, id));
}

std::optional<CVmwareProfileOptions> Store::findProfile(ID id) const {
    return first(selectRecords<CVmwareProfileOptions>(*m_impl->readers.take(), BY_ID, id));
}

std::optional<CVmwareProfileOptions> Store::findProfile(const std::string& name) const {
    return first(selectRecords<CVmwareProfileOptions>(*m_impl->readers.take(),
                                                      " WHERE " + sameText("ProfileName", 1), name));
}

StoreResult Store::deleteProfile(const std::string& name) {
    return answer([&] {
        const std::string condition = " WHERE " + sameText("ProfileName", 1);
        m_impl->writer.run([&](Database& database) {
            if (!selectRecords<CP2VRestoreTask>(database, condition, name).empty())
                throw RequestError(STORE_IN_USE, "a task uses the profile " + name);
            const auto profiles = selectRecords<CVmwareProfileOptions>(database, condition, name);
            if (profiles.empty())
                throw RequestError(STORE_NO_SUCH_ROW, "no profile " + name);
            for (const CVmwareProfileOptions& profile : profiles)
                deleteRow(database, CVmwareProfileOptions::table(), profile.getId());
        });
        return NO_REPLY;
    });
}

std::vector<CP2VRestoreTask> Store::tasks() const {
    return selectRecords<CP2VRestoreTask>(*m_impl->readers.take(), IN_ORDER);
}

std::vector<CP2VRestoreTaskLog> Store::taskLogs() const {
    return selectRecords<CP2VRestoreTaskLog>(*m_impl->readers.take(), IN_ORDER);
}

StoreResult Store::submitTask(ID id) {
    return answer([&] {
        m_impl->writer.run([&](Database& database) {
            if (!Zorvane::submitTask(database, id))
                throw RequestError(STORE_NO_SUCH_ROW, "no task " + std::to_string(id));
        });
        return NO_REPLY;
    });
}

std::vector<ID> Store::submittedTasks() const {
    std::vector<ID> ids;
    m_impl->writer.run([&](Database& database) { ids = Zorvane::submittedTasks(database); });
    return ids;
}

std::vector<ID> Store::advanceTasks(const std::vector<ID>& ids, std::int64_t now) {
    std::vector<ID> left;
    m_impl->writer.run([&](Database& database) {
        left.clear();
        for (const ID id : ids)
            if (advanceTask(database, id, now))
                left.push_back(id);
    });
    return left;
}

} // namespace Zorvane

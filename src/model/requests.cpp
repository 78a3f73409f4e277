// SPDX-License-Identifier: Apache-2.0
// CZor: the request verbs. Each is a document to the recovery daemon, and for most of them one back.
#include "logging/Trace.h"
#include "model/CZor.h"
#include "model/task_records.h"
#include "ops/zorop.h"

namespace Zorvane {

namespace {

using Document = std::unique_ptr<unsigned char[]>;

struct Content {
    Document bytes;
    int length = 0;
};

int write(CZor& zor, int filter, Content& document) {
    unsigned char* bytes = nullptr;
    const int rc = zor.writeXml(&bytes, &document.length, filter);
    document.bytes.reset(bytes);
    return rc;
}

int send(int operation, const Content& request, Content& reply) {
    unsigned char* bytes = nullptr;
    const int rc =
        ZorOps(operation, ZOROP_DB, request.bytes.get(), request.length, &bytes, &reply.length, nullptr);
    reply.bytes.reset(bytes);
    return rc;
}

int send(int operation, const Content& request) {
    return ZorOps(operation, ZOROP_DB, request.bytes.get(), request.length, nullptr);
}

template <class Record>
void destroyAll(RecordRows<Record>& rows) {
    for (const Record* row : rows)
        delete row;
    rows.clear();
}

// The texts by which the trace knows the two kinds of query.
struct QueryTexts {
    const char* writeFailed;
    const char* sendFailed;
};

// Sends the container's query requests, this one and those that an earlier failure left, and takes in the
// answer.
int query(CZor& zor, std::unique_ptr<CQueryRequest> row, const QueryTexts& texts, Trace& trace) {
    zor.m_vQueryRequest.push_back(row.get());
    static_cast<void>(row.release());
    Content request;
    if (const int rc = write(zor, FOR_QUERY, request)) {
        trace.write(LEVEL_FAILURE, texts.writeFailed, rc);
        return rc;
    }
    Content reply;
    if (const int rc = send(ZOROP_QUERY, request, reply)) {
        trace.write(LEVEL_FAILURE, texts.sendFailed, rc);
        return rc;
    }
    destroyAll(zor.m_vQueryRequest);
    return zor.readXml(reply.bytes.get(), reply.length, FOR_QUERY);
}

} // namespace

int CZor::queryRequest(const std::string& colClause, const std::string& tableClause,
                       const std::string& whereClause) {
    Trace trace(g_libLog, "requests:CZor::queryRequest()", ", colClause=", colClause,
                ", tableClause=", tableClause, ", whereClause=", whereClause);
    auto row = std::make_unique<CQueryRequest>();
    row->setColumnClause(colClause);
    row->setTableClause(tableClause);
    row->setWhereClause(whereClause);
    static constexpr QueryTexts texts = {"writeXml FOR_QUERY failed In CZor::queryRequest. rc = ",
                                         "ZorOps ZOROP_QUERY, ZOROP_DB, failed In CZor::queryRequest. rc ="};
    const int rc = query(*this, std::move(row), texts, trace);
    return trace.leave(rc, ", return rc=", rc);
}

int CZor::queryTreeRequest(const std::string& tableName, ID id) {
    Trace trace(g_libLog, "requests:CZor::queryTreeRequest()", ", tableName=", tableName, ", id=", id);
    auto row = std::make_unique<CQueryRequest>();
    row->setTableClause(tableName);
    row->setTreeId(id);
    static constexpr QueryTexts texts = {"writeXml FOR_QUERY failed In CZor::queryTree. rc = ",
                                         "ZorOps ZOROP_QUERY, ZOROP_DB, failed In CZor::queryTree. rc = "};
    const int rc = query(*this, std::move(row), texts, trace);
    return trace.leave(rc, ", return rc=", rc);
}

int CZor::queryRequestAll() {
    Trace trace(g_libLog, "requests:CZor::queryRequestAll()");
    trace.write(LEVEL_FAILURE, "queryRequestAll NOT IMPLEMENTED.");
    return trace.leave(0, ", return rc=", 0);
}

int CZor::insertRequest() {
    Trace trace(g_libLog, "requests:CZor::insertRequest()");
    Content request;
    if (const int rc = write(*this, FOR_INSERT, request)) {
        trace.write(LEVEL_FAILURE, "WriteXml of INSERT request failed In CZor::insertRequest. rc = ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    Content reply;
    if (const int rc = send(ZOROP_INSERT, request, reply)) {
        trace.write(LEVEL_FAILURE, "ZorOps ZOROP_INSERT, ZOROP_DB, failed In CZor::insertRequest. rc = ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    if (const int rc = readXml(reply.bytes.get(), reply.length, FOR_INSERT)) {
        trace.write(LEVEL_FAILURE,
                    "readXml (results from ZOROP_INSERT) failed In CZor::insertRequest. rc = ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    removeAfterRequest(FOR_INSERT);
    return trace.leave(0, ", return rc=", 0);
}

int CZor::updateRequest() {
    Trace trace(g_libLog, "requests:CZor::updateRequest()");
    Content request;
    if (const int rc = write(*this, FOR_UPDATE, request)) {
        trace.write(LEVEL_FAILURE, "writeXml of UPDATE request failed In CZor::updateRequest. rc = ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    const int rc = send(ZOROP_UPDATE, request);
    if (rc != 0)
        trace.write(LEVEL_FAILURE,
                    "ZorOps ZOROP_UPDATE, ZOROP_DB, failed  In CZor::updateRequest. rc = ", rc);
    // After a failure too: a caller that wants to try again sets its values again.
    removeAfterRequest(FOR_UPDATE);
    return trace.leave(rc, ", return rc=", rc);
}

int CZor::deleteRequest() {
    Trace trace(g_libLog, "requests:CZor::deleteRequest()");
    Content request;
    if (const int rc = write(*this, FOR_DELETE, request)) {
        trace.write(LEVEL_FAILURE, "writeXml of DELETE request failed In CZor::deleteRequest. rc = ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    if (const int rc = send(ZOROP_DELETE, request)) {
        trace.write(LEVEL_FAILURE, "ZorOps ZOROP_DELETE, ZOROP_DB, failed In CZor::deleteRequest. rc = ", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    removeAfterRequest(FOR_DELETE);
    return trace.leave(0, ", return rc=", 0);
}

int CZor::transactionRequest(CZor& thingsToDelete) {
    Trace trace(g_libLog, "requests:CZor::transactionRequest()");
    const auto exchange = [&] {
        auto row = std::make_unique<CTransactionRequest>();
        Content document;
        if (const int rc = write(*this, FOR_INSERT, document)) {
            trace.write(LEVEL_FAILURE, "writeXml for insert failed. rc = ", rc);
            return rc;
        }
        row->setInsertXml(document.bytes.get(), static_cast<unsigned>(document.length));
        row->setInsertXmlSize(document.length);
        if (const int rc = write(*this, FOR_UPDATE, document)) {
            trace.write(LEVEL_FAILURE, "writeXml for update failed. rc = ", rc);
            return rc;
        }
        row->setUpdateXml(document.bytes.get(), static_cast<unsigned>(document.length));
        row->setUpdateXmlSize(document.length);
        if (const int rc = write(thingsToDelete, FOR_DELETE, document)) {
            trace.write(LEVEL_FAILURE, "writeXml for delete failed. rc = ", rc);
            return rc;
        }
        row->setDeleteXml(document.bytes.get(), static_cast<unsigned>(document.length));
        row->setDeleteXmlSize(document.length);
        m_vTransactionRequest.push_back(row.get());
        static_cast<void>(row.release());
        if (const int rc = write(*this, FOR_TRANSACTION, document)) {
            trace.write(LEVEL_FAILURE, "writeXml for transactions failed. rc = ", rc);
            return rc;
        }
        Content reply;
        if (const int rc = send(ZOROP_TRANSACTION, document, reply)) {
            trace.write(LEVEL_FAILURE, "ZorOps failed. rc =", rc);
            return rc;
        }
        // The daemon sends no rows back today, so those with made-up numbers stay as they are.
        return reply.bytes ? readXml(reply.bytes.get(), reply.length, FOR_INSERT) : 0;
    };
    const int rc = exchange();
    destroyAll(m_vTransactionRequest);
    return trace.leave(rc, ", return rc=", rc);
}

} // namespace Zorvane

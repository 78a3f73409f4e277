// SPDX-License-Identifier: Apache-2.0
#include "lab/requestSummary.h"

#include "lab/rows.h"
#include "model/CZor.h"
#include "model/task_records.h"
#include "ops/zoropNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <exception>

namespace Zorvane {

namespace {

struct Verb {
    int command;
    const char* name;
    FailPoint point;
};

constexpr std::array VERBS = {
    Verb{ZOROP_QUERY, "query", FailPoint::Query},
    Verb{ZOROP_TRANSACTION, "transaction", FailPoint::Transaction},
    Verb{ZOROP_INSERT, "insert", FailPoint::Insert},
    Verb{ZOROP_UPDATE, "update", FailPoint::Update},
    Verb{ZOROP_DELETE, "delete", FailPoint::Delete},
};

void append(std::string& list, const std::string& entry) {
    list += (list.empty() || entry.empty() ? "" : ", ") + entry;
}

// The names behind "ZOR_", up to whatever can't stand in one.
void collectTables(std::string_view clause, std::vector<std::string>& tables) {
    constexpr std::string_view PREFIX = "ZOR_";
    const auto inName = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    for (auto at = clause.find(PREFIX); at != std::string_view::npos; at = clause.find(PREFIX)) {
        clause.remove_prefix(at + PREFIX.size());
        const auto end = std::ranges::find_if_not(clause, inName);
        tables.emplace_back(clause.begin(), end);
    }
}

void addQueries(const CZor& rows, RequestSummary& summary) {
    for (const CQueryRequest* request : rows.m_vQueryRequest) {
        if (request->getTreeId() != 0) {
            summary.operation = "querytree";
            summary.point = FailPoint::Tree;
        }
        collectTables(request->getTableClause(), summary.tables);
        append(summary.subject, request->getTableClause());
        append(summary.arguments,
               request->getTreeId() != 0 ? std::to_string(request->getTreeId()) : request->getWhereClause());
    }
}

void addRows(CZor& rows, RequestSummary& summary) {
    for (const VectorDescriptor& vector : allVectors())
        if (const std::size_t count = vector.rows(rows).size()) {
            summary.tables.emplace_back(vector.name);
            append(summary.subject, vector.name);
            append(summary.arguments, std::to_string(count));
        }
}

} // namespace

RequestSummary summarize(int command, std::string_view document, const LargeTurn& turn) {
    RequestSummary summary;
    const auto verb = std::ranges::find(VERBS, command, &Verb::command);
    if (verb == VERBS.end())
        return summary;
    summary.operation = verb->name;
    summary.point = verb->point;
    CZor rows;
    try {
        RowAllowance allowance(StoreLimits().rowBytes, turn, Wait::Yes);
        readDocument(
            {reinterpret_cast<const unsigned char*>(document.data()), document.size()}, rows,
            [](const BaseTable&) { return true; }, allowance);
    } catch (const std::exception&) {
        // The request itself meets the same, and tells it.
    }
    if (command == ZOROP_QUERY)
        addQueries(rows, summary);
    else
        addRows(rows, summary);
    return summary;
}

} // namespace Zorvane

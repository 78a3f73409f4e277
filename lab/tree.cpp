// SPDX-License-Identifier: Apache-2.0
#include "lab/tree.h"

#include "lab/rows.h"
#include "lab/schema.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Zorvane {

namespace {

using std::string_view_literals::operator""sv;

constexpr auto SHARED_TABLES = std::to_array({"FileContent"sv, "Package"sv, "DeviceIds"sv});

std::string jsonArray(const std::vector<ID>& ids) {
    std::string list;
    for (const ID id : ids)
        appendItem(list, std::to_string(id));
    return '[' + list + ']';
}

class TreeWalk {
  public:
    TreeWalk(Database& database, RequestBudget& budget, CZor& reply)
        : m_database(database), m_budget(budget), m_reply(reply) {}

    void run(const TableDescriptor& root, ID id) {
        add(root, "Id", {id});
        while (!m_fresh.empty()) {
            const auto fresh = std::exchange(m_fresh, {});
            for (const auto& [table, ids] : fresh)
                for (const ReferenceColumn& column : referencesTo(*table))
                    add(*column.table, column.field->name, ids);
        }
        for (const std::string_view name : SHARED_TABLES)
            if (const std::vector<ID> ids = namedRows(name); !ids.empty())
                add(*findTable(name), "Id", ids);
        for (const VectorDescriptor& vector : allVectors()) {
            auto& records = vector.rows(m_reply).records();
            std::sort(records.begin(), records.end(),
                      [](const BaseTable* a, const BaseTable* b) { return a->getId() < b->getId(); });
        }
    }

  private:
    // The rows of a table whose column has one of the values.
    void add(const TableDescriptor& table, const char* column, const std::vector<ID>& values) {
        const VectorDescriptor* vector = findVector(table.name);
        if (!vector)
            return; // a base table: no document carries its rows
        m_budget.check();
        const KeptStatement statement = m_database.kept(selectSql(table) + " WHERE " + quotedName(column) +
                                                        " IN (SELECT value FROM json_each(?1))");
        statement->with(jsonArray(values));
        auto& known = m_known[&table];
        auto& records = vector->rows(m_reply).records();
        while (statement->step()) {
            std::unique_ptr<BaseTable> row(table.create());
            readRow(table, *row, *statement);
            if (!known.insert(row->getId()).second)
                continue;
            m_budget.takeBytes(sizeOf(table, *row));
            m_fresh[&table].push_back(row->getId());
            records.push_back(row.get());
            static_cast<void>(row.release());
        }
    }

    // The numbers of a table that references in the reply name.
    std::vector<ID> namedRows(std::string_view target) {
        std::unordered_set<ID> ids;
        forEachRow(m_reply, [&](const TableDescriptor& table, const BaseTable& row) {
            for (const Field& field : table.fields)
                if (field.kind == FieldKind::Reference && target == field.target)
                    ids.insert((row.*field.reference).id);
        });
        return {ids.begin(), ids.end()};
    }

    Database& m_database;
    RequestBudget& m_budget;
    CZor& m_reply;
    std::unordered_map<const TableDescriptor*, std::unordered_set<ID>> m_known;
    std::unordered_map<const TableDescriptor*, std::vector<ID>> m_fresh; ///< whose referrers are not read yet
};

} // namespace

void selectTree(Database& database, const TableDescriptor& table, ID id, RequestBudget& budget, CZor& reply) {
    TreeWalk(database, budget, reply).run(table, id);
}

} // namespace Zorvane

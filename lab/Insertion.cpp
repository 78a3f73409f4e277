// SPDX-License-Identifier: Apache-2.0
#include "lab/Insertion.h"

#include "lab/RequestError.h"
#include "lab/Store.h"
#include "lab/rows.h"

#include <limits>

namespace Zorvane {

namespace {

constexpr std::size_t AMBIGUOUS = std::numeric_limits<std::size_t>::max();

// The last number that the table gave out.
std::int64_t lastNumber(Database& database, const TableDescriptor& table) {
    const KeptStatement statement = database.kept("SELECT seq FROM ZorDba.sqlite_sequence WHERE name=?1");
    statement->with("ZOR_" + std::string(table.name));
    return statement->step() ? statement->integer(0) : 0;
}

} // namespace

void Insertion::add(const TableDescriptor& table, BaseTable& row) {
    const auto [place, isNew] = m_byId[&table].try_emplace(row.getId(), m_rows.size());
    if (!isNew)
        place->second = AMBIGUOUS;
    m_rows.push_back({&table, &row});
}

void Insertion::connect(const TableDescriptor& table, BaseTable& row) {
    for (const Field& field : table.fields) {
        if (field.kind != FieldKind::Reference)
            continue;
        Reference& reference = row.*field.reference;
        if (reference.id == 0 || (m_mode == Mode::MadeUpOnly && reference.fromDb))
            continue;
        const auto& known = m_byId[findTable(field.target)];
        const auto target = known.find(reference.id);
        const auto refuse = [&](const char* why) {
            throw RequestError(STORE_BAD_REFERENCE, table.column(field) + " of row " +
                                                        std::to_string(row.getId()) + " is " +
                                                        std::to_string(reference.id) + ", and " + why +
                                                        " of the request's " + field.target + " rows has it");
        };
        if (target != known.end() && target->second != AMBIGUOUS) {
            m_links.push_back({&reference, target->second});
        } else if (target != known.end()) {
            refuse("more than one");
        } else if (m_mode == Mode::Whole) {
            reference = {};
            ++m_cleared;
        } else {
            refuse("none");
        }
    }
}

void Insertion::connectAll() {
    for (const Row& row : m_rows)
        connect(*row.table, *row.record);
}

void Insertion::run(Database& database) {
    std::unordered_map<const TableDescriptor*, std::int64_t> last;
    for (const Row& row : m_rows) {
        const auto [number, isNew] = last.try_emplace(row.table);
        if (isNew)
            number->second = lastNumber(database, *row.table);
        if (++number->second > std::numeric_limits<ID>::max())
            throw RequestError(STORE_FAILED, std::string(row.table->tableName) + " has no numbers left");
        row.record->changeId(static_cast<ID>(number->second));
    }
    for (const Link& link : m_links)
        *link.reference = {m_rows[link.target].record->getId(), true};
    for (const Row& row : m_rows)
        insertRow(database, *row.table, *row.record);
}

} // namespace Zorvane

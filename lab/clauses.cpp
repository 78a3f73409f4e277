// SPDX-License-Identifier: Apache-2.0
#include "lab/clauses.h"

#include "lab/RequestError.h"
#include "lab/Store.h"
#include "lab/rows.h"
#include "model/task_records.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>

#include <sqlite3.h>

namespace Zorvane {

namespace {

using std::string_view_literals::operator""sv;

// Functions whose result is no larger than what goes in, in a time that grows with it and no faster, and
// which touch nothing but their arguments. Sorted.
constexpr auto FUNCTIONS =
    std::to_array({"abs"sv,    "avg"sv,       "coalesce"sv, "count"sv, "ifnull"sv, "iif"sv,     "length"sv,
                   "like"sv,   "lower"sv,     "max"sv,      "min"sv,   "nullif"sv, "round"sv,   "sign"sv,
                   "substr"sv, "substring"sv, "sum"sv,      "total"sv, "typeof"sv, "unicode"sv, "upper"sv});
static_assert(std::is_sorted(FUNCTIONS.begin(), FUNCTIONS.end()));

// The clock is looked at between steps of SQLite's machine, at the ends of loops. These bounds keep the time
// between two looks to a second or two at the worst: a statement without a loop is short, and so is every
// step.

// Clients write a few hundred bytes.
constexpr int MAX_SQL = 64 * 1024;
// Instructions of a compiled statement; a join of a dozen tables has some five hundred.
constexpr int MAX_INSTRUCTIONS = 1000;
// The longest text that a clause may read or make; a text that is doubled again and again ends here. An
// instruction that calls a function on it takes up to a millisecond.
constexpr int MAX_VALUE = 1 << 20;
// A pattern is matched in a time that grows with its length times that of the text.
constexpr int MAX_PATTERN = 256;
constexpr int MAX_MATCHED = 64 * 1024;
// What a log line shows of the clauses.
constexpr std::size_t MAX_SHOWN_SQL = 1000;

std::string_view orEmpty(const char* text) {
    return text ? text : "";
}

// Everything is forbidden but what a reader needs.
int authorize(void*, int action, const char* first, const char* second, const char* schema, const char*) {
    bool isAllowed = false;
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_TRANSACTION: // a reader's own; a clause stands behind "SELECT" and can't become one
        isAllowed = true;
        break;
    case SQLITE_READ:
        // Arrays of numbers are handed to a statement as JSON: see the trees.
        isAllowed = (orEmpty(schema) == DATABASE_SCHEMA && orEmpty(first).starts_with("ZOR_")) ||
                    orEmpty(first) == "json_each";
        break;
    case SQLITE_FUNCTION:
        isAllowed = std::binary_search(FUNCTIONS.begin(), FUNCTIONS.end(), orEmpty(second));
        break;
    default:
        break;
    }
    return isAllowed ? SQLITE_OK : SQLITE_DENY;
}

// LIKE, with a bound on the text. The library's own bounds the pattern alone.
void like(sqlite3_context* context, int count, sqlite3_value** arguments) {
    const auto text = [&](int index) {
        return reinterpret_cast<const char*>(sqlite3_value_text(arguments[index]));
    };
    const char* pattern = text(0);
    const char* matched = text(1);
    const char* escape = count > 2 ? text(2) : "";
    if (!pattern || !matched || !escape)
        return; // NULL
    if (sqlite3_value_bytes(arguments[0]) > MAX_PATTERN || sqlite3_value_bytes(arguments[1]) > MAX_MATCHED)
        sqlite3_result_error_toobig(context);
    else
        sqlite3_result_int(context,
                           sqlite3_strlike(pattern, matched, static_cast<unsigned char>(*escape)) == 0);
}

// Bounds the values of a connection while clauses run on it; trees carry whatever the rows hold.
class ShortValues {
  public:
    explicit ShortValues(Database& database)
        : m_database(database), m_before(sqlite3_limit(database.handle(), SQLITE_LIMIT_LENGTH, MAX_VALUE)) {}
    ShortValues(const ShortValues&) = delete;
    ShortValues& operator=(const ShortValues&) = delete;
    ~ShortValues() { sqlite3_limit(m_database.handle(), SQLITE_LIMIT_LENGTH, m_before); }

  private:
    Database& m_database;
    int m_before;
};

// The columns of a result that belong to one record of it.
struct RecordColumns {
    struct Column {
        const Field* field;
        int index;
    };

    const VectorDescriptor* vector;
    std::vector<Column> columns;
    int idColumn = -1;
    std::unordered_set<ID> known;

    [[nodiscard]] bool has(const Field& field) const {
        return std::any_of(columns.begin(), columns.end(),
                           [&](const Column& column) { return column.field == &field; });
    }
};

// Sorts the result's columns by the table that they come from. A table that is joined with itself has every
// column twice, and two records in each row.
std::vector<RecordColumns> recordsOf(const Statement& statement) {
    std::vector<RecordColumns> records;
    for (int index = 0; index < statement.columnCount(); ++index) {
        const std::string_view table = orEmpty(sqlite3_column_table_name(statement.handle(), index));
        const std::string_view origin = orEmpty(sqlite3_column_origin_name(statement.handle(), index));
        const VectorDescriptor* vector = table.starts_with("ZOR_") ? findVector(table.substr(4)) : nullptr;
        const Field* field = vector ? vector->table().find(origin) : nullptr;
        if (!field)
            continue; // an expression has no place in a document of rows
        auto record = std::find_if(records.begin(), records.end(), [&](const RecordColumns& each) {
            return each.vector == vector && !each.has(*field);
        });
        if (record == records.end())
            record = records.insert(record, RecordColumns{vector, {}, -1, {}});
        record->columns.push_back({field, index});
        if (field->kind == FieldKind::Id)
            record->idColumn = index;
    }
    return records;
}

void addRecord(const Statement& statement, RecordColumns& record, RequestBudget& budget, CZor& reply) {
    if (record.idColumn >= 0) {
        const bool isMissing = statement.isNull(record.idColumn); // the other side of an outer join
        if (isMissing || !record.known.insert(static_cast<ID>(statement.integer(record.idColumn))).second)
            return;
    }
    const TableDescriptor& table = record.vector->table();
    std::unique_ptr<BaseTable> row(table.create());
    for (const auto& column : record.columns)
        readField(*column.field, *row, statement, column.index);
    markFromDb(table, *row);
    budget.takeBytes(sizeOf(table, *row));
    record.vector->rows(reply).records().push_back(row.get());
    static_cast<void>(row.release());
}

int statusOf(const DatabaseError& error) {
    const int code = error.code();
    const bool isClausesFault = code == SQLITE_ERROR || code == SQLITE_AUTH || code == SQLITE_RANGE;
    return error.isLimit() ? STORE_TOO_MUCH : isClausesFault ? STORE_BAD_QUERY : STORE_FAILED;
}

} // namespace

void restrictToReading(Database& database) {
    database.execute("PRAGMA query_only=ON");
    database.execute("PRAGMA temp_store=MEMORY");          // a sort has its bound there, and on the disk none
    database.execute("SELECT value FROM json_each('[]')"); // its first use makes a table of its own
    for (const int arguments : {2, 3})
        sqlite3_create_function(database.handle(), "like", arguments, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                nullptr, like, nullptr, nullptr);
    sqlite3_limit(database.handle(), SQLITE_LIMIT_SQL_LENGTH, MAX_SQL);
    sqlite3_limit(database.handle(), SQLITE_LIMIT_VDBE_OP, MAX_INSTRUCTIONS);
    sqlite3_set_authorizer(database.handle(), authorize, nullptr);
}

void selectByClauses(Database& database, const CQueryRequest& query, RequestBudget& budget, CZor& reply) {
    // The line feeds end a comment in the clause before.
    std::string sql = "SELECT " + query.getColumnClause() + "\nFROM " + query.getTableClause();
    if (!query.getWhereClause().empty())
        sql += "\nWHERE " + query.getWhereClause();
    const auto refuse = [&](int status, std::string why) {
        throw RequestError(status, why.append(": ").append(sql, 0, MAX_SHOWN_SQL));
    };
    const ShortValues bound(database);
    budget.check();
    try {
        Statement statement = database.prepare(sql);
        std::vector<RecordColumns> records = recordsOf(statement);
        if (records.empty())
            refuse(STORE_BAD_QUERY, "the clauses select no column of a table");
        while (statement.step())
            for (RecordColumns& record : records)
                addRecord(statement, record, budget, reply);
    } catch (const DatabaseError& error) {
        refuse(statusOf(error), error.what());
    } catch (const std::invalid_argument&) {
        refuse(STORE_BAD_QUERY, "the clauses make more than one statement");
    }
}

} // namespace Zorvane

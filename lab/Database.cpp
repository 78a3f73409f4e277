// SPDX-License-Identifier: Apache-2.0
#include "lab/Database.h"

#include "lab/LibraryMemory.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace Zorvane {

namespace {

// Long enough for the checkpoint of a big load on a slow disk: a lock is waited for, not reported.
constexpr int BUSY_TIMEOUT_MS = 60'000;

// SQLite gives its files the mode of the database, and makes that one as the umask has it. An existing file
// is not opened here: closing it would drop the locks that other connections of this process hold on it.
void makePrivateFile(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor >= 0)
        ::close(descriptor);
}

} // namespace

DatabaseError::DatabaseError(sqlite3* connection, std::string_view what)
    : std::runtime_error(std::string(what) + ": " + sqlite3_errmsg(connection)),
      m_code(connection ? sqlite3_errcode(connection) : SQLITE_NOMEM) {}

bool DatabaseError::isLimit() const {
    // A statement of too many instructions counts as one for which there is no memory.
    return m_code == SQLITE_INTERRUPT || m_code == SQLITE_TOOBIG || m_code == SQLITE_NOMEM;
}

void Statement::Finalize::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Statement::Statement(sqlite3* connection, std::string_view sql) : m_connection(connection) {
    sqlite3_stmt* statement = nullptr;
    const char* tail = nullptr;
    const int rc =
        sqlite3_prepare_v2(connection, sql.data(), static_cast<int>(sql.size()), &statement, &tail);
    m_handle.reset(statement);
    if (rc != SQLITE_OK)
        throw DatabaseError(connection, "statement refused");
    // What stands behind the statement may be blank or a comment: then it compiles to nothing.
    const std::string_view rest = sql.substr(static_cast<std::size_t>(tail - sql.data()));
    sqlite3_stmt* second = nullptr;
    const int restRc =
        sqlite3_prepare_v2(connection, rest.data(), static_cast<int>(rest.size()), &second, nullptr);
    sqlite3_finalize(second);
    if (!statement || restRc != SQLITE_OK || second)
        throw std::invalid_argument("not one statement");
}

void Statement::bind(int parameter, std::int64_t value) {
    if (sqlite3_bind_int64(m_handle.get(), parameter, value) != SQLITE_OK)
        throw DatabaseError(m_connection, "parameter refused");
}

void Statement::bind(int parameter, std::string_view text) {
    bindText(parameter, text, SQLITE_STATIC);
}

void Statement::bindCopy(int parameter, std::string_view text) {
    bindText(parameter, text, SQLITE_TRANSIENT);
}

void Statement::bindText(int parameter, std::string_view text, void (*destructor)(void*)) {
    // A null pointer would mean NULL, not an empty text.
    const char* data = text.empty() ? "" : text.data();
    if (sqlite3_bind_text64(m_handle.get(), parameter, data, text.size(), destructor, SQLITE_UTF8) !=
        SQLITE_OK)
        throw DatabaseError(m_connection, "text refused");
}

void Statement::bind(int parameter, const std::vector<unsigned char>& bytes) {
    const void* data = bytes.empty() ? "" : static_cast<const void*>(bytes.data());
    if (sqlite3_bind_blob64(m_handle.get(), parameter, data, bytes.size(), SQLITE_STATIC) != SQLITE_OK)
        throw DatabaseError(m_connection, "bytes refused");
}

bool Statement::step() {
    const int rc = sqlite3_step(m_handle.get());
    if (rc != SQLITE_ROW && rc != SQLITE_DONE)
        throw DatabaseError(m_connection, "statement failed");
    return rc == SQLITE_ROW;
}

void Statement::run() {
    step();
    reset();
}

void Statement::reset() noexcept {
    sqlite3_reset(m_handle.get()); // its result is that of the last step, which has been told
}

int Statement::columnCount() const {
    return sqlite3_column_count(m_handle.get());
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(m_handle.get(), column) == SQLITE_NULL;
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(m_handle.get(), column);
}

std::string_view Statement::text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_handle.get(), column));
    return {text ? text : "", static_cast<std::size_t>(sqlite3_column_bytes(m_handle.get(), column))};
}

std::string_view Statement::bytes(int column) const {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_handle.get(), column));
    return {bytes ? bytes : "", static_cast<std::size_t>(sqlite3_column_bytes(m_handle.get(), column))};
}

void Database::Close::operator()(sqlite3* connection) const {
    sqlite3_close_v2(connection);
}

Database::Database(const std::filesystem::path& file) {
    makePrivateFile(file);
    meterLibraryMemory();
    sqlite3* connection = nullptr;
    const int rc = sqlite3_open_v2(":memory:", &connection,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_handle.reset(connection);
    if (rc != SQLITE_OK)
        throw DatabaseError(connection, "no connection to the database library");
    sqlite3_extended_result_codes(connection, 0);
    sqlite3_busy_timeout(connection, BUSY_TIMEOUT_MS);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_FKEY, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);

    const std::string path = std::filesystem::absolute(file).string(); // never taken for a "file:" address
    const std::string schema = DATABASE_SCHEMA;
    try {
        prepare("ATTACH ?1 AS " + schema).with(path).run();
        Statement mode = prepare("PRAGMA " + schema + ".journal_mode=WAL");
        mode.step();
        if (mode.text(0) != "wal")
            throw std::runtime_error("its file system has no write-ahead log");
        execute("PRAGMA " + schema + ".synchronous=FULL");
    } catch (const DatabaseError&) {
        throw DatabaseError(connection, path);
    }
}

void Database::execute(const std::string& sql) {
    if (sqlite3_exec(m_handle.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw DatabaseError(m_handle.get(), sql);
}

KeptStatement Database::kept(const std::string& sql) {
    auto found = m_kept.find(sql);
    if (found == m_kept.end())
        found = m_kept.try_emplace(sql, m_handle.get(), sql).first;
    return KeptStatement(&found->second);
}

bool Database::isInTransaction() const {
    return sqlite3_get_autocommit(m_handle.get()) == 0;
}

int Database::changes() const {
    return sqlite3_changes(m_handle.get());
}

std::int64_t Database::lastInsertedId() const {
    return sqlite3_last_insert_rowid(m_handle.get());
}

Transaction::Transaction(Database& database, Kind kind) : m_database(database), m_kind(kind) {
    switch (kind) {
    case Kind::Read:
        database.execute("BEGIN");
        break;
    case Kind::Write:
        database.execute("BEGIN IMMEDIATE");
        break;
    case Kind::Nested:
        database.execute("SAVEPOINT part");
        break;
    }
}

Transaction::~Transaction() {
    try {
        if (m_open)
            rollback();
    } catch (const DatabaseError&) {
        // The library has undone the transaction by itself, as it does when the disk is full.
    }
}

void Transaction::commit() {
    m_database.execute(m_kind == Kind::Nested ? "RELEASE part" : "COMMIT");
    m_open = false;
}

void Transaction::rollback() {
    m_open = false;
    m_database.execute(m_kind == Kind::Nested ? "ROLLBACK TO part; RELEASE part" : "ROLLBACK");
}

} // namespace Zorvane

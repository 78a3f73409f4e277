// SPDX-License-Identifier: Apache-2.0
// Ownership over SQLite's handles: a connection, its statements, and the scope of a transaction.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace Zorvane {

/// The name under which the database's file is attached: tables are "ZorDba.ZOR_...".
inline constexpr const char* DATABASE_SCHEMA = "ZorDba";

/// What the database library refused: the text says what was tried and why it failed.
class DatabaseError : public std::runtime_error {
  public:
    DatabaseError(sqlite3* connection, std::string_view what);
    /// The library's result code (SQLITE_BUSY and so on).
    [[nodiscard]] int code() const { return m_code; }
    /// Whether a bound on time or size stopped the statement.
    [[nodiscard]] bool isLimit() const;

  private:
    int m_code;
};

class Statement {
  public:
    /// Compiles one statement. Throws DatabaseError; a text with a second statement behind the first is
    /// refused.
    Statement(sqlite3* connection, std::string_view sql);

    void bind(int parameter, std::int64_t value);
    /// Texts and bytes are borrowed until the last step.
    void bind(int parameter, std::string_view text);
    void bind(int parameter, const std::vector<unsigned char>& bytes);
    /// Sets the parameters from the first on, to copies of integers and texts.
    template <class... Values>
    Statement& with(const Values&... values) {
        int parameter = 0;
        (bindCopy(++parameter, values), ...);
        return *this;
    }

    /// True if there is a row. Throws DatabaseError.
    bool step();
    /// For statements without rows.
    void run();
    void reset() noexcept;

    [[nodiscard]] int columnCount() const;
    [[nodiscard]] bool isNull(int column) const;
    [[nodiscard]] std::int64_t integer(int column) const;
    /// Borrowed until the next step.
    [[nodiscard]] std::string_view text(int column) const;
    [[nodiscard]] std::string_view bytes(int column) const;
    [[nodiscard]] sqlite3_stmt* handle() const { return m_handle.get(); }

  private:
    void bindCopy(int parameter, std::int64_t value) { bind(parameter, value); }
    void bindCopy(int parameter, std::string_view text);
    void bindText(int parameter, std::string_view text, void (*destructor)(void*));

    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };

    sqlite3* m_connection;
    std::unique_ptr<sqlite3_stmt, Finalize> m_handle;
};

struct ResetStatement {
    void operator()(Statement* statement) const { statement->reset(); }
};
/// A statement that its connection keeps; reset at the end of the use.
using KeptStatement = std::unique_ptr<Statement, ResetStatement>;

/// A connection, for one thread at a time.
class Database {
  public:
    /// An in-memory connection to which the file is attached; the file is made, with mode 0600, if need be.
    /// Throws std::runtime_error.
    explicit Database(const std::filesystem::path& file);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void execute(const std::string& sql);
    [[nodiscard]] Statement prepare(std::string_view sql) { return {m_handle.get(), sql}; }
    /// The statement of that text, compiled once a connection. Not to be used twice at the same time.
    [[nodiscard]] KeptStatement kept(const std::string& sql);

    [[nodiscard]] sqlite3* handle() const { return m_handle.get(); }
    [[nodiscard]] bool isInTransaction() const;
    /// Rows that the last statement changed.
    [[nodiscard]] int changes() const;
    [[nodiscard]] std::int64_t lastInsertedId() const;

  private:
    struct Close {
        void operator()(sqlite3* connection) const;
    };

    std::unique_ptr<sqlite3, Close> m_handle;
    std::unordered_map<std::string, Statement> m_kept; // goes before the connection
};

/// A transaction, undone unless it is committed.
class Transaction {
  public:
    enum class Kind {
        Read,   ///< one snapshot for all that is read
        Write,  ///< the file's write lock from the start
        Nested, ///< a part of a transaction under way that can be undone by itself
    };

    Transaction(Database& database, Kind kind);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();
    void commit();
    void rollback();

  private:
    Database& m_database;
    Kind m_kind;
    bool m_open = true;
};

} // namespace Zorvane

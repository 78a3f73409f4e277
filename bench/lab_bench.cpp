// SPDX-License-Identifier: Apache-2.0
// The lab's database beside the bare library, and many of its clients beside one.
#include "lab/Changes.h"
#include "lab/KvnrdSession.h"
#include "lab/Lab.h"
#include "lab/Server.h"
#include "lab/Writer.h"
#include "lab/ZordSession.h"
#include "lab/rows.h"
#include "lab/schema.h"
#include "lab/tree.h"
#include "model/RecordCodec.h"
#include "model/records.h"
#include "sampleRows.h"
#include "sideBySide.h"
#include "suite/descriptor.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <thread>

#include <arpa/inet.h>
#include <sqlite3.h>
#include <sys/socket.h>

namespace Zorvane::Bench {

namespace {

constexpr int ROUNDS = 11;
constexpr std::size_t INSERTED = 10'000;
constexpr std::size_t CLIENTS = 50;

class Folder {
  public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "lab-bench-XXXXXX").string();
        m_path = ::mkdtemp(name.data());
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(m_path); }
    [[nodiscard]] std::filesystem::path file(const char* name) const { return m_path / name; }

  private:
    std::filesystem::path m_path;
};

// A statement of the bare library.
struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Bare = std::unique_ptr<sqlite3_stmt, Finalize>;

Bare prepare(sqlite3* connection, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
    return Bare(statement);
}

std::string insertSql(const TableDescriptor& table) {
    std::string columns, parameters;
    for (const Field& field : table.fields) {
        appendItem(columns, quotedName(field.name));
        appendItem(parameters, "?");
    }
    return std::string("INSERT INTO ") + table.tableName + "(" + columns + ") VALUES(" + parameters + ")";
}

// --- Inserts

// What a program has that means to insert: the statement, and the values as they are bound.
struct BareValue {
    enum { Key, Number, Text, Bytes } kind;
    std::int64_t number;
    std::string text;
};
struct BareRow {
    sqlite3_stmt* statement;
    std::vector<BareValue> values;
};

BareValue bareValue(const Field& field, const BaseTable& row) {
    switch (field.kind) {
    case FieldKind::Id:
        return {BareValue::Key, 0, {}};
    case FieldKind::Text:
        return {BareValue::Text, 0, row.*field.text};
    case FieldKind::Binary:
        return {BareValue::Bytes, 0, {(row.*field.binary).begin(), (row.*field.binary).end()}};
    case FieldKind::Reference:
        return {BareValue::Number, (row.*field.reference).id, {}};
    case FieldKind::Flag:
        return {BareValue::Number, row.*field.flag, {}};
    case FieldKind::UInt32:
    case FieldKind::Ipv4:
        return {BareValue::Number, row.*field.uint32, {}};
    case FieldKind::Long:
        return {BareValue::Number, row.*field.long64, {}};
    case FieldKind::Int64:
        return {BareValue::Number, row.*field.int64, {}};
    default:
        return {BareValue::Number, row.*field.int32, {}};
    }
}

class BareInserts {
  public:
    BareInserts(const std::filesystem::path& file, CZor& rows) : m_database(file) {
        createSchema(m_database);
        forEachRow(rows, [&](const TableDescriptor& table, const BaseTable& row) {
            Bare& statement = m_statements[&table];
            if (!statement)
                statement = prepare(m_database.handle(), insertSql(table));
            BareRow& bare = m_rows.emplace_back(BareRow{statement.get(), {}});
            for (const Field& field : table.fields)
                bare.values.push_back(bareValue(field, row));
        });
    }

    void run() {
        sqlite3_exec(m_database.handle(), "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        for (const BareRow& row : m_rows) {
            int parameter = 0;
            for (const BareValue& value : row.values)
                bind(row.statement, ++parameter, value);
            sqlite3_step(row.statement);
            sqlite3_reset(row.statement);
        }
        sqlite3_exec(m_database.handle(), "COMMIT", nullptr, nullptr, nullptr);
    }

  private:
    static void bind(sqlite3_stmt* statement, int parameter, const BareValue& value) {
        const int size = static_cast<int>(value.text.size());
        if (value.kind == BareValue::Number)
            sqlite3_bind_int64(statement, parameter, value.number);
        else if (value.kind == BareValue::Key)
            sqlite3_bind_null(statement, parameter);
        else if (value.kind == BareValue::Text)
            sqlite3_bind_text(statement, parameter, value.text.data(), size, SQLITE_STATIC);
        else
            sqlite3_bind_blob(statement, parameter, value.text.data(), size, SQLITE_STATIC);
    }

    Database m_database;
    std::map<const TableDescriptor*, Bare> m_statements;
    std::vector<BareRow> m_rows;
};

// The rows of a request that has been read, up to their commit.
void insertingRows(benchmark::State& state) {
    keepHeapWarm();
    const Folder folder;
    CZor rows;
    addMixedRows(rows, INSERTED);
    Writer writer(folder.file("ours.db"));
    const auto ours = [&] {
        return timeOf([&] {
            Insertion insertion(Insertion::Mode::Whole);
            forEachRow(rows,
                       [&](const TableDescriptor& table, BaseTable& row) { insertion.add(table, row); });
            insertion.connectAll();
            writer.run([&](Database& database) { insertion.run(database); });
        });
    };
    ours(); // its references have numbers of rows now, for both sides
    BareInserts bare(folder.file("bare.db"), rows);
    for ([[maybe_unused]] auto _ : state)
        report(state, runByTurns(ROUNDS, ours, [&] { return timeOf([&] { bare.run(); }); }), 1.5);
}

// The same from a document to the reply's document: mostly the XML library's time.
void insertingADocument(benchmark::State& state) {
    keepHeapWarm();
    const Folder folder;
    CZor rows;
    addMixedRows(rows, INSERTED);
    Store store(folder.file("ours.db"));
    if (!store.load(rows).ok())
        return state.SkipWithError("the rows can't be loaded");
    BareInserts bare(folder.file("bare.db"), rows);
    forEachRow(rows, [](const TableDescriptor& table, BaseTable& row) {
        RecordCodec::setFromDb(table, row, false);
        for (const Field& field : table.fields)
            if (field.kind == FieldKind::Reference)
                (row.*field.reference).fromDb = true;
    });
    const std::vector<unsigned char> document = writeDocument(rows);
    const auto ours = [&] { return timeOf([&] { store.insert(document); }); };
    for ([[maybe_unused]] auto _ : state)
        report(state, runByTurns(3, ours, [&] { return timeOf([&] { bare.run(); }); }), 0);
}

// --- A tree

constexpr ID KEYS = 400;
constexpr ID VALUES_PER_KEY = 10;
constexpr ID FILES = 599;

void addTree(CZor& rows) {
    const auto add = [](auto& vector, auto* row, ID id) {
        row->setId(id);
        vector.push_back(row);
        return row;
    };
    add(rows.m_vConfig, new CConfig, 1)->setClientName("client.corp.example");
    for (ID key = 1; key <= KEYS; ++key) {
        CRegistryKey* row = add(rows.m_vRegistryKey, new CRegistryKey, key);
        row->setName("Key" + std::to_string(key));
        row->setLocation("HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\" + std::to_string(key));
        row->setConfigId(1);
        for (ID value = 1; value <= VALUES_PER_KEY; ++value) {
            CRegistryValue* each =
                add(rows.m_vRegistryValue, new CRegistryValue, (key - 1) * VALUES_PER_KEY + value);
            each->setName("Value" + std::to_string(value));
            each->setRegistryKeyId(key);
        }
    }
    for (ID file = 1; file <= FILES; ++file) {
        CConfigFileList* row = add(rows.m_vConfigFileList, new CConfigFileList, file);
        row->setFullName("C:\\Windows\\System32\\config\\" + std::to_string(file));
        row->setConfigId(1);
    }
}

// What a program would do that knew where the rows are: a select for each parent, all columns taken out.
class BareSelects {
  public:
    explicit BareSelects(Database& database) : m_database(database) {}

    std::size_t run() {
        m_found = 0;
        all(m_config, CConfig::table(), "Id", 1);
        all(m_keys, CRegistryKey::table(), "ConfigId", 1);
        for (ID key = 1; key <= KEYS; ++key)
            all(m_values, CRegistryValue::table(), "RegistryKeyId", key);
        all(m_files, CConfigFileList::table(), "ConfigId", 1);
        return m_found;
    }

  private:
    void all(Bare& statement, const TableDescriptor& table, const char* column, ID value) {
        if (!statement)
            statement = prepare(m_database.handle(), selectSql(table) + " WHERE " + column + "=?1");
        sqlite3_bind_int64(statement.get(), 1, value);
        while (sqlite3_step(statement.get()) == SQLITE_ROW) {
            ++m_found;
            for (int i = 0; i < sqlite3_column_count(statement.get()); ++i) {
                if (sqlite3_column_type(statement.get(), i) == SQLITE_INTEGER)
                    benchmark::DoNotOptimize(sqlite3_column_int64(statement.get(), i));
                else
                    benchmark::DoNotOptimize(
                        std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), i)),
                                    static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), i))));
            }
        }
        sqlite3_reset(statement.get());
    }

    Database& m_database;
    Bare m_config, m_keys, m_values, m_files;
    std::size_t m_found = 0;
};

void tree(benchmark::State& state) {
    keepHeapWarm();
    const Folder folder;
    {
        CZor rows;
        addTree(rows);
        Store store(folder.file("recovery.db"));
        if (!store.load(rows).ok())
            return state.SkipWithError("the rows can't be loaded");
    }
    Database database(folder.file("recovery.db"));
    BareSelects bare(database);
    const std::size_t wanted = bare.run();
    const auto ours = [&] {
        CZor reply;
        return timeOf([&] {
            RequestBudget budget(database, std::chrono::hours(1), std::size_t{1} << 30);
            const Transaction snapshot(database, Transaction::Kind::Read);
            selectTree(database, CConfig::table(), 1, budget, reply);
        });
    };
    const auto theirs = [&] {
        return timeOf([&] {
            const Transaction snapshot(database, Transaction::Kind::Read);
            bare.run();
        });
    };
    for ([[maybe_unused]] auto _ : state)
        report(state, runByTurns(ROUNDS, ours, theirs), 2);
    state.counters["rows"] = static_cast<double>(wanted);
}

// --- Many clients

const std::string OPENING("0 0\n\x00\x0A\x00\x0E"
                          "6.5.0\0KVN\0",
                          18);

std::string number(std::uint32_t value) {
    std::string bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

class ServedLab {
  public:
    [[nodiscard]] bool insertOne() const {
        const std::string document =
            "<ZorData xmlns=\"urn:zorvane:zordata:1\"><P2VRestoreTask><Id>1</Id>"
            "<ClientName>client.corp.example</ClientName><State>QUEUED</State></P2VRestoreTask></ZorData>";
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(m_server.port("zord"));
        const Suite::Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (::connect(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            return false;
        const std::string request = OPENING + number(0x00160000 | 12) + number(12) +
                                    number(static_cast<std::uint32_t>(document.size())) + document;
        ::send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL);
        std::string reply;
        char piece[4096];
        for (ssize_t count; (count = ::recv(socket.get(), piece, sizeof piece, 0)) > 0;)
            reply.append(piece, static_cast<std::size_t>(count));
        return reply.find("</ZorData>") != std::string::npos;
    }
    ~ServedLab() {
        m_server.stop();
        m_thread.join();
    }

  private:
    Folder m_folder;
    Store m_store{m_folder.file("recovery.db")};
    JobRunner m_jobs{m_store, std::chrono::hours(1)};
    FailRules m_failures;
    RequestLog m_log;
    Lab m_lab{m_store, m_jobs, {}, {}, m_failures, m_log, m_folder.file("received")};
    Server m_server{"127.0.0.1", {{"zord", 0, [this](Connection& connection) {
                                       ZordSession(m_lab, connection, "zord").run();
                                   }}}};
    std::thread m_thread{[this] { m_server.run(); }};
};

// Acknowledged inserts a second, on the clock: what is waited for is the disk.
double throughput(const ServedLab& lab, std::size_t clients) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds LENGTH{1};
    std::atomic<int> done = 0;
    const auto begin = Clock::now();
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < clients; ++i)
            threads.emplace_back([&] {
                while (Clock::now() - begin < LENGTH)
                    done += lab.insertOne();
            });
    }
    return done / std::chrono::duration<double>(Clock::now() - begin).count();
}

void manyClients(benchmark::State& state) {
    const ServedLab lab;
    std::vector<double> one, many, ratios;
    throughput(lab, CLIENTS);
    for ([[maybe_unused]] auto _ : state)
        for (int i = 0; i < 5; ++i) {
            one.push_back(throughput(lab, 1));
            many.push_back(throughput(lab, CLIENTS));
            ratios.push_back(many.back() / one.back());
        }
    state.counters["times"] = median(ratios);
    state.counters["target"] = 5;
    state.counters["one_per_s"] = median(one);
    state.counters["many_per_s"] = median(many);
}

BENCHMARK(insertingRows)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(insertingADocument)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(tree)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(manyClients)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

} // namespace Zorvane::Bench

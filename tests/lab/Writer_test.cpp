// SPDX-License-Identifier: Apache-2.0
#include "StoreFixture.h"
#include "lab/Writer.h"

#include <atomic>
#include <set>
#include <thread>

#include <sqlite3.h>

namespace Zorvane {
namespace {

constexpr int CLIENTS = 50;

int countCommit(void* counter) {
    ++*static_cast<std::atomic<int>*>(counter);
    return 0;
}

TEST(WriterTest, JobsThatWaitShareACommitAndFailAlone) {
    const ScratchDirectory scratch;
    std::atomic<int> commits{0};
    std::atomic<int> failures{0};
    std::atomic<int> ready{0};
    {
        Writer writer(scratch.file("recovery.db"));
        std::vector<std::jthread> clients;
        // The first job keeps the writer until all others wait.
        writer.run(
            [&](Database& database) { sqlite3_commit_hook(database.handle(), countCommit, &commits); });
        commits = 0;
        clients.emplace_back([&] {
            writer.run([&](Database&) {
                for (int i = 0; i < 5000 && ready < CLIENTS; ++i)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            });
        });
        for (int client = 1; client <= CLIENTS; ++client)
            clients.emplace_back([&, client] {
                ++ready;
                try {
                    writer.run([&](Database& database) {
                        database.execute("INSERT INTO ZorDba.ZOR_Support(Id) VALUES(" +
                                         std::to_string(client) + ")");
                        if (client % 5 == 0)
                            throw std::runtime_error("refused");
                    });
                } catch (const std::runtime_error& error) {
                    EXPECT_STREQ(error.what(), "refused");
                    ++failures;
                }
            });
    }
    EXPECT_LE(commits, 10) << "50 jobs, and a commit for each would be no group";
    EXPECT_EQ(failures, CLIENTS / 5);
    Database database(scratch.file("recovery.db"));
    EXPECT_EQ(selectRecords<CSupport>(database, "").size(), static_cast<std::size_t>(CLIENTS * 4 / 5));
}

// A job that makes the library undo the whole transaction: the others must not be lost with it.
TEST(WriterTest, AJobThatBreaksTheTransactionTakesNobodyWithIt) {
    const ScratchDirectory scratch;
    Writer writer(scratch.file("recovery.db"));
    std::vector<std::jthread> clients;
    std::atomic<int> failures{0};
    for (int client = 1; client <= CLIENTS; ++client)
        clients.emplace_back([&, client] {
            try {
                writer.run([&](Database& database) {
                    database.execute("INSERT INTO ZorDba.ZOR_Support(Id) VALUES(" + std::to_string(client) +
                                     ")");
                    if (client % 10 == 0)
                        database.execute("INSERT OR ROLLBACK INTO ZorDba.ZOR_Support(Id) VALUES(" +
                                         std::to_string(client) + ")");
                });
            } catch (const DatabaseError&) {
                ++failures;
            }
        });
    clients.clear();
    EXPECT_EQ(failures, CLIENTS / 10);
    Database database(scratch.file("recovery.db"));
    EXPECT_EQ(selectRecords<CSupport>(database, "").size(), static_cast<std::size_t>(CLIENTS * 9 / 10));
}

class ManyClientsTest : public StoreTest {
  protected:
    Database m_database{m_scratch.file("recovery.db")};
};

TEST_F(ManyClientsTest, EveryoneIsServed) {
    constexpr int ROUNDS = 10;
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> clients;
        for (int client = 0; client < CLIENTS; ++client)
            clients.emplace_back([&, client] {
                const std::string name = "client" + std::to_string(client);
                for (int round = 0; round < ROUNDS; ++round) {
                    CZor rows;
                    auto& key = add(rows.m_vRegistryKey, 1);
                    key.setName(name);
                    auto& value = add(rows.m_vRegistryValue, 1);
                    value.setName(name);
                    value.setRegistryKeyId(1);
                    StoreResult inserted = m_store->insert(document(rows));
                    CZor reply;
                    read(inserted.reply, reply);
                    StoreResult found = tree(CRegistryKey::TableName, reply.m_vRegistryKey.first()->getId());
                    CZor seen;
                    read(found.reply, seen);
                    // What was acknowledged is there for the next reader, and belongs together.
                    wrong += seen.m_vRegistryKey.size() != 1 || seen.m_vRegistryValue.size() != 1 ||
                             seen.m_vRegistryKey[0]->getName() != name ||
                             seen.m_vRegistryValue[0]->getName() != name;
                }
            });
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(selectRecords<CRegistryValue>(m_database, "").size(), std::size_t{CLIENTS * ROUNDS});
}

// As when the command line looks at the jobs of a server that works.
TEST_F(ManyClientsTest, ASecondProcessMayWriteToo) {
    Store second(m_scratch.file("recovery.db"));
    std::atomic<int> failures{0};
    const auto insert = [&](Store& store) {
        for (int i = 0; i < 50; ++i) {
            CZor rows;
            add(rows.m_vSupport, 1);
            failures += !store.insert(document(rows)).ok();
        }
    };
    {
        const std::jthread one([&] { insert(*m_store); });
        const std::jthread other([&] { insert(second); });
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(selectRecords<CSupport>(m_database, "").size(), 100U);
}

} // namespace
} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The one writer of the database. Jobs that wait at the same time share a transaction, and so one flush of
// the disk.
#pragma once

#include "lab/Database.h"

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <span>
#include <stop_token>
#include <thread>
#include <vector>

namespace Zorvane {

class Writer {
  public:
    /// Works in the transaction that is under way. May be run again, by itself, when the transaction that it
    /// shared had to be undone.
    using Job = std::function<void(Database& database)>;

    /// Throws DatabaseError.
    explicit Writer(const std::filesystem::path& file);
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer();

    /// Returns when the job's changes are on the disk, or throws what the job threw or what stood against the
    /// commit; then nothing of it is left. From any thread.
    void run(const Job& job);

  private:
    struct Request;

    void loop(const std::stop_token& stop);
    void commitTogether(std::span<Request* const> requests);
    void runPart(Request& request);

    Database m_database;
    std::mutex m_lock;
    std::condition_variable_any m_wake;
    std::vector<Request*> m_waiting;
    std::jthread m_thread; ///< last: it ends before the rest goes
};

} // namespace Zorvane

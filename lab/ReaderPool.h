// SPDX-License-Identifier: Apache-2.0
// Connections for readers, kept for the next one.
#pragma once

#include "lab/Database.h"
#include "lab/Store.h"

#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

namespace Zorvane {

class ReaderPool {
  public:
    explicit ReaderPool(std::filesystem::path file) : m_file(std::move(file)) {}

    struct Return {
        ReaderPool* pool;
        void operator()(Database* database) const { pool->give(std::unique_ptr<Database>(database)); }
    };
    /// A restricted connection, returned at the end of its scope.
    using Reader = std::unique_ptr<Database, Return>;

    /// Waits while too many are out, unless nobody waits for the answer any more: then RequestError. Throws
    /// DatabaseError.
    Reader take(const IsGone& isGone = never);

  private:
    void give(std::unique_ptr<Database> database);

    std::filesystem::path m_file;
    std::mutex m_lock;
    std::condition_variable m_returned;
    std::size_t m_out = 0;
    std::vector<std::unique_ptr<Database>> m_idle;
};

} // namespace Zorvane

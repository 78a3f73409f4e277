// SPDX-License-Identifier: Apache-2.0
#include "lab/ReaderPool.h"

#include "lab/RequestError.h"
#include "lab/clauses.h"

#include <chrono>

namespace Zorvane {

namespace {

// A connection costs two descriptors, the schema's half a megabyte, and while it works what the library may
// take for a request: clients wait for one rather than exhaust those.
constexpr std::size_t MAX_READERS = 8;

// How often one that waits looks whether its client is gone.
constexpr std::chrono::milliseconds LOOK_INTERVAL{100};

} // namespace

ReaderPool::Reader ReaderPool::take(const IsGone& isGone) {
    {
        std::unique_lock lock(m_lock);
        while (!m_returned.wait_for(lock, LOOK_INTERVAL, [this] { return m_out < MAX_READERS; }))
            if (isGone())
                throw RequestError(STORE_TOO_MUCH, "there are too many readers");
        ++m_out;
        if (!m_idle.empty()) {
            Reader reader(m_idle.back().release(), Return{this});
            m_idle.pop_back();
            return reader;
        }
    }
    try {
        auto made = std::make_unique<Database>(m_file);
        restrictToReading(*made);
        return {made.release(), Return{this}};
    } catch (...) {
        give(nullptr);
        throw;
    }
}

void ReaderPool::give(std::unique_ptr<Database> database) {
    {
        const std::lock_guard lock(m_lock);
        --m_out;
        if (database)
            m_idle.push_back(std::move(database));
    }
    m_returned.notify_one();
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "lab/Writer.h"

#include "lab/schema.h"

#include <exception>
#include <future>
#include <utility>

namespace Zorvane {

struct Writer::Request {
    const Job& job;
    std::exception_ptr failure{};
    std::promise<void> done{};
};

Writer::Writer(const std::filesystem::path& file) : m_database(file) {
    createSchema(m_database);
    m_thread = std::jthread([this](const std::stop_token& stop) { loop(stop); });
}

Writer::~Writer() = default;

void Writer::run(const Job& job) {
    Request request{job};
    std::future<void> done = request.done.get_future();
    {
        const std::lock_guard lock(m_lock);
        m_waiting.push_back(&request);
    }
    m_wake.notify_one();
    done.get();
}

void Writer::loop(const std::stop_token& stop) {
    for (;;) {
        std::unique_lock lock(m_lock);
        m_wake.wait(lock, stop, [this] { return !m_waiting.empty(); });
        if (m_waiting.empty())
            return; // told to stop, and nobody waits
        const std::vector<Request*> requests = std::exchange(m_waiting, {});
        lock.unlock();
        commitTogether(requests);
        for (Request* request : requests) {
            // The request is gone as soon as it is answered: its owner goes on.
            std::promise<void> done = std::move(request->done);
            if (request->failure)
                done.set_exception(std::move(request->failure));
            else
                done.set_value();
        }
    }
}

void Writer::commitTogether(std::span<Request* const> requests) {
    try {
        Transaction transaction(m_database, Transaction::Kind::Write);
        for (Request* request : requests)
            runPart(*request);
        transaction.commit();
    } catch (...) {
        if (requests.size() == 1) {
            requests.front()->failure = std::current_exception();
            return;
        }
        // One request may have taken the others down with it, as when it fills the disk.
        for (Request* const& request : requests) {
            request->failure = nullptr;
            commitTogether({&request, 1});
        }
    }
}

void Writer::runPart(Request& request) {
    Transaction part(m_database, Transaction::Kind::Nested);
    try {
        request.job(m_database);
        part.commit();
    } catch (...) {
        if (!m_database.isInTransaction())
            throw; // the library has undone everything
        part.rollback();
        request.failure = std::current_exception();
    }
}

} // namespace Zorvane

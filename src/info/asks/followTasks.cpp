// SPDX-License-Identifier: Apache-2.0
#include "info/asks/followTasks.h"

#include "info/asks/Conversions.h"
#include "info/asks/TextTable.h"
#include "info/layout/labels.h"
#include "info/paragraphs.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <ostream>
#include <thread>

namespace Zorvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds LOOK_WAIT{1000};

std::string clockText() {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    char text[16] = "";
    if (::localtime_r(&now, &fields))
        std::strftime(text, sizeof text, "%H:%M:%S", &fields);
    return text;
}

std::string standOf(const CP2VRestoreTask& task) {
    return wordsOf(toName(task.getState())) + ", " + wordsOf(toName(task.getOperation()));
}

std::string lengthText(std::chrono::seconds time) {
    const std::string seconds = std::to_string(time.count() % 60);
    return std::to_string(time.count() / 60) + (seconds.size() < 2 ? ":0" : ":") + seconds;
}

/// What is told while the tasks run.
class Teller {
  public:
    Teller(bool isTold, const Session& session)
        : m_session(session), m_isTold(isTold), m_moves(isTold && session.isTerminal()) {}
    Teller(const Teller&) = delete;
    Teller& operator=(const Teller&) = delete;
    ~Teller() { clear(); }

    void look(const std::vector<CP2VRestoreTask>& running, const std::string& client) {
        if (!m_isTold)
            return;
        if (m_known.empty() && running.empty())
            line("no conversion runs");
        for (const CP2VRestoreTask& task : running) {
            const auto known = m_known.find(task.getId());
            if (known == m_known.end() || standOf(known->second) != standOf(task))
                line(taskName(task) + "  " + standOf(task));
            m_known.insert_or_assign(task.getId(), task);
        }
        tellEnds(running, client);
        if (m_moves && !running.empty())
            move(running);
        m_session.out().flush();
    }

  private:
    void tellEnds(const std::vector<CP2VRestoreTask>& running, const std::string& client) {
        std::vector<CP2VRestoreTask> gone;
        std::erase_if(m_known, [&](const auto& known) {
            const bool isGone = std::none_of(running.begin(), running.end(),
                                             [&](const auto& task) { return task.getId() == known.first; });
            if (isGone)
                gone.push_back(known.second);
            return isGone;
        });
        if (gone.empty())
            return;
        const Conversions now = allConversions(client);
        for (const CP2VRestoreTask& task : gone) {
            const CP2VRestoreTaskLog* log = logOf(task, now.finished);
            line(taskName(task) + "  " + (log ? resultOf(*log) : "taken away"));
        }
    }

    void line(const std::string& text) {
        clear();
        m_session.out() << clockText() << "  " << shown(text) << '\n';
    }

    // The line below all others.
    void move(const std::vector<CP2VRestoreTask>& running) {
        const auto time = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_start);
        const std::string behind = ", watched for " + lengthText(time);
        std::string text = std::to_string(running.size()) + " run" + behind;
        if (running.size() == 1) {
            const std::string full = taskName(running.front()) + "  " + standOf(running.front()) + behind;
            // A line that wraps could not be written over.
            if (terminalColumns(shown(full)) < TERMINAL_WIDTH)
                text = shown(full);
        }
        m_session.out() << "\r\033[K" << m_session.colored(text, color::DIM);
        m_isMoving = true;
    }

    void clear() {
        if (m_isMoving)
            m_session.out() << "\r\033[K" << std::flush;
        m_isMoving = false;
    }

    const Session& m_session;
    const bool m_isTold;
    const bool m_moves;
    bool m_isMoving = false;
    const Clock::time_point m_start = Clock::now();
    std::map<ID, CP2VRestoreTask> m_known;
};

} // namespace

bool followTasks(const FollowOptions& options, const Session& session) {
    const Clock::time_point start = Clock::now();
    Teller teller(options.isTold, session);
    for (;;) {
        const std::vector<CP2VRestoreTask> running = runningConversions(options.client);
        teller.look(running, options.client);
        if (std::none_of(running.begin(), running.end(), isUnderWay))
            return true;
        Clock::duration wait = LOOK_WAIT;
        if (options.limit)
            wait = std::min<Clock::duration>(wait, start + *options.limit - Clock::now());
        if (wait <= Clock::duration::zero() || !session.out())
            return false;
        std::this_thread::sleep_for(wait);
    }
}

} // namespace Zorvane

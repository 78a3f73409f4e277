// SPDX-License-Identifier: Apache-2.0
#include "suite/FileWatch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <linux/magic.h>
#include <pthread.h>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace Zorvane::Suite {

namespace {

// Its default is to be ignored: should the handler ever be gone, a change is missed and nothing ends. SIGIO,
// the usual signal of a queue, ends a process that has no handler.
constexpr int SIGNAL = SIGURG;

// Far above the numbers that a program opens, closes and mixes up.
constexpr int LEAST_DESCRIPTOR = 200;

constexpr int MAX_LINKS = 40; // as the kernel has it

// Without IN_ATTRIB: for an event that a folder's files have too, the kernel goes over all that it knows in the
// folder, which takes milliseconds for a full /tmp. A folder's new permissions wait for the next look.
constexpr std::uint32_t FOLDER_EVENTS = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF |
                                        IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t FILE_EVENTS = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

// File systems that only this machine writes to, so that its kernel sees every change.
constexpr long ZFS_MAGIC = 0x2fc12fc1;
constexpr std::array<long, 8> LOCAL_FILE_SYSTEMS = {
    EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC,
    ZFS_MAGIC,        TMPFS_MAGIC,     RAMFS_MAGIC,       OVERLAYFS_SUPER_MAGIC};

bool isLocal(const std::string& path) {
    struct statfs facts {};
    const bool isKnown = ::statfs(path.c_str(), &facts) == 0;
    return isKnown &&
           std::ranges::find(LOCAL_FILE_SYSTEMS, static_cast<long>(facts.f_type)) != LOCAL_FILE_SYSTEMS.end();
}

// False in a process that was started with the signal blocked, or that handles it otherwise: it keeps it so.
bool handleSignal(void (*handler)(int)) {
    sigset_t blocked;
    struct sigaction current {};
    if (::pthread_sigmask(SIG_BLOCK, nullptr, &blocked) != 0 || ::sigismember(&blocked, SIGNAL) != 0 ||
        ::sigaction(SIGNAL, nullptr, &current) != 0 || (current.sa_flags & SA_SIGINFO) != 0)
        return false;
    if (current.sa_handler == handler)
        return true;
    if (current.sa_handler != SIG_DFL && current.sa_handler != SIG_IGN)
        return false;
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    return ::sigaction(SIGNAL, &action, nullptr) == 0;
}

} // namespace

std::atomic<std::uint32_t> FileWatch::s_state{NotWatched + 1};
static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "a signal's handler counts");
FileWatch* FileWatch::s_watch = nullptr;

FileWatch::FileWatch() {
    s_watch = this;
    static const int registered = ::pthread_atfork(nullptr, nullptr, &startOverInChild);
    (void)registered; // without memory for it no child could be made either
}

FileWatch::~FileWatch() {
    close();
    s_watch = nullptr;
}

std::uint32_t FileWatch::follow(const std::string& path) {
    const std::uint32_t now = state();
    if (path != m_path) {
        m_steps.clear();
        m_path = path;
        m_isHopeless =
            !path.starts_with('/'); // its meaning changes with the working folder, and nothing tells
    }
    if (m_isHopeless)
        return NotWatched;
    const bool isReady = isOpen();
    if (isReady && !takeEvents() && !m_steps.empty())
        return now;
    if ((isReady || open()) && watchSteps())
        return now;
    m_isHopeless = true;
    close();
    return NotWatched;
}

void FileWatch::noteChange() noexcept {
    m_steps.clear();
    countChange(SIGNAL);
}

void FileWatch::check() noexcept {
    if (m_queue >= 0 && !isOpen())
        noteChange();
}

void FileWatch::countChange(int) noexcept {
    if (s_state.fetch_add(1, std::memory_order_relaxed) + 1 == NotWatched)
        s_state.fetch_add(1, std::memory_order_relaxed);
}

// The queue belongs to the parent: its signals go there, and the parent must find its events.
void FileWatch::startOverInChild() noexcept {
    if (!s_watch || s_watch->m_queue < 0)
        return;
    if (s_watch->isOpen())
        ::close(s_watch->m_queue);
    s_watch->m_queue = -1;
    countChange(SIGNAL);
}

// Nothing else asks for this signal, so a foreign descriptor under the number is told by it.
bool FileWatch::isOpen() const noexcept {
    return m_queue >= 0 && ::fcntl(m_queue, F_GETSIG) == SIGNAL;
}

void FileWatch::close() noexcept {
    if (isOpen())
        ::close(m_queue);
    m_queue = -1;
}

bool FileWatch::open() {
    m_steps.clear();
    m_queue = -1;
    const Descriptor made(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!made.isOpen())
        return false;
    Descriptor queue(::fcntl(made.get(), F_DUPFD_CLOEXEC, LEAST_DESCRIPTOR));
    // The handler comes first: no signal may find none.
    if (!queue.isOpen() || !handleSignal(&countChange) || ::fcntl(queue.get(), F_SETOWN, ::getpid()) != 0 ||
        ::fcntl(queue.get(), F_SETSIG, SIGNAL) != 0 ||
        ::fcntl(queue.get(), F_SETFL, O_NONBLOCK | O_ASYNC) != 0)
        return false;
    m_queue = queue.release();
    return true;
}

// Empties the queue, since an event that equals the last one in it is neither queued nor signalled. True if
// one matters.
bool FileWatch::takeEvents() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool matters = false;
    for (;;) {
        const ssize_t size = ::read(m_queue, buffer.data(), buffer.size());
        if (size <= 0)
            return matters;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            inotify_event event;
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char* const name = buffer.data() + at + sizeof event;
            const std::string_view told(name, event.len == 0 ? 0 : ::strnlen(name, event.len));
            matters =
                matters || (event.mask & IN_Q_OVERFLOW) != 0 ||
                std::ranges::any_of(m_steps, [&told, watch = event.wd](const Step& step) {
                    return step.watch == watch && (told.empty() || step.name.empty() || step.name == told);
                });
            at += sizeof event + event.len;
        }
    }
}

// False when the system refuses a watch. A step that is not there is no failure: the folder before it tells
// when it comes.
bool FileWatch::addStep(std::vector<Step>& steps, const std::string& path, std::uint32_t events,
                        const std::string& name) const {
    const int watch = ::inotify_add_watch(m_queue, path.c_str(), events);
    if (watch >= 0)
        steps.push_back({watch, name});
    return watch >= 0 || errno == ENOENT || errno == ENOTDIR;
}

// Watches every folder in which the kernel looks something up on its way to the file, and the file.
bool FileWatch::watchSteps() {
    std::vector<Step> steps;
    std::string folder = "/";
    std::string rest = m_path;
    bool isThere = true;
    for (int links = 0; isThere;) {
        rest.erase(0, rest.find_first_not_of('/'));
        if (rest.empty())
            break;
        const std::string name = rest.substr(0, rest.find('/'));
        rest.erase(0, name.size());
        if (!addStep(steps, folder, FOLDER_EVENTS, name))
            return false;
        const std::string next = folder + (folder.ends_with('/') ? "" : "/") + name;
        std::array<char, PATH_MAX> target;
        const ssize_t length = ::readlink(next.c_str(), target.data(), target.size());
        if (length > 0) {
            const std::string_view link(target.data(), static_cast<std::size_t>(length));
            if (++links > MAX_LINKS || link.size() == target.size())
                return false;
            if (link.starts_with('/'))
                folder = "/";
            rest.insert(0, link);
        } else if (errno == EINVAL) { // no link
            folder = next;
        } else {
            isThere = false;
        }
    }
    if (!isLocal(folder) || (isThere && !addStep(steps, folder, FILE_EVENTS, {})))
        return false;
    for (const Step& old : m_steps)
        if (std::ranges::find(steps, old.watch, &Step::watch) == steps.end())
            ::inotify_rm_watch(m_queue, old.watch);
    m_steps = std::move(steps);
    return true;
}

} // namespace Zorvane::Suite

// SPDX-License-Identifier: Apache-2.0
#include "suite/LogFile.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace Zorvane::Suite {

namespace {

constexpr std::string_view ENDING = ".log";

// An exclusive lock on a file that is open for writing, so that nobody else can hold it. It isn't waited for.
class WriteLock {
  public:
    explicit WriteLock(int file) : m_file(file), m_isHeld(set(F_WRLCK)) {}
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;
    ~WriteLock() {
        if (m_isHeld)
            set(F_UNLCK);
    }
    [[nodiscard]] bool isHeld() const { return m_isHeld; }

  private:
    bool set(short kind) const {
        struct flock whole {};
        whole.l_type = kind;
        whole.l_whence = SEEK_SET;
        return ::fcntl(m_file, F_OFD_SETLK, &whole) == 0;
    }

    int m_file;
    bool m_isHeld;
};

} // namespace

LogFile::LogFile(std::string path, std::size_t maxBytes, std::size_t maxFiles)
    : m_path(std::move(path)), m_maxBytes(maxBytes), m_maxFiles(maxFiles) {}

int LogFile::open() {
    Descriptor file(::open(m_path.c_str(),
                           O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW,
                           0644));
    struct stat facts {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
        return errno;
    if (!S_ISREG(facts.st_mode))
        return EINVAL;
    m_file = std::move(file);
    return 0;
}

void LogFile::sink_it_(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    // Twice at most: where others fill the new file at once, it grows a little.
    for (int i = 0; i < 2 && !hasRoomFor(line.size()) && isOutOfItsPlace(); ++i)
        if (open() != 0)
            break; // better a line in the old file than none
    std::string_view rest(line.data(), line.size());
    while (!rest.empty()) {
        const ssize_t written = ::write(m_file.get(), rest.data(), rest.size());
        if (written < 0 && errno != EINTR)
            throw spdlog::spdlog_ex("the log can't be written", errno);
        rest.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

// By what the file is now: others write it, too.
bool LogFile::hasRoomFor(std::size_t bytes) const {
    struct stat facts {};
    return ::fstat(m_file.get(), &facts) == 0 &&
           (facts.st_size == 0 || static_cast<std::size_t>(facts.st_size) + bytes <= m_maxBytes);
}

bool LogFile::isAtItsPath() const {
    struct stat opened {};
    struct stat there {};
    return ::fstat(m_file.get(), &opened) == 0 && ::lstat(m_path.c_str(), &there) == 0 &&
           opened.st_dev == there.st_dev && opened.st_ino == there.st_ino;
}

// Whether the full file stands there no more: another writer has moved it aside, or this one does so now.
bool LogFile::isOutOfItsPlace() const {
    const WriteLock lock(m_file.get());
    return !isAtItsPath() || (lock.isHeld() && moveAside());
}

// The oldest first, so that each finds its new place free. Stops where one can't be moved: the next would
// take its place.
bool LogFile::moveAside() const {
    for (std::size_t number = m_maxFiles; number > 0; --number)
        if (::rename(oldName(number - 1).c_str(), oldName(number).c_str()) != 0 && errno != ENOENT)
            return false;
    return true;
}

// With number 0, the file itself.
std::string LogFile::oldName(std::size_t number) const {
    if (number == 0)
        return m_path;
    return m_path.substr(0, m_path.size() - ENDING.size()) + "." + std::to_string(number) +
           std::string(ENDING);
}

} // namespace Zorvane::Suite

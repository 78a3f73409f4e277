// SPDX-License-Identifier: Apache-2.0
#include "suite/configuration.h"

#include "suite/FileWatch.h"
#include "suite/configurationDocument.h"
#include "suite/descriptor.h"
#include "suite/printable.h"
#include "suite/terminal.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace Zorvane::Suite {

namespace {

constexpr const char* STANDARD_FILE = "/usr/tarnv/kelvarion/kvn.toml";

// A configuration is a page or two; the bound keeps a wrong file (an image, a dump) out.
constexpr off_t MAX_FILE_SIZE = off_t{1} << 20;

// The file as it is on disk; a failure is told by errno.
std::optional<std::string> readFile(const char* path) {
    // A pipe or device in the file's place must not hold the program up.
    const Descriptor file(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat facts {};
    if (!file.isOpen() || ::fstat(file.get(), &facts) != 0)
        return std::nullopt;
    if (!S_ISREG(facts.st_mode) || facts.st_size > MAX_FILE_SIZE) {
        errno = S_ISREG(facts.st_mode) ? EFBIG : S_ISDIR(facts.st_mode) ? EISDIR : EINVAL;
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(facts.st_size), '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        const ssize_t got = ::read(file.get(), text.data() + size, text.size() - size);
        if (got == 0)
            break;
        if (got < 0 && errno != EINTR)
            return std::nullopt;
        size += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    text.resize(size);
    return text;
}

// The identity of a file's content as far as stat can tell it. The time of the last change moves with every
// write, rename and change of the time of writing.
struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = -1; ///< -1: there is no file
    std::time_t seconds = 0;
    long nanoseconds = 0;

    bool operator==(const Stamp&) const = default;

    // File times move in ticks of the kernel's clock: a file written a moment ago may be written again
    // without a new stamp, so its stamp proves nothing yet.
    [[nodiscard]] bool isFresh() const {
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME, &now);
        const double age =
            1e9 * static_cast<double>(now.tv_sec - seconds) + static_cast<double>(now.tv_nsec - nanoseconds);
        return size >= 0 && std::abs(age) < 50e6;
    }
};

Stamp stampOf(const char* path) {
    struct stat facts {};
    if (::stat(path, &facts) != 0)
        return {};
    return {facts.st_dev, facts.st_ino, facts.st_size, facts.st_ctim.tv_sec, facts.st_ctim.tv_nsec};
}

// The name that the environment gives, or null.
const char* chosenFile() {
    const char* chosen = ::secure_getenv("KVN_CONF");
    return chosen && *chosen ? chosen : nullptr;
}

class ConfigurationFile {
  public:
    const Configuration& current();
    std::uint32_t watch();

  private:
    [[nodiscard]] Configuration load(const std::optional<std::string>& text, int error, bool chosen);

    std::string m_path;
    Stamp m_stamp;
    bool m_proven = false; ///< an equal stamp means an equal content
    std::optional<std::string> m_text;
    std::string m_told;
    Configuration m_configuration;
    FileWatch m_watch;
};

const Configuration& ConfigurationFile::current() {
    const char* const chosen = chosenFile();
    const char* const path = chosen ? chosen : STANDARD_FILE;
    m_watch.check();
    const Stamp stamp = stampOf(path);
    const bool samePath = path == m_path;
    if (samePath && m_proven && stamp == m_stamp)
        return m_configuration;

    m_proven = false;
    const bool fresh = stamp.isFresh();
    std::optional<std::string> text = readFile(path);
    const int error = errno;
    if (!samePath || !text || text != m_text) {
        m_path = path;
        m_configuration = load(text, error, chosen != nullptr);
        m_text = std::move(text);
        m_watch.noteChange(); // which the watch may have missed
    }
    m_stamp = stamp;
    m_proven = !fresh;
    return m_configuration;
}

std::uint32_t ConfigurationFile::watch() {
    const char* const chosen = chosenFile();
    return m_watch.follow(chosen ? chosen : STANDARD_FILE);
}

Configuration ConfigurationFile::load(const std::optional<std::string>& text, int error, bool chosen) {
    Configuration out;
    std::string complaints;
    if (text)
        out = parseConfiguration(*text, m_path, complaints);
    // No file in the standard place is an ordinary state; a name that somebody chose is not.
    else if (chosen || (error != ENOENT && error != ENOTDIR))
        complaints = printable(m_path) + ": " + std::strerror(error) + "; there is no configuration\n";
    if (complaints != m_told)
        (void)writeTerminal(stderr, complaints);
    m_told = complaints;
    return out;
}

} // namespace

Levels Configuration::levelsOf(std::uint64_t originator) const {
    const auto own = originatorLevels.find(originator);
    return own == originatorLevels.end() ? levels : own->second;
}

namespace {
ConfigurationFile& file() {
    static ConfigurationFile theFile;
    return theFile;
}
} // namespace

const Configuration& configuration() {
    return file().current();
}

std::string configurationPath() {
    const char* const chosen = chosenFile();
    return chosen ? chosen : STANDARD_FILE;
}

std::uint32_t watchConfiguration() {
    return file().watch();
}

} // namespace Zorvane::Suite

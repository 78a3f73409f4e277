// SPDX-License-Identifier: Apache-2.0
#include "bundle/NewFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zorvane {

namespace {

std::string existsAlready(const std::string& path) {
    return path + " stands there already; replace it with --force, or name another file";
}

void requireFree(const std::string& path, bool isReplacing) {
    struct stat facts {};
    if (::lstat(path.c_str(), &facts) != 0)
        return; // what else may be wrong with the path is told when the file is made
    if (!S_ISREG(facts.st_mode))
        throw BundleFailure(path + " is no plain file; name another one");
    if (!isReplacing)
        throw BundleFailure(existsAlready(path));
}

std::string patternBeside(const std::string& path) {
    const std::filesystem::path given(path);
    return (given.parent_path() / ("." + given.filename().string() + ".XXXXXX")).string();
}

// The move that leaves alone what came to stand there meanwhile.
int moveWithoutReplacing(const char* from, const char* to) {
    const int result = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
    if (result == 0 || errno != EINVAL)
        return result;
    // A file system without that move has links.
    return ::link(from, to) != 0 ? -1 : ::unlink(from);
}

} // namespace

NewFile::NewFile(std::string path, bool isReplacing)
    : m_path(std::move(path)),
      m_temporary(patternBeside(m_path)),
      m_isReplacing(isReplacing),
      m_file((requireFree(m_path, isReplacing), ::mkostemp(m_temporary.data(), O_CLOEXEC))) {
    if (!m_file.isOpen())
        fail("made");
}

NewFile::~NewFile() {
    if (!m_temporary.empty())
        ::unlink(m_temporary.c_str());
}

void NewFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(m_file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            fail("written");
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

void NewFile::commit() {
    if (::fsync(m_file.get()) != 0)
        fail("written");
    const int result = m_isReplacing ? ::rename(m_temporary.c_str(), m_path.c_str())
                                     : moveWithoutReplacing(m_temporary.c_str(), m_path.c_str());
    if (result != 0 && errno == EEXIST)
        throw BundleFailure(existsAlready(m_path));
    if (result != 0)
        fail("made");
    m_temporary.clear();
}

void NewFile::fail(const char* step) const {
    throw BundleFailure(m_path + " can't be " + step + ": " + std::strerror(errno));
}

} // namespace Zorvane

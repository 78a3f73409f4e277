// SPDX-License-Identifier: Apache-2.0
#include "lab/ReceivedFiles.h"

#include <cctype>
#include <fstream>
#include <string>

namespace Zorvane {

namespace {

namespace fs = std::filesystem;

// What all files together may take: clients must fill neither the disk nor its table of files, in which a
// folder has an entry as well.
constexpr std::uintmax_t MAX_SIZE = std::uintmax_t{256} << 20;
constexpr std::uintmax_t MAX_ENTRIES = 5000;

// A name from a client as a file's: it can leave neither the folder nor the characters that every tool can
// take, and no other name becomes the same. One that is too long for the file system is refused there.
std::string plain(std::string_view name) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string safe;
    for (const char c : name) {
        const auto code = static_cast<unsigned char>(c);
        if (std::isalnum(code) || c == '-' || c == '_' || (c == '.' && !safe.empty()))
            safe += c;
        else
            safe += {'%', digits[code >> 4], digits[code & 15]};
    }
    return safe.empty() ? "%" : safe;
}

} // namespace

fs::path ReceivedFiles::fileOf(std::string_view client, std::string_view file) const {
    return m_folder / "files" / plain(client) / plain(file);
}

fs::path ReceivedFiles::logOf(std::string_view client) const {
    return m_folder / "logs" / plain(client);
}

bool ReceivedFiles::keep(const fs::path& place, std::string_view bytes) {
    const std::lock_guard lock(m_lock);
    const fs::path fresh = m_folder / "new";
    std::error_code error;
    fs::create_directories(m_folder, error);
    if (error || !hasRoom(bytes.size()))
        return false;
    std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    const bool isNewFolder = out && fs::create_directories(place.parent_path(), error);
    if (out && !error)
        fs::rename(fresh, place, error);
    if (!out || error) {
        fs::remove(fresh, error);
        if (isNewFolder)
            fs::remove(place.parent_path(), error);
        return false;
    }
    m_size += bytes.size();
    m_count += isNewFolder ? 2 : 1;
    return true;
}

// Counted anew only when they seem too many: a new file in an old one's place counts twice until then, and
// somebody may have made room.
bool ReceivedFiles::hasRoom(std::size_t size) {
    const auto fits = [&] { return m_size + size <= MAX_SIZE && m_count < MAX_ENTRIES; };
    if (!fits())
        count();
    return fits();
}

void ReceivedFiles::count() {
    m_size = m_count = 0;
    std::error_code error;
    for (auto entry = fs::recursive_directory_iterator(m_folder, error);
         !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        ++m_count;
        if (entry->is_regular_file(error))
            m_size += entry->file_size(error);
    }
    if (error)
        m_count = MAX_ENTRIES;
}

} // namespace Zorvane

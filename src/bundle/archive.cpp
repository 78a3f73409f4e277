// SPDX-License-Identifier: Apache-2.0
#include "bundle/archive.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>

#include <zlib.h>

namespace Zorvane {

namespace {

constexpr std::size_t BLOCK = 512;
constexpr int GZIP_WINDOW = 15 + 16; // the largest window, in gzip's frame
constexpr int MEMORY_LEVEL = 8;      // the library's default

struct Header {
    char name[TarGz::NAME_SIZE];
    char mode[8], uid[8], gid[8], size[12], mtime[12], checksum[8];
    char type;
    char linkName[100];
    char magic[6], version[2];
    char userName[32], groupName[32], deviceMajor[8], deviceMinor[8], prefix[155], padding[12];
};
static_assert(sizeof(Header) == BLOCK);

template <std::size_t Size>
void writeOctal(char (&target)[Size], unsigned long long number) {
    std::snprintf(target, Size, "%0*llo", static_cast<int>(Size - 1), number);
}

template <std::size_t Size>
void writeText(char (&target)[Size], std::string_view text) {
    std::memcpy(target, text.data(), std::min(text.size(), Size));
}

Header headerOf(std::string_view name, std::size_t size, std::time_t made) {
    Header header{};
    writeText(header.name, name);
    writeOctal(header.mode, 0600);
    writeOctal(header.uid, 0);
    writeOctal(header.gid, 0);
    writeOctal(header.size, size);
    writeOctal(header.mtime, static_cast<unsigned long long>(made));
    header.type = '0';
    writeText(header.magic, "ustar");
    writeText(header.version, "00");
    // The sum of all bytes, its own place counting as blanks.
    std::memset(header.checksum, ' ', sizeof header.checksum);
    unsigned sum = 0;
    for (std::size_t i = 0; i < BLOCK; ++i)
        sum += reinterpret_cast<const unsigned char*>(&header)[i];
    std::snprintf(header.checksum, sizeof header.checksum, "%06o", sum);
    return header;
}

} // namespace

void TarGz::add(std::string_view name, std::string_view content) {
    assert(name.size() <= NAME_SIZE);
    const Header header = headerOf(name, content.size(), m_made);
    m_tar.append(reinterpret_cast<const char*>(&header), sizeof header);
    m_tar += content;
    m_tar.resize((m_tar.size() + BLOCK - 1) / BLOCK * BLOCK);
}

std::string TarGz::finish() const {
    std::string tar = m_tar;
    tar.resize(tar.size() + 2 * BLOCK); // two empty blocks are its end
    z_stream stream{};
    if (::deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, GZIP_WINDOW, MEMORY_LEVEL,
                       Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    std::string packed(::deflateBound(&stream, tar.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(tar.data());
    stream.avail_in = static_cast<uInt>(tar.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = ::deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    ::deflateEnd(&stream);
    if (result != Z_STREAM_END)
        throw std::runtime_error("the archive can't be compressed");
    return packed;
}

} // namespace Zorvane

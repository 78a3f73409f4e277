// SPDX-License-Identifier: Apache-2.0
#include "lab/LibraryMemory.h"

#include <limits>
#include <stdexcept>

#include <sqlite3.h>

namespace Zorvane {

namespace {

constexpr std::int64_t NO_BOUND = std::numeric_limits<std::int64_t>::max() / 2;

sqlite3_mem_methods plain;
thread_local std::int64_t bytesLeft = NO_BOUND;

void* allocate(int size) {
    void* const block = size <= bytesLeft ? plain.xMalloc(size) : nullptr;
    if (block)
        bytesLeft -= plain.xSize(block);
    return block;
}

void release(void* block) {
    bytesLeft += plain.xSize(block);
    plain.xFree(block);
}

void* resize(void* block, int size) {
    const int before = plain.xSize(block);
    void* const resized = size - before <= bytesLeft ? plain.xRealloc(block, size) : nullptr;
    if (resized)
        bytesLeft -= plain.xSize(resized) - before;
    return resized;
}

int configure() {
    // The library's own figures cost a lock at each allocation.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &plain);
    sqlite3_mem_methods metered = plain;
    metered.xMalloc = allocate;
    metered.xFree = release;
    metered.xRealloc = resize;
    return sqlite3_config(SQLITE_CONFIG_MALLOC, &metered);
}

} // namespace

void meterLibraryMemory() {
    static const int result = configure();
    if (result != SQLITE_OK)
        throw std::runtime_error("the database library was in use before its memory could be bounded");
}

LibraryMemoryBound::LibraryMemoryBound(std::int64_t bytes) {
    bytesLeft = bytes;
}

LibraryMemoryBound::~LibraryMemoryBound() {
    bytesLeft = NO_BOUND;
}

} // namespace Zorvane

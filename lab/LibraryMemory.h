// SPDX-License-Identifier: Apache-2.0
// Bounds what the database library takes of the memory for one request. The library itself only knows a bound
// for the whole process, and there a greedy request takes what all others need.
#pragma once

#include <cstdint>

namespace Zorvane {

/// Before the first connection; later calls do nothing.
void meterLibraryMemory();

/// For the length of a scope the library gets so many bytes on this thread, beyond what its connections have,
/// and then a lack of memory.
class LibraryMemoryBound {
  public:
    explicit LibraryMemoryBound(std::int64_t bytes);
    LibraryMemoryBound(const LibraryMemoryBound&) = delete;
    LibraryMemoryBound& operator=(const LibraryMemoryBound&) = delete;
    ~LibraryMemoryBound();
};

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The configuration file of the target.
#include "frontend/veconfig.h"
#include "fuzz/fuzzing.h"

#include <sys/mman.h>
#include <unistd.h>

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int file = ::memfd_create("veconfig", MFD_CLOEXEC);
    Fuzz::require(::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    B2VInput input;
    const int rc = parseVEconfig("/proc/self/fd/" + std::to_string(file), input);
    Fuzz::require(rc != 0 || input.diskMap.empty() || !input.dataStore.empty() ||
                  input.diskMap.front().dataStoreName.empty());
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
// Path rules: the separator, and two paths, a line each.
#include "fuzz/fuzzing.h"
#include "platform/pathManipulation.h"

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const auto separator = static_cast<char>(input.choice(256));
    const std::string first = input.line();
    const std::string second = input.line();
    for (const char each : {separator, '\0'}) {
        NormalizePathSeparators(first, each);
        GetFileNameFromPath(first, each);
        GetFileNameWithoutExtFromPath(first, each);
        GetExtensionFromPath(first, each);
        GetDirNameFromPath(first, each);
    }
    std::string canonical;
    canonicalizePath(first, canonical);
    Fuzz::require(comparePaths(first, first) == 1 &&
                  comparePaths(first, second) == comparePaths(second, first));
    return 0;
}

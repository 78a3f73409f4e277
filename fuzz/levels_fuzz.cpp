// SPDX-License-Identifier: Apache-2.0
// Dotted and tagged levels: two of them and a value, a line each.
#include "fuzz/fuzzing.h"
#include "platform/sVersion.h"

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const std::string first = input.line();
    const std::string second = input.line();
    const std::string value = input.line();

    CompareLevels(first, second);
    CompareLinuxKernelVersion(first, second);
    CompareSolarisKernelVersion(first, second);
    IntVersionToString(StringVersionToInt(first));
    getReleaseUpdate(first);

    bool match = false;
    Fuzz::require((CompareOSLevels(first, second, match) == 0) == match);
    CompareOSLevels(first, second, match, {OSLEVEL_VERSION, OSLEVEL_TYPE, value});
    CompareNewFormatOSLevels(first, second);
    GetVersionFromOSLevel(first);
    int release = 0;
    GetReleaseIdFromOSLevel(first, release);
    std::string out;
    GetSupportedOSLevel(first, out);
    GetFriendlyWindowsVersionString(first);
    GetDbWindowsVersion(first, second, value);
    // A value that was put in is there.
    const bool isPlain = value.find('#') == std::string::npos;
    if (first.size() > OSLEVEL_OLD_FORM_MAX && isPlain &&
        ReplaceInfoInOSLevel(first, OSLEVEL_RELEASE_ID, value, out) == 0 &&
        out.size() > OSLEVEL_OLD_FORM_MAX) {
        std::string found;
        Fuzz::require(GetInfoFromOSLevel(out, OSLEVEL_RELEASE_ID, found) == 0 && found == value);
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
// Option vectors, an option or value a line.
#include "frontend/CZorb2vCommandLine.h"
#include "fuzz/fuzzing.h"

#include <sstream>

using namespace Zorvane;

namespace {

// A value may name the file that is read next, and not every file has an end.
bool isDevice(const std::string& word) {
    return word.find("dev/") != std::string::npos || word.find("proc/") != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> arguments = Fuzz::Input(data, size).lines();
    if (std::any_of(arguments.begin(), arguments.end(), isDevice))
        return 0;
    CZorb2vCommandLine commandLine;
    B2VInput input;
    const int rc = commandLine.parseArguments(arguments, input);
    Fuzz::require(rc >= 0 && rc <= 3);
    commandLine.validateInput(input);
    std::ostringstream out;
    out << commandLine << input;
    return 0;
}

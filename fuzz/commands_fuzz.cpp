// SPDX-License-Identifier: Apache-2.0
// Command texts into argument vectors. Arguments that are quoted and parsed again are the same.
#include "fuzz/fuzzing.h"
#include "platform/stringManipulation.h"

using namespace Zorvane;

namespace {

std::vector<std::string> parse(const std::string& command) {
    char** parsed = nullptr;
    const int done = ParseCommand(command, parsed);
    std::vector<std::string> arguments;
    for (char** each = parsed; each && *each; ++each)
        arguments.emplace_back(*each);
    FreeArguments(parsed);
    if (!done)
        arguments.clear();
    return arguments;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> arguments = parse(Fuzz::Input(data, size).rest());
    std::string quoted;
    for (const std::string& argument : arguments)
        quoted += ShellQuoteSingle(argument) + ' ';
    Fuzz::require(parse(quoted) == arguments);
    return 0;
}

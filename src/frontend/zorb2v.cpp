// SPDX-License-Identifier: Apache-2.0
#include "frontend/zorb2v.h"

#include "frontend/CZorb2vCommandLine.h"
#include "logging/Trace.h"

#include <string>
#include <vector>

namespace Zorvane {

namespace {

std::string joined(std::int32_t argc, char** argv) {
    std::string text;
    for (std::int32_t i = 0; i < argc; ++i)
        text += (i > 0 ? " " : "") + std::string(argv[i]);
    return text;
}

} // namespace

int zormain(std::int32_t argc, char** argv) {
    Trace trace(g_appLog, "zorb2v:zormain()");
    trace.write(LEVEL_TRACE, "Command line: ", joined(argc, argv));
    std::vector<std::string> arguments;
    CZorb2vCommandLine commandLine;
    if (argc > 1)
        arguments.assign(argv + 1, argv + argc);
    const int status = commandLine.execute(arguments);
    return trace.leave(status, ", return rc=", status);
}

} // namespace Zorvane

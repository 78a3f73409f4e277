// SPDX-License-Identifier: Apache-2.0
// Runs child processes, with and without a shell, and writes what it took of their output. Its status is the
// worst return code of the runner.
#include "logging/CZorLog.h"
#include "platform/zorSystemCommon.h"

#include <algorithm>
#include <clocale>
#include <new>
#include <sstream>

namespace Zorvane {

namespace {

int runChildren() {
    std::stringstream output;
    std::int32_t exitStatus = 0;
    int worst = ZorRunCommandCommon("echo one; echo two; echo three >&2", output, exitStatus,
                                    ZOR_SYSTEM_CAPTURE_ALL, true);
    if (worst == ZOR_SUCCESS && output.str() != "one\ntwo\nthree\n")
        worst = 99;

    const char* const arguments[] = {"/bin/sh", "-c", "echo four", nullptr};
    const int rc = ZorRunCommandCommon2(arguments, output, exitStatus, ZOR_SYSTEM_KEEP_LOCALE, true);
    worst = std::max(worst, rc == ZOR_SUCCESS && output.str() != "four\n" ? 99 : rc);

    int lines = 0;
    const auto count = [](void* sum, const std::string&) { return ++*static_cast<int*>(sum) > 100 ? 1 : 0; };
    const int counted = ZorRunCommandCommon("echo five; sleep 0.01; echo six", count, &lines, exitStatus,
                                            ZOR_SYSTEM_SPINNER, false);
    return std::max(worst, counted == ZOR_SUCCESS && lines != 2 ? 99 : counted);
}

} // namespace

} // namespace Zorvane

int main() {
    using namespace Zorvane;
    std::setlocale(LC_ALL, "");
    try {
        g_libLog = new CZorLog(ZOR_PRODUCT_ID, ZOR_LIBRARY_ORIGINATOR, ZOR_COMMAND_ORIGINATOR);
        return runChildren();
    } catch (const std::bad_alloc&) {
        return 10; // as the command does
    }
}

// SPDX-License-Identifier: Apache-2.0
// No security service stands behind these calls: each fails, and a site that asks for one is told so.
#include "suite/quss.h"

#include "suite/kvnclient.h"
#include "suite/terminal.h"

#include <cstdio>

namespace {

int tellUnavailable() {
    static bool told = false;
    if (!told)
        (void)Zorvane::Suite::writeTerminal(
            stderr,
            "The setting of quss in [master] of kvn.toml asks for secured connections, which this build "
            "can't make. Set it to \"prohibited\", or use a build with the suite's own libraries.\n");
    told = true;
    return KVN_STATUS_NO_SECURITY;
}

} // namespace

int QssInit(int, const char*, int, quss_context*, int) {
    return tellUnavailable();
}

int QssInitExEx(int, const char*, int, quss_context*, int, int) {
    return tellUnavailable();
}

int QssImportCredential(const char*, quss_context*) {
    return KVN_STATUS_NO_SECURITY;
}

int QssSetSocket(int, quss_context*) {
    return KVN_STATUS_NO_SECURITY;
}

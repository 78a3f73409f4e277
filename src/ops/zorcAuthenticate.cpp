// SPDX-License-Identifier: Apache-2.0
#include "ops/zorcAuthenticate.h"

#include "logging/Trace.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"
#include "suite/quss.h"

#include <array>

namespace Zorvane {

namespace {

constexpr std::size_t CREDENTIAL_PATH_SIZE = 1025;
constexpr int QUSS_VERSION = 60;
/// What a peer reads in the opening's place when no security is in use.
constexpr const char* JUNK_OPENING = "0 0";

// The state of one negotiation; `mode` is a security mode of the suite, -1 while it is not settled.
struct Negotiation {
    quss_context context{};
    std::array<char, CREDENTIAL_PATH_SIZE> credential{};
    int mode = -1;
    int first = 0;
    int second = 0;
};

int initialize(quss_context& context) {
    return kvlink_check_kelvarion_daemon() ? QssInit(QUSS_VERSION, "", 0, &context, 0)
                                           : QssInitExEx(QUSS_VERSION, "", 0, &context, 0, 1);
}

// 0 with the mode settled, or the code of the step that failed.
int negotiate(int descriptor, Negotiation& state, Trace& trace) {
    if (const int rc = initialize(state.context)) {
        trace.write(LEVEL_FAILURE, "QssInit failed, rc=", rc);
        trace.write(LEVEL_FAILURE, "defaulting to QuSS Prohibited");
        return rc;
    }
    trace.write(LEVEL_TRACE, "QssInit has succeeded");
    if (const int rc =
            kvlink_get_credential_path(descriptor, state.credential.data(), CREDENTIAL_PATH_SIZE)) {
        trace.write(LEVEL_FAILURE, "kvlink_get_credential_path failed, rc=", rc);
        return rc;
    }
    if (const int rc = QssImportCredential(state.credential.data(), &state.context)) {
        trace.write(LEVEL_FAILURE, "QssImportCredential failed, rc=", rc);
        return rc;
    }
    trace.write(LEVEL_TRACE, "credential imported");
    if (const int rc = QssSetSocket(descriptor, &state.context)) {
        trace.write(LEVEL_FAILURE, "QssSetSocket failed, rc=", rc);
        return rc;
    }
    trace.write(LEVEL_TRACE, "qss socket set");
    const int rc = kvlink_determine_quss_socket(descriptor, 0, &state.mode, state.credential.data(),
                                                CREDENTIAL_PATH_SIZE, &state.first, &state.second, 0);
    if (rc != 0)
        trace.write(LEVEL_FAILURE, "kvlink_determine_quss_socket failed, rc=", rc);
    return rc;
}

} // namespace

int ZorcAuthenticate(int descriptor) {
    Trace trace(g_libLog, "zorcAuthenticate:ZorcAuthenticate()", ", descriptor=", descriptor);
    Negotiation state;
    int result = 0;
    KVN_read_master_config();
    const kvn_master_config* config = get_master_config_ptr();
    // A configuration that is gone does not prohibit anything.
    if (config && config->quss_mode == KVN_QUSS_PROHIBITED) {
        trace.write(LEVEL_TRACE, "QuSS is prohibited");
        state.mode = config->quss_mode;
    } else {
        result = negotiate(descriptor, state, trace);
        // The peer gets its opening all the same; the caller gets the failure.
        if (result != 0)
            state.mode = KVN_QUSS_PROHIBITED;
    }
    if (state.mode != KVN_QUSS_PROHIBITED) {
        int answer = 0;
        if (const int rc = kvlink_check_quss_client_magic(descriptor, 1, -1, &answer, &put_string, 0)) {
            trace.write(LEVEL_FAILURE,
                        "QuSS authentication failed, kvlink_check_quss_client_magic failed, rc=", rc);
            return trace.leave(rc, ", return rc=", rc);
        }
        trace.write(LEVEL_TRACE, "kvlink_check_quss_client_magic succeeded");
    } else {
        trace.write(LEVEL_TRACE, "QuSS prohibited, sending junk magic and cmd to server");
        put_string(descriptor, JUNK_OPENING, "opening");
    }
    return trace.leave(result, ", return rc=", result);
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "ops/peerServices.h"

#include "logging/Trace.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"

#include <unistd.h>

namespace Zorvane {

namespace {

constexpr unsigned SERVICE_TAG = 0x42505456;
constexpr int CREDENTIAL_TIMEOUT = 300; // seconds
constexpr unsigned ROLE_MASTER_SERVER = 1U << 1;

} // namespace

int ConnectMrthService(const char* host, const char* service, int* descriptor) {
    Trace trace(g_libLog, "peerServices:ConnectMrthService()", ", host=", orNull(host),
                ", service=", orNull(service));
    *descriptor = -1;
    int retval = kvn_connect_to_kvlinkd_service(host, service, descriptor);
    if (retval != 0) {
        trace.write(LEVEL_PEER, "kvn_connect_to_kvlinkd_service(", orNull(service),
                    ") failed.retval=", retval);
        return trace.leave(retval, ", return retval=", retval);
    }
    unsigned role = 0;
    retval = kvlink_verify_peer_creds(*descriptor, SERVICE_TAG, 0, &role, 0, 0, CREDENTIAL_TIMEOUT);
    if (retval != 0)
        trace.write(LEVEL_PEER, "kvlink_verify_peer_creds failed.");
    return trace.leave(retval, ", return retval=", retval);
}

int AcceptMrthService(int* descriptor) {
    Trace trace(g_libLog, "peerServices:AcceptMrthService()");
    *descriptor = -1;
    unsigned role = 0;
    int retval = kvlink_verify_peer_creds(STDIN_FILENO, SERVICE_TAG, 1, &role, 0, 0, CREDENTIAL_TIMEOUT);
    if (retval != 0) {
        trace.write(LEVEL_PEER, "kvlink_verify_peer_creds failed to accept connection. retval=", retval);
    } else if ((role & ROLE_MASTER_SERVER) == 0) {
        retval = KVN_STATUS_REFUSED;
        trace.write(LEVEL_PEER, "Peer is not a Kelvarion Master Server.");
    } else {
        *descriptor = STDIN_FILENO;
    }
    return trace.leave(retval, ", return retval=", retval);
}

} // namespace Zorvane

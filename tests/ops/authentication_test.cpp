// SPDX-License-Identifier: Apache-2.0
// The security negotiation, with the suite's closed calls played here.
#include "ops/Wire.h"
#include "ops/peerServices.h"
#include "ops/zorcAuthenticate.h"
#include "suite/Scratch.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"
#include "suite/quss.h"

#include <map>

#include <gtest/gtest.h>

namespace {

// What the calls give, by name, and those that were made.
std::map<std::string, int> results;
std::string calls;
bool isDaemon = false;
int settledMode = KVN_QUSS_ALLOWED;
unsigned peerRole = 0;

int play(const std::string& name) {
    calls += name + " ";
    return results[name];
}

} // namespace

int QssInit(int, const char*, int, quss_context*, int) {
    return play("daemon-init");
}
int QssInitExEx(int, const char*, int, quss_context*, int, int) {
    return play("init");
}
int QssImportCredential(const char* path, quss_context*) {
    EXPECT_STREQ(path, "/credential");
    return play("import");
}
int QssSetSocket(int, quss_context*) {
    return play("socket");
}
int kvlink_connect_to_service(const char*, const char*, int, int, int, int, int*) {
    return play("connect");
}
int kvn_connect_to_kvlinkd_service(const char*, const char*, int* descriptor) {
    *descriptor = results["connect"] == 0 ? 5 : -1;
    return play("connect");
}
void kvlink_closesocket(int) {}
int kvlink_verify_peer_creds(int, unsigned tag, int, unsigned* role, int, int, int timeout) {
    EXPECT_EQ(tag, 0x42505456U);
    EXPECT_EQ(timeout, 300);
    *role = peerRole;
    return play("verify");
}
bool kvlink_check_kelvarion_daemon() {
    return isDaemon;
}
int kvlink_get_credential_path(int, char* path, std::size_t size) {
    std::string("/credential").copy(path, size);
    return play("path");
}
int kvlink_determine_quss_socket(int, int, int* mode, const char*, std::size_t, int*, int*, int) {
    *mode = settledMode;
    return play("determine");
}
int kvlink_check_quss_client_magic(int, int, int, int*, int (*)(int, const char*, const char*), int) {
    return play("magic");
}

namespace Zorvane {

TEST(ZorcAuthenticate, followsTheOrderAndFallsBack) {
    const std::string all = "init path import socket determine ";
    const struct {
        const char* reason;
        const char* configured;
        int settled;
        std::map<std::string, int> failing;
        int expected;
        std::string calls;
        std::string written;
    } cases[] = {
        {"prohibited", "prohibited", 1, {}, 0, "", "0 0\n"},
        {"secured", "allowed", 1, {}, 0, all + "magic ", ""},
        {"required", "required", 0, {}, 0, all + "magic ", ""},
        {"settled without security", "allowed", 2, {}, 0, all, "0 0\n"},
        {"no service", "allowed", 1, {{"init", 11}}, 11, "init ", "0 0\n"},
        {"no credential", "allowed", 1, {{"path", 12}}, 12, "init path ", "0 0\n"},
        {"bad credential", "allowed", 1, {{"import", 13}}, 13, "init path import ", "0 0\n"},
        {"no binding", "allowed", 1, {{"socket", 14}}, 14, "init path import socket ", "0 0\n"},
        {"no mode", "allowed", 1, {{"determine", 15}}, 15, all, "0 0\n"},
        {"bad peer", "allowed", 1, {{"magic", 16}}, 16, all + "magic ", ""},
        {"misspelt", "none", 1, {{"init", 11}}, 11, "init ", "0 0\n"},
    };
    for (const auto& test : cases) {
        const Scratch scratch("master.quss = '" + std::string(test.configured) + "'\n");
        const SocketPair peers;
        results = test.failing;
        settledMode = test.settled;
        calls.clear();
        EXPECT_EQ(ZorcAuthenticate(peers.near()), test.expected) << test.reason;
        EXPECT_EQ(calls, test.calls) << test.reason;
        EXPECT_EQ(peers.hears(), test.written) << test.reason;
    }
}

TEST(ZorcAuthenticate, aDaemonInitialisesAsOne) {
    const Scratch scratch("master.quss = 'required'\n");
    const SocketPair peers;
    results = {{"daemon-init", 1}};
    calls.clear();
    isDaemon = true;
    EXPECT_EQ(ZorcAuthenticate(peers.near()), 1);
    EXPECT_EQ(calls, "daemon-init ");
    isDaemon = false;
}

TEST(ZorcAuthenticate, aConfigurationThatIsGoneProhibitsNothing) {
    const Scratch scratch;
    std::filesystem::remove(scratch.path("kvn.toml"));
    const SocketPair peers;
    results = {{"init", 1}};
    EXPECT_EQ(ZorcAuthenticate(peers.near()), 1);
}

TEST(peerServices, vouchForThePeer) {
    const struct {
        std::map<std::string, int> failing;
        unsigned role;
        int connects;
        int connected;
        int accepts;
        int accepted;
    } cases[] = {
        {{}, 2, 0, 5, 0, 0},
        {{}, 3, 0, 5, 0, 0},
        {{}, 1, 0, 5, 37, -1},
        {{{"verify", 9}}, 2, 9, 5, 9, -1},
        {{{"connect", 25}}, 2, 25, -1, 0, 0},
    };
    for (const auto& test : cases) {
        results = test.failing;
        peerRole = test.role;
        int descriptor = 99;
        EXPECT_EQ(ConnectMrthService("host", "service", &descriptor), test.connects);
        EXPECT_EQ(descriptor, test.connected);
        EXPECT_EQ(AcceptMrthService(&descriptor), test.accepts);
        EXPECT_EQ(descriptor, test.accepted);
    }
}

} // namespace Zorvane

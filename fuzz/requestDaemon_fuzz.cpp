// SPDX-License-Identifier: Apache-2.0
// A conversation with the request daemon, whose side of it is the input. The linker puts the function below
// in the place of the one that connects.
#include "fuzz/fuzzing.h"
#include "inventory/CZorb2vKvnrdConnect.h"
#include "ops/Wire.h"
#include "suite/kvlink.h"

#include <sys/socket.h>

using namespace Zorvane;

namespace {

const SocketPair* g_peers = nullptr;

} // namespace

extern "C" int zorFuzzConnect(const char*, const char*, int, int, int, int, int* descriptor) {
    *descriptor = ::dup(g_peers->near());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const bool isWelcome = input.choice(2) == 0;
    const SocketPair peers;
    g_peers = &peers;
    peers.says((isWelcome ? "0\n0\n1\n" : "") + input.rest());
    std::stringstream output;
    const int rc = CZorb2vKvnrdConnect::send_kvnrdrequest("proxy", 7, 0, KVNRD_NO_ARGUMENT, "server", output,
                                                          0, "master");
    Fuzz::require(output.view().size() <= size && (rc >= 0 || !isWelcome));
    return 0;
}

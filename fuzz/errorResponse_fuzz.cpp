// SPDX-License-Identifier: Apache-2.0
// The message of a failed method: the whole stream, or a document behind a packet that announces it.
#include "fuzz/fuzzing.h"
#include "ops/Wire.h"
#include "ops/netErrorMsg.h"

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const bool isWhole = input.choice(2) == 0;
    const std::string bytes = input.rest();
    const SocketPair peers;
    peers.says(isWhole ? bytes : packet(28, i(static_cast<long>(bytes.size()))) + bytes);
    CNetErrorMsg message;
    if (message.receiveMessage(peers.near()) == 0)
        static_cast<void>(message.getErrorString());
    return 0;
}

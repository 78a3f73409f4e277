// SPDX-License-Identifier: Apache-2.0
// Packets off a connection, whatever its bytes: of any type, of one type and length, as a client's opening.
#include "fuzz/fuzzing.h"
#include "ops/Wire.h"
#include "ops/client_utils.h"
#include "ops/sendrecv.h"

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const int expected = static_cast<int>(input.choice(PACKET_TYPES + 1));
    const int maximum = static_cast<int>(input.choice(256)) * 32;
    const SocketPair peers;
    peers.says(input.rest());
    if (expected == PACKET_TYPES) {
        SendAssertCompat(peers.near());
        return 0;
    }
    AnyPacket packet;
    int length = 0;
    do {
        packet = {};
        length = maximum == 0 ? RecvPacket(peers.near(), packet)
                              : RecvPacket(peers.near(), packet.header(), maximum, expected);
        Fuzz::require(length <= static_cast<int>(PACKET_SIZE));
    } while (length > 0);
    return 0;
}

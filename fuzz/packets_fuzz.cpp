// SPDX-License-Identifier: Apache-2.0
// A packet of any type from its bytes; what was read and written again has to read the same.
#include "fuzz/fuzzing.h"
#include "ops/packets.h"

using namespace Zorvane;

namespace {

using Bytes = std::array<unsigned char, PACKET_BUFFER_SIZE>;

// The packet's bytes from those of another; empty if there are none.
std::string recoded(PacketCodec codec, std::string_view bytes) {
    Bytes in{};
    bytes.copy(reinterpret_cast<char*>(in.data()), PACKET_SIZE);
    AnyPacket packet;
    if (codec(&Unack, in.data(), packet.header()) <= 0)
        return {};
    Bytes out{};
    const int length = codec(&Pack, out.data(), packet.header());
    return length > 0 ? std::string(out.begin(), out.begin() + length) : std::string();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const PacketCodec codec = packetCodecs[input.choice(PACKET_TYPES)];
    if (const std::string once = recoded(codec, input.rest()); !once.empty())
        Fuzz::require(recoded(codec, once) == once);
    return 0;
}

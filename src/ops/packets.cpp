// SPDX-License-Identifier: Apache-2.0
#include "ops/packets.h"

#include "ops/validateInput.h"

#include <cstring>

namespace Zorvane {

namespace {

// An encoder and decoder: the header says that it stands in a `Record`.
template <PacketRecord Record>
int codec(FieldWalker walker, unsigned char* buffer, PacketHeader& record) {
    return reinterpret_cast<Record&>(record).walk(walker, buffer);
}

int noRecord(FieldWalker, unsigned char*, PacketHeader&) {
    return -1;
}

// Each type but 0 has its record, and no type has two.
template <PacketRecord... Records>
constexpr bool isComplete() {
    std::array<bool, PACKET_TYPES> known{true};
    ((known[Records::Type] = true), ...);
    for (const bool isKnown : known)
        if (!isKnown)
            return false;
    return sizeof...(Records) == PACKET_TYPES - 1;
}

template <PacketRecord... Records>
constexpr std::array<PacketCodec, PACKET_TYPES> makeTable() {
    static_assert(isComplete<Records...>());
    std::array<PacketCodec, PACKET_TYPES> codecs{&noRecord};
    ((codecs[Records::Type] = &codec<Records>), ...);
    return codecs;
}

} // namespace

constinit const std::array<PacketCodec, PACKET_TYPES> packetCodecs =
    makeTable<Type1Request, Type1Reply, Type3Request, Type3Reply, Type5Request, Type5Reply, MsgRequest,
              LogRequest, MethodExecute, VersionRequest, VersionReply, PushRequest, PushReply, PullRequest,
              PullReply, MsgReply, ImportRequest, ImportReply, Type19Packet, Type20Packet,
              PullProcedureRequest, DbRequest, DbReply, MethodExecuteReply, ErrRequest, ChangeRequest,
              ChangeReply, ErrorResponse, Type29Packet, Type30Packet>();

int MethodExecute::walk(FieldWalker walker, unsigned char* buffer) {
    const int length = walker(buffer, nullptr, "sssssX",
                              {&header.type, &header.len, &operation, &resource, &count, parameters.field()});
    if (length < 0)
        return length;
    // The count is the sender's word; the area ends with NUL whatever it says.
    std::string_view rest(parameters.text.data(), parameters.text.size());
    for (unsigned i = 0; i < count && !rest.empty(); ++i) {
        const std::string_view text = rest.substr(0, rest.find('\0'));
        if (const int rc = ValidateInput(text))
            return rc;
        rest.remove_prefix(text.size() + 1);
    }
    return length;
}

} // namespace Zorvane

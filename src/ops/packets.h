// SPDX-License-Identifier: Apache-2.0
// The packets between the recovery daemons and their clients: the one declaration that both sides include.
//
// A packet is a header and the fields of its type, in the order of its record; pack.h has the letters of the
// formats. Raw bytes (documents, files) may follow a packet on the connection, as told at each record.
#pragma once

#include "ops/TextSlot.h"

#include <array>
#include <concepts>
#include <type_traits>

namespace Zorvane {

enum PacketType : std::uint16_t {
    NO_PACKET = 0, ///< has no record; RecvPacket's word for "any type"
    TYPE1_REQUEST = 1,
    TYPE1_REPLY = 2,
    TYPE3_REQUEST = 3,
    TYPE3_REPLY = 4,
    TYPE5_REQUEST = 5,
    TYPE5_REPLY = 6,
    MSG_REQUEST = 7,
    LOG_REQUEST = 8,
    METHOD_EXECUTE = 9,
    VERSION_REQUEST = 10,
    VERSION_REPLY = 11,
    PUSH_REQUEST = 12,
    PUSH_REPLY = 13,
    PULL_REQUEST = 14,
    PULL_REPLY = 15,
    MSG_REPLY = 16,
    IMPORT_REQUEST = 17,
    IMPORT_REPLY = 18,
    TYPE19_PACKET = 19,
    TYPE20_PACKET = 20,
    PULL_PROCEDURE_REQUEST = 21,
    DB_REQUEST = 22,
    DB_REPLY = 23,
    METHOD_EXECUTE_REPLY = 24,
    ERR_REQUEST = 25,
    CHANGE_REQUEST = 26,
    CHANGE_REPLY = 27,
    ERROR_RESPONSE = 28,
    TYPE29_PACKET = 29,
    TYPE30_PACKET = 30,
};
inline constexpr std::size_t PACKET_TYPES = 31;

/// In METHOD_EXECUTE: the client wants an error response; in its reply: one follows.
inline constexpr std::uint16_t PACKET_ERROR_FLAG = 0x0080;
/// What of the header's type word is the type.
inline constexpr std::uint16_t PACKET_TYPE_MASK = 0xFF7F;

/// The bounds of the text fields, the NUL included: longer texts are cut by whoever sends them.
inline constexpr std::size_t CLIENT_NAME_SIZE = 512;
inline constexpr std::size_t MSG_CLIENT_NAME_SIZE = 561; ///< of a message, for historical reasons
inline constexpr std::size_t OBJECT_NAME_SIZE = 128;     ///< a file or a configuration
inline constexpr std::size_t LABEL_SIZE = 48;
inline constexpr std::size_t VERSION_SIZE = 16;
/// The most bytes of text behind a MSG_REQUEST.
inline constexpr std::size_t MESSAGE_TEXT_SIZE = 1024;

/// What a client announces of itself, and the daemon answers with.
inline constexpr const char* ZOR_CLIENT_VERSION = "6.5.0";
inline constexpr const char* ZOR_ESM_TYPE = "KVN";

struct PacketHeader {
    std::uint16_t type = NO_PACKET; ///< of PacketType, with or without PACKET_ERROR_FLAG
    std::uint16_t len = 0;          ///< bytes of the packet, the header's 4 included; filled in by SendPacket

    [[nodiscard]] constexpr std::uint16_t maskedType() const { return type & PACKET_TYPE_MASK; }
    [[nodiscard]] constexpr bool hasErrorFlag() const { return (type & PACKET_ERROR_FLAG) != 0; }
};
inline constexpr std::size_t PACKET_HEADER_SIZE = 4;

// --- The records. Each tells its type, its format, and walks its fields.

/// Not in use between these peers, but admitted by both.
template <PacketType T>
struct NameRequest {
    static constexpr PacketType Type = T;
    PacketHeader header{T};
    TextSlot<CLIENT_NAME_SIZE> name{};
    TextSlot<LABEL_SIZE> label{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssSS", {&header.type, &header.len, name.field(), label.field()});
    }
};
using Type1Request = NameRequest<TYPE1_REQUEST>;
using Type3Request = NameRequest<TYPE3_REQUEST>;
using Type5Request = NameRequest<TYPE5_REQUEST>;
/// `name` is the client, `label` is empty; the log's text follows, up to the end of the stream. No reply.
using LogRequest = NameRequest<LOG_REQUEST>;

/// A bare status; 0 is success.
template <PacketType T>
struct StatusReply {
    static constexpr PacketType Type = T;
    static constexpr int MaxSize = 6;
    PacketHeader header{T};
    std::uint8_t status = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssc", {&header.type, &header.len, &status});
    }
};
using Type1Reply = StatusReply<TYPE1_REPLY>;
using Type3Reply = StatusReply<TYPE3_REPLY>;
using Type5Reply = StatusReply<TYPE5_REPLY>;
using PushReply = StatusReply<PUSH_REPLY>;
using MsgReply = StatusReply<MSG_REPLY>;
using ImportReply = StatusReply<IMPORT_REPLY>;
using ChangeReply = StatusReply<CHANGE_REPLY>;
static_assert(sizeof(PushReply) == PushReply::MaxSize);

/// A message for the system log of the daemon's host; `textLength` bytes of text follow.
struct MsgRequest {
    static constexpr PacketType Type = MSG_REQUEST;
    PacketHeader header{Type};
    std::uint8_t severity = 0;
    std::uint16_t textLength = 0;
    TextSlot<MSG_CLIENT_NAME_SIZE> client{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "sscsS",
                      {&header.type, &header.len, &severity, &textLength, client.field()});
    }
};

/// A method call. With PACKET_ERROR_FLAG in the type the client wants an error response if the method fails.
struct MethodExecute {
    static constexpr PacketType Type = METHOD_EXECUTE;
    PacketHeader header{Type};
    std::uint16_t operation = 0;
    std::uint16_t resource = 0;
    std::uint16_t count = 0; ///< of parameters, also of those that were cut
    ParameterArea parameters{};

    /// -2 for parameters that a shell would take for a command.
    int walk(FieldWalker walker, unsigned char* buffer);
};

/// The first packet of each connection.
struct VersionRequest {
    static constexpr PacketType Type = VERSION_REQUEST;
    PacketHeader header{Type};
    TextSlot<VERSION_SIZE> version{};
    TextSlot<VERSION_SIZE> esmType{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssSS", {&header.type, &header.len, version.field(), esmType.field()});
    }
};

/// Its answer. Status 1: compatible, 2: not compatible, others leave it to the client.
struct VersionReply {
    static constexpr PacketType Type = VERSION_REPLY;
    static constexpr int MaxSize = 38;
    PacketHeader header{Type};
    std::uint8_t status = 0;
    TextSlot<VERSION_SIZE> version{};
    TextSlot<VERSION_SIZE> esmType{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "sscSS",
                      {&header.type, &header.len, &status, version.field(), esmType.field()});
    }
};

/// A file for a client's configuration; `byteCount` bytes follow.
struct PushRequest {
    static constexpr PacketType Type = PUSH_REQUEST;
    PacketHeader header{Type};
    std::int32_t byteCount = 0;
    TextSlot<OBJECT_NAME_SIZE> fileName{};
    TextSlot<OBJECT_NAME_SIZE> configuration{};
    TextSlot<CLIENT_NAME_SIZE> client{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(
            buffer, nullptr, "ssiSSS",
            {&header.type, &header.len, &byteCount, fileName.field(), configuration.field(), client.field()});
    }
};

/// Asks for a file, or for a procedure's file.
template <PacketType T>
struct FileRequest {
    static constexpr PacketType Type = T;
    PacketHeader header{T};
    TextSlot<OBJECT_NAME_SIZE> source{};
    TextSlot<CLIENT_NAME_SIZE> client{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssSS", {&header.type, &header.len, source.field(), client.field()});
    }
};
using PullRequest = FileRequest<PULL_REQUEST>;
using PullProcedureRequest = FileRequest<PULL_PROCEDURE_REQUEST>;

/// Its answer; with status 0, `byteCount` bytes follow.
struct PullReply {
    static constexpr PacketType Type = PULL_REPLY;
    static constexpr int MaxSize = 16;
    PacketHeader header{Type};
    std::uint8_t status = 0;
    std::int32_t fileMode = 0;
    std::int32_t byteCount = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "sscii", {&header.type, &header.len, &status, &fileMode, &byteCount});
    }
};
static_assert(sizeof(PullReply) == PullReply::MaxSize);

/// A configuration or package to import; `byteCount` bytes follow.
struct ImportRequest {
    static constexpr PacketType Type = IMPORT_REQUEST;
    PacketHeader header{Type};
    std::int32_t byteCount = 0;
    TextSlot<OBJECT_NAME_SIZE> configuration{};
    TextSlot<CLIENT_NAME_SIZE> client{};
    std::int32_t resource = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(
            buffer, nullptr, "ssiSSi",
            {&header.type, &header.len, &byteCount, configuration.field(), client.field(), &resource});
    }
};

/// Not in use; each has the fields of its format.
struct Type19Packet {
    static constexpr PacketType Type = TYPE19_PACKET;
    PacketHeader header{Type};
    TextSlot<CLIENT_NAME_SIZE> name{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssS", {&header.type, &header.len, name.field()});
    }
};
struct Type29Packet {
    static constexpr PacketType Type = TYPE29_PACKET;
    PacketHeader header{Type};
    std::int32_t first = 0;
    std::int32_t second = 0;
    std::int32_t third = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssiii", {&header.type, &header.len, &first, &second, &third});
    }
};

/// A status and a number, and two plain numbers: the shapes of several packets.
template <PacketType T>
struct StatusAndNumber {
    static constexpr PacketType Type = T;
    static constexpr int MaxSize = 12;
    PacketHeader header{T};
    std::uint8_t status = 0;
    std::int32_t number = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssci", {&header.type, &header.len, &status, &number});
    }
};
using Type20Packet = StatusAndNumber<TYPE20_PACKET>;
/// The answer to a DB_REQUEST; `number` bytes of document follow an insert and a query with status 0.
using DbReply = StatusAndNumber<DB_REPLY>;
static_assert(sizeof(DbReply) == DbReply::MaxSize);

/// A database request; `command` is the operation, `byteCount` bytes of document follow.
struct DbRequest {
    static constexpr PacketType Type = DB_REQUEST;
    PacketHeader header{Type};
    std::int32_t command = 0;
    std::int32_t byteCount = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssii", {&header.type, &header.len, &command, &byteCount});
    }
};

/// The answer to a METHOD_EXECUTE. With PACKET_ERROR_FLAG and a return value that is not 0 an ERROR_RESPONSE
/// follows; then the method's output, up to the end of the stream.
template <PacketType T>
struct TwoNumbers {
    static constexpr PacketType Type = T;
    static constexpr int MaxSize = 12;
    PacketHeader header{T};
    std::int32_t status = 0;
    std::int32_t returnValue = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssii", {&header.type, &header.len, &status, &returnValue});
    }
};
using MethodExecuteReply = TwoNumbers<METHOD_EXECUTE_REPLY>;
using Type30Packet = TwoNumbers<TYPE30_PACKET>;
static_assert(sizeof(MethodExecuteReply) == MethodExecuteReply::MaxSize);

/// An error report: two texts. The sender sets `len` to PACKET_SIZE: it always goes as a whole packet. No
/// reply.
struct ErrRequest {
    static constexpr PacketType Type = ERR_REQUEST;
    PacketHeader header{Type, PACKET_SIZE};
    std::int32_t status = 0;
    std::int32_t firstLength = 0; ///< of the first text, with its NUL
    ParameterArea texts{};

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssiiX",
                      {&header.type, &header.len, &status, &firstLength, texts.field()});
    }
};

/// The progress of a client's task.
struct ChangeRequest {
    static constexpr PacketType Type = CHANGE_REQUEST;
    PacketHeader header{Type};
    std::int32_t resource = 0;
    TextSlot<CLIENT_NAME_SIZE> client{};
    std::int32_t state = 0;    ///< of TaskState
    std::int32_t progress = 0; ///< of TaskSubState

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssiSii",
                      {&header.type, &header.len, &resource, client.field(), &state, &progress});
    }
};

/// The message of a failed method; `byteCount` bytes of document follow.
struct ErrorResponse {
    static constexpr PacketType Type = ERROR_RESPONSE;
    static constexpr int MaxSize = 8;
    PacketHeader header{Type};
    std::int32_t byteCount = 0;

    int walk(FieldWalker walker, unsigned char* buffer) {
        return walker(buffer, nullptr, "ssi", {&header.type, &header.len, &byteCount});
    }
};
static_assert(sizeof(ErrorResponse) == ErrorResponse::MaxSize);

/// What every record above is: the header first, so that a header's address is its record's.
template <class Record>
concept PacketRecord = std::is_standard_layout_v<Record> && requires(Record record) {
    { Record::Type } -> std::convertible_to<PacketType>;
    { record.header } -> std::same_as<PacketHeader&>;
};

/// Room for a packet of any type, for a receiver that learns the type from the packet.
class AnyPacket {
  public:
    [[nodiscard]] PacketHeader& header() { return *reinterpret_cast<PacketHeader*>(m_room.data()); }
    /// Only for the record of the type that the header has.
    template <PacketRecord Record>
    [[nodiscard]] Record& as() {
        static_assert(sizeof(Record) <= sizeof(m_room));
        return *reinterpret_cast<Record*>(m_room.data());
    }

  private:
    alignas(std::int32_t) std::array<std::byte, sizeof(PushRequest)> m_room{};
};

/// Walks a record by the type in its header, which says what the record is: 31 functions, the same for both
/// directions. -1 for a type without a record.
using PacketCodec = int (*)(FieldWalker walker, unsigned char* buffer, PacketHeader& record);
extern const std::array<PacketCodec, PACKET_TYPES> packetCodecs;

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "lab/transferRequests.h"

#include "lab/Connection.h"
#include "lab/Lab.h"
#include "ops/packets.h"
#include "ops/sendrecv.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string_view>

namespace Zorvane {

namespace {

constexpr std::uint8_t DONE = 0;
constexpr std::uint8_t FAILED = 1;
constexpr std::int32_t FILE_MODE = 0644; ///< of a pulled file at the client
constexpr std::streamsize PIECE = std::streamsize{64} << 10;

// One of the requests, with what they all need.
class Transfer {
  public:
    Transfer(Lab& lab, Connection& connection, const std::string& service)
        : m_lab(lab), m_connection(connection), m_service(service) {}

    // The log of a client's work, up to the end of the stream. Nobody waits for an answer.
    void take(LogRequest& request) {
        const std::size_t most = m_lab.limits.document;
        std::string text;
        bool isWhole = m_connection.readToEnd(text, std::min(most, DocumentTurns::SMALL));
        const DocumentTurns::Room room(m_lab.turns, m_connection, text.size()); // few logs come to need one
        isWhole = isWhole || (room.isGranted() && m_connection.readToEnd(text, most));
        const bool kept = isWhole && m_lab.received.keep(m_lab.received.logOf(request.name.c_str()), text);
        note("log", request.name.c_str(), std::to_string(text.size()), kept ? DONE : FAILED);
    }

    void take(MsgRequest& request) {
        if (const auto text = m_connection.read(request.textLength)) {
            note("message", request.client.c_str(), text->c_str(), DONE);
            reply(MsgReply(), DONE);
        }
    }

    void take(ErrRequest& request) {
        note("error", request.texts.c_str(), std::to_string(request.status), DONE);
    }

    void take(ChangeRequest& request) {
        note("change", request.client.c_str(),
             std::to_string(request.state) + ", " + std::to_string(request.progress), DONE);
        reply(ChangeReply(), DONE);
    }

    void take(PushRequest& request) {
        const DocumentTurns::Room room = roomFor(request.byteCount);
        const auto bytes = content(room, request.byteCount);
        if (!bytes)
            return reply(PushReply(), FAILED);
        const bool kept = m_lab.received.keep(
            m_lab.received.fileOf(request.client.c_str(), request.fileName.c_str()), *bytes);
        note("push", request.client.c_str(), request.fileName.c_str(), kept ? DONE : FAILED);
        reply(PushReply(), kept ? DONE : FAILED);
    }

    // Gives back what was pushed under that name.
    template <PacketType T>
    void take(FileRequest<T>& request) {
        // A newer file of that name takes this one's place, not its content.
        std::ifstream in(m_lab.received.fileOf(request.client.c_str(), request.source.c_str()),
                         std::ios::binary | std::ios::ate);
        PullReply answer;
        answer.fileMode = FILE_MODE;
        answer.byteCount = in ? static_cast<std::int32_t>(in.tellg()) : 0;
        const std::uint8_t status = in ? DONE : FAILED;
        note("pull", request.client.c_str(), request.source.c_str(), status);
        reply(answer, status);
        in.seekg(0);
        std::string piece(PIECE, '\0');
        while (in && (in.read(piece.data(), PIECE), in.gcount() > 0) &&
               m_connection.write(std::string_view(piece).substr(0, static_cast<std::size_t>(in.gcount()))))
            continue;
    }

    // A configuration's rows come as a document and are loaded as new ones.
    void take(ImportRequest& request) {
        const DocumentTurns::Room room = roomFor(request.byteCount);
        const auto bytes = content(room, request.byteCount);
        DocumentTurns::Turn turn(m_lab.turns, m_connection);
        const auto takeTurn = [&](Wait wait) { return turn.take(wait); };
        int status = STORE_BAD_DOCUMENT;
        if (bytes &&
            (DocumentTurns::isTooFull(*bytes) || (DocumentTurns::isLarge(*bytes) && !turn.take(Wait::Yes))))
            status = STORE_TOO_MUCH;
        else if (bytes)
            status =
                m_lab.store
                    .load({reinterpret_cast<const unsigned char*>(bytes->data()), bytes->size()}, takeTurn)
                    .status;
        note("import", request.client.c_str(), request.configuration.c_str(), status);
        reply(ImportReply(), static_cast<std::uint8_t>(status));
    }

  private:
    DocumentTurns::Room roomFor(std::int32_t byteCount) {
        return {m_lab.turns, m_connection, static_cast<std::size_t>(std::max(byteCount, 0))};
    }

    std::optional<std::string> content(const DocumentTurns::Room& room, std::int32_t byteCount) {
        if (!room.isGranted() || byteCount < 0 || static_cast<std::size_t>(byteCount) > m_lab.limits.document)
            return std::nullopt;
        return m_connection.read(static_cast<std::size_t>(byteCount));
    }

    void note(const char* operation, std::string_view client, std::string_view what, int status) {
        m_lab.log.write({m_service, operation, client, what, std::to_string(status)});
    }

    template <class Reply>
    void reply(Reply answer, std::uint8_t status) {
        answer.status = status;
        SendPacket(m_connection.descriptor(), answer);
    }

    Lab& m_lab;
    Connection& m_connection;
    const std::string& m_service;
};

} // namespace

void answerTransfer(Lab& lab, Connection& connection, const std::string& service, AnyPacket& packet) {
    Transfer transfer(lab, connection, service);
    switch (packet.header().maskedType()) {
    case LOG_REQUEST:
        return transfer.take(packet.as<LogRequest>());
    case MSG_REQUEST:
        return transfer.take(packet.as<MsgRequest>());
    case ERR_REQUEST:
        return transfer.take(packet.as<ErrRequest>());
    case CHANGE_REQUEST:
        return transfer.take(packet.as<ChangeRequest>());
    case PUSH_REQUEST:
        return transfer.take(packet.as<PushRequest>());
    case PULL_REQUEST:
        return transfer.take(packet.as<PullRequest>());
    case PULL_PROCEDURE_REQUEST:
        return transfer.take(packet.as<PullProcedureRequest>());
    case IMPORT_REQUEST:
        return transfer.take(packet.as<ImportRequest>());
    default:
        return;
    }
}

} // namespace Zorvane

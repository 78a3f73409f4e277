// SPDX-License-Identifier: Apache-2.0
#include "lab/transferRequests.h"

#include "lab/Connection.h"
#include "lab/Lab.h"
#include "model/CZor.h"
#include "ops/packets.h"
#include "ops/sendrecv.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

namespace Zorvane {

namespace {

namespace fs = std::filesystem;

constexpr std::uint8_t DONE = 0;
constexpr std::uint8_t FAILED = 1;
constexpr std::int32_t FILE_MODE = 0644; ///< of a pulled file at the client

// What all files together may take: clients must not fill the disk.
constexpr std::uintmax_t MAX_FOLDER_SIZE = std::uintmax_t{256} << 20;

// A name from a client as a part of a file's name: it can leave neither the folder nor the characters that
// every tool can take.
std::string plain(std::string_view name) {
    std::string safe;
    for (const char c : name)
        safe += std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '.' ? c : '_';
    return safe.substr(0, 100);
}

fs::path placeOf(const Lab& lab, std::string_view client, std::string_view file) {
    return lab.received / ("from-" + plain(client) + "-" + plain(file));
}

bool keep(const Lab& lab, const fs::path& place, const std::string& bytes) {
    std::error_code error;
    fs::create_directories(lab.received, error);
    std::uintmax_t total = bytes.size();
    for (const auto& entry : fs::directory_iterator(lab.received, error))
        total += entry.file_size(error);
    if (total > MAX_FOLDER_SIZE)
        return false;
    std::ofstream out(place, std::ios::binary | std::ios::trunc);
    out << bytes;
    return static_cast<bool>(out.flush());
}

// One of the requests, with what they all need.
class Transfer {
  public:
    Transfer(Lab& lab, Connection& connection, const std::string& service)
        : m_lab(lab), m_connection(connection), m_service(service) {}

    // The log of a client's work, up to the end of the stream. Nobody waits for an answer.
    void take(LogRequest& request) {
        std::string text;
        const DocumentTurns::Room room(m_lab.turns, m_lab.limits.document);
        const bool kept = room.isGranted() && m_connection.readToEnd(text, m_lab.limits.document) &&
                          keep(m_lab, placeOf(m_lab, request.name.c_str(), "log"), text);
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
        const bool kept =
            keep(m_lab, placeOf(m_lab, request.client.c_str(), request.fileName.c_str()), *bytes);
        note("push", request.client.c_str(), request.fileName.c_str(), kept ? DONE : FAILED);
        reply(PushReply(), kept ? DONE : FAILED);
    }

    // Gives back what was pushed under that name.
    template <PacketType T>
    void take(FileRequest<T>& request) {
        std::ifstream in(placeOf(m_lab, request.client.c_str(), request.source.c_str()), std::ios::binary);
        std::ostringstream bytes;
        if (in.peek() != std::ifstream::traits_type::eof())
            bytes << in.rdbuf();
        PullReply answer;
        answer.fileMode = FILE_MODE;
        answer.byteCount = static_cast<std::int32_t>(bytes.view().size());
        const std::uint8_t status = in.is_open() ? DONE : FAILED;
        note("pull", request.client.c_str(), request.source.c_str(), status);
        reply(answer, status);
        if (status == DONE)
            m_connection.write(bytes.view());
    }

    // A configuration's rows come as a document and are loaded as new ones.
    void take(ImportRequest& request) {
        const DocumentTurns::Room room = roomFor(request.byteCount);
        auto bytes = content(room, request.byteCount);
        const DocumentTurns::Turn turn(m_lab.turns, bytes ? bytes->size() : 0, m_connection);
        CZor rows;
        const bool read = bytes && turn.isGranted() && !DocumentTurns::isTooFull(*bytes) &&
                          rows.readXml(reinterpret_cast<unsigned char*>(bytes->data()),
                                       static_cast<int>(bytes->size())) == 0;
        const int status = read ? m_lab.store.load(rows).status : static_cast<int>(STORE_BAD_DOCUMENT);
        note("import", request.client.c_str(), request.configuration.c_str(), status);
        reply(ImportReply(), static_cast<std::uint8_t>(status));
    }

  private:
    DocumentTurns::Room roomFor(std::int32_t byteCount) {
        return {m_lab.turns, static_cast<std::size_t>(std::max(byteCount, 0))};
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

// SPDX-License-Identifier: Apache-2.0
#include "lab/ZordSession.h"

#include "lab/RowAllowance.h"
#include "lab/badAnswers.h"
#include "lab/methods.h"
#include "lab/requestSummary.h"
#include "lab/transferRequests.h"
#include "ops/sendrecv.h"
#include "ops/zorop.h"

#include <string_view>

namespace Zorvane {

namespace {

constexpr const char* NO_SECURITY = "0 0"; ///< what a client opens with when security is prohibited

constexpr const char* OTHER_VERSION = "5.1.0"; ///< of a daemon on demand

constexpr std::uint8_t COMPATIBLE = 1;
constexpr std::uint8_t NOT_COMPATIBLE = 2;

std::string_view textOf(const std::vector<unsigned char>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

StoreResult runRequest(Store& store, int command, std::string_view document, const LargeTurn& turn,
                       const Connection& connection) {
    const Store::Document bytes(reinterpret_cast<const unsigned char*>(document.data()), document.size());
    switch (command) {
    case ZOROP_QUERY:
        return store.query(bytes, turn, [&] { return connection.isCut(); });
    case ZOROP_INSERT:
        return store.insert(bytes, turn);
    case ZOROP_UPDATE:
        return store.update(bytes, turn);
    case ZOROP_DELETE:
        return store.del(bytes, turn);
    case ZOROP_TRANSACTION:
        return store.transaction(bytes, turn);
    default:
        return {ZOROP_INVALID_OPERATION, {}, "no such command"};
    }
}

std::string joined(const std::vector<std::string>& parameters) {
    std::string all;
    for (const std::string& parameter : parameters)
        all += (all.empty() ? "" : ", ") + parameter;
    return all;
}

void sendMethodReply(Connection& connection, const MethodResult& result, bool withError) {
    MethodExecuteReply reply;
    reply.returnValue = result.value;
    const bool errorFollows = withError && result.value != 0 && result.error;
    if (errorFollows)
        reply.header.type |= PACKET_ERROR_FLAG;
    if (SendPacket(connection.descriptor(), reply) <= 0)
        return;
    if (errorFollows) {
        CNetErrorMsg message;
        static_cast<CErrorMsg&>(message) = *result.error;
        message.sendMessage(connection.descriptor());
    }
    connection.write(result.output);
}

} // namespace

void ZordSession::run() {
    m_connection.allow(m_lab.limits.opening, m_lab.limits.hurry);
    if (const auto failure = m_lab.failures.check(m_connection, FailPoint::Connect, m_service)) {
        m_lab.log.write({m_service, "connect", "", "", failureText(*failure)});
        answerBadly(m_connection, failure->effect, NO_PACKET);
    } else if (AnyPacket packet; open() && RecvPacket(m_connection.descriptor(), packet) > 0) {
        m_connection.allow(m_lab.limits.exchange);
        answer(packet);
    }
    m_connection.finish();
}

bool ZordSession::open() {
    VersionRequest request;
    if (m_connection.readLine() != NO_SECURITY ||
        RecvPacket(m_connection.descriptor(), request, PACKET_SIZE) <= 0)
        return false;
    VersionReply reply;
    reply.version.set(ZOR_CLIENT_VERSION);
    reply.esmType.set(ZOR_ESM_TYPE);
    reply.status = std::string_view(request.esmType.c_str()) == ZOR_ESM_TYPE ? COMPATIBLE : NOT_COMPATIBLE;
    if (const auto failure = m_lab.failures.check(m_connection, FailPoint::Version, m_service)) {
        m_lab.log.write({m_service, "version", request.version.c_str(), "", failureText(*failure)});
        if (failure->effect == FailEffect::Other) {
            reply.version.set(OTHER_VERSION);
            reply.status = NOT_COMPATIBLE;
            return SendPacket(m_connection.descriptor(), reply) > 0;
        }
        if (failure->effect != FailEffect::Status) {
            answerBadly(m_connection, failure->effect, VERSION_REPLY);
            return false;
        }
        reply.status = static_cast<std::uint8_t>(failure->status);
    }
    return SendPacket(m_connection.descriptor(), reply) > 0;
}

void ZordSession::answer(AnyPacket& packet) {
    switch (packet.header().maskedType()) {
    case DB_REQUEST:
        return database(packet.as<DbRequest>());
    case METHOD_EXECUTE:
        return method(packet.as<MethodExecute>());
    default:
        return answerTransfer(m_lab, m_connection, m_service, packet);
    }
}

void ZordSession::database(const DbRequest& request) {
    if (request.byteCount < 0 || static_cast<std::size_t>(request.byteCount) > m_lab.limits.document)
        return refuse(request.byteCount);
    const DocumentTurns::Room room(m_lab.turns, m_connection, static_cast<std::size_t>(request.byteCount));
    if (!room.isGranted())
        return refuse(request.byteCount);
    const auto document = m_connection.read(static_cast<std::size_t>(request.byteCount));
    if (!document)
        return;
    if (DocumentTurns::isTooFull(*document))
        return refuse(request.byteCount);
    DocumentTurns::Turn turn(m_lab.turns, m_connection); // once taken, up to the end of the answer
    std::optional<Failure> failure;
    const StoreResult result = work(
        request.command, *document, [&](Wait wait) { return turn.take(wait); }, failure);
    // Clients read a document behind these two replies only.
    sendRows(result, failure, request.command == ZOROP_QUERY || request.command == ZOROP_INSERT);
}

void ZordSession::refuse(std::int32_t byteCount) {
    m_lab.log.write(
        {m_service, "refused", "document", std::to_string(byteCount), std::to_string(STORE_TOO_MUCH)});
    sendRows({STORE_TOO_MUCH, {}, {}}, std::nullopt, false);
}

StoreResult ZordSession::work(int command, std::string_view document, const LargeTurn& turn,
                              std::optional<Failure>& failure) {
    if (DocumentTurns::isLarge(document) && !turn(Wait::Yes))
        return {STORE_TOO_MUCH, {}, RowAllowance::NO_TURN};
    // A second look at the document costs as much as the work itself.
    const bool isWatched = m_lab.log.isOpen() || m_lab.failures.any();
    const RequestSummary summary = isWatched ? summarize(command, document, turn) : RequestSummary();
    if (summary.point)
        failure = m_lab.failures.check(m_connection, *summary.point, summary.tables);
    StoreResult result;
    if (!failure || spoilsDocument(failure->effect))
        result = runRequest(m_lab.store, command, document, turn, m_connection);
    m_lab.log.write({m_service, summary.operation, summary.subject, summary.arguments,
                     failure ? failureText(*failure) : std::to_string(result.status), result.text});
    return result;
}

void ZordSession::sendRows(const StoreResult& result, std::optional<Failure> failure, bool withReply) {
    m_connection.gather();
    std::string_view document = textOf(result.reply);
    std::string spoiled;
    DbReply reply;
    reply.status = static_cast<std::uint8_t>(result.status);
    if (failure && failure->effect == FailEffect::Status)
        reply.status = static_cast<std::uint8_t>(failure->status);
    else if (failure && !(withReply && spoilsDocument(failure->effect)))
        return answerBadly(m_connection, failure->effect, DB_REPLY);
    else if (failure) {
        spoiled = spoiledDocument(failure->effect, document);
        // Half a document is announced as the whole.
        reply.number =
            static_cast<std::int32_t>(failure->effect == FailEffect::Half ? document.size() : spoiled.size());
        document = spoiled;
    } else if (withReply && reply.status == 0) {
        reply.number = static_cast<std::int32_t>(document.size());
    }
    if (SendPacket(m_connection.descriptor(), reply) > 0 && reply.number > 0)
        m_connection.write(document);
}

void ZordSession::method(const MethodExecute& request) {
    const MethodCall call(request);
    const auto failure = failureOf(m_lab, m_connection, call);
    MethodResult result;
    if (!failure)
        result = runMethod(m_lab, call);
    else if (failure->effect == FailEffect::Status)
        result = methodFailure(failure->status, METHOD_FAILED,
                               {zorOperationName(call.operation), "a failure was asked for with --fail"});
    m_lab.log.write({m_service, zorOperationName(call.operation), zorResourceName(call.resource),
                     joined(call.parameters),
                     failure ? failureText(*failure) : std::to_string(result.value)});
    if (failure && failure->effect != FailEffect::Status && failure->effect != FailEffect::Empty)
        return answerBadly(m_connection, failure->effect, METHOD_EXECUTE_REPLY);
    sendMethodReply(m_connection, result, request.header.hasErrorFlag());
}

} // namespace Zorvane

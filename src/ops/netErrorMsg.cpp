// SPDX-License-Identifier: Apache-2.0
#include "ops/netErrorMsg.h"

#include "model/CZor.h"
#include "model/task_records.h"
#include "ops/exchange.h"

namespace Zorvane {

namespace {

// The largest document that is read. An error response is a few numbers and texts, told in about a kilobyte;
// a peer that announces more than this is not one of ours.
constexpr std::int32_t MAX_ERROR_XML = 1 << 20;

int transferFailure(Trace& trace, const char* what) {
    trace.write(LEVEL_TRANSFER, what);
    return trace.leave(1, ", return rc=", 1);
}

} // namespace

CNetErrorMsg::CNetErrorMsg() {
    CNetErrorMsg::reset();
}

void CNetErrorMsg::reset() {
    Trace trace(g_libLog, "CNetErrorMsg::reset()");
    CErrorMsg::reset();
    m_xmlBuffer.reset();
    m_xmlLength = 0;
}

void CNetErrorMsg::serializeToData(CZor& document) const {
    Trace trace(g_libLog, "CNetErrorMsg::serializeToData()");
    auto row = std::make_unique<CErrorResponse>();
    row->setId(1);
    row->setReturnCode(getReturnCode());
    row->setOriginatorId(getOriginatorId());
    row->setMessageNumber(getMessageNumber());
    // The row has no column for the message: this one carries it. A sender leaves it empty, since the
    // receiver has the catalogue.
    row->setOriginatorLocale("");
    document.m_vErrorResponse.push_back(row.release());
    ID id = 0;
    for (const std::string& parameter : getParameters()) {
        auto argument = std::make_unique<CErrorResponseArgument>();
        argument->setId(++id);
        argument->setData(parameter);
        document.m_vErrorResponseArgument.push_back(argument.release());
    }
}

void CNetErrorMsg::serializeFromData(const CZor& document) {
    Trace trace(g_libLog, "CNetErrorMsg::serializeFromData()");
    const CErrorResponse* row = document.m_vErrorResponse.first();
    if (!row) {
        trace.write(LEVEL_FAILURE, "Error response data is empty");
        return;
    }
    reset();
    setReturnCode(row->getReturnCode());
    setOriginatorId(row->getOriginatorId());
    setMessageNumber(row->getMessageNumber());
    setMessage(row->getOriginatorLocale());
    for (const CErrorResponseArgument* argument : document.m_vErrorResponseArgument)
        if (argument)
            setMessageNumber(argument->getData());
}

int CNetErrorMsg::sendMessage(int descriptor) {
    Trace trace(g_libLog, "CNetErrorMsg::sendMessage()", ", descriptor=", descriptor);
    CZor document;
    serializeToData(document);
    unsigned char* xml = nullptr;
    if (document.writeXml(&xml, &m_xmlLength) != 0)
        return transferFailure(trace, "cannot send error response");
    m_xmlBuffer.reset(xml);
    ErrorResponse packet;
    packet.header.len = ErrorResponse::MaxSize;
    packet.byteCount = m_xmlLength;
    trace.write(LEVEL_TRACE, "sending error response packet");
    if (SendPacket(descriptor, packet) < 0)
        return transferFailure(trace, "cannot send error response");
    trace.write(LEVEL_TRACE, "sending xml buffer of length= ", m_xmlLength);
    if (!sendAll(descriptor, m_xmlBuffer.get(), m_xmlLength))
        return transferFailure(trace, "cannot send XML data for error response");
    return trace.leave(0, ", return rc=", 0);
}

int CNetErrorMsg::receivebuffer(int descriptor) {
    Trace trace(g_libLog, "CNetErrorMsg::receivebuffer()", ", descriptor=", descriptor);
    ErrorResponse packet;
    if (RecvPacket(descriptor, packet, ErrorResponse::MaxSize) < 0)
        return transferFailure(trace, "cannot receive data for error response");
    m_xmlBuffer.reset();
    m_xmlLength = 0;
    trace.write(LEVEL_TRACE, "receving XML buffer of ", packet.byteCount, " length");
    if (packet.byteCount < 0 || packet.byteCount > MAX_ERROR_XML)
        return transferFailure(trace, "could not receive XML buffer for error response");
    auto buffer = std::make_unique<unsigned char[]>(static_cast<std::size_t>(packet.byteCount));
    if (ReadN(descriptor, buffer.get(), packet.byteCount) != packet.byteCount)
        return transferFailure(trace, "could not receive XML buffer for error response");
    m_xmlBuffer = std::move(buffer);
    m_xmlLength = packet.byteCount;
    return trace.leave(0, ", return rc=", 0);
}

int CNetErrorMsg::receiveMessage(int descriptor) {
    Trace trace(g_libLog, "CNetErrorMsg::receiveMessage()", ", descriptor=", descriptor);
    if (const int rc = receivebuffer(descriptor))
        return trace.leave(rc, ", return rc=", rc);
    CZor document;
    if (const int rc = document.readXml(m_xmlBuffer.get(), m_xmlLength)) {
        trace.write(LEVEL_TRANSFER, "Unable to serialize buffer into objects rc=", rc);
        return trace.leave(rc, ", return rc=", rc);
    }
    serializeFromData(document);
    return trace.leave(0, ", return rc=", 0);
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "logging/CErrorMsg.h"

#include "logging/Trace.h"
#include "logging/getMessage.h"

namespace Zorvane {

namespace {
constexpr std::int32_t NO_ORIGINATOR = 119;
}

CErrorMsg* g_errorMsg = nullptr;

CErrorMsg::CErrorMsg() {
    CErrorMsg::reset();
}

void CErrorMsg::reset() {
    Trace trace(g_libLog, "CErrorMsg:CErrorMsg::reset()");
    m_parameters.clear();
    m_message.clear();
    m_returnCode = 1;
    m_originatorId = NO_ORIGINATOR;
    m_messageNumber = -1;
}

void CErrorMsg::setReturnCode(std::int32_t code) {
    Trace trace(g_libLog, "CErrorMsg:CErrorMsg::setReturnCode()", ", code=", code);
    m_returnCode = code;
}

void CErrorMsg::setOriginatorId(std::int32_t id) {
    Trace trace(g_libLog, "CErrorMsg:CErrorMsg::setOriginatorId()", ", id=", id);
    m_originatorId = id;
}

void CErrorMsg::setMessageNumber(std::int32_t number) {
    Trace trace(g_libLog, "CErrorMsg:CErrorMsg::setMessageNumber()", ", number=", number);
    m_messageNumber = number;
}

void CErrorMsg::setMessageNumber(const std::string& parameter) {
    Trace trace(g_libLog, "CErrorMsg:CErrorMsg::setMessageNumber()", ", parameter=", parameter);
    m_parameters.push_back(parameter);
}

void CErrorMsg::setMsg(std::int32_t code, std::int32_t number) {
    reset();
    setReturnCode(code);
    setMessageNumber(number);
}

void CErrorMsg::setMessage(const std::string& text) {
    m_message = text;
}

std::string CErrorMsg::getErrorString() const {
    Trace trace(g_libLog, "CErrorMsg:CErrorMsg::getErrorString()");
    // The slip in the first word stays: support's tools look for the line as it is.
    trace.write(LEVEL_TRACE, "Reveived ", m_parameters.size(), " parameters");
    if (m_messageNumber < 0)
        return {};
    if (m_parameters.size() > MaxParameters)
        return "More parameters are requested than the provided number";
    try {
        return Zorvane::getMessage(static_cast<std::uint64_t>(m_originatorId),
                                   static_cast<std::uint64_t>(m_messageNumber), m_parameters);
    } catch (const std::runtime_error&) {
        return MESSAGE_CATALOG_ERROR;
    } catch (...) {
        return UNEXPECTED_CATALOG_ERROR;
    }
}

} // namespace Zorvane

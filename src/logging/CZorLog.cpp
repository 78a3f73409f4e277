// SPDX-License-Identifier: Apache-2.0
#include "logging/CZorLog.h"

#include "logging/LogMirror.h"
#include "logging/messages.h"

namespace Mirathi::Logging {

namespace {

// Appends the values and hands the message on, swallowing whatever goes wrong on the way.
template <class Message, class Write>
mrthLogResult_t fillAndWrite(Message&& message, std::span<const L10N::LogValue> values, Write write) {
    for (const auto& value : values)
        message.append(value);
    return write(message);
}

} // namespace

template <bool Shared>
Log<Shared>::Log(std::uint64_t product, std::uint64_t originator, std::uint64_t hostOriginator) noexcept {
    try {
        m_status = hostOriginator ? mrthLogOpen2(product, originator, hostOriginator, &m_handle)
                                  : mrthLogOpen(product, originator, &m_handle);
    } catch (...) {
        m_status = NotOpen;
    }
}

template <bool Shared>
Log<Shared>::~Log() {
    if (m_status != 0)
        return;
    const bool ownsFile = m_handle.closedState == 0;
    if (!ownsFile)
        mrthLogClose(&m_handle);
    else if (m_handle.file)
        mrthLogCloseFile(&m_handle);
    if (ownsFile) {
        mrthLogFreeMsg(&m_handle.message);
        m_handle.closedState = 1;
    }
}

template <bool Shared>
bool Log<Shared>::passesDiag(mrthLogDebugLevel_t level) noexcept {
    if (m_status != 0)
        return false;
    mrthDynaLoadConfig(&m_handle);
    return m_handle.diagLevel >= level;
}

template <bool Shared>
mrthLogResult_t Log<Shared>::WriteDebugMsg(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                                           std::span<const L10N::LogValue> values) noexcept {
    if (m_status != 0)
        return NotOpen;
    if (!passesDebug(level))
        return 0;
    try {
        return fillAndWrite(DebugMsg(m_handle, label, level), values,
                            [&](Msg& message) { return write(flags, message); });
    } catch (...) {
        return Invalidated;
    }
}

template <bool Shared>
mrthLogResult_t Log<Shared>::WriteDiagMsg(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                                          std::uint64_t messageId,
                                          std::span<const L10N::LogValue> values) noexcept {
    if (m_status != 0)
        return NotOpen;
    try {
        if (!passesDiag(level))
            return 0;
        return fillAndWrite(DiagMsg(m_handle, label, level, messageId), values,
                            [&](Msg& message) { return write(flags, message); });
    } catch (...) {
        return Invalidated;
    }
}

template <bool Shared>
mrthLogResult_t Log<Shared>::WriteAppMsg(mrthLogFlags_t flags, std::int32_t severity, std::uint64_t messageId,
                                         std::span<const L10N::LogValue> values) noexcept {
    if (m_status != 0)
        return NotOpen;
    try {
        return fillAndWrite(AppMsg(m_handle, messageId, severity), values,
                            [&](Msg& message) { return write(flags, message); });
    } catch (...) {
        return Invalidated;
    }
}

template <bool Shared>
mrthLogResult_t Log<Shared>::write(mrthLogFlags_t flags, Msg& message) {
    if (m_status != 0)
        return 0;
    if (!message.isValid())
        return Invalidated;
    const mrthLogResult_t result = mrthLogMsg(&m_handle, flags, &message.record());
    if (result == 0 && (flags & MRTH_LOG_NOTIFY) && m_listener)
        m_listener->notify(message.record(), m_handle.message);
    return result;
}

template class Log<false>;

} // namespace Mirathi::Logging

namespace Zorvane {

using Mirathi::L10N::LogValue;
using Mirathi::Logging::Log;

CZorLog* g_appLog = nullptr;
CZorLog* g_libLog = nullptr;
mrthLogFlags_t g_msgFlags = 0;

CZorLog::CZorLog(std::uint64_t productId, std::uint64_t originatorId) : CZorLog(productId, originatorId, 0) {}

CZorLog::CZorLog(std::uint64_t productId, std::uint64_t originatorId, std::uint64_t hostOriginatorId)
    : m_log(std::make_unique<Log<false>>(productId, originatorId, hostOriginatorId)) {
    mrthLogReadCfg(productId, originatorId, &m_cfg);
}

CZorLog::~CZorLog() {
    m_log.reset();
    mrthLogFreeCfg(&m_cfg);
}

void CZorLog::startMirror(const std::string& name) {
    m_mirror = std::make_shared<LogMirror>();
    m_mirrorEnabled = true;
    m_mirrorName = name;
}

void CZorLog::stopMirror() noexcept {
    m_mirrorEnabled = false;
    m_mirror.reset();
}

void CZorLog::copyMirror(const CZorLog& other) {
    m_mirror = other.m_mirror;
    m_mirrorEnabled = other.m_mirrorEnabled;
    m_mirrorName = other.m_mirrorName;
}

mrthLogResult_t CZorLog::writeDiag(mrthLogFlags_t flags, mrthLogDebugLevel_t level, const char* label,
                                   std::uint64_t messageId, std::span<const LogValue> values) noexcept {
    if (m_mirrorEnabled && m_mirror && level <= m_cfg.diagLevel)
        m_mirror->WriteDiagMsg(flags, level, label, messageId, values);
    return m_enabled && m_log ? m_log->WriteDiagMsg(flags, level, label, messageId, values)
                              : Log<false>::NotOpen;
}

mrthLogResult_t CZorLog::writeApp(mrthLogFlags_t flags, std::int32_t severity, std::uint64_t messageId,
                                  std::span<const LogValue> values) noexcept {
    if (m_mirrorEnabled && m_mirror)
        m_mirror->WriteAppMsg(flags, severity, messageId, values);
    return m_enabled && m_log ? m_log->WriteAppMsg(flags, severity, messageId, values) : Log<false>::NotOpen;
}

} // namespace Zorvane

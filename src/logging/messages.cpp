// SPDX-License-Identifier: Apache-2.0
#include "logging/messages.h"

#include <cstdlib>

namespace Mirathi {

namespace {

// What the localisation layer counts as taken: success, a warning (1) and the soft results -1, -2, -4 to -6.
bool isAccepted(std::int32_t result) {
    return (result >= -6 && result <= -4) || (result >= -2 && result <= 1);
}

void require(std::int32_t result) {
    if (!isAccepted(result))
        throw L10N::LisX(result);
}

// An argument cell until a list takes it over.
class Cell {
  public:
    Cell() : m_any(static_cast<mrthLisAny_t*>(std::calloc(1, sizeof(mrthLisAny_t)))) {
        if (!m_any)
            throw L10N::LisX(-3);
    }
    Cell(const Cell&) = delete;
    Cell& operator=(const Cell&) = delete;
    ~Cell() {
        if (m_any)
            std::free(m_any->text);
        std::free(m_any);
    }
    mrthLisAny_t* get() { return m_any; }
    void handTo(mrthLisArgs_t& list) {
        require(mrthLisAddArg(&list, m_any));
        m_any = nullptr;
    }

  private:
    mrthLisAny_t* m_any;
};

} // namespace

namespace L10N {

LisMgr::LisMgr(std::uint64_t messageId) noexcept
    : m_messageId(messageId), m_utf8(GetMrthLisGlobalUtf8Setting() != 0) {}

LisMgr::~LisMgr() {
    mrthLisFree(&m_arguments);
}

void LisMgr::addText(const std::string& text) {
    Cell cell;
    require(m_utf8 ? mrthLisAny_utf8string(cell.get(), text.c_str())
                   : mrthLisAny_string(cell.get(), text.c_str()));
    cell.handTo(m_arguments);
}

void LisMgr::addArgument(const LogValue& value) {
    switch (value.kind()) {
    case LogValue::Kind::Null:
        return;
    case LogValue::Kind::Text:
        addText(std::string(value.text()));
        return;
    case LogValue::Kind::Signed:
        addText(std::to_string(static_cast<std::int64_t>(value.number())));
        return;
    case LogValue::Kind::Unsigned: {
        Cell cell;
        require(mrthLisAny_ulong(cell.get(), value.number()));
        cell.handTo(m_arguments);
    }
    }
}

void LisMgrWithFmt::addFormatted(const LogValue& value) {
    switch (value.kind()) {
    case LogValue::Kind::Null:
        return;
    case LogValue::Kind::Text:
        m_text = value.text();
        break;
    case LogValue::Kind::Signed:
        m_text = std::to_string(static_cast<std::int64_t>(value.number()));
        break;
    case LogValue::Kind::Unsigned:
        m_text = std::to_string(value.number());
        break;
    }
    if (!m_text.empty())
        addText(m_text);
}

} // namespace L10N

namespace Logging {

Msg::~Msg() {
    mrthLogFreeMsg(&m_record);
}

DebugMsg::DebugMsg(mrthLogHandle_t& handle, const char* label, mrthLogDebugLevel_t level) : LisMgrWithFmt(0) {
    mrthLogInitMsg(&m_record, &handle, MRTH_LOG_DEBUG, 0);
    mrthLogSetDebugAttr(&m_record, label, level);
    m_record.arguments = &arguments();
}

void DebugMsg::append(const L10N::LogValue& value) noexcept {
    try {
        addFormatted(value);
    } catch (...) {
        m_valid = false;
    }
}

NonDebugMsg::NonDebugMsg(std::uint64_t messageId) : LisMgr(messageId) {}

void NonDebugMsg::append(const L10N::LogValue& value) noexcept {
    try {
        addArgument(value);
    } catch (...) {
        m_valid = false;
    }
}

DiagMsg::DiagMsg(mrthLogHandle_t& handle, const char* label, mrthLogDebugLevel_t level,
                 std::uint64_t messageId)
    : NonDebugMsg(messageId) {
    mrthLogInitMsg(&m_record, &handle, MRTH_LOG_DIAG, 0);
    mrthLogSetDiagAttr(&m_record, label, level);
    m_record.messageId = messageId;
    m_record.arguments = &arguments();
}

AppMsg::AppMsg(mrthLogHandle_t& handle, std::uint64_t messageId, std::int32_t severity)
    : NonDebugMsg(messageId) {
    mrthLogInitMsg(&m_record, &handle, MRTH_LOG_APP, 0);
    mrthLogSetAppAttr(&m_record, severity);
    m_record.messageId = messageId;
    m_record.arguments = &arguments();
}

} // namespace Logging

} // namespace Mirathi

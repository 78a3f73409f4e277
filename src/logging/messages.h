// SPDX-License-Identifier: Apache-2.0
// The message objects: made on the stack for one write and destroyed behind it.
#pragma once

#include "logging/LogValue.h"
#include "suite/quul.h"

#include <string>

namespace Mirathi::L10N {

/// A result of the localisation layer that says that an argument could not be taken.
class LisX {
  public:
    explicit LisX(std::int32_t result) noexcept : m_result(result) {}
    [[nodiscard]] std::int32_t result() const noexcept { return m_result; }

  private:
    std::int32_t m_result;
};

/// The arguments of one message on their way to the localisation layer.
class LisMgr {
  public:
    explicit LisMgr(std::uint64_t messageId) noexcept;
    LisMgr(const LisMgr&) = delete;
    LisMgr& operator=(const LisMgr&) = delete;
    ~LisMgr();

    /// Appends a value for a place of the catalogue's text. A null text adds nothing; an empty one is an
    /// argument like others, so that the next ones keep their places. Throws LisX when the layer refuses it.
    void addArgument(const LogValue& value);
    [[nodiscard]] const mrthLisArgs_t& arguments() const noexcept { return m_arguments; }
    [[nodiscard]] std::uint64_t messageId() const noexcept { return m_messageId; }

  protected:
    void addText(const std::string& text);

  private:
    std::uint64_t m_messageId;
    bool m_utf8;
    mrthLisArgs_t m_arguments{};
};

/// Arguments that are turned into text first, as debug messages want them.
class LisMgrWithFmt : public LisMgr {
  public:
    using LisMgr::LisMgr;
    /// Appends a value as text; a null or empty one adds nothing.
    void addFormatted(const LogValue& value);

  private:
    std::string m_text;
};

} // namespace Mirathi::L10N

namespace Mirathi::Logging {

/// Holds one of the library's records.
template <class Record>
class ClassWrap {
  public:
    [[nodiscard]] Record& record() noexcept { return m_record; }

  protected:
    Record m_record{};
};

/// A message record together with the word on whether all steps of building it went well.
class Msg : public ClassWrap<mrthLogMsg_t> {
  public:
    Msg() = default;
    Msg(const Msg&) = delete;
    Msg& operator=(const Msg&) = delete;
    ~Msg();
    [[nodiscard]] bool isValid() const noexcept { return m_valid; }

  protected:
    bool m_valid = true;
};

/// A literal text, joined from the values of a statement.
class DebugMsg : public Msg, private L10N::LisMgrWithFmt {
  public:
    DebugMsg(mrthLogHandle_t& handle, const char* label, mrthLogDebugLevel_t level);
    void append(const L10N::LogValue& value) noexcept;
};

/// A catalogue message by number.
class NonDebugMsg : public Msg, public L10N::LisMgr {
  public:
    explicit NonDebugMsg(std::uint64_t messageId);
    void append(const L10N::LogValue& value) noexcept;
};

class DiagMsg : public NonDebugMsg {
  public:
    DiagMsg(mrthLogHandle_t& handle, const char* label, mrthLogDebugLevel_t level, std::uint64_t messageId);
};

class AppMsg : public NonDebugMsg {
  public:
    AppMsg(mrthLogHandle_t& handle, std::uint64_t messageId, std::int32_t severity);
};

} // namespace Mirathi::Logging

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Zorvane {

/// A failure carried upward: a return code, the catalogue message that tells it and that message's
/// parameters.
class CErrorMsg {
  public:
    /// The most parameters that a message can have.
    static constexpr std::size_t MaxParameters = 5;

    CErrorMsg();
    CErrorMsg(const CErrorMsg&) = default;
    CErrorMsg& operator=(const CErrorMsg&) = default;
    virtual ~CErrorMsg() = default;

    /// Back to "no message": return code 1, originator 119, message number -1, no text, no parameters.
    virtual void reset();

    void setReturnCode(std::int32_t code);
    void setOriginatorId(std::int32_t id);
    void setMessageNumber(std::int32_t number);
    /// Appends a parameter (the name is an overload of the number's setter).
    void setMessageNumber(const std::string& parameter);
    /// Starts a new message: resets, then sets the code and the number.
    void setMsg(std::int32_t code, std::int32_t number);
    /// A literal text, as a peer may send it.
    void setMessage(const std::string& text);

    [[nodiscard]] std::int32_t getReturnCode() const { return m_returnCode; }
    [[nodiscard]] std::int32_t getOriginatorId() const { return m_originatorId; }
    [[nodiscard]] std::int32_t getMessageNumber() const { return m_messageNumber; }
    [[nodiscard]] const std::string& getMessage() const { return m_message; }
    [[nodiscard]] const std::vector<std::string>& getParameters() const { return m_parameters; }

    /// The catalogue's text with the parameters filled in; empty when no message is set. A failed lookup
    /// gives a fixed text in its place; nothing is thrown.
    [[nodiscard]] std::string getErrorString() const;

  private:
    std::int32_t m_returnCode = 1;
    std::int32_t m_originatorId = 0;
    std::int32_t m_messageNumber = -1;
    std::string m_message;
    std::vector<std::string> m_parameters;
};

/// The process-wide error object, made by ZorPreMain behind the log channels and never freed.
extern CErrorMsg* g_errorMsg;

} // namespace Zorvane

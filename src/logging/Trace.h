// SPDX-License-Identifier: Apache-2.0
// The trace convention as one scope object: a line at the function's entry, a line at its exit.
#pragma once

#include "logging/CZorLog.h"

#include <cstdint>
#include <utility>

namespace Zorvane {

inline constexpr mrthLogFlags_t DEBUG_FLAGS = 0; ///< the flags of every debug message

/// Debug levels in use.
enum TraceLevel : mrthLogDebugLevel_t {
    LEVEL_FAILURE = 1,  ///< worth a line in a default run
    LEVEL_WARNING = 2,  ///< odd, but the caller goes on
    LEVEL_PEER = 3,     ///< failures of the peer checks in the transport
    LEVEL_TRANSFER = 4, ///< failures of the error response transfer; milestones
    LEVEL_TRACE = 5,    ///< function entry and exit, parameters and results
    LEVEL_FINE = 6,     ///< the innermost routines
};

/// A literal text with the source line on which it was written down.
struct Located {
    const char* text;
    std::uint32_t line;

    // The built-in, and not std::source_location, which the library hides from clang.
    Located(const char* literal = "", std::uint32_t place = __builtin_LINE()) noexcept
        : text(literal), line(place) {}
};

/// The text for a traced pointer argument, which may be null.
inline const char* orNull(const char* text) noexcept {
    return text ? text : "(null)";
}

/// Writes "Entering, line=" at construction and "Exiting, line=" at the end of the scope. The label is the
/// source file's base name, a colon and the function: "zorop:ZorOps()". Nothing is formatted while the
/// level is off, and nothing here throws.
class Trace {
  public:
    template <class... Values>
    explicit Trace(CZorLog* log, Located label, const Values&... values) noexcept
        : Trace(LEVEL_TRACE, log, label) {
        enter("Entering, line=", values...);
    }

    ~Trace() {
        if (!m_left)
            write(m_level, "Exiting, line=", m_line);
    }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    /// The result of the function, traced with a text that names it: `return trace.leave(rc, ", rc=", rc);`
    template <class Result, class... Values>
    Result leave(Result result, Located text, const Values&... values) noexcept {
        exitLine(text, values...);
        return result;
    }

    /// The exit of a function without a result, or one whose result is returned apart.
    template <class... Values>
    void exitLine(Located text, const Values&... values) noexcept {
        m_left = true;
        write(m_level, "Exiting, line=", text.line, text.text, values...);
    }

    /// A debug statement of this function: the values joined as they come.
    template <class... Values>
    void write(mrthLogDebugLevel_t level, const Values&... values) noexcept {
        if (m_log)
            m_log->WriteDebugMsg(DEBUG_FLAGS, level, m_label, values...);
    }

    /// A failure that the administrator should know: a catalogue message of the shared code.
    template <class... Values>
    void diag(std::uint64_t messageId, const Values&... values) noexcept {
        if (m_log)
            m_log->WriteDiagMsg(g_msgFlags, LEVEL_FAILURE, m_label, messageId, values...);
    }

    [[nodiscard]] const char* label() const noexcept { return m_label; }

  protected:
    Trace(mrthLogDebugLevel_t level, CZorLog* log, Located label) noexcept
        : m_log(log), m_label(label.text), m_line(label.line), m_level(level) {}

    template <class... Values>
    void enter(const char* word, const Values&... values) noexcept {
        write(m_level, word, m_line, values...);
    }

  private:
    CZorLog* m_log;
    const char* m_label;
    std::uint32_t m_line;
    mrthLogDebugLevel_t m_level;
    bool m_left = false;
};

/// The trace of the command's own classes, whose entry line reads "Entered, line=".
class ClassTrace : public Trace {
  public:
    template <class... Values>
    explicit ClassTrace(CZorLog* log, Located label, const Values&... values) noexcept
        : Trace(LEVEL_TRACE, log, label) {
        enter("Entered, line=", values...);
    }
};

/// The trace of the innermost routines: level 6.
class FineTrace : public Trace {
  public:
    template <class... Values>
    explicit FineTrace(CZorLog* log, Located label, const Values&... values) noexcept
        : Trace(LEVEL_FINE, log, label) {
        enter("Entering, line=", values...);
    }
};

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// What the subcommands of zorinfo share: where they write, in what form, and how they end.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace Zorvane {

/// What the shell sees.
enum class InfoExit : int {
    CLEAR = 0,     ///< asked and answered; for a check, nothing blocks
    BLOCKED = 1,   ///< a check found something that zorb2v would refuse
    USAGE = 2,     ///< the command line makes no sense
    NOT_ASKED = 3, ///< a daemon, a file or an object that the answer needs can't be had
};

/// Ends a subcommand. The text says what is wrong, with which name, and what to do.
class InfoFailure : public std::runtime_error {
  public:
    InfoFailure(InfoExit exit, const std::string& text) : std::runtime_error(text), m_exit(exit) {}
    [[nodiscard]] InfoExit exit() const { return m_exit; }

  private:
    InfoExit m_exit;
};

/// One run of zorinfo.
class Session {
  public:
    Session(std::ostream& out, std::ostream& err, bool isTerminal)
        : m_out(out), m_err(err), m_isTerminal(isTerminal) {}

    /// For answers. With --json only writeJson() writes to it.
    [[nodiscard]] std::ostream& out() const { return m_out; }
    [[nodiscard]] bool isJson() const { return m_isJson; }
    /// Whether standard output is a terminal that knows more than lines of text: nothing moves, and nothing
    /// is cut, when it is none.
    [[nodiscard]] bool isTerminal() const { return m_isTerminal; }
    /// The terminal's columns; nothing if there is no terminal.
    [[nodiscard]] std::optional<std::size_t> width() const;
    /// Text for the terminal in a colour, or as it is where none is wanted: no terminal, NO_COLOR,
    /// --no-color.
    [[nodiscard]] std::string colored(const std::string& text, const char* sgr) const;

    /// The whole answer as one document. To be called once.
    void writeJson(const nlohmann::ordered_json& answer) const;
    /// Tells why a run failed, as a line on standard error, or with --json as the document.
    void tell(const InfoFailure& failure) const;
    /// A line on standard error beside an answer.
    void warn(const std::string& text) const;

    bool m_isJson = false;
    bool m_isColored = false;
    InfoExit m_exit = InfoExit::CLEAR;

  private:
    std::ostream& m_out;
    std::ostream& m_err;
    bool m_isTerminal;
};

// Colours: "select graphic rendition" numbers of a terminal.
namespace color {
inline constexpr const char* BLOCKS = "1;31";
inline constexpr const char* WARNS = "33";
inline constexpr const char* INFORMS = "36";
inline constexpr const char* FINE = "32";
inline constexpr const char* DIM = "2";
inline constexpr const char* BOLD = "1";
} // namespace color

} // namespace Zorvane

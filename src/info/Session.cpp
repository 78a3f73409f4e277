// SPDX-License-Identifier: Apache-2.0
#include "info/Session.h"

#include "info/paragraphs.h"
#include "suite/printable.h"

#include <ostream>

#include <nlohmann/json.hpp>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Zorvane {

std::string Session::colored(const std::string& text, const char* sgr) const {
    return m_isColored ? "\033[" + std::string(sgr) + "m" + text + "\033[0m" : text;
}

void Session::writeJson(const nlohmann::ordered_json& answer) const {
    // A name of a legacy code set is no UTF-8; its odd bytes are replaced, the answer stays a document.
    m_out << answer.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

void Session::tell(const InfoFailure& failure) const {
    if (m_isJson)
        writeJson({{"error", {{"status", static_cast<int>(failure.exit())}, {"message", failure.what()}}}});
    else
        warn(failure.what());
}

void Session::warn(const std::string& text) const {
    m_err << "zorinfo: " << Suite::printable(text) << '\n';
}

std::optional<std::size_t> Session::width() const {
    if (!m_isTerminal)
        return std::nullopt;
    winsize size{};
    const bool isTold = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isTold ? size.ws_col : TERMINAL_WIDTH;
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "info/paragraphs.h"

#include "info/layout/labels.h"
#include "suite/printable.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace Zorvane {

namespace {

constexpr std::pair<std::string_view, std::string_view> QUOTES[] = {{"\"", "\""}, {"「", "」"}};

// The end of the quoted name that begins there; the place itself if none does. A mark that a letter follows
// closes none, and one behind a letter, of those that are the same on both sides, opens none.
std::size_t endOfQuoted(std::string_view text, std::size_t at) {
    const bool isBehindLetter =
        at > 0 && std::string_view(" (,=").find(text[at - 1]) == std::string_view::npos;
    for (const auto& [opening, closing] : QUOTES) {
        if (!text.substr(at).starts_with(opening) || (isBehindLetter && opening == closing))
            continue;
        std::size_t end = at;
        while ((end = text.find(closing, end + 1)) != std::string_view::npos) {
            const std::size_t behind = end + closing.size();
            if (behind == text.size() || !std::isalnum(static_cast<unsigned char>(text[behind])))
                return behind;
        }
    }
    return at;
}

// The end of what begins there and stays on one line.
std::size_t endOfPiece(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] != ' ')
        at = std::max(at + 1, endOfQuoted(text, at));
    return at;
}

} // namespace

std::string paragraph(std::string_view text, std::size_t indent, std::size_t hanging) {
    const std::string shown = Suite::printable(text);
    std::string lines;
    std::string line(indent, ' ');
    std::size_t at = 0;
    for (std::size_t begin; (begin = shown.find_first_not_of(' ', at)) != std::string::npos;) {
        const std::size_t end = endOfPiece(shown, begin);
        const std::string piece = shown.substr(at, end - at);
        if (at > 0 && terminalColumns(line) + terminalColumns(piece) > TERMINAL_WIDTH) {
            lines += line + "\n";
            line = std::string(hanging, ' ') + shown.substr(begin, end - begin);
        } else {
            line += piece;
        }
        at = end;
    }
    return lines + line + "\n";
}

std::string paragraph(std::string_view text, std::size_t indent) {
    return paragraph(text, indent, indent);
}

std::string leftAligned(const std::string& text, std::size_t width) {
    const std::size_t columns = terminalColumns(text);
    return columns < width ? text + std::string(width - columns, ' ') : text;
}

std::string rightAligned(const std::string& text, std::size_t width) {
    const std::size_t columns = terminalColumns(text);
    return columns < width ? std::string(width - columns, ' ') + text : text;
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "info/paragraphs.h"

#include "suite/printable.h"

#include <algorithm>
#include <sstream>

namespace Zorvane {

std::size_t columnsOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string paragraph(std::string_view text, std::size_t indent, std::size_t hanging) {
    std::istringstream words(Suite::printable(text));
    std::string lines;
    std::string line(indent, ' ');
    bool isStart = true;
    for (std::string word; words >> word;) {
        if (!isStart && columnsOf(line) + 1 + columnsOf(word) > TERMINAL_WIDTH) {
            lines += line + "\n";
            line = std::string(hanging, ' ');
            isStart = true;
        }
        line += (isStart ? "" : " ") + word;
        isStart = false;
    }
    return lines + line + "\n";
}

std::string paragraph(std::string_view text, std::size_t indent) {
    return paragraph(text, indent, indent);
}

std::string leftAligned(const std::string& text, std::size_t width) {
    const std::size_t columns = columnsOf(text);
    return columns < width ? text + std::string(width - columns, ' ') : text;
}

std::string rightAligned(const std::string& text, std::size_t width) {
    const std::size_t columns = columnsOf(text);
    return columns < width ? std::string(width - columns, ' ') + text : text;
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "info/layout/svgElements.h"

#include "suite/utf8.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace Zorvane {

namespace {

// One decimal, with a point in any locale. Nothing in a drawing is negative.
std::string number(double value) {
    const auto tenths = std::llround(value * 10);
    return std::to_string(tenths / 10) + (tenths % 10 == 0 ? "" : '.' + std::to_string(tenths % 10));
}

// Hundredths of the font's size for each letter of ASCII from the blank on: the widths of DejaVu Sans, the
// widest of the fonts that a drawing names.
using Widths = std::array<std::uint8_t, 95>;
constexpr Widths PLAIN = {32, 40, 46, 84, 64, 95, 78, 28, 39, 39, 50, 84, 32, 36,  32, 34, 64, 64, 64,
                          64, 64, 64, 64, 64, 64, 64, 34, 34, 84, 84, 84, 53, 100, 69, 69, 70, 77, 64,
                          58, 78, 76, 30, 30, 66, 56, 87, 75, 79, 61, 79, 70, 64,  61, 74, 69, 99, 69,
                          61, 69, 39, 34, 39, 84, 50, 50, 62, 64, 55, 64, 62, 36,  64, 64, 28, 28, 58,
                          28, 98, 64, 62, 64, 64, 42, 52, 40, 64, 60, 82, 60, 60,  53, 64, 34, 64, 84};
constexpr Widths BOLD = {35, 46,  52, 84, 70, 101, 88, 31,  46, 46, 53, 84, 38, 42,  38, 37, 70, 70,  70,
                         70, 70,  70, 70, 70, 70,  70, 40,  40, 84, 84, 84, 58, 100, 78, 77, 74, 83,  69,
                         69, 82,  84, 38, 38, 78,  64, 100, 84, 85, 74, 85, 77, 72,  69, 82, 78, 111, 77,
                         73, 73,  46, 37, 46, 84,  50, 50,  68, 72, 60, 72, 68, 44,  72, 72, 35, 35,  67,
                         35, 105, 72, 69, 72, 72,  50, 60,  48, 72, 66, 93, 65, 66,  59, 72, 37, 72,  84};

// What is not Latin may be a square.
double emsOf(char byte, bool isBold) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0xE0)
        return 1;
    if (code >= 0xC0)
        return code == 0xC2 ? 0.4 : 0.9; // the first is that of the dot between facts
    if (code < ' ' || code >= 0x7F)
        return 0; // the further bytes of a letter add nothing
    return (isBold ? BOLD : PLAIN)[code - ' '] / 100.0;
}

} // namespace

std::string escaped(std::string_view text) {
    std::string made;
    for (const char letter : text)
        switch (letter) {
        case '&':
            made += "&amp;";
            break;
        case '<':
            made += "&lt;";
            break;
        case '>':
            made += "&gt;";
            break;
        case '"':
            made += "&quot;";
            break;
        default:
            made += letter;
        }
    return made;
}

double widthOf(std::string_view text, double fontSize, bool isBold) {
    double ems = 0;
    for (const char byte : text)
        ems += emsOf(byte, isBold);
    return ems * fontSize;
}

std::string cut(std::string_view text, double width, double fontSize, bool isBold) {
    constexpr std::string_view ellipsis = "\xE2\x80\xA6";
    if (widthOf(text, fontSize, isBold) <= width)
        return std::string(text);
    double rest = width - widthOf(ellipsis, fontSize, isBold);
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!Suite::isUtf8Continuation(text[at]))
            end = at;
        rest -= widthOf(text.substr(at, 1), fontSize, isBold);
        if (rest < 0)
            break;
    }
    return end == 0 ? std::string() : std::string(text.substr(0, end)) + std::string(ellipsis);
}

void SvgElements::text(double x, double y, double fontSize, const std::string& text, const char* attributes) {
    if (text.empty())
        return;
    m_elements += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" font-size=\"" + number(fontSize) +
                  "\" " + attributes + ">" + escaped(text) + "</text>\n";
}

void SvgElements::box(const SvgBox& at, const char* fill, const char* line, const std::string& attributes,
                      const std::string& hint) {
    m_elements += "<rect x=\"" + number(at.x) + "\" y=\"" + number(at.y) + "\" width=\"" + number(at.width) +
                  "\" height=\"" + number(at.height) + "\" fill=\"" + fill + "\" stroke=\"" + line + "\" " +
                  attributes;
    m_elements += hint.empty() ? "/>\n" : "><title>" + escaped(hint) + "</title></rect>\n";
}

void SvgElements::write(std::ostream& out, double width, double height, const std::string& title) const {
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\""
        << number(width) << "\" height=\"" << number(height) << "\" viewBox=\"0 0 " << number(width) << ' '
        << number(height)
        << "\" font-family=\"Helvetica, Arial, 'DejaVu Sans', sans-serif\" fill=\"#212529\">\n"
           "<title>"
        << escaped(title)
        << "</title>\n"
           "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
           "<defs><pattern id=\"hatch\" width=\"6\" height=\"6\" patternUnits=\"userSpaceOnUse\" "
           "patternTransform=\"rotate(45)\"><path d=\"M0 0V6\" stroke=\"#9c4f7d\" stroke-opacity=\"0.35\" "
           "stroke-width=\"2\"/></pattern></defs>\n"
        << m_elements << "</svg>\n";
}

} // namespace Zorvane

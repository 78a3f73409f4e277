// SPDX-License-Identifier: Apache-2.0
#include "info/layout/svgElements.h"

namespace Zorvane {

namespace {

// One decimal, with a point in any locale. Nothing in a drawing is negative.
std::string number(double value) {
    const auto tenths = static_cast<unsigned long long>(value * 10 + 0.5);
    return std::to_string(tenths / 10) + (tenths % 10 == 0 ? "" : '.' + std::to_string(tenths % 10));
}

constexpr double BOLDER = 1.1; ///< how much wider bold letters are

bool isLetterStart(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

// Most letters of a wide sans-serif font are narrower; what is not Latin may be a square.
double emsOf(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    const auto isOneOf = [&](std::string_view letters) {
        return letters.find(byte) != std::string_view::npos;
    };
    if (code >= 0xE0)
        return 1;
    if (code >= 0x80)
        return code >= 0xC0 ? 0.9 : 0; // the further bytes of a letter add nothing
    if (isOneOf("mwMW@%"))
        return 0.9;
    if (isOneOf(" .,:;'|!iljtfr()[]"))
        return 0.32;
    return byte >= 'A' && byte <= 'Z' ? 0.7 : 0.57;
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
        ems += emsOf(byte);
    return ems * fontSize * (isBold ? BOLDER : 1);
}

std::string cut(std::string_view text, double width, double fontSize, bool isBold) {
    constexpr std::string_view ellipsis = "\xE2\x80\xA6";
    if (widthOf(text, fontSize, isBold) <= width)
        return std::string(text);
    double rest = width - widthOf(ellipsis, fontSize, isBold);
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (isLetterStart(text[at]))
            end = at;
        rest -= widthOf(text.substr(at, 1), fontSize, isBold);
        if (rest < 0)
            break;
    }
    return end == 0 ? std::string() : std::string(text.substr(0, end)) + std::string(ellipsis);
}

void SvgElements::text(double x, double y, double fontSize, const std::string& text, const char* attributes) {
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

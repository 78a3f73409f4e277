// SPDX-License-Identifier: Apache-2.0
#include "platform/valueConversion.h"

#include "logging/Trace.h"
#include "platform/returnCodes.h"

#include <cstdlib>
#include <iomanip>
#include <locale>
#include <memory>
#include <sstream>
#include <string_view>

namespace Zorvane {

std::string BinaryToString(const unsigned char* bytes, std::size_t count) {
    Trace trace(g_libLog, "valueConversion:BinaryToString()", ", count=", count);
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += DIGITS[bytes[i] >> 4];
        text += DIGITS[bytes[i] & 15];
    }
    return text;
}

unsigned char* StringToBinary(const std::string& text, unsigned int& count) {
    Trace trace(g_libLog, "valueConversion:StringToBinary()");
    count = static_cast<unsigned int>(text.size() / 2);
    auto bytes = std::make_unique<unsigned char[]>(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(StringToUlong("0x" + text.substr(2 * i, 2)));
    return bytes.release();
}

std::string FormatInteger(long long value, int base, bool zeroFill, int width, int precision) {
    Trace trace(g_libLog, "valueConversion:FormatInteger()");
    std::ostringstream stream;
    stream.imbue(std::locale::classic()); // the text goes into queries, where a grouped number is an error
    stream << std::uppercase << std::setbase(base) << std::setprecision(precision) << std::setw(width);
    if (zeroFill)
        stream << std::setfill('0');
    stream << value;
    return stream.str();
}

unsigned long StringToUlong(const std::string& text) {
    return std::strtoul(text.c_str(), nullptr, 0);
}

int ReverseField(void* /*field*/, std::size_t /*size*/) {
    Trace trace(g_libLog, "valueConversion:ReverseField()");
    trace.write(LEVEL_TRACE, "Byte order reversal is not required on this platform.");
    return ZOR_SUCCESS;
}

} // namespace Zorvane

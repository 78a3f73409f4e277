// SPDX-License-Identifier: Apache-2.0
// Numbers and bytes from and to text.
#pragma once

#include <cstddef>
#include <string>

namespace Zorvane {

/// Two upper-case hexadecimal digits a byte. Null is allowed with a count of 0.
std::string BinaryToString(const unsigned char* bytes, std::size_t count);

/// The bytes of such a text, in an array that the caller frees with array delete. A pair that is not
/// hexadecimal gives what strtoul makes of it, and an odd last character is ignored: there is no failure.
unsigned char* StringToBinary(const std::string& text, unsigned int& count);

/// The number as a stream prints it in base 8, 10 or 16 (any other is 10), with upper-case digits. Negative
/// numbers in base 8 and 16 are printed as 64-bit patterns.
std::string FormatInteger(long long value, int base, bool zeroFill = false, int width = 0, int precision = 0);

/// strtoul at base 0: a leading "0x" is hexadecimal, a leading 0 octal; 0 if there is no number.
unsigned long StringToUlong(const std::string& text);

/// Turns a field's bytes into network order on platforms that need it; this one does not. ZOR_SUCCESS.
int ReverseField(void* field, std::size_t size);

} // namespace Zorvane

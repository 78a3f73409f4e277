// SPDX-License-Identifier: Apache-2.0
// Looking up a parameter or a line in a text file.
#pragma once

#include <istream>
#include <string>

namespace Zorvane {

/// GetParameterValueFromFileStream on a file. ZOR_ERROR if it can't be opened.
int GetParameterValueFromFile(const std::string& fileName, const std::string& parameter, std::string& value,
                              const std::string& separators);

/// The value of the first line that begins with the parameter's name, then white space, separators, or both.
/// ZOR_FAIL if there is none, ZOR_ERROR if the stream has failed already; `value` is left as it was then.
/// Throws std::out_of_range if the line ends where its value should begin.
int GetParameterValueFromFileStream(std::istream& stream, const std::string& parameter, std::string& value,
                                    const std::string& separators);

/// Where in a line GetLineFromFile looks for its pattern; any other location matches nothing.
inline constexpr int LINE_CONTAINS = 0;
inline constexpr int LINE_BEGINS_WITH = 1;
inline constexpr int LINE_ENDS_WITH = 2; ///< with the pattern's first occurrence in the line

/// The first line with the pattern; a case flag of 0 ignores case. A stream that ends without such a line is
/// ZOR_SUCCESS with an empty `line`; ZOR_FAIL if the stream fails.
int GetLineFromFile(std::istream& stream, int location, int caseFlag, const std::string& pattern,
                    std::string& line);

} // namespace Zorvane

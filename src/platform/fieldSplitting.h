// SPDX-License-Identifier: Apache-2.0
// Cutting text into fields. With `convert` set a function works on the UTF-8 form of its input, so that no
// delimiter is found inside a multi-byte character; delimiters are ASCII.
#pragma once

#include <string>
#include <vector>

namespace Zorvane {

/// What counts as white space in lines and files.
inline constexpr const char* WHITE_SPACE = " \t\r\n";

/// Cuts at every occurrence of the delimiter's first character: adjacent and trailing delimiters give empty
/// tokens. ZOR_FAIL if the input is empty; `out` is empty then.
int Tokenize(const std::string& input, const std::string& delimiter, std::vector<std::string>& out,
             bool convert = false);

/// Cuts at runs of any of the delimiters and removes the line feeds at the end of each token: no token is
/// empty. Only delimiters give no token and ZOR_SUCCESS. ZOR_FAIL if the input or the set is empty; `out` is
/// left as it was then.
int Split(const std::string& input, const std::string& delimiters, std::vector<std::string>& out,
          bool convert = false);

/// Cuts at the first occurrence of a character, which belongs to neither part. ZOR_FAIL if there is none;
/// both parts are left as they were then.
int StrSplitAtFirst(const std::string& input, char character, std::string& left, std::string& right);

/// The same at the last occurrence.
int StrSplitAtLast(const std::string& input, char character, std::string& left, std::string& right);

/// One field of a line, counted from 1; 0 is the last one. Separators with white space among them cut as
/// Split does, any others as Tokenize does, at the first of them only. ZOR_FAIL, and an empty `out`, if there
/// is no such field.
int GetFieldFromLine(const std::string& line, const std::string& separators, unsigned field, std::string& out,
                     bool convert = false);

/// 1 if the word is one of the list's fields (as Split cuts them), case-sensitively; else 0, also if an
/// argument is empty.
int StrInStringList(const std::string& word, const std::string& list, const std::string& separators);

} // namespace Zorvane

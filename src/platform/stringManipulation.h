// SPDX-License-Identifier: Apache-2.0
// The string toolkit: searching, changing and quoting text here, its other subjects by the headers below.
//
// Arguments and results are native text. Functions in wide form count a multi-byte character as one; text
// that is not valid in the locale is worked on byte by byte, so that none is lost.
#pragma once

#include "platform/boundedStrings.h"
#include "platform/commandParser.h"
#include "platform/fieldSplitting.h"
#include "platform/parameterFile.h"
#include "platform/pathManipulation.h"
#include "platform/returnCodes.h"
#include "platform/valueConversion.h"

#include <string>

namespace Zorvane {

/// 1 if any character of the set occurs, else 0. Wide form.
int StrContains(const std::string& text, const std::string& set);
/// 1 if the character occurs, else 0.
int StrContains(const std::string& text, char character);
/// 1 if no character lies outside the set, as in an empty text, else 0. Wide form.
int StrContainsOnly(const std::string& text, const std::string& set);
/// 1 if the word occurs, else 0. Wide form; case is folded for the letters that tolower knows.
int StrContainsSubstring(const std::string& text, const std::string& word, bool caseSensitive);
/// 1 if there is a control character of ASCII, NUL apart, else 0.
int HasControlCharacters(const std::string& text);
/// 1 if there is a character outside ASCII, else 0.
int HasNonAsciiCharacters(const std::string& text);

/// Compares without case: negative, 0 or positive. Null counts as empty.
int StrCaseCmp(const char* first, const char* second);
/// The first match without case, in the haystack as given; null if there is none or an argument is null.
const char* StrCaseStr(const char* haystack, const char* needle);

/// Each byte through tolower or toupper.
std::string StrToLower(const std::string& text);
std::string StrToUpper(const std::string& text);

/// Replaces the first occurrence, or all of them; what was inserted is not searched again. ZOR_FAIL if
/// nothing was replaced, as for an empty search text. Wide form.
int StrReplace(std::string& text, const std::string& search, const std::string& replacement, bool all,
               bool ignoreCase = false);

/// Without the characters of the set at one end. Wide form.
std::string StripLeading(const std::string& text, const std::string& set);
std::string StripTrailing(const std::string& text, const std::string& set);
/// Without the trailing occurrences of a character; a line feed stands for carriage returns and line feeds.
std::string StripTrailingChar(const std::string& text, char character, bool convert = false);
/// Only the printable ASCII characters: anything else, letters outside ASCII too, is dropped.
std::string RemoveControlCharacters(const std::string& text);

/// A copy that the caller frees with array delete; null for null.
char* zor_strdup(const char* text);

/// Every text that becomes part of a shell command goes through one of these two. In single quotes the shell
/// takes all of it literally.
std::string ShellQuoteSingle(const std::string& text);
/// In double quotes, with double quotes escaped: the shell still expands dollars, backquotes and backslashes,
/// so this is for text of known origin only.
std::string ShellQuoteDouble(const std::string& text);
/// An SQL string literal; every text that becomes part of a query goes through it.
std::string QuoteSqlLiteral(const std::string& text);

} // namespace Zorvane

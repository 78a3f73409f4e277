// SPDX-License-Identifier: Apache-2.0
// The three text forms: native (bytes in the process locale), wide, and db (the UTF-8 of the database).
// A conversion that fails never stops its caller, and each says so in the log.
#pragma once

#include <string>

namespace Zorvane {

/// The wide form of native text, terminated with a null; the caller frees it with array delete. Null if the
/// text is not valid in the locale or holds a NUL.
wchar_t* ZorMbsToWcsCommon(const std::string& text);

/// The native form of wide text, up to its first null; empty if a character has no place in the locale.
std::string ZorWcsToMbsCommon(const std::wstring& text);

/// The UTF-8 form of native text; the text itself if it can't be converted. The code set of the locale is
/// asked for once and kept: set the locale before the first call.
std::string ZorMbsToDbCommon(const std::string& text);

/// The native form of UTF-8 text; the text itself if it can't be converted.
std::string ZorDbToMbsCommon(const std::string& text);

} // namespace Zorvane

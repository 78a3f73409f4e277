// SPDX-License-Identifier: Apache-2.0
// Paths as text. A separator of 0 means "/".
#pragma once

#include <string>

namespace Zorvane {

/// Makes one separator of each pair, in one pass (three in a row leave two), and then removes all trailing
/// separators, unless one separator is all that is left.
std::string NormalizePathSeparators(const std::string& path, char separator = 0);

/// The part behind the last separator; the whole path if there is none.
std::string GetFileNameFromPath(const std::string& path, char separator = 0);

/// The file name up to its last dot.
std::string GetFileNameWithoutExtFromPath(const std::string& path, char separator = 0);

/// The file name's part behind its last dot; empty if there is none.
std::string GetExtensionFromPath(const std::string& path, char separator = 0);

/// The normalized path up to its last separator: "." if there is none, "/" if nothing stands before it.
std::string GetDirNameFromPath(const std::string& path, char separator = 0);

/// The path without "." and ".." components; links are not resolved. A relative path is made absolute if it
/// begins with a dot or exists; else it stays relative, with a "/" behind it if one component is left, as for
/// a drive name. The root gives an empty text. ZOR_FAIL, and the path as given, if the path is empty or there
/// is no working directory.
int canonicalizePath(const std::string& path, std::string& canonical);

/// 1 if the canonical forms (or, where one has none, the paths as given) are the same, else 0.
int comparePaths(const std::string& first, const std::string& second);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// Comparing levels: releases of the suite, kernel versions, operating system levels.
//
// An operating system level has an old form of at most four characters ("5.2", "10.0"), and from five
// characters on a tagged form of tag, value and "#": "VER@10.0#RID@1607#TYP@WORKSTATION#SPL@0#ARC@X64#".
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

namespace Zorvane {

/// The longest level that is never looked at for tags.
inline constexpr std::size_t OSLEVEL_OLD_FORM_MAX = 4;

inline constexpr const char* OSLEVEL_VERSION = "VER@";      ///< dotted
inline constexpr const char* OSLEVEL_RELEASE_ID = "RID@";   ///< decimal, such as 1607
inline constexpr const char* OSLEVEL_TYPE = "TYP@";         ///< WORKSTATION, SERVER or SERVERCORE
inline constexpr const char* OSLEVEL_SERVICE_PACK = "SPL@"; ///< decimal
inline constexpr const char* OSLEVEL_ARCHITECTURE = "ARC@"; ///< such as X64
inline constexpr const char* OSLEVEL_BUILD = "BLD@";
inline constexpr const char* OSLEVEL_UPDATE_REVISION = "UBR@";

/// Dotted levels of one to four numbers, missing ones being 0: 1 if the first is at least the second, 0 if it
/// is lower, -1 if one of them is no level. A test for greater or equal, not a three-way comparison.
int CompareLevels(const std::string& level1, const std::string& level2);
/// CompareLevels for kernel versions such as "2.6.18-194.el5": of each of the first one's fields only the
/// leading number counts.
int CompareLinuxKernelVersion(const std::string& kernel1, const std::string& kernel2);
/// Kernel versions such as "Generic_137137-09": 1 if the first one's patch is at least the second's, else 0.
/// Versions without "_" go through CompareLevels, with its -1.
int CompareSolarisKernelVersion(const std::string& kernel1, const std::string& kernel2);
/// 1 if the architectures are the same, an empty one being "x86"; else 0. Case-sensitive.
int CompareArchitectures(const std::string& architecture1, const std::string& architecture2);

/// The dotted text without empty fields; empty if it hasn't one to four fields.
std::string getReleaseUpdate(const std::string& version);

/// A version packed into four groups of 16 bits, the first number highest, as dotted text.
std::string IntVersionToString(std::uint64_t version);
/// Packs the first four numbers of a dotted text, missing ones being 0; a leading 0 means octal. A number too
/// large for its group runs into the next.
std::uint64_t StringVersionToInt(const std::string& version);

/// The value behind a tag; of an old level, the whole level. ZOR_FAIL if the tag or the delimiter behind it
/// is missing; `out` is left as it was then.
int GetInfoFromOSLevel(const std::string& level, const std::string& tag, std::string& out,
                       const std::string& delimiter = "#");
/// The level with another value behind a tag; an old level as it is. ZOR_FAIL, and the level as it is, if the
/// tag or the delimiter behind it is missing.
int ReplaceInfoInOSLevel(const std::string& level, const std::string& tag, const std::string& value,
                         std::string& out, const std::string& delimiter = "#");
/// The version: an old level as it is, else the value of "VER@", or empty if there is none.
std::string GetVersionFromOSLevel(const std::string& level);
/// The number behind "RID@". ZOR_FAIL if there is none, as in an old level.
int GetReleaseIdFromOSLevel(const std::string& level, int& releaseId);

/// The supported release that a release counts as. ZOR_FAIL, and `out` as it was, for one that is older than
/// all supported ones.
int GetSupportedReleaseId(int releaseId, int& out);
/// The level with its release replaced by the supported one; an old level as it is. ZOR_FAIL if the level has
/// no release or none that is supported; `out` is empty then.
int GetSupportedOSLevel(const std::string& level, std::string& out);

/// 1 if two tagged levels match: one holds the other, or type, version and release are the same. Else 0.
int CompareNewFormatOSLevels(const std::string& level1, const std::string& level2);
/// Compares levels of any form after mapping releases to supported ones, by the tags of `fields`, or by
/// version, release and type if it is empty. ZOR_SUCCESS on a match, else ZOR_FAIL; `match` says the same.
int CompareOSLevels(const std::string& level1, const std::string& level2, bool& match,
                    const std::set<std::string>& fields = {});

/// The database's code (the numbers of CWindowsSystem's versions) for a level; 0 if it is unknown. Service
/// pack and architecture count for old levels only, in any case.
int GetDbWindowsVersion(const std::string& version, const std::string& servicePack,
                        const std::string& architecture);
/// The level of a code; empty if it is unknown.
std::string GetStringWindowsVersion(int code);
/// The name that users know a level by, such as "Windows 2003"; empty if it is unknown.
std::string GetFriendlyWindowsVersionString(const std::string& version);
/// The same for a code. False on success and true on failure, the reverse of what one would expect; `name` is
/// left as it was on failure.
bool GetFriendlyWindowsVersionString(int code, std::string& name);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The operating system of this host: its family and its level.
#pragma once

#include <string>

namespace Zorvane {

/// Finds out the operating system's qualifier ("RHEL", "SLES", or what the distribution calls itself) and
/// level ("8.4") and keeps them. 0, or ZOR_FAIL for a system that isn't known.
int SetOsInfo();
/// The same from /etc/os-release alone. ZOR_FAIL if it doesn't tell, ZOR_ERROR if it can't be opened; what
/// was found until then is kept.
int SetOsInfoFromOsRelease();

/// What SetOsInfo found, which is called first if nothing is known yet; empty for an unknown system.
std::string GetOsLevel();
std::string GetOsQualifier();

/// The first line that a command writes; empty if there is none.
std::string GetOsLevelCommon(const std::string& command);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The versions of the suite and of this product, as the files of this host tell them.
#pragma once

#include <string>

namespace Zorvane {

/// 1 if the suite installed in `installPath` fits a recovery image, else 0: an image whose OsArchType is "64"
/// needs the suite at 7.0 or later, any other one needs it before 7.0. `version` is empty if it could not be
/// read.
int validateKvnVsOsArchType(const std::string& installPath, const std::string& osArchType,
                            std::string& version);

/// The RELEASE_LEVEL of a version file; 0, or the runner's code for the command that reads it.
int GetKvnClientOrServerVersion(const std::string& versionFile, std::string& version);

/// The first line of the version file in the working directory. ZOR_ERROR if it can't be opened, ZOR_FAIL if
/// it is empty; `version` is left as it was then.
int ServerVersion(std::string& version);

/// The version of the product, from the suite's bin folder or else from the fixed path below `topDirectory`;
/// empty if neither tells it.
std::string GetZorVersionCommon(const std::string& topDirectory);

} // namespace Zorvane

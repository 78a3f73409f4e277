// SPDX-License-Identifier: Apache-2.0
// The one place through which the files of this host are named.
#pragma once

#include <string>
#include <string_view>

namespace Zorvane {

/// The name under which to open a file of the host, given by its absolute path.
std::string HostPath(std::string_view path);

/// Moves the host's files below another directory: a test lays out the files of the host that it wants to
/// see. An empty text is the real root. Paths that were composed before keep their root.
void SetHostRoot(std::string_view directory);

} // namespace Zorvane

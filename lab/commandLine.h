// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Zorvane {

/// The whole program: 0, 1 if the command failed (told on standard error), 2 for a command line that makes no
/// sense.
int runZorlab(int argc, char** argv);

} // namespace Zorvane

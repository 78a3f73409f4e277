// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Zorvane {

/// What a program does before it opens anything, whatever it was started with.
///
/// Takes up those of the descriptors 0 to 2 that it was started without, so that no file or socket of its own
/// gets such a number and is written over by messages; reading from them and writing to them fails as before.
/// Where even that can't be had, the program ends with status 114 and a word on standard error.
///
/// Makes a file at the limit of its size a write that fails (EFBIG) and not the end of the program. Children
/// of the runner have the signal as their system gives it.
void SetUpProcess();

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Zorvane {

/// Takes up those of the descriptors 0 to 2 that a program was started without, so that no file or socket of
/// its own gets such a number and is written over by messages. Reading from them and writing to them fails as
/// before. To be called before anything is opened.
void OccupyStandardDescriptors();

} // namespace Zorvane

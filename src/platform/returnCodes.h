// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Zorvane {

/// Return codes of the platform layer. 2 belongs to the child process runner: a child ended by a signal.
/// Functions that answer yes or no use the opposite sense, 1 for yes and 0 for no; their headers say so.
inline constexpr int ZOR_SUCCESS = 0;
inline constexpr int ZOR_FAIL = 1;  ///< what was sought is not there, or the parameters were unusable
inline constexpr int ZOR_ERROR = 3; ///< the stream, file or process could not be used at all

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The frame in which a command of the product runs.
#pragma once

#include <cstdint>

namespace Zorvane {

/// What the shell sees when the frame ends a command.
inline constexpr int ZOR_OUT_OF_MEMORY = 10;
inline constexpr int ZOR_STRAY_EXCEPTION = 114; ///< also: the logging set-up failed

/// A command's real main function: argument count and vector in, status out.
using CommandMain = int (*)(std::int32_t argc, char** argv);

/// Throws std::bad_alloc: the process's new handler.
void zorNewHandler();

/// Takes the locale from the environment, opens the two log channels, makes the process-wide error object and
/// runs the command. Its status is returned as it is; what flies out of it becomes one of the statuses above.
/// Channels and error object stay alive for the rest of the process.
int ZorPreMain(std::int32_t argc, char** argv, std::uint64_t productId, std::uint64_t originatorId,
               CommandMain commandMain);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The allocator of this test program, which can be told to fail.
#pragma once

namespace Zorvane::Test {

inline constexpr long NEVER = -1;
extern long g_allocationsLeft; ///< until one fails

} // namespace Zorvane::Test

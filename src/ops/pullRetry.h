// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>

namespace Zorvane {

inline constexpr int PULL_ATTEMPTS = 3;
inline constexpr std::chrono::seconds PULL_PAUSE{5};

/// Runs an exchange until it ends otherwise than in a network failure, PULL_ATTEMPTS times at most. After
/// each failed attempt, the last one too, it takes a pause. The result of the last attempt.
int retryPull(const std::function<int()>& attempt, const std::function<void(std::chrono::seconds)>& pause);

} // namespace Zorvane

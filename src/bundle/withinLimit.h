// SPDX-License-Identifier: Apache-2.0
// Work that may never end, such as a question to a daemon that is silent.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace Zorvane {

struct Outcome {
    bool isDone = false;
    std::string text; ///< what the work gave, or why it gave nothing
};

/// Runs the work in a process of its own, whose outputs go nowhere and whose changes in memory are lost, and
/// ends that process at the limit. An exception's text is the reason of a failure.
Outcome withinLimit(std::chrono::seconds limit, const std::function<std::string()>& work);

} // namespace Zorvane

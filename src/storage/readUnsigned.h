// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sstream>
#include <string>

namespace Zorvane {

/// The number that a text begins with, as a stream reads it: 0 if there is none, the largest one if it is too
/// large.
inline unsigned int readUnsigned(const std::string& text) {
    unsigned int number = 0;
    std::istringstream(text) >> number;
    return number;
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>

namespace Zorvane {

/// A failure that ends a command of the lab; its text is for the user: what is wrong, with which name, what
/// to do.
class LabError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace Zorvane

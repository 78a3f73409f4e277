// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

namespace Zorvane {

/// A request that is refused, on its way to the store's face: the status of the reply and the text for the
/// log.
class RequestError : public std::runtime_error {
  public:
    RequestError(int status, const std::string& text) : std::runtime_error(text), m_status(status) {}
    [[nodiscard]] int status() const { return m_status; }

  private:
    int m_status;
};

} // namespace Zorvane

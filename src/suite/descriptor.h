// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

#include <unistd.h>

namespace Zorvane::Suite {

/// An open file descriptor, closed at the end of its scope.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Descriptor() {
        if (isOpen())
            ::close(m_descriptor);
    }

    [[nodiscard]] bool isOpen() const noexcept { return m_descriptor >= 0; }
    [[nodiscard]] int get() const noexcept { return m_descriptor; }
    [[nodiscard]] int release() noexcept { return std::exchange(m_descriptor, -1); }

  private:
    int m_descriptor;
};

} // namespace Zorvane::Suite

// SPDX-License-Identifier: Apache-2.0
// What the daemons of a lab were asked, a line for each request.
#pragma once

#include "suite/descriptor.h"

#include <filesystem>
#include <initializer_list>
#include <mutex>
#include <string>
#include <string_view>

namespace Zorvane {

class RequestLog {
  public:
    /// Logs nothing.
    RequestLog() : m_out(-1) {}
    /// A new file at that place. LabError if it can't be written.
    explicit RequestLog(const std::filesystem::path& file);

    [[nodiscard]] bool isOpen() const { return m_out.isOpen(); }
    /// One line, its columns separated by tabs: service, operation, subject, arguments, answer (a status, or
    /// the effect of a rule), and for some failures a reason. It stands in the file when this returns, so
    /// that it does before the client has its answer; for a lack of room or memory it is missing, and the
    /// answer goes out all the same. Control characters are spelled out; an empty column is "-", and a long
    /// one is cut. For use by several threads.
    void write(std::initializer_list<std::string_view> columns) noexcept;

  private:
    std::mutex m_lock;
    Suite::Descriptor m_out;
    bool m_isTorn = false; ///< the last line found room for a part of it
};

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// What the daemons of a lab were asked, a line for each request.
#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <mutex>
#include <string>
#include <string_view>

namespace Zorvane {

class RequestLog {
  public:
    /// Logs nothing.
    RequestLog() = default;
    /// A new file at that place. LabError if it can't be written.
    explicit RequestLog(const std::filesystem::path& file);

    [[nodiscard]] bool isOpen() const { return m_out.is_open(); }
    /// One line, its columns separated by tabs: service, operation, subject, arguments, answer (a status, or
    /// the effect of a rule), and for some failures a reason. It stands in the file when this returns, so
    /// that it does before the client has its answer. Control characters are spelled out; an empty column is
    /// "-". For use by several threads.
    void write(std::initializer_list<std::string_view> columns);

  private:
    std::mutex m_lock;
    std::ofstream m_out;
};

} // namespace Zorvane

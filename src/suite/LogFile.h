// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "suite/descriptor.h"

#include <cstddef>
#include <string>
#include <string_view>

#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>

namespace Zorvane::Suite {

/// A log file that many processes write at once, each line in one piece. When a line would make it longer
/// than told, it becomes `<name>.1.log`, what was that `<name>.2.log`, and so on; who of the writers does
/// that matters not, and no line is lost in it. Where it can't be done the file grows instead.
///
/// Many may write into its folder, so what stands in its place may be a pipe, which would block, or a link to
/// a file that is none of theirs: neither is ever opened.
class LogFile final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
  public:
    /// `path` ends in ".log"; of the files that were turned over `maxFiles` are kept.
    LogFile(std::string path, std::size_t maxBytes, std::size_t maxFiles);

    /// 0, or the errno of why there is no file to write. What was open stays so on a failure.
    [[nodiscard]] int open();

  protected:
    /// Throws spdlog::spdlog_ex if the line can't be written.
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override {}

  private:
    [[nodiscard]] bool hasRoomFor(std::size_t bytes) const;
    [[nodiscard]] bool isAtItsPath() const;
    [[nodiscard]] bool isOutOfItsPlace() const;
    [[nodiscard]] bool moveAside() const;
    [[nodiscard]] std::string oldName(std::size_t number) const;

    std::string m_path;
    std::size_t m_maxBytes;
    std::size_t m_maxFiles;
    Descriptor m_file{-1};
};

} // namespace Zorvane::Suite

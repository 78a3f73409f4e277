// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "logging/CZorLog.h"
#include "suite/Scratch.h"

#include <algorithm>

namespace Zorvane {

/// The command's own log channel, with its file and the suite's configuration in a folder of their own.
class CommandLog {
  public:
    explicit CommandLog(const std::string& toml = "", int level = 1)
        : m_scratch(toml + "\n[logging]\ndebug = " + std::to_string(level)) {
        m_scratch.configure(m_scratch.read("kvn.toml") + "\ndirectory = '" + m_scratch.path("") + "'\n");
        m_log = std::make_unique<CZorLog>(ZOR_PRODUCT_ID, ZOR_COMMAND_ORIGINATOR);
        g_appLog = m_log.get();
    }
    CommandLog(const CommandLog&) = delete;
    CommandLog& operator=(const CommandLog&) = delete;
    ~CommandLog() { g_appLog = nullptr; }

    [[nodiscard]] const Scratch& scratch() const { return m_scratch; }
    /// The lines whose beginning is given, without it, one behind the other; the log is empty then.
    std::string take(const std::string& beginning) {
        std::string taken;
        for (const std::string& line : m_scratch.logLines(ZOR_COMMAND_ORIGINATOR))
            if (line.starts_with(beginning))
                taken += (taken.empty() ? "" : "\n") + line.substr(beginning.size());
        std::filesystem::resize_file(m_scratch.path("51216-433.log"), 0);
        return taken;
    }
    /// What the user was told of failures: "6] The option ...".
    std::string takeMessages() { return take("app 2 - [433:"); }

  private:
    Scratch m_scratch;
    std::unique_ptr<CZorLog> m_log;
};

} // namespace Zorvane

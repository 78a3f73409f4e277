// SPDX-License-Identifier: Apache-2.0
#include "lab/jobReport.h"

#include "lab/Store.h"
#include "suite/printable.h"

#include <algorithm>
#include <array>
#include <ctime>

namespace Zorvane {

namespace {

constexpr std::size_t COLUMNS = 7;
using Row = std::array<std::string, COLUMNS>;

std::string dateText(std::int64_t seconds) {
    const auto ticks = static_cast<std::time_t>(seconds);
    std::tm fields{};
    std::array<char, 64> text{};
    if (seconds > 0 && ::localtime_r(&ticks, &fields))
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &fields);
    return text.data();
}

// What tasks and their log entries have in common.
template <class Task>
Row rowOf(const Task& task, std::int64_t ended) {
    return {std::to_string(task.getId()),
            toName(task.getState()),
            task.getClientName() + "/" + task.getConfigName(),
            task.getVmName(),
            task.getProfileName(),
            dateText(task.getCreateTime()),
            dateText(ended)};
}

} // namespace

std::string jobReport(const Store& store) {
    std::vector<Row> rows = {
        {"JOB", "STATE", "CLIENT/CONFIGURATION", "MACHINE", "PROFILE", "SUBMITTED", "ENDED"}};
    for (const CP2VRestoreTask& task : store.tasks())
        rows.push_back(rowOf(task, 0));
    for (const CP2VRestoreTaskLog& task : store.taskLogs())
        rows.push_back(rowOf(task, task.getEndTime()));

    std::array<std::size_t, COLUMNS> widths{};
    for (Row& row : rows)
        for (std::size_t i = 0; i < COLUMNS; ++i) {
            row[i] = row[i].empty() ? "-" : Suite::printable(row[i]);
            widths[i] = std::max(widths[i], row[i].size());
        }
    std::string text;
    for (Row& row : rows) {
        for (std::size_t i = 0; i + 1 < COLUMNS; ++i) {
            row[i].resize(widths[i], ' ');
            text += row[i] + "  ";
        }
        text += row.back() + "\n";
    }
    return text;
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// zorinfo tasks: what became of the conversions.
#include "info/asks/Conversions.h"
#include "info/asks/TextTable.h"
#include "info/asks/followTasks.h"
#include "info/asks/recoveryQueries.h"
#include "info/subcommands.h"
#include "logging/Trace.h"

#include <memory>
#include <ostream>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Zorvane {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t MOST_FINISHED = 20; ///< of all clients together
constexpr int LONGEST_WAIT = 31'536'000;  ///< a year

constexpr const char* EXITS = "Exit status: 0 asked and answered; 1 after --wait, a conversion still runs; 2 "
                              "wrong usage; 3 could not ask.";

struct TasksOptions {
    std::string client;
    bool isFollowed = false;
    int wait = 0;
};

// What a task and its log entry have in common.
template <class Task>
Json commonDocument(const Task& task) {
    return {{"id", task.getId()},
            {"client", task.getClientName()},
            {"configuration", task.getConfigName()},
            {"state", toName(task.getState())},
            {"machine", task.getVmName()},
            {"profile", task.getProfileName()},
            {"systemOnly", task.getSystemOnly()},
            {"since", timestampText(task.getCreateTime())}};
}

Json documentOf(const Conversions& conversions) {
    Json running = Json::array(), finished = Json::array();
    for (const CP2VRestoreTask& task : conversions.running) {
        running.push_back(commonDocument(task));
        running.back()["step"] = toName(task.getOperation());
    }
    for (const CP2VRestoreTaskLog& log : conversions.finished) {
        finished.push_back(commonDocument(log));
        finished.back()["status"] = log.getStatus();
        finished.back()["ended"] = timestampText(log.getEndTime());
    }
    return {{"running", running}, {"finished", finished}};
}

void writeTables(const Conversions& conversions, bool ofAllClients, const Session& session) {
    std::ostream& out = session.out();
    if (conversions.running.empty())
        out << "No conversion runs.\n";
    else {
        TextTable table({"RUNNING", "STATE", "STEP", "SINCE", "MACHINE"});
        for (const CP2VRestoreTask& task : conversions.running)
            table.add({taskName(task), wordsOf(toName(task.getState())), wordsOf(toName(task.getOperation())),
                       dayText(task.getCreateTime()), task.getVmName()});
        table.write(session);
    }
    if (conversions.finished.empty())
        return;
    out << '\n';
    TextTable table({"FINISHED", "RESULT", "ENDED", "MACHINE"});
    const std::size_t shownRows =
        ofAllClients ? std::min(MOST_FINISHED, conversions.finished.size()) : conversions.finished.size();
    for (std::size_t i = 0; i < shownRows; ++i) {
        const CP2VRestoreTaskLog& log = conversions.finished[i];
        table.add({taskName(log), resultOf(log), minuteText(log.getEndTime()), log.getVmName()});
    }
    table.write(session);
    if (shownRows < conversions.finished.size())
        out << "and " << conversions.finished.size() - shownRows
            << " earlier ones; name a client to see all of its conversions\n";
}

void run(const TasksOptions& options, bool isBounded, Session& session) {
    ClassTrace trace(g_appLog, "tasksCommand:run()", ", client=", options.client);
    Conversions conversions = allConversions(options.client);
    // A client that is misspelt has nothing to wait for, and a script would take that for the end of its
    // task.
    if (!options.client.empty() && conversions.running.empty() && conversions.finished.empty())
        requireClient(options.client);
    if (options.isFollowed || isBounded) {
        const bool isOver = followTasks(
            {.client = options.client,
             .isTold = options.isFollowed && !session.isJson(),
             .limit = isBounded ? std::optional(std::chrono::seconds(options.wait)) : std::nullopt},
            session);
        if (!isOver)
            session.m_exit = InfoExit::BLOCKED;
        if (options.isFollowed && !session.isJson())
            return;
        conversions = allConversions(options.client);
    }
    if (session.isJson())
        session.writeJson(documentOf(conversions));
    else
        writeTables(conversions, options.client.empty(), session);
}

} // namespace

void addTasks(CLI::App& app, Session& session) {
    const auto options = std::make_shared<TasksOptions>();
    CLI::App* command = app.add_subcommand("tasks", "Tell the conversions that run and those that ended.");
    command->footer(EXITS);
    command->add_option("client", options->client, "those of this client only")->type_name("CLIENT");
    command->add_flag("--follow", options->isFollowed,
                      "tell each change until none runs; with --json only the end");
    CLI::Option* wait =
        command->add_option("--wait", options->wait, "come back when none runs any more, or after that time")
            ->type_name("SECONDS")
            ->check(CLI::Range(0, LONGEST_WAIT));
    command->callback([options, wait, &session] { run(*options, wait->count() > 0, session); });
}

} // namespace Zorvane

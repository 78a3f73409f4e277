// SPDX-License-Identifier: Apache-2.0
#include "torture/Site.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <sqlite3.h>
#include <sys/wait.h>

namespace Zorvane::Torture {

namespace {

// Nothing takes that long: who is not done by then waits for something that never comes.
constexpr std::chrono::seconds LIMIT{20};

constexpr const char* SERVICES[] = {"zord", "zorbd", "kvnrd"};

constexpr int SANITIZER = 77;
const std::set<int> STATUSES = {0, 1, 3, 10, 114};
// The runner's code 2 is the child run's alone.
const std::set<int> CHILD_STATUSES = {0, 1, 2, 3, 10, 114};
// 3 is told before anything is recorded.
const std::set<int> STATUSES_WITH_A_JOB = {0, 1, 10, 114};

const char* const SANITIZER_OPTIONS = "exitcode=77:verify_asan_link_order=0:allocator_may_return_null=1:"
                                      "detect_leaks=1:abort_on_error=0:halt_on_error=1";

// As a lab writes them, in the order of SERVICES.
std::vector<std::uint16_t> readPorts(const std::string& file) {
    std::vector<std::uint16_t> ports(std::size(SERVICES));
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);)
        for (std::size_t i = 0; i < ports.size(); ++i)
            if (const std::string head = std::string(SERVICES[i]) + " = "; line.starts_with(head))
                ports[i] = static_cast<std::uint16_t>(std::stoul(line.substr(head.size())));
    return ports;
}

} // namespace

Site::Site() {
    const auto [closed, port] = bindToFreePort(false);
    m_closed = std::make_unique<Suite::Descriptor>(closed);
    m_closedPort = port;
    m_lab.serve();
    expectLab();
    m_proxy = std::make_unique<Proxy>(readPorts(m_lab.path("lab/kvn.toml")));
    if (sqlite3_open(m_lab.path("lab/recovery.db").c_str(), &m_database) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(m_database));
    sqlite3_busy_timeout(m_database, 10'000);
    select("PRAGMA synchronous=OFF");
}

Site::~Site() {
    sqlite3_close(m_database);
}

void Site::expectLab() const {
    siginfo_t ended{};
    if (waitid(P_PID, static_cast<id_t>(m_lab.server()), &ended, WEXITED | WNOHANG | WNOWAIT) != 0 ||
        ended.si_pid != 0)
        throw std::runtime_error("the lab is gone; its last words stand in this output");
}

std::vector<std::string> Site::select(const std::string& statement) {
    std::vector<std::string> rows;
    const auto row = [](void* to, int count, char** values, char** names) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            std::string value = values[i] ? values[i] : "";
            const std::string name = names[i];
            // Numbers, moments and generated names are each run's own; a task's state is its daemon's affair.
            if (name == "Id" || name == "CreateTime" || name == "P2VRestoreTaskId" || name == "State")
                continue;
            if (name == "ProfileName" && value.starts_with("B2VProfile_"))
                value = "generated";
            text += " " + name + "=" + value + ",";
        }
        static_cast<std::vector<std::string>*>(to)->push_back(text);
        return 0;
    };
    if (sqlite3_exec(m_database, statement.c_str(), row, &rows, nullptr) != SQLITE_OK)
        throw std::runtime_error(statement + ": " + sqlite3_errmsg(m_database));
    return rows;
}

Rows Site::rows() {
    const auto set = [this](const std::string& statement) {
        // A row that is there twice stays so.
        std::set<std::string> all;
        for (std::string row : select(statement))
            while (!all.insert(row).second)
                row += "again";
        return all;
    };
    Rows now{set("SELECT * FROM ZOR_VmwareProfileOptions"), set("SELECT * FROM ZOR_P2VRestoreTask"),
             set("SELECT * FROM ZOR_DiskToDataStoreMap"),
             set("SELECT task.* FROM ZOR_P2VRestoreTask task JOIN LAB_SubmittedJob ON TaskId = task.Id"), ""};
    for (const std::string& row :
         select("SELECT 'a task without its profile' FROM ZOR_P2VRestoreTask WHERE lower(ProfileName) NOT IN "
                "(SELECT lower(ProfileName) FROM ZOR_VmwareProfileOptions) "
                "UNION ALL SELECT 'a disk without its task' FROM ZOR_DiskToDataStoreMap WHERE "
                "P2VRestoreTaskId NOT IN (SELECT Id FROM ZOR_P2VRestoreTask) "
                "UNION ALL SELECT 'a job without its task' FROM LAB_SubmittedJob WHERE "
                "TaskId NOT IN (SELECT Id FROM ZOR_P2VRestoreTask)"))
        now.broken += row;
    return now;
}

void Site::writeFiles(const Run& run) {
    std::string services;
    for (std::size_t i = 0; i < std::size(SERVICES); ++i)
        services += std::string(SERVICES[i]) + " = " +
                    std::to_string(run.down == SERVICES[i] ? m_closedPort : m_proxy->port(i)) + "\n";
    m_lab.write("kvn.toml",
                "[master]\nservers = [\"localhost\"]\nclient_name = \"labhost\"\n[services]\n" + services +
                    "[logging]\ndirectory = \"" + m_lab.path("log") +
                    "\"\ndebug = " + std::to_string(run.debugLevel) +
                    "\nmax_bytes = 100000\nmax_files = 2\n[catalog]\ndirectory = \"" TORTURE_CATALOG "\"\n");
    m_lab.write("target", "toolsIsoPath=[ng-san-01] iso/tools.iso\n" + run.target);
    // A program reads a fresh configuration more than once, which would make the counts differ.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    m_standsFor = run.name;
}

void Site::restore(const Run& run) {
    if (m_standsFor != run.name)
        writeFiles(run);
    // Numbers of tasks come again: what is left of a job would be that of a later task.
    select("DELETE FROM ZOR_VmwareProfileOptions; DELETE FROM ZOR_DiskToDataStoreMap; "
           "DELETE FROM ZOR_P2VRestoreTask; DELETE FROM LAB_SubmittedJob");
    select(run.before);
    m_initial = rows();
}

Ending Site::make(const Run& run, Environment environment, const Damage& damage,
                  std::vector<Traffic>* traffic) {
    std::filesystem::remove_all(m_lab.path("log")); // each run begins with the same files
    const auto rule = environment.find("TORTURE_FAIL");
    std::string leakOptions = SANITIZER_OPTIONS;
    if (rule != environment.end() && rule->second.starts_with("memory:"))
        leakOptions += ":print_suppressions=0:suppressions=" TORTURE_LEAKS;
    environment.insert({{"KVN_CONF", m_lab.path("kvn.toml")},
                        {"LC_ALL", "C.UTF-8"},
                        {"ASAN_OPTIONS", SANITIZER_OPTIONS},
                        {"UBSAN_OPTIONS", SANITIZER_OPTIONS},
                        {"LSAN_OPTIONS", leakOptions}});
    std::vector<std::string> command = {TORTURE_CHILD_RUN};
    if (!run.options.empty()) {
        command = {TORTURE_ZORB2V,           "-vmserver", "vcenter01.lab.example", "-vmproxy",
                   "convhost01.lab.example", "-veconfig", m_lab.path("target")};
        for (const std::string& word : words(run.options))
            command.push_back(word);
    }
    m_proxy->begin(damage);
    Ending ending = runProgram(command, std::move(environment), m_lab.path(""), LIMIT);
    expectLab();
    auto passed = m_proxy->end();
    if (const auto cut = std::ranges::find(passed, true, &Traffic::isCut); cut != passed.end()) {
        ending.failed = true;
        ending.failedAt = cut - passed.begin() + 1;
    }
    if (traffic)
        *traffic = std::move(passed);
    return ending;
}

Model Site::model(const Run& run) {
    restore(run);
    Model model;
    model.before = rows();
    // Twice: the first one warms what it may.
    make(run, {}, {}, nullptr);
    restore(run);
    model.ending = make(run, {}, {}, &model.traffic);
    model.after = rows();
    restore(run);
    model.profiles = model.after.profiles;
    const std::size_t jobs = run.status == 0 && !run.options.empty() ? 1 : 0;
    if (model.ending.status != run.status || !model.ending.told || !model.after.broken.empty() ||
        model.after.jobs.size() != jobs)
        throw std::runtime_error(run.name + ": the undisturbed run ended with status " +
                                 std::to_string(model.ending.status) + " and " +
                                 std::to_string(model.after.jobs.size()) + " jobs\n" + model.ending.out +
                                 model.ending.err + model.after.broken);
    return model;
}

namespace {

// What a profile takes from a listing is empty where that failed, and this is as it has to be.
const std::set<std::string> FROM_LISTINGS = {"DataStore",    "AvailableSize", "Folder",
                                             "ResourcePool", "DataCenter",    "Network"};

bool isLike(const std::string& found, const std::string& expected) {
    const auto isEmpty = [](const std::string& column) {
        return column.ends_with('=') || column.ends_with("=0");
    };
    std::istringstream left(found), right(expected);
    for (std::string one, other; std::getline(left, one, ',') && std::getline(right, other, ',');)
        if (one != other &&
            !((isEmpty(one) || isEmpty(other)) && FROM_LISTINGS.contains(one.substr(1, one.find('=') - 1))))
            return false;
    return true;
}

bool areLike(const std::set<std::string>& found, const std::set<std::string>& expected) {
    return found.size() == expected.size() && std::ranges::all_of(found, [&](const std::string& row) {
               return std::ranges::any_of(expected,
                                          [&](const std::string& other) { return isLike(row, other); });
           });
}

std::string list(const Rows& rows) {
    std::string text;
    for (const auto* set : {&rows.profiles, &rows.tasks, &rows.disks})
        for (const std::string& row : *set)
            text += "\n    " + row;
    return text + "\n    jobs: " + std::to_string(rows.jobs.size());
}

std::string wrongRows(const Rows& now, const Model& model, int status) {
    if (!now.broken.empty())
        return now.broken;
    const bool hasProfiles = areLike(now.profiles, model.after.profiles);
    const bool hasAll = hasProfiles && now.tasks == model.after.tasks && now.disks == model.after.disks;
    const bool hasNone = now.tasks == model.before.tasks && now.disks == model.before.disks;
    if (!hasAll &&
        (status == 0 || !hasNone ||
         !(hasProfiles || now.profiles == model.before.profiles || areLike(now.profiles, model.profiles))))
        return "status " + std::to_string(status) + " with rows that must not be:" + list(now) +
               "\n  expected at most:" +
               list({model.profiles, model.after.tasks, model.after.disks, model.after.jobs, ""});
    return {};
}

// A job that the daemon has taken on goes with a failure only if the failure came in the last exchange or
// behind it: the daemon's word did not arrive, or could not be told.
std::string wrongJobs(const Rows& now, const Model& model, const Ending& ending) {
    if (ending.status == 0)
        return now.jobs == model.after.jobs ? "" : "status 0 without the job";
    const bool isLate = ending.failed && ending.failedAt == ending.calls[CLASS_connect];
    if (now.jobs.empty() || (isLate && STATUSES_WITH_A_JOB.contains(ending.status)))
        return {};
    return "status " + std::to_string(ending.status) + " with a job submitted";
}

std::string wrongEnd(const Run& run, const Model& model, const Case& test, const Ending& ending) {
    const bool isChildRun = run.options.empty();
    if (!ending.inTime)
        return "not done in " + std::to_string(LIMIT.count()) + " seconds";
    if (ending.signal != 0)
        return "ended by signal " + std::to_string(ending.signal);
    if (ending.status == SANITIZER)
        return "a sanitizer's report";
    if (ending.status == TORTURE_SPINNING)
        return test.maySpin ? "" : "asks a peer that is gone again and again";
    if (test.mustSucceed && ending.status != 0)
        return "status " + std::to_string(ending.status) + " of a run that has to succeed";
    if (!(isChildRun ? CHILD_STATUSES : STATUSES).contains(ending.status))
        return "status " + std::to_string(ending.status);
    if (ending.status == 0 && model.ending.status != 0)
        return "status 0 of a run that has to be refused";
    if (!ending.told)
        return "no report, it did not end as programs do";
    for (const std::string& what : ending.leftOpen)
        if (!what.ends_with(".log"))
            return "left open: " + what;
    // A wait that fails has nobody to end it: what is left of the child is its system's.
    if (ending.leftChildren && test.name.find(":wait:") == std::string::npos)
        return "left a child behind";
    return {};
}

} // namespace

std::string Site::attempt(const Model& model, const Case& test, Ending& ending) {
    const Run& run = runs()[test.run];
    if (m_standsFor != run.name)
        restore(run);
    ending = make(run, test.environment, test.damage, nullptr);
    const Rows now = rows();
    std::string wrong;
    for (const std::string& what : {wrongEnd(run, model, test, ending), wrongRows(now, model, ending.status),
                                    wrongJobs(now, model, ending)})
        if (!what.empty())
            wrong += (wrong.empty() ? "" : "; ") + what;
    if (now != m_initial)
        restore(run);
    return wrong;
}

} // namespace Zorvane::Torture

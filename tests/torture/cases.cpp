// SPDX-License-Identifier: Apache-2.0
#include "torture/cases.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>

namespace Zorvane::Torture {

namespace {

// The errors that the calls of each class are made to fail with.
const std::array<std::vector<int>, CLASSES> ERRORS = [] {
    std::array<std::vector<int>, CLASSES> errors;
    errors[CLASS_memory] = {ENOMEM};
    errors[CLASS_open] = {EMFILE};
    errors[CLASS_read] = {EIO, EINTR};
    errors[CLASS_write] = {ENOSPC, EINTR};
    errors[CLASS_close] = {EIO};
    errors[CLASS_stat] = {EACCES};
    errors[CLASS_seek] = {ESPIPE};
    errors[CLASS_folder] = {EACCES};
    errors[CLASS_socket] = {EMFILE};
    errors[CLASS_connect] = {ECONNREFUSED};
    errors[CLASS_option] = {ENOBUFS};
    errors[CLASS_poll] = {ENOMEM, EINTR};
    errors[CLASS_resolve] = {EAGAIN};
    errors[CLASS_send] = {EPIPE, EINTR};
    errors[CLASS_receive] = {ECONNRESET, EINTR, EAGAIN};
    errors[CLASS_pipe] = {EMFILE};
    errors[CLASS_dup] = {EMFILE};
    errors[CLASS_fork] = {EAGAIN};
    errors[CLASS_exec] = {ENOENT};
    errors[CLASS_wait] = {ECHILD, EINTR};
    errors[CLASS_locale] = {ENOENT};
    errors[CLASS_convert] = {EILSEQ};
    errors[CLASS_watch] = {ENOSPC};
    return errors;
}();

// `wanted` numbers of 1 to `count`, spread evenly with both ends; all of them if there are no more.
std::vector<std::size_t> spread(std::size_t count, std::size_t wanted) {
    std::vector<std::size_t> numbers;
    wanted = std::min(wanted, count);
    for (std::size_t i = 0; i < wanted; ++i)
        numbers.push_back(1 + (wanted > 1 ? i * (count - 1) / (wanted - 1) : 0));
    return numbers;
}

std::vector<Case> failingCalls(const std::vector<Model>& models, const Options& options) {
    // A sample gives each class the same few, as far as it has them; allocations fill up what is left of it.
    const std::size_t few =
        options.sample == 0 ? Damage::NEVER : std::max<std::size_t>(1, options.sample / 400);
    std::vector<Case> cases;
    const auto add = [&](std::size_t run, std::size_t kind, std::size_t wanted) {
        for (const std::size_t number :
             spread(static_cast<std::size_t>(models[run].ending.calls[kind]), wanted))
            for (const int error : ERRORS[kind]) {
                const std::string rule = std::string(CLASS_NAMES[kind]) + ":" + std::to_string(number) + ":" +
                                         std::to_string(error);
                cases.push_back({runs()[run].name + ":" + rule, run, {{"TORTURE_FAIL", rule}}});
            }
    };
    for (std::size_t run = 0; run < models.size(); ++run)
        for (std::size_t kind = 0; kind < CLASSES; ++kind)
            if (kind != CLASS_memory)
                add(run, kind, few);
    std::size_t allocations = options.allocations;
    if (options.sample != 0)
        allocations = (options.sample - std::min(options.sample, cases.size())) / models.size() + 1;
    for (std::size_t run = 0; run < models.size(); ++run)
        add(run, CLASS_memory, allocations);
    return cases;
}

// Where the document of a recovery daemon's reply to a query or an insertion begins: behind two packets,
// whose lengths stand at their offset 2. The length of the reply if there is none.
std::size_t documentIn(const Traffic& traffic) {
    constexpr std::size_t KVNRD = 2;
    constexpr unsigned char DB_REPLY = 23;
    const auto byte = [&](std::size_t at) {
        return at < traffic.received.size() ? static_cast<unsigned char>(traffic.received[at]) : 0U;
    };
    const std::size_t second = byte(2) * 256 + byte(3);
    if (traffic.service == KVNRD || byte(second + 1) != DB_REPLY)
        return traffic.received.size();
    return second + byte(second + 2) * 256 + byte(second + 3);
}

std::vector<Case> damagedConnections(const std::vector<Model>& models, const Options& options) {
    constexpr std::size_t RUN = 0; // the one that is submitted sees every kind of exchange
    const std::vector<Traffic>& traffic = models[RUN].traffic;
    std::vector<Case> cases;
    const std::size_t few =
        options.sample == 0 ? Damage::NEVER : std::max<std::size_t>(3, options.sample / traffic.size() / 2);
    for (std::size_t i = 0; i < traffic.size(); ++i)
        for (const bool inReply : {true, false})
            for (const std::size_t number :
                 spread((inReply ? traffic[i].received : traffic[i].sent).size(), few)) {
                const std::size_t after = number - 1;
                Case test{runs()[RUN].name + ":cut:" + std::to_string(i) + (inReply ? ":reply:" : ":sent:") +
                              std::to_string(after),
                          RUN};
                test.damage.connection = i;
                test.damage.inReply = inReply;
                test.damage.after = after;
                test.maySpin = inReply && after >= documentIn(traffic[i]);
                cases.push_back(std::move(test));
            }
    for (std::size_t run = 0; run < models.size(); ++run) {
        const std::string& name = runs()[run].name;
        const bool succeeds = models[run].ending.status == 0;
        Damage slow, singles;
        slow.delay = std::chrono::milliseconds(20);
        singles.singleBytes = true;
        cases.push_back({name + ":delays", run, {}, slow, succeeds});
        cases.push_back({name + ":bytes", run, {}, singles, succeeds});
        cases.push_back({name + ":short", run, {{"TORTURE_SHORT", "documents"}}, {}, succeeds});
        // A packet that is taken in part is not sent on: the daemon waits for the rest until its patience
        // ends.
        cases.push_back({name + ":shortest", run, {{"TORTURE_SHORT", "all"}}});
    }
    return cases;
}

} // namespace

Options readOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const bool hasValue = i + 1 < argc;
        if (word == "--cuts")
            options.cuts = true;
        else if (word == "--verbose")
            options.verbose = true;
        else if (word == "--jobs" && hasValue)
            options.jobs = std::stoi(argv[++i]);
        else if (word == "--sample" && hasValue)
            options.sample = std::stoul(argv[++i]);
        else if (word == "--allocations" && hasValue)
            options.allocations = std::stoul(argv[++i]);
        else if (word == "--only" && hasValue)
            options.only = argv[++i];
        else
            throw std::runtime_error(word + " is no option; they are --cuts, --sample N, --allocations N, "
                                            "--jobs N, --only NAME, --verbose");
    }
    return options;
}

void completeModels(std::vector<Model>& models) {
    for (std::size_t i = 0; i < models.size(); ++i)
        if (!runs()[i].options.empty() && runs()[i].network != runs()[0].network)
            for (std::string row : models[0].after.profiles) {
                const std::string given = "Network=" + runs()[0].network;
                row.replace(row.find(given), given.size(), "Network=" + runs()[i].network);
                models[i].profiles.insert(row);
            }
}

std::vector<Case> makeCases(const std::vector<Model>& models, const Options& options) {
    std::vector<Case> cases =
        options.cuts ? damagedConnections(models, options) : failingCalls(models, options);
    std::erase_if(cases, [&](const Case& test) { return !test.name.starts_with(options.only); });
    if (cases.empty())
        throw std::runtime_error("no case's name begins with \"" + options.only + "\"");
    return cases;
}

} // namespace Zorvane::Torture

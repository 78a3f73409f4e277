// SPDX-License-Identifier: Apache-2.0
// Lets whole runs repeat with one thing wrong each time: a call that fails, or a connection that is damaged.
#include "torture/Site.h"
#include "torture/cases.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane::Torture {

namespace {

// What the workers have done together.
struct Progress {
    std::atomic<std::size_t> next{0};
    std::atomic<long> made{0}, failed{0}, spun{0}, wrong{0};
    std::array<std::atomic<long>, 256> statuses{};
};

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n')).substr(0, 200);
}

void work(const std::vector<Case>& cases, const std::vector<Model>& models, Progress& progress,
          bool verbose) {
    Site site;
    for (std::size_t i = 0; (i = progress.next++) < cases.size();) {
        const Case& test = cases[i];
        Ending ending;
        const std::string wrong = site.attempt(models[test.run], test, ending);
        ++progress.made;
        progress.failed += ending.failed;
        progress.spun += test.maySpin && ending.status == TORTURE_SPINNING;
        if (ending.status >= 0)
            ++progress.statuses[static_cast<std::size_t>(ending.status)];
        if (verbose)
            std::fprintf(stderr, "%s: status %d, %s\n", test.name.c_str(), ending.status,
                         firstLine(ending.out + ending.err).c_str());
        if (wrong.empty())
            continue;
        ++progress.wrong;
        const std::string said = ending.err.find("Sanitizer") == std::string::npos &&
                                         ending.err.find("runtime error") == std::string::npos
                                     ? firstLine(ending.err)
                                     : ending.err;
        std::fprintf(stderr, "%s: WRONG, %s (status %d, \"%s\")\n", test.name.c_str(), wrong.c_str(),
                     ending.status, said.c_str());
    }
}

// A process each: the library's settings and the lab's address are those of a process.
bool workTogether(const std::vector<Case>& cases, const std::vector<Model>& models, const Options& options,
                  Progress& progress) {
    bool whole = true;
    for (int i = 0; i < options.jobs; ++i)
        if (fork() == 0) {
            try {
                work(cases, models, progress, options.verbose);
            } catch (const std::exception& failure) {
                std::fprintf(stderr, "torture: %s\n", failure.what());
                _exit(1);
            }
            _exit(0);
        }
    for (int status = 0; wait(&status) > 0;)
        whole = whole && status == 0;
    return whole;
}

void tellCalls(const std::vector<Model>& models) {
    std::printf("%-12s", "calls");
    for (const char* name : CLASS_NAMES)
        std::printf(" %7s", name);
    std::printf("\n");
    for (std::size_t i = 0; i < models.size(); ++i) {
        std::printf("%-12s", runs()[i].name.c_str());
        for (const long calls : models[i].ending.calls)
            std::printf(" %7ld", calls);
        std::printf("\n");
    }
}

// Two runs differ in a few allocations, so that the last calls of the model's run may not come in another.
// Where more is missed, it was not the run that was tortured.
bool hasFailedEnough(const std::vector<Case>& cases, long failed) {
    const auto wanted = std::ranges::count_if(cases, &Case::isToFail);
    if (failed * 10 >= wanted * 9)
        return true;
    std::fprintf(stderr, "torture: of %td failures only %ld came to pass; nine of ten have to\n", wanted,
                 failed);
    return false;
}

int torture(const Options& options) {
    std::vector<Model> models;
    {
        Site site;
        for (const Run& run : runs())
            models.push_back(site.model(run));
    }
    completeModels(models);
    const std::vector<Case> cases = makeCases(models, options);
    if (options.verbose || !options.cuts)
        tellCalls(models);

    void* const shared =
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    Progress& progress = *new (shared) Progress;
    const auto start = std::chrono::steady_clock::now();
    std::fflush(stdout);
    const bool whole = workTogether(cases, models, options, progress);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;

    std::printf("%zu cases, %ld repetitions, %ld failures came to pass, %ld spinning as they may, %ld wrong, "
                "%.0f s\nstatuses:",
                cases.size(), progress.made.load(), progress.failed.load(), progress.spun.load(),
                progress.wrong.load(), time.count());
    for (std::size_t i = 0; i < progress.statuses.size(); ++i)
        if (progress.statuses[i] > 0)
            std::printf(" %zu (%ld)", i, progress.statuses[i].load());
    std::printf("\n");
    const bool enough = hasFailedEnough(cases, progress.failed);
    return whole && enough && progress.wrong == 0 && progress.made == static_cast<long>(cases.size()) ? 0 : 1;
}

} // namespace

} // namespace Zorvane::Torture

int main(int argc, char** argv) {
    try {
        return Zorvane::Torture::torture(Zorvane::Torture::readOptions(argc, argv));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "torture: %s\n", failure.what());
        return 2;
    }
}

// SPDX-License-Identifier: Apache-2.0
// One piece of work, done once, for counting its instructions: work_bench CASE ROWS. Only what stands in
// measuredWork() is counted.
#include "sampleRows.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace Zorvane;

struct Work {
    CZor zor;
    std::string document;
    unsigned char* written = nullptr;
    int length = 0;
};

struct Case {
    const char* name;
    void (*prepare)(Work&, std::size_t rows);
    int (*run)(Work&);
};

constexpr Case CASES[] = {
    {"read", [](Work& work, std::size_t rows) { work.document = Bench::mixedDocument(rows); },
     [](Work& work) {
         return work.zor.readXml(reinterpret_cast<unsigned char*>(work.document.data()),
                                 static_cast<int>(work.document.size()));
     }},
    {"write", [](Work& work, std::size_t rows) { Bench::addMixedRows(work.zor, rows); },
     [](Work& work) { return work.zor.writeXml(&work.written, &work.length); }},
};

} // namespace

// By this name the counting is switched on and off.
extern "C" [[gnu::noinline]] int measuredWork(int (*run)(Work&), Work& work) {
    return run(work);
}

int main(int argc, char** argv) {
    for (const Case& each : CASES) {
        if (argc != 3 || std::strcmp(argv[1], each.name) != 0)
            continue;
        Work work;
        each.prepare(work, std::strtoul(argv[2], nullptr, 10));
        const int rc = measuredWork(each.run, work);
        delete[] work.written;
        return rc;
    }
    std::fprintf(stderr, "usage: bench_work read|write ROWS\n");
    return 2;
}

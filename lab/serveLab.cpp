// SPDX-License-Identifier: Apache-2.0
#include "lab/serveLab.h"

#include "lab/KvnrdSession.h"
#include "lab/Lab.h"
#include "lab/Server.h"
#include "lab/ZordSession.h"
#include "ops/sendrecv.h"
#include "suite/printable.h"

#include <cstdio>
#include <iostream>
#include <memory>

#include <malloc.h>

namespace Zorvane {

namespace {

constexpr int HEAPS = 4;

void reportJobFailure(const std::string& text) {
    std::fprintf(stderr, "zorlab: jobs: %s\n", Suite::printable(text).c_str());
}

} // namespace

void serveLab(const LabDirectory& directory, ServeOptions options) {
    // Before the first thread: each heap keeps what a large document left in it, and threads would have sixteen.
    ::mallopt(M_ARENA_MAX, HEAPS);
    directory.mustExist();
    const Suite::Descriptor lock = directory.lock();
    const LabPorts ports = directory.ports();
    Store store(directory.database());
    JobRunner jobs(store, options.pace, reportJobFailure, options.clock);
    FailRules failures(std::move(options.failures));
    const auto log =
        options.trace ? std::make_unique<RequestLog>(directory.requestLog()) : std::make_unique<RequestLog>();
    Lab lab{store,
            jobs,
            readInventory(directory.inventory()),
            readCatalogue(directory.catalogue()),
            failures,
            *log,
            directory.received()};

    const auto recovery = [&lab](const char* name, std::uint16_t port) {
        return Service{name, port,
                       [&lab, name](Connection& connection) { ZordSession(lab, connection, name).run(); }};
    };
    Server server(options.address,
                  {recovery(ZOR_SERVICE, ports.zord), recovery(ZOR_BOOT_SERVICE, ports.zorbd),
                   Service{"kvnrd", ports.kvnrd,
                           [&lab](Connection& connection) { KvnrdSession(lab, connection).run(); }}});
    std::cout << "ready" << std::endl;
    server.run();
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// A connection to a daemon of the lab, whose client is the input: as a whole, or from a point where the
// daemon knows already what it is asked.
#include "fuzz/LabStore.h"
#include "lab/KvnrdSession.h"
#include "lab/ZordSession.h"
#include "lab/defaultInventory.h"
#include "ops/Wire.h"
#include "ops/zorop.h"

#include <csignal>
#include <fstream>

#include <sys/time.h>

using namespace Zorvane;

namespace {

using namespace std::chrono_literals;

class ServedStore {
  public:
    ServedStore() {
        const Scratch& scratch = m_store.scratch();
        scratch.write("inventory.toml", std::string(DEFAULT_INVENTORY));
        m_lab.inventory = readInventory(scratch.path("inventory.toml"));
        m_lab.catalogue.clients.push_back(
            {"alpha", CATALOGUE_WINDOWS, 0, {{"Daily", "Full", 100, {"/C/a", "/C/b"}}}});
    }

    [[nodiscard]] Lab& lab() { return m_lab; }

  private:
    Fuzz::LabStore m_store{{.clauseTime = 50ms}};
    JobRunner m_jobs{m_store.store(), 24h};
    FailRules m_failures;
    RequestLog m_log{m_store.scratch().path("requests.log")};
    Lab m_lab{m_store.store(), m_jobs, {}, {}, m_failures, m_log, std::filesystem::path(m_store.scratch().path("received"))};
};

const std::string OPENING = "0 0\n" + packet(10, S("6.5.0") + S("KVN"));

std::string databaseRequest(Fuzz::Input& input) {
    static constexpr int COMMANDS[] = {ZOROP_QUERY, ZOROP_INSERT, ZOROP_UPDATE, ZOROP_DELETE,
                                       ZOROP_TRANSACTION};
    const int command = COMMANDS[input.choice(std::size(COMMANDS))];
    const std::string document = Test::zorData(input.rest());
    return OPENING + packet(22, i(command) + i(static_cast<long>(document.size()))) + document;
}

std::string methodCall(Fuzz::Input& input) {
    static constexpr std::pair<int, int> METHODS[] = {{ZOROP_DOB2V, ZOROP_B2VRESTORETASK},
                                                      {ZOROP_VERIFYB2V, ZOROP_VEPROFILE},
                                                      {ZOROP_DELETE, ZOROP_VEPROFILE},
                                                      {ZOROP_PREPARE, ZOROP_CLIENT}};
    const auto [operation, resource] = METHODS[input.choice(std::size(METHODS))];
    const std::vector<std::string> parameters = input.lines();
    std::string area;
    for (const std::string& parameter : parameters)
        area += S(parameter.c_str());
    return OPENING + packet(9 | PACKET_ERROR_FLAG,
                            s(static_cast<unsigned>(operation)) + s(static_cast<unsigned>(resource)) +
                                s(static_cast<unsigned>(parameters.size())) + area + '\0');
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ::signal(SIGPIPE, SIG_IGN); // as in the lab
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    Lab& lab = Fuzz::renewed<ServedStore>().lab();
    const unsigned kind = input.choice(5);
    const std::string bytes = kind == 0   ? databaseRequest(input)
                              : kind == 1 ? methodCall(input)
                              : kind == 2 ? OPENING + input.rest()
                                          : input.rest();
    const SocketPair peers;
    peers.says(bytes);
    // Nobody takes the answers: what doesn't fit fails soon.
    constexpr timeval shortly{0, 100'000};
    ::setsockopt(peers.near(), SOL_SOCKET, SO_SNDTIMEO, &shortly, sizeof shortly);
    Connection connection(::dup(peers.near()));
    if (kind == 4)
        KvnrdSession(lab, connection).run();
    else
        ZordSession(lab, connection, "zord").run();
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "StoreFixture.h"
#include "lab/KvnrdSession.h"
#include "lab/Lab.h"
#include "lab/Server.h"
#include "lab/ZordSession.h"
#include "lab/defaultInventory.h"
#include "ops/sendrecv.h"
#include "suite/descriptor.h"

#include <fstream>
#include <thread>

#include <arpa/inet.h>
#include <sys/socket.h>

namespace Zorvane {

/// A connection that says nothing of its own.
inline Suite::Descriptor connectTo(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    Suite::Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_EQ(::connect(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    return Suite::Descriptor(socket.release());
}

/// A lab that is served by a thread of the test, and is the configured one for the client's code.
class ServedLab {
  public:
    explicit ServedLab(std::vector<FailRule> rules = {}, SessionLimits limits = {})
        : m_failures(std::move(rules)) {
        std::ofstream(m_scratch.file("inventory.toml")) << DEFAULT_INVENTORY;
        m_lab.inventory = readInventory(m_scratch.file("inventory.toml"));
        m_lab.catalogue.clients.push_back({"srv1", CATALOGUE_WINDOWS, 0, {{"Daily", "Full", 100, {"/C/a"}}}});
        m_lab.limits = limits;
        std::ofstream(m_scratch.file("kvn.toml"))
            << "[master]\nservers = [\"127.0.0.1\"]\nclient_name = \"tester\"\n[services]\nzord = "
            << m_server.port("zord") << "\nkvnrd = " << m_server.port("kvnrd")
            << "\n[catalog]\ndirectory = \""
            << (std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "share/locale")
                   .string()
            << "\"\n";
        ::setenv("KVN_CONF", m_scratch.file("kvn.toml").c_str(), 1);
        ClearMasterServerName();
        g_service = ZOR_SERVICE;
    }
    ServedLab(const ServedLab&) = delete;
    ServedLab& operator=(const ServedLab&) = delete;
    ~ServedLab() {
        m_server.stop();
        m_thread.join();
        ::unsetenv("KVN_CONF");
    }

    [[nodiscard]] Store& store() { return m_store; }
    [[nodiscard]] std::filesystem::path received() const { return m_lab.received.folder(); }
    /// The lines of the request log.
    [[nodiscard]] std::vector<std::string> requests() const {
        std::ifstream in(m_scratch.file("requests.log"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }
    [[nodiscard]] Suite::Descriptor connect(const char* service) const {
        return connectTo(m_server.port(service));
    }

  private:
    ScratchDirectory m_scratch;
    Store m_store{m_scratch.file("recovery.db")};
    JobRunner m_jobs{m_store, std::chrono::milliseconds(10)};
    FailRules m_failures;
    RequestLog m_log{m_scratch.file("requests.log")};
    Lab m_lab{m_store, m_jobs, {}, {}, m_failures, m_log, m_scratch.file("received")};
    Server m_server{
        "127.0.0.1",
        {{"zord", 0, [this](Connection& connection) { ZordSession(m_lab, connection, "zord").run(); }},
         {"kvnrd", 0, [this](Connection& connection) { KvnrdSession(m_lab, connection).run(); }}}};
    std::thread m_thread{[this] { m_server.run(); }};
};

} // namespace Zorvane

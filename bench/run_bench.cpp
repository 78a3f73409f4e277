// SPDX-License-Identifier: Apache-2.0
// Whole runs beside curl. A conversion is submitted to a lab, through relays that note the size of each reply
// and how long the lab took for it; then one curl process fetches as many replies of the same sizes from a
// server that takes as long for each. Both are timed from start to exit, by turns, the conversion straight
// against the lab.
#include "bench/processes.h"
#include "bench/sideBySide.h"

#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>

namespace Zorvane::Bench {
namespace {

namespace fs = std::filesystem;
using Suite::Descriptor;

constexpr int ROUNDS = 25;
constexpr int RECORDINGS = 7;
constexpr std::array SERVICES = {"zord", "zorbd", "kvnrd"};

constexpr const char* TARGET = R"(name=ledger01-vm
esxhost=esx01.lab.example
datacenter=/Northgate
folder=/Northgate/vm/Production
resourcepool=Gold
network=VM Network
datastore=ng-san-01
harddisk=0:ng-san-01
harddisk=1:ng-san-02
diskformat=ThinVdisk
toolsIsoPath=/images/windows-tools.iso
)";

/// What a client of the lab had of one connection.
struct Exchange {
    std::size_t bytes = 0;  ///< of the lab's answers
    Clock::duration wait{}; ///< for them
};

class LoopbackPort {
  public:
    LoopbackPort() : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        if (::bind(m_listener.get(), any, size) != 0 || ::listen(m_listener.get(), 16) != 0 ||
            ::getsockname(m_listener.get(), any, &size) != 0)
            throw std::runtime_error("no port to listen on");
        m_number = ntohs(address.sin_port);
    }
    [[nodiscard]] int listener() const { return m_listener.get(); }
    [[nodiscard]] std::uint16_t number() const { return m_number; }
    /// A descriptor for the caller to close.
    [[nodiscard]] int accept() const {
        const int peer = ::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC);
        sendAtOnce(peer);
        return peer;
    }

    /// The same.
    static int connectTo(std::uint16_t port) {
        Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const sockaddr_in address{AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
        if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("the lab takes no connection");
        sendAtOnce(socket.get());
        return socket.release();
    }

  private:
    static void sendAtOnce(int socket) {
        const int on = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }

    Descriptor m_listener;
    std::uint16_t m_number = 0;
};

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

/// Hands everything on between both ends until the client has had enough.
Exchange relay(int client, int lab) {
    Exchange exchange;
    std::array<char, 1 << 16> buffer;
    auto since = Clock::now();
    for (;;) {
        pollfd ends[] = {{lab, POLLIN, 0}, {client, POLLIN, 0}};
        ::poll(ends, 2, -1);
        const bool isAnswer = ends[0].revents != 0;
        if (isAnswer)
            exchange.wait += Clock::now() - since;
        const ssize_t size = ::recv(isAnswer ? lab : client, buffer.data(), buffer.size(), 0);
        if (size <= 0 || !sendAll(isAnswer ? client : lab, {buffer.data(), static_cast<std::size_t>(size)}))
            return exchange;
        if (isAnswer)
            exchange.bytes += static_cast<std::size_t>(size);
        since = Clock::now();
    }
}

/// A lab with its sample clients, served until the end of the scope, and a conversion that it takes.
class Lab {
  public:
    Lab() {
        std::string name = (fs::temp_directory_path() / "zor-bench-XXXXXX").string();
        m_folder = ::mkdtemp(name.data());
        run({ZOR_ZORLAB, "init", path("lab")});
        std::ofstream(path("target.conf")) << TARGET;
        m_server.emplace(Command{ZOR_ZORLAB, "serve", path("lab"), "--job-seconds", "0"}, path("ready"));
        while (fileText("ready") != "ready\n")
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        configure(fileText("lab/kvn.toml"));
    }
    Lab(const Lab&) = delete;
    Lab& operator=(const Lab&) = delete;
    ~Lab() {
        m_server.reset();
        fs::remove_all(m_folder);
    }

    [[nodiscard]] Command conversion() const {
        return {ZOR_ZORB2V,
                "-C",
                "ledger01.corp.example",
                "-vmserver",
                "vcenter01.lab.example",
                "-vmproxy",
                "convhost01.lab.example",
                "-veconfig",
                path("target.conf")};
    }

    /// The exchanges of a conversion, in their order.
    [[nodiscard]] std::vector<Exchange> record() const {
        const std::string configuration = fileText("lab/kvn.toml");
        std::string relayed = configuration;
        std::array<LoopbackPort, SERVICES.size()> relays;
        std::array<std::uint16_t, SERVICES.size()> labPorts{};
        for (std::size_t i = 0; i < relays.size(); ++i) {
            const std::string key = std::string("\n") + SERVICES[i] + " = ";
            const std::size_t place = relayed.find(key) + key.size();
            std::from_chars(relayed.data() + place, relayed.data() + relayed.size(), labPorts[i]);
            relayed.replace(place, std::to_string(labPorts[i]).size(), std::to_string(relays[i].number()));
        }
        configure(relayed);
        std::vector<Exchange> exchanges;
        Process process(conversion(), "/dev/null");
        // By its number: the library of this system declares the call for C alone.
        const Descriptor ended(static_cast<int>(::syscall(SYS_pidfd_open, process.id(), 0)));
        for (bool isRunning = true; isRunning;) {
            std::array<pollfd, SERVICES.size() + 1> waiting;
            for (std::size_t i = 0; i < relays.size(); ++i)
                waiting[i] = {relays[i].listener(), POLLIN, 0};
            waiting.back() = {ended.get(), POLLIN, 0};
            ::poll(waiting.data(), waiting.size(), -1);
            isRunning = waiting.back().revents == 0;
            for (std::size_t i = 0; i < relays.size(); ++i)
                if (waiting[i].revents != 0) {
                    const Descriptor client(relays[i].accept());
                    const Descriptor server(LoopbackPort::connectTo(labPorts[i]));
                    exchanges.push_back(relay(client.get(), server.get()));
                }
        }
        process.wait(0);
        configure(configuration);
        return exchanges;
    }

  private:
    [[nodiscard]] std::string path(const std::string& name) const { return (m_folder / name).string(); }
    [[nodiscard]] std::string fileText(const std::string& name) const {
        return (std::ostringstream() << std::ifstream(path(name)).rdbuf()).str();
    }
    void configure(const std::string& text) const {
        std::ofstream(path("kvn.toml")) << text;
        ::setenv("KVN_CONF", path("kvn.toml").c_str(), 1);
    }

    fs::path m_folder;
    std::optional<Process> m_server;
};

/// Serves answers of these sizes by HTTP, under their numbers, each as long after its request as it took in
/// the lab.
class AnswerServer {
  public:
    explicit AnswerServer(std::vector<Exchange> answers) : m_answers(std::move(answers)) {
        m_thread = std::jthread([this] { serve(); });
    }
    AnswerServer(const AnswerServer&) = delete;
    AnswerServer& operator=(const AnswerServer&) = delete;
    ~AnswerServer() {
        const std::uint64_t one = 1;
        if (::write(m_stop.get(), &one, sizeof one) != sizeof one)
            std::abort(); // the thread would never end
    }

    [[nodiscard]] Command curl() const {
        return {"/usr/bin/curl", "-s", "-o", "/dev/null",
                "http://127.0.0.1:" + std::to_string(m_port.number()) + "/[0-" +
                    std::to_string(m_answers.size() - 1) + "]"};
    }

  private:
    void serve() const {
        for (;;) {
            pollfd waiting[] = {{m_stop.get(), POLLIN, 0}, {m_port.listener(), POLLIN, 0}};
            ::poll(waiting, 2, -1);
            if (waiting[0].revents != 0)
                return;
            const Descriptor client(m_port.accept());
            while (answer(client.get())) {
            }
        }
    }

    bool answer(int client) const {
        std::array<char, 4096> request;
        const ssize_t size = ::recv(client, request.data(), request.size(), 0);
        const auto arrival = Clock::now();
        constexpr std::string_view head = "GET /";
        if (size <= static_cast<ssize_t>(head.size()))
            return false;
        std::size_t number = 0;
        std::from_chars(request.data() + head.size(), request.data() + size, number);
        const Exchange& exchange = m_answers.at(number);
        std::string text =
            "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(exchange.bytes) + "\r\n\r\n";
        text.append(exchange.bytes, 'x');
        // A sleep ends late: the last bit of the time is waited out awake, as the lab is awake when it works.
        constexpr auto lateness = std::chrono::microseconds(200);
        std::this_thread::sleep_until(arrival + exchange.wait - lateness);
        while (Clock::now() < arrival + exchange.wait) {
        }
        return sendAll(client, text);
    }

    std::vector<Exchange> m_answers;
    LoopbackPort m_port;
    Descriptor m_stop{::eventfd(0, EFD_CLOEXEC)};
    std::jthread m_thread;
};

/// Each exchange with the median of its times.
std::vector<Exchange> typicalExchanges(const Lab& lab) {
    std::vector<std::vector<Exchange>> recordings;
    (void)lab.record(); // the first conversion records a profile, which the later ones find
    for (int i = 0; i < RECORDINGS; ++i)
        recordings.push_back(lab.record());
    std::vector<Exchange> typical = recordings.back();
    for (std::size_t i = 0; i < typical.size(); ++i) {
        std::vector<double> waits;
        for (const auto& recording : recordings) {
            if (recording.size() != typical.size())
                throw std::runtime_error("conversions differ in their exchanges");
            waits.push_back(std::chrono::duration<double>(recording[i].wait).count());
        }
        typical[i].wait =
            std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(median(waits)));
    }
    return typical;
}

struct Runs {
    Medians clock, processor;
};

Runs compare(const Command& ours, int expected, const Command& theirs) {
    std::vector<Spent> ourRuns, theirRuns;
    runByTurns(
        ROUNDS, [&] { return ourRuns.emplace_back(run(ours, expected)).clock; },
        [&] { return theirRuns.emplace_back(run(theirs)).clock; });
    const auto medians = [&](double Spent::*kind) {
        std::vector<double> our, their, ratios;
        for (std::size_t i = 1; i < ourRuns.size(); ++i) { // the first ones warm up
            our.push_back(ourRuns[i].*kind);
            their.push_back(theirRuns[i].*kind);
            ratios.push_back(our.back() / their.back());
        }
        return Medians{median(our), median(their), median(ratios)};
    };
    return {medians(&Spent::clock), medians(&Spent::processor)};
}

void reportRuns(benchmark::State& state, const Runs& runs, double target) {
    report(state, runs.clock, target);
    state.counters["cpu_ratio"] = runs.processor.ratio;
    state.counters["ours_cpu_ms"] = runs.processor.ours * 1000;
    state.counters["bare_cpu_ms"] = runs.processor.theirs * 1000;
}

void conversion(benchmark::State& state) {
    const Lab lab;
    const std::vector<Exchange> exchanges = typicalExchanges(lab);
    const AnswerServer server(exchanges);
    for ([[maybe_unused]] auto _ : state)
        reportRuns(state, compare(lab.conversion(), 0, server.curl()), 0.8);
    std::size_t bytes = 0;
    Clock::duration wait{};
    for (const Exchange& exchange : exchanges) {
        bytes += exchange.bytes;
        wait += exchange.wait;
    }
    state.counters["exchanges"] = static_cast<double>(exchanges.size());
    state.counters["reply_bytes"] = static_cast<double>(bytes);
    state.counters["lab_ms"] = std::chrono::duration<double, std::milli>(wait).count();
}
BENCHMARK(conversion)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

void usage(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        reportRuns(state, compare({ZOR_ZORB2V}, 1, {"/usr/bin/curl", "--version"}), 0.4);
}
BENCHMARK(usage)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Zorvane::Bench

// SPDX-License-Identifier: Apache-2.0
#include "lab/Server.h"

#include "lab/LabError.h"
#include "suite/printable.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <mutex>
#include <set>
#include <thread>

#include <asio.hpp>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <unistd.h>

namespace Zorvane {

namespace {

using asio::ip::tcp;

// How late a time limit may be noticed, and how soon a service listens again that had no descriptor left.
constexpr std::chrono::milliseconds WATCH_INTERVAL{100};

void prepare(int descriptor) {
    // The threads block; only accepting is asynchronous.
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// When memory is lacking it may be so for the text as well.
void complain(const char* service, const char* why) noexcept {
    try {
        std::fprintf(stderr, "zorlab: %s: a connection was dropped: %s\n", service,
                     Suite::printable(why).c_str());
    } catch (const std::exception&) {
        std::fputs("zorlab: a connection was dropped: no memory\n", stderr);
    }
}

// The connections that are being served, for whoever has to end them.
class Watched {
  public:
    /// Registers a connection for the length of a scope.
    class Entry {
      public:
        Entry(Watched& all, Connection& connection) : m_all(all), m_connection(connection) {
            const std::lock_guard lock(m_all.m_lock);
            m_all.m_open.insert(&m_connection);
            if (m_all.m_stopped)
                m_connection.cut();
        }
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        ~Entry() {
            const std::lock_guard lock(m_all.m_lock);
            m_all.m_open.erase(&m_connection);
        }

      private:
        Watched& m_all;
        Connection& m_connection;
    };

    void cutOverdue(bool othersWait) {
        const std::lock_guard lock(m_lock);
        for (Connection* connection : m_open)
            if (connection->isOverdue(Connection::Clock::now(), othersWait))
                connection->cut();
    }
    void stop() {
        const std::lock_guard lock(m_lock);
        m_stopped = true;
        for (Connection* connection : m_open)
            connection->cut();
    }

  private:
    std::mutex m_lock;
    std::set<Connection*> m_open;
    bool m_stopped = false;
};

void serveGuarded(Watched& all, const Service& service, Connection& connection) noexcept {
    try {
        const Watched::Entry entry(all, connection);
        service.serve(connection);
    } catch (const std::exception& failure) {
        complain(service.name.c_str(), failure.what());
    } catch (...) { // the XML library's are no std::exception
        complain(service.name.c_str(), "an unknown failure");
    }
}

} // namespace

// All but the serving of connections happens on the thread that runs the server.
class Server::Impl {
  public:
    Impl(const std::string& address, std::vector<Service> services) {
        asio::error_code error;
        const auto parsed = asio::ip::make_address(address, error);
        if (error)
            throw LabError("\"" + address +
                           "\" is no address to listen on; 127.0.0.1 or ::1 is this machine alone");
        for (Service& service : services) {
            m_ports.push_back(std::make_unique<Port>(m_io, std::move(service)));
            listen(*m_ports.back(), tcp::endpoint(parsed, m_ports.back()->service.port));
        }
    }

    [[nodiscard]] std::uint16_t port(const std::string& service) const {
        const auto found =
            std::ranges::find(m_ports, service, [](const auto& port) { return port->service.name; });
        return found == m_ports.end() ? 0 : (*found)->acceptor.local_endpoint().port();
    }

    void run() {
        std::signal(SIGPIPE, SIG_IGN); // a client that hangs up is a failed send
        m_signals.async_wait([this](const asio::error_code& error, int) {
            if (!error)
                m_io.stop();
        });
        // Of the libraries' own, too: nothing is executed here, and nothing could take one along.
        ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
        for (bool isStopped = false; !isStopped;) {
            try {
                watch();
                m_io.run();
                isStopped = true;
            } catch (const std::exception& failure) { // memory was lacking for a connection, or for the watch
                complain("a service", failure.what());
                std::this_thread::sleep_for(WATCH_INTERVAL);
            }
        }

        for (const auto& port : m_ports)
            port->acceptor.close();
        m_watched.stop();
        m_pool.join();
    }

    void stop() { m_io.stop(); }

  private:
    struct Port {
        Port(asio::io_context& io, Service served) : service(std::move(served)), acceptor(io) {}

        Service service;
        tcp::acceptor acceptor;
        bool waiting = false; ///< an accept is under way
    };

    static void listen(Port& port, const tcp::endpoint& endpoint) {
        asio::error_code error;
        port.acceptor.open(endpoint.protocol(), error);
        if (!error)
            port.acceptor.set_option(tcp::acceptor::reuse_address(true), error);
        if (!error)
            port.acceptor.bind(endpoint, error);
        if (!error)
            port.acceptor.listen(asio::socket_base::max_listen_connections, error);
        if (error)
            throw LabError(port.service.name + " cannot listen on " + endpoint.address().to_string() +
                           " port " + std::to_string(endpoint.port()) + ": " + error.message() +
                           "; another port can be set in [services] of kvn.toml");
        ::fcntl(port.acceptor.native_handle(), F_SETFD, FD_CLOEXEC);
    }

    void accept(Port& port) {
        if (port.waiting || m_open >= MAX_CONNECTIONS)
            return;
        port.acceptor.async_accept([this, &port](const asio::error_code& error, tcp::socket socket) {
            port.waiting = false;
            if (error) // no descriptor left, or the peer is gone: the watch tries again
                return;
            serve(port, std::move(socket));
            accept(port);
        });
        port.waiting = true;
    }

    void serve(Port& port, tcp::socket socket) {
        auto connection = std::make_unique<Connection>(socket.native_handle());
        socket.release();
        prepare(connection->descriptor());
        asio::post(m_pool, [this, &port, connection = std::move(connection)]() mutable {
            serveGuarded(m_watched, port.service, *connection);
            connection.reset();
            --m_open;
            try {
                asio::post(m_io, [this] { acceptAll(); });
            } catch (const std::exception&) { // then the watch does it
            }
        });
        ++m_open;
    }

    void acceptAll() {
        for (const auto& port : m_ports)
            accept(*port);
    }

    // Accepts, sees to the time limits, and goes on with both in a moment; begun anew after a failure.
    void watch() {
        m_timer.expires_after(WATCH_INTERVAL);
        m_timer.async_wait([this](const asio::error_code& error) {
            if (!error)
                watch();
        });
        m_watched.cutOverdue(m_open >= MAX_CONNECTIONS);
        acceptAll();
    }

    asio::io_context m_io;
    asio::signal_set m_signals{m_io, SIGTERM, SIGINT}; ///< from the start: a signal before run() counts
    asio::steady_timer m_timer{m_io};
    std::vector<std::unique_ptr<Port>> m_ports;
    std::atomic<std::size_t> m_open = 0; ///< connections; an accept that is under way may still add its own
    Watched m_watched;
    asio::thread_pool m_pool{MAX_CONNECTIONS}; ///< last: its threads use the rest
};

Server::Server(const std::string& address, std::vector<Service> services)
    : m_impl(std::make_unique<Impl>(address, std::move(services))) {}

Server::~Server() = default;

std::uint16_t Server::port(const std::string& service) const {
    return m_impl->port(service);
}

void Server::run() {
    m_impl->run();
}

void Server::stop() {
    m_impl->stop();
}

} // namespace Zorvane

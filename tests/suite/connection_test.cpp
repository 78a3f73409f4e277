// SPDX-License-Identifier: Apache-2.0
#include "suite/Scratch.h"
#include "suite/kvlink.h"
#include "suite/kvnclient.h"
#include "suite/quss.h"

#include <cerrno>
#include <csignal>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

struct Pair {
    int ends[2] = {-1, -1};
    explicit Pair(const std::string& fromPeer = "") {
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        EXPECT_EQ(::write(ends[1], fromPeer.data(), fromPeer.size()), static_cast<ssize_t>(fromPeer.size()));
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;
    ~Pair() {
        ::close(ends[0]);
        ::close(ends[1]);
    }
};

std::string line(int socket, int size = 4096) {
    std::string buffer(static_cast<std::size_t>(size), '?');
    const int length = get_string(socket, buffer.data(), size, 0, "test");
    return length < 0 ? "error" : buffer.substr(0, static_cast<std::size_t>(length));
}

// A loopback port under a service's name, with a daemon for one connection, or with nothing that listens.
class Service {
  public:
    explicit Service(const std::string& name, std::function<void(int)> serve = nullptr) {
        sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(m_listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        EXPECT_EQ(::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
        m_scratch.configure("[services]\n" + name + " = " + std::to_string(ntohs(address.sin_port)) + "\n");
        if (!serve)
            return;
        EXPECT_EQ(::listen(m_listener, 5), 0);
        m_thread = std::jthread([this, serve = std::move(serve)] {
            const int peer = ::accept(m_listener, nullptr, nullptr);
            serve(peer);
            ::close(peer);
        });
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    ~Service() {
        if (m_thread.joinable())
            m_thread.join();
        ::close(m_listener);
    }

  private:
    Scratch m_scratch;
    int m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    std::jthread m_thread;
};

} // namespace

TEST(GetString, takesALineAndLeavesTheRest) {
    Pair pair("one\n\nabcdefgh\nrest");
    EXPECT_EQ(line(pair.ends[0]), "one\n");
    EXPECT_EQ(line(pair.ends[0]), "\n");
    EXPECT_EQ(line(pair.ends[0], 5), "abcd") << "a long line comes in pieces";
    EXPECT_EQ(line(pair.ends[0], 5), "efgh");
    EXPECT_EQ(line(pair.ends[0], 5), "\n");
    char raw[16];
    EXPECT_EQ(::read(pair.ends[0], raw, sizeof raw), 4) << "what stands behind the line is not consumed";
    EXPECT_EQ(line(pair.ends[0], 1), "error");
    EXPECT_EQ(line(-1), "error");
}

TEST(GetString, waitsForTheWholeLineAndReadsPipesToo) {
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const std::jthread writer([&] {
        for (const std::string piece : {"sl", "ow\nunf", "inished"}) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            EXPECT_GT(::write(pipe[1], piece.data(), piece.size()), 0);
        }
        ::close(pipe[1]);
    });
    EXPECT_EQ(line(pipe[0]), "slow\n");
    EXPECT_EQ(line(pipe[0]), "unfinished");
    EXPECT_EQ(line(pipe[0]), "") << "the end of the stream";
    ::close(pipe[0]);
}

TEST(PutString, writesOneLineOrNothing) {
    Pair pair;
    EXPECT_EQ(put_string(pair.ends[0], "a\nEXIT STATUS 0", "forged"), EINVAL);
    EXPECT_EQ(put_string(pair.ends[0], nullptr, "null"), EINVAL);
    EXPECT_EQ(put_string(pair.ends[0], "0 0", "opening"), 0);
    EXPECT_EQ(put_long(pair.ends[0], -136, "number"), 0);
    EXPECT_EQ(line(pair.ends[1]), "0 0\n");
    EXPECT_EQ(line(pair.ends[1]), "-136\n");
    ::shutdown(pair.ends[1], SHUT_RDWR);
    EXPECT_EQ(put_string(pair.ends[0], "x", "gone"), EPIPE) << "and no signal";
}

TEST(Connect, givesAReadySocket) {
    // "localhost" has an IPv6 address first on many hosts, where the daemon does not listen.
    const Service service("zord", [](int peer) { EXPECT_EQ(line(peer), "hello\n"); });
    int socket = -1;
    ASSERT_EQ(kvlink_connect_to_service("localhost", "zord", 0, 0, 0, 0, &socket), 0);
    const auto option = [&](int level, int name) {
        int value = 0;
        socklen_t size = sizeof value;
        return ::getsockopt(socket, level, name, &value, &size) == 0 && value != 0;
    };
    EXPECT_TRUE(option(IPPROTO_TCP, TCP_NODELAY) && option(SOL_SOCKET, SO_KEEPALIVE));
    EXPECT_NE(::fcntl(socket, F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_EQ(put_string(socket, "hello", "test"), 0);
    kvlink_closesocket(socket);
}

TEST(Connect, failuresTellWhatIsMissing) {
    const Service closed("zord");
    const std::tuple<const char*, const char*, int> cases[] = {
        {"127.0.0.1", "zord", KVN_STATUS_CONNECT_FAILED},
        {"127.0.0.1", "no-such-service", KVN_STATUS_UNKNOWN_SERVICE},
        {"127.0.0.1", nullptr, KVN_STATUS_UNKNOWN_SERVICE},
        {"no such host", "zord", KVN_STATUS_UNKNOWN_HOST},
        {nullptr, "zord", KVN_STATUS_UNKNOWN_HOST},
    };
    for (const auto& [host, service, status] : cases) {
        int socket = 0;
        EXPECT_EQ(kvlink_connect_to_service(host, service, 0, 0, 0, 0, &socket), status);
        EXPECT_EQ(socket, -1);
    }
}

TEST(RequestDaemon, conversation) {
    const Service service("kvnrd", [](int peer) {
        EXPECT_EQ(line(peer), "labhost root\n");
        put_long(peer, 0, "welcome");
        EXPECT_EQ(line(peer), "136\n");
        put_long(peer, 37, "status");
        put_long(peer, 1, "received");
    });
    int socket = -1;
    ASSERT_EQ(kvnrd_connect("127.0.0.1", "labhost", "root", 0, &socket), 0);
    EXPECT_EQ(send_kvnrdcmd(socket, 136), 0);
    EXPECT_EQ(get_kvnrdES(socket), 37);
    EXPECT_EQ(get_kvnrdRCVD(socket, 0), 1);
    EXPECT_EQ(get_kvnrdES(socket), KVN_STATUS_READ_FAILED) << "the end of the stream";
    EXPECT_LT(get_kvnrdRCVD(socket, 0), 0);
    kvlink_closesocket(socket);
}

TEST(RequestDaemon, aConversationLeavesNothingToTheNext) {
    for (const int status : {11, 12}) {
        const Service service("kvnrd", [status](int peer) {
            line(peer);
            const std::string answers = "0\n" + std::to_string(status) + "\nnever asked for\n";
            EXPECT_EQ(::write(peer, answers.data(), answers.size()), static_cast<ssize_t>(answers.size()));
            EXPECT_EQ(line(peer), "one\n") << "what was put goes out when an answer is wanted";
            EXPECT_EQ(line(peer), "two\n") << "or at the end";
        });
        int socket = -1;
        ASSERT_EQ(kvnrd_connect("127.0.0.1", "labhost", "root", 0, &socket), 0);
        EXPECT_EQ(put_string(socket, "one", "test"), 0);
        EXPECT_EQ(get_kvnrdES(socket), status);
        EXPECT_EQ(put_string(socket, "two", "test"), 0);
        kvlink_closesocket(socket);
    }
}

TEST(RequestDaemon, oddWelcomesGiveAStatusAndNoSocket) {
    for (const std::string answer :
         {"37\n", "", "0", "\n", "0 \n", "hello\n", "9999999999999999999999999999999999999\n"}) {
        const Service service("kvnrd", [&](int peer) {
            line(peer);
            EXPECT_GE(::write(peer, answer.data(), answer.size()), 0);
        });
        int socket = 0;
        EXPECT_EQ(kvnrd_connect("127.0.0.1", "labhost", "root", 0, &socket),
                  answer == "37\n" ? 37 : KVN_STATUS_READ_FAILED);
        EXPECT_EQ(socket, -1);
    }
}

TEST(Security, noServiceVouchesForAPeerAndTheUserIsTold) {
    quss_context context;
    testing::internal::CaptureStderr();
    EXPECT_NE(QssInitExEx(60, "", 0, &context, 0, 1), 0);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("quss in [master] of kvn.toml"), std::string::npos);
    unsigned role = 1;
    EXPECT_NE(kvlink_verify_peer_creds(0, 0x42505456, 1, &role, 0, 0, 300), 0);
    EXPECT_EQ(role, 0U);
}

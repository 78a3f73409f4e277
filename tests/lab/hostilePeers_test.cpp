// SPDX-License-Identifier: Apache-2.0
// What a daemon of a lab bears: peers that send nonsense, nothing, or too much.
#include "ServedLab.h"
#include "ops/zorop.h"

#include <algorithm>
#include <atomic>
#include <random>

#include <poll.h>

namespace Zorvane {

namespace {

using namespace std::chrono_literals;

constexpr const char* TASKS = "ZorDba.ZOR_P2VRestoreTask";

// The bytes of a client's opening, up to the request.
const std::string OPENING("0 0\n\x00\x0A\x00\x0E"
                          "6.5.0\0KVN\0",
                          18);

void sendAll(int socket, const std::string& bytes) {
    ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

// What the daemon says until it hangs up.
std::string heard(int socket) {
    std::string bytes;
    char piece[4096];
    for (ssize_t count; (count = ::recv(socket, piece, sizeof piece, 0)) > 0;)
        bytes.append(piece, static_cast<std::size_t>(count));
    return bytes;
}

std::string word(unsigned value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string number(std::uint32_t value) {
    return word(value >> 16) + word(value & 0xFFFF);
}

bool answers() {
    CZor rows;
    return rows.queryRequest("*", TASKS, "1") == 0;
}

} // namespace

TEST(HostilePeers, NonsenseEndsTheirOwnConnectionAlone) {
    ServedLab lab;
    const std::string request = number(0x00160000 | 12);
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"no opening", "GET / HTTP/1.1\r\n\r\n"},
        {"an opening without an end", std::string(100'000, '0')},
        {"no version", "0 0\n" + std::string(64, '\xFF')},
        {"a text without an end", "0 0\n" + word(10) + word(4072) + std::string(4068, 'a')},
        {"a length below the header", "0 0\n" + word(10) + word(0)},
        {"an unknown type", OPENING + word(31) + word(12) + number(0) + number(0)},
        {"a reply in a request's place", OPENING + word(24) + word(12) + number(0) + number(0)},
        {"a document of negative length", OPENING + request + number(10) + number(0x80000000)},
        {"a document of 2 GB", OPENING + request + number(10) + number(0x7FFFFFFF)},
        {"a document that breaks off", OPENING + request + number(10) + number(1000) + "<ZorData>"},
        {"no document", OPENING + request + number(10) + number(4) + "nope"},
        {"an unknown command", OPENING + request + number(77) + number(2) + "<a"},
        {"more parameters than there are",
         OPENING + word(9) + word(4072) + word(25) + word(20) + word(0xFFFF) + std::string(4062, 'x')},
        {"parameters for a shell",
         OPENING + word(9) + word(16) + word(9) + word(9) + word(1) + "`ls`" + word(0)},
    };
    for (const auto& row : cases) {
        const auto socket = lab.connect("zord");
        sendAll(socket.get(), row.bytes);
        ::shutdown(socket.get(), SHUT_WR);
        heard(socket.get());
        EXPECT_TRUE(answers()) << row.what;
    }
    for (const char* bytes :
         {"", "\n\n\n", "a root\n136\np\n9999999999999999999999\nx\ny\nz\n", "a root\n-1\n"}) {
        const auto socket = lab.connect("kvnrd");
        sendAll(socket.get(), bytes);
        ::shutdown(socket.get(), SHUT_WR);
        heard(socket.get());
    }
    EXPECT_TRUE(answers());
}

TEST(HostilePeers, DamagedRequestsAreBorne) {
    ServedLab lab;
    std::mt19937 random(7);
    const std::string document =
        "<ZorData xmlns=\"urn:zorvane:zordata:1\"><QueryRequest><Id>1</Id><TableClause>"
        "ZorDba.ZOR_Config</TableClause><ColumnClause>*</ColumnClause></QueryRequest></ZorData>";
    const std::string good = OPENING + number(0x00160000 | 12) + number(10) +
                             number(static_cast<std::uint32_t>(document.size())) + document;
    for (int i = 0; i < 200; ++i) {
        std::string bytes = good;
        for (int bit = 0; bit < 3; ++bit)
            bytes[random() % bytes.size()] ^= static_cast<char>(1U << (random() % 8));
        const auto socket = lab.connect("zord");
        sendAll(socket.get(), bytes);
        ::shutdown(socket.get(), SHUT_WR);
        heard(socket.get());
    }
    EXPECT_TRUE(answers());
}

// A refusal reaches the client although it is still sending.
TEST(HostilePeers, ATooLargeDocumentIsRefusedWithAStatus) {
    ServedLab lab({}, {.document = 1000});
    CZor rows;
    EXPECT_EQ(rows.queryRequest("*", TASKS, std::string(500'000, 'x')), STORE_TOO_MUCH);
}

// A million elements and more take a lot of memory, whatever their bytes.
TEST(HostilePeers, ADocumentOfTooManyElementsIsRefused) {
    ServedLab lab;
    std::string document = "<ZorData>";
    for (int i = 0; i < 1'000'001; ++i)
        document += "<a/>";
    document += "</ZorData>";
    const auto socket = lab.connect("zord");
    sendAll(socket.get(), OPENING + number(0x00160000 | 12) + number(10) +
                              number(static_cast<std::uint32_t>(document.size())) + document);
    EXPECT_NE(heard(socket.get()).find(word(23) + word(9) + static_cast<char>(STORE_TOO_MUCH)),
              std::string::npos);
    EXPECT_TRUE(answers());
}

// Large documents that never come to an end keep each other out, and others for a short while at most.
TEST(HostilePeers, FewLargeDocumentsAreHeld) {
    ServedLab lab({}, {.hurry = 5s});
    const std::string large = OPENING + number(0x00160000 | 12) + number(10) + number(8 << 20);
    std::vector<std::unique_ptr<Suite::Descriptor>> all;
    std::vector<pollfd> ends; // only the refused one's connection comes to its end
    for (std::size_t i = 0; i <= DocumentTurns::HELD; ++i) {
        all.push_back(std::make_unique<Suite::Descriptor>(lab.connect("zord").release()));
        sendAll(all.back()->get(), large);
        ends.push_back({all.back()->get(), POLLRDHUP, 0});
    }
    ASSERT_EQ(::poll(ends.data(), ends.size(), 20'000), 1);
    const auto refused =
        std::ranges::find(ends, POLLRDHUP, [](const pollfd& end) { return end.revents & POLLRDHUP; });
    EXPECT_NE(heard(refused->fd).find(word(23) + word(9) + static_cast<char>(STORE_TOO_MUCH)),
              std::string::npos);
    EXPECT_TRUE(answers());
    CZor rows;
    rows.m_vVmwareProfileOptions.push_back(new CVmwareProfileOptions);
    rows.m_vVmwareProfileOptions.back()->setProfileName(std::string(DocumentTurns::SMALL, 'p'));
    EXPECT_EQ(rows.insertRequest(), 0);
}

TEST(HostilePeers, SilentOnesLoseTheirPlace) {
    ServedLab lab({}, {.opening = 300ms, .hurry = 300ms, .exchange = 300ms});
    std::vector<std::unique_ptr<Suite::Descriptor>> all;
    for (std::size_t i = 0; i < Server::MAX_CONNECTIONS + 20; ++i)
        all.push_back(std::make_unique<Suite::Descriptor>(lab.connect("zord").release()));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(answers()); // behind all of them
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s);

    // A byte now and then is no better than none.
    const auto socket = lab.connect("zord");
    sendAll(socket.get(), OPENING + number(0x00160000 | 12) + number(10) + number(1000));
    std::thread drip([&] {
        for (int i = 0; i < 100; ++i) {
            std::this_thread::sleep_for(50ms);
            sendAll(socket.get(), "x");
        }
    });
    heard(socket.get());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 25s);
    ::shutdown(socket.get(), SHUT_RDWR);
    drip.join();
}

// One that idles loses its place soon when others want it, and keeps it when nobody does: before its request
// as well as within a document that it has announced.
TEST(HostilePeers, IdlersMakeRoom) {
    ServedLab lab({}, {.opening = 60s, .hurry = 100ms});
    const auto patient = lab.connect("zord");
    std::this_thread::sleep_for(400ms);
    sendAll(patient.get(), OPENING);
    char reply[4];
    EXPECT_EQ(::recv(patient.get(), reply, sizeof reply, MSG_WAITALL), 4);
    std::vector<std::unique_ptr<Suite::Descriptor>> idlers;
    for (std::size_t i = 0; i < 2 * Server::MAX_CONNECTIONS; ++i) {
        idlers.push_back(std::make_unique<Suite::Descriptor>(lab.connect("zord").release()));
        if (i % 2 == 0)
            sendAll(idlers.back()->get(), OPENING + number(0x00160000 | 12) + number(10) + number(200'000));
    }
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(answers());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
}

// Those that don't take a large reply keep their turn from nobody.
TEST(HostilePeers, LargeRepliesAreTakenSoon) {
    ServedLab lab({}, {.hurry = 100ms});
    const char* const table = "ZorDba.ZOR_VmwareProfileOptions";
    CZor rows;
    for (ID id = 1; id <= 4000; ++id) {
        rows.m_vVmwareProfileOptions.push_back(new CVmwareProfileOptions);
        rows.m_vVmwareProfileOptions.back()->setId(id);
        rows.m_vVmwareProfileOptions.back()->setProfileName(std::string(3000, 'p'));
    }
    ASSERT_TRUE(lab.store().load(rows).ok());
    const std::string document = "<ZorData><QueryRequest><TableClause>" + std::string(table) +
                                 "</TableClause><ColumnClause>*</ColumnClause></QueryRequest></ZorData>";
    std::vector<std::unique_ptr<Suite::Descriptor>> all;
    for (std::size_t i = 0; i < 2 * DocumentTurns::AT_ONCE; ++i) {
        all.push_back(std::make_unique<Suite::Descriptor>(lab.connect("zord").release()));
        sendAll(all.back()->get(), OPENING + number(0x00160000 | 12) + number(10) +
                                       number(static_cast<std::uint32_t>(document.size())) + document);
    }
    const auto begin = std::chrono::steady_clock::now();
    CZor found;
    EXPECT_EQ(found.queryRequest("*", table, "1"), 0);
    EXPECT_EQ(found.m_vVmwareProfileOptions.size(), 4000U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
}

TEST(HostilePeers, WhateverEndsAConnectionEndsItAlone) {
    Server server("127.0.0.1", {{"odd", 0, [](Connection& connection) {
                                     connection.write("x");
                                     throw 5; // as the XML library does
                                 }}});
    std::thread thread([&] { server.run(); });
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(heard(connectTo(server.port("odd")).get()), "x");
    server.stop();
    thread.join();
}

// The client's code is for one thread, so that these speak the protocol themselves.
TEST(HostilePeers, FiftyClientsAreServedAtOnce) {
    ServedLab lab;
    const std::string document =
        "<ZorData xmlns=\"urn:zorvane:zordata:1\"><P2VRestoreTask><Id fromDb=\"0\">1</Id>"
        "<ClientName>c</ClientName></P2VRestoreTask></ZorData>";
    const std::string request = OPENING + number(0x00160000 | 12) + number(12) +
                                number(static_cast<std::uint32_t>(document.size())) + document;
    std::atomic<int> done = 0;
    {
        std::vector<std::jthread> clients;
        for (int i = 0; i < 50; ++i)
            clients.emplace_back([&] {
                const auto socket = lab.connect("zord");
                sendAll(socket.get(), request);
                done += heard(socket.get()).find("<ClientName>c</ClientName>") != std::string::npos;
            });
    }
    EXPECT_EQ(done, 50);
    EXPECT_EQ(lab.store().tasks().size(), 50U);
}

// A lab that is told to stop does so, whoever is connected.
TEST(HostilePeers, NobodyKeepsALabFromStopping) {
    auto lab = std::make_unique<ServedLab>(std::vector{parseFailRule("query=silent")});
    const auto idle = lab->connect("kvnrd");
    const auto waiting = lab->connect("zord");
    const std::string document =
        "<ZorData xmlns=\"urn:zorvane:zordata:1\"><QueryRequest><Id>1</Id></QueryRequest></ZorData>";
    sendAll(waiting.get(), OPENING + number(0x00160000 | 12) + number(10) +
                               number(static_cast<std::uint32_t>(document.size())) + document);
    while (lab->requests().empty())
        std::this_thread::sleep_for(10ms);
    const auto begin = std::chrono::steady_clock::now();
    lab.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s);
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "inventory/FakeKvnrd.h"

namespace Zorvane {
namespace {

struct Answer {
    int status;
    std::string text;
};

Answer request(const std::string& proxy = "proxy", const std::string& master = "") {
    std::stringstream output;
    const int status = CZorb2vKvnrdConnect::send_kvnrdrequest(proxy, 22, 0, "esx", "", output, 0, master);
    return {status, output.str()};
}

TEST(KvnrdRequest, endsWithTheStatusOfTheStepThatFailed) {
    const struct {
        std::string says;
        int status;
        std::string logged;
        std::string proxy = "proxy";
        bool breaksOff = false;
    } cases[] = {
        {"37\n", 37, "1 Can't connect to host 127.0.0.1: the daemon refused the request (37)"},
        {"", 23, "1 Can't connect to host 127.0.0.1: "},
        {"0\n37\n", 37, "1 received error from kvnrd on server 127.0.0.1 get_kvnrdES() returned: 37"},
        {"0\n5\n", 24, "1 received error from kvnrd on server 127.0.0.1 get_kvnrdES() returned: 5"},
        {"0\n0\n0\n", 24,
         "1 did not receive command confirmation from kvnrd on server 127.0.0.1 get_kvnrdRCVD() returned: 0"},
        {WELCOME, 24,
         "1 unable to send command arguments to kvnrd on server 127.0.0.1 error: Invalid argument", "a\nb"},
        {WELCOME, 23, "1 get_string() failed, ", "proxy", true},
        {"0\n0\n1\nEXIT STATUS 254\n", 254, "5 Status from server 127.0.0.1: unknown status (254)"},
        {"0\n0\n1\nEXIT STATUS 300\n", 100, "5 Status from server 127.0.0.1: ???? (300)"},
        {"0\n0\n1\nEXIT STATUS -1\n", 100, "1 Cannot get status from server 127.0.0.1"},
        {"0\n0\n1\nEXIT STATUS 4294967296\n", 100,
         "5 Status from server 127.0.0.1: ???? ("}, // whose lower half is a success
        {"0\n0\n1\nEXIT STATUS ?\n", 0, "6 EXIT STATUS ?"},
        {"0\n0\n1\na\nb\n", 0, "5 Read output of length:8192 and wrote to output stream. line="},
    };
    for (auto [says, status, logged, proxy, breaksOff] : cases) {
        FakeKvnrd daemon(says, breaksOff);
        EXPECT_EQ(request(proxy).status, status) << says;
        logged.insert(2, "CZorb2vKvnrdConnect:CZorb2vKvnrdConnect::send_kvnrdrequest() ");
        EXPECT_NE(daemon.log().find(logged), std::string::npos) << logged << "\n" << daemon.log();
    }
}

TEST(KvnrdRequest, asksTheMasterThatIsGivenOrElseTheConfiguredOne) {
    {
        FakeKvnrd daemon("0\n0\n1\n");
        EXPECT_EQ(request("proxy", "::1").status, 25) << "nothing listens there";
        EXPECT_EQ(request("proxy").status, 0);
        EXPECT_EQ(daemon.sent(), "labhost root\n136\nproxy\n22\n0\nesx\n\n");
    }
    EXPECT_EQ(request().status, 26) << "there is no configuration";
}

TEST(KvnrdRequest, givesTheReplyAsItCame) {
    const std::string pieces(2 * 4095, 'x'); // of one line, as they are read
    const struct {
        std::string reply, text;
    } cases[] = {
        {"EXIT STATUS 0\n", ""},
        {"a\n\n b\nEXIT STATUS 0\nbehind\n", "a\n\n b\n"},
        {"no line feed", "no line feed"},
        {std::string("a\0b\n", 4), std::string("a\0b\n", 4)},
        {" EXIT STATUS 9\nexit status 9\n", " EXIT STATUS 9\nexit status 9\n"},
        {pieces + "EXIT STATUS 9\nEXIT STATUS 0\n", pieces + "EXIT STATUS 9\n"},
    };
    for (const auto& [reply, text] : cases) {
        FakeKvnrd daemon(WELCOME + reply);
        const Answer answer = request();
        EXPECT_EQ(answer.status, 0) << reply;
        EXPECT_EQ(answer.text, text);
    }
}

} // namespace
} // namespace Zorvane

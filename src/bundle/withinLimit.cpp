// SPDX-License-Identifier: Apache-2.0
#include "bundle/withinLimit.h"

#include "suite/descriptor.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvane {

namespace {

using Clock = std::chrono::steady_clock;

// The first byte of what the process sends.
constexpr char DONE = '+';
constexpr char FAILED = '-';

void send(int pipe, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(pipe, text.data(), text.size());
        if (count < 0 && errno != EINTR)
            return;
        text.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

[[noreturn]] void workAndSend(int pipe, const std::function<std::string()>& work) {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    std::string answer;
    try {
        answer = DONE + work();
    } catch (const std::exception& failure) {
        answer = FAILED + std::string(failure.what());
    } catch (...) {
        answer = FAILED + std::string("unexpected failure");
    }
    send(pipe, answer);
    ::_exit(0);
}

// False at the limit.
bool receive(int pipe, Clock::time_point end, std::string& text) {
    std::array<char, 65536> buffer;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waiting{pipe, POLLIN, 0};
        const int ready = left <= 0 ? 0 : ::poll(&waiting, 1, static_cast<int>(left));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        const ssize_t count = ::read(pipe, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return true;
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

} // namespace

Outcome withinLimit(std::chrono::seconds limit, const std::function<std::string()>& work) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {false, std::strerror(errno)};
    const Suite::Descriptor reading(ends[0]);
    pid_t child = -1;
    {
        const Suite::Descriptor writing(ends[1]);
        child = ::fork();
        if (child == 0)
            workAndSend(ends[1], work);
    }
    if (child < 0)
        return {false, std::strerror(errno)};
    std::string text;
    const bool isInTime = receive(reading.get(), Clock::now() + limit, text);
    if (!isInTime)
        ::kill(child, SIGKILL);
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR)
        continue;
    if (!isInTime)
        return {false, "no answer within " + std::to_string(limit.count()) + " seconds"};
    if (text.empty())
        return {false, "the process that asked ended without an answer"};
    return {text.front() == DONE, text.substr(1)};
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "lab/KvnrdSession.h"

#include "lab/badAnswers.h"
#include "lab/inventoryDocuments.h"
#include "ops/packets.h"
#include "suite/kvnclient.h"

#include <array>
#include <cstdlib>

namespace Zorvane {

namespace {

constexpr const char* SERVICE = "kvnrd";
constexpr const char* INVENTORY_COMMAND = "136";

std::string line(long number) {
    return std::to_string(number) + "\n";
}

} // namespace

void KvnrdSession::run() {
    m_connection.allow(m_lab.limits.opening, m_lab.limits.hurry);
    converse();
    m_connection.finish();
}

void KvnrdSession::converse() {
    if (!m_connection.readLine() || !admit(FailPoint::Connect, SERVICE))
        return;
    const auto command = m_connection.readLine();
    if (!command || !admit(FailPoint::Command, *command))
        return;
    // The command was admitted; behind its status goes the count of commands that were taken.
    m_connection.write(line(*command == INVENTORY_COMMAND ? 1 : 0));
    if (*command == INVENTORY_COMMAND)
        list();
}

// Answers the greeting or the command with a status line; false if that was a failure that a rule asks for.
bool KvnrdSession::admit(FailPoint point, const std::string& detail) {
    const auto failure = m_lab.failures.check(m_connection, point, detail);
    if (failure)
        m_lab.log.write({SERVICE, point == FailPoint::Connect ? "connect" : "command", detail, "",
                         failureText(*failure)});
    if (failure && failure->effect != FailEffect::Status) {
        answerBadly(m_connection, failure->effect, NO_PACKET);
        return false;
    }
    return m_connection.write(line(failure ? failure->status : 0)) && !failure;
}

void KvnrdSession::list() {
    std::array<std::string, 5> words;
    for (std::string& word : words) {
        auto read = m_connection.readLine();
        if (!read)
            return;
        word = *std::move(read);
    }
    m_connection.allow(m_lab.limits.exchange);
    const ListingRequest request = {words[0], std::strtol(words[1].c_str(), nullptr, 10),
                                    std::strtol(words[2].c_str(), nullptr, 10), words[3], words[4]};
    const auto failure = m_lab.failures.check(m_connection, FailPoint::Listing, words[1]);
    ListingReply reply = makeListing(m_lab.inventory, request);
    if (failure && failure->effect == FailEffect::Status)
        reply = {failure->status, {}};
    else if (failure && failure->effect == FailEffect::Type)
        reply.document = "<SomethingElse/>\n";
    else if (failure && spoilsDocument(failure->effect))
        reply.document = spoiledDocument(failure->effect, reply.document);
    m_lab.log.write({SERVICE, "listing " + words[1], words[4], words[0] + ", " + words[3],
                     failure ? failureText(*failure) : std::to_string(reply.status)});

    const FailEffect effect = failure ? failure->effect : FailEffect::Status;
    if (effect == FailEffect::Close || effect == FailEffect::Silent || effect == FailEffect::Garbage)
        return answerBadly(m_connection, effect, NO_PACKET);
    if (m_connection.write(reply.document) && effect != FailEffect::Half)
        m_connection.write("EXIT STATUS " + line(reply.status));
}

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#include "lab/badAnswers.h"

#include "ops/packets.h"
#include "ops/sendrecv.h"

namespace Zorvane {

namespace {

constexpr std::size_t DEEP_NESTING = 1'000'000;
constexpr std::size_t GARBAGE_SIZE = 512;

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

// The largest packet that a header can announce to a client, its fields without an end in sight.
std::string longPacket(std::uint16_t type) {
    const auto high = [](std::size_t value) { return static_cast<char>(value >> 8 & 0xFF); };
    const auto low = [](std::size_t value) { return static_cast<char>(value & 0xFF); };
    std::string packet(PACKET_SIZE, '\xFF');
    packet[0] = high(type);
    packet[1] = low(type);
    packet[2] = high(PACKET_SIZE);
    packet[3] = low(PACKET_SIZE);
    return packet;
}

} // namespace

bool spoilsDocument(FailEffect effect) {
    return effect == FailEffect::Half || effect == FailEffect::Empty || effect == FailEffect::NotXml ||
           effect == FailEffect::Entity || effect == FailEffect::Deep;
}

std::string spoiledDocument(FailEffect effect, std::string_view good) {
    switch (effect) {
    case FailEffect::Half:
        return std::string(good.substr(0, good.size() / 2));
    case FailEffect::NotXml:
        return "Here should be a document.\n<but> this </is> none.\n";
    case FailEffect::Entity:
        return "<?xml version=\"1.0\"?>\n<!DOCTYPE ZorData [<!ENTITY file SYSTEM "
               "\"file:///etc/hostname\">]>\n"
               "<ZorData><Config><Name>&file;</Name></Config></ZorData>\n";
    case FailEffect::Deep:
        return repeated("<a>", DEEP_NESTING) + repeated("</a>", DEEP_NESTING) + "\n";
    default:
        return {};
    }
}

void answerBadly(Connection& connection, FailEffect effect, std::uint16_t packetType) {
    switch (effect) {
    case FailEffect::Silent:
        connection.waitForPeer();
        break;
    case FailEffect::Garbage:
        connection.write(std::string(GARBAGE_SIZE, '\xA5'));
        break;
    case FailEffect::Type:
        SendPacket(connection.descriptor(), Type30Packet());
        break;
    case FailEffect::Long:
        connection.write(longPacket(packetType));
        break;
    case FailEffect::Half:
        // Half a line has no line feed.
        connection.write(packetType == NO_PACKET ? "0" : longPacket(packetType).substr(0, PACKET_SIZE / 2));
        break;
    default: // nothing at all: the connection ends
        break;
    }
}

} // namespace Zorvane

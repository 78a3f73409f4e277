// SPDX-License-Identifier: Apache-2.0
// Answers as no daemon should give them, for failures on demand.
#pragma once

#include "lab/Connection.h"
#include "lab/FailRules.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Zorvane {

/// True for the effects that spoil a document. The others take the place of the whole answer.
[[nodiscard]] bool spoilsDocument(FailEffect effect);
/// The document to send in place of a good one.
[[nodiscard]] std::string spoiledDocument(FailEffect effect, std::string_view good);

/// Acts out an effect in place of a packet of that type.
void answerBadly(Connection& connection, FailEffect effect, std::uint16_t packetType);

} // namespace Zorvane

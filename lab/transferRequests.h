// SPDX-License-Identifier: Apache-2.0
// The requests of the recovery daemons that carry files, texts and progress. A lab takes them in the simplest
// way: what clients send to keep lies in one folder, the rest is acknowledged.
#pragma once

#include <string>

namespace Zorvane {

struct Lab;
class AnyPacket;
class Connection;

/// Answers a packet that is neither a database request nor a method call; without an answer for types that no
/// client sends.
void answerTransfer(Lab& lab, Connection& connection, const std::string& service, AnyPacket& packet);

} // namespace Zorvane

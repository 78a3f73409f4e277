// SPDX-License-Identifier: Apache-2.0
// The methods of the recovery daemons: what a client asks for by operation and resource.
#pragma once

#include "lab/FailRules.h"
#include "ops/netErrorMsg.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zorvane {

struct Lab;
struct MethodExecute;

struct MethodCall {
    int operation = 0; ///< of ZorOperation
    int resource = 0;  ///< of ZorResource
    std::vector<std::string> parameters;

    explicit MethodCall(const MethodExecute& packet);
    /// A parameter, or an empty text.
    [[nodiscard]] std::string parameter(std::size_t index) const;
};

struct MethodResult {
    std::int32_t value = 0; ///< 0 is success
    std::string output;
    std::optional<CErrorMsg> error; ///< what to tell the client's user of a failure
};

/// The messages that methods fail with: numbers in the catalogue, originator ZOR_LIBRARY_ORIGINATOR.
enum MethodMessage : std::int32_t {
    METHOD_NO_TASK = 1201,     ///< the task's number
    METHOD_NO_PROFILE = 1202,  ///< the profile's name or number
    METHOD_NOT_THERE = 1203,   ///< profile, key or option, its value, server
    METHOD_IN_USE = 1204,      ///< the profile's name
    METHOD_FAILED = 1205,      ///< the operation, the reason
    METHOD_NOT_OFFERED = 1206, ///< operation, resource
};

/// A failure that the client's user can read about.
MethodResult methodFailure(std::int32_t value, MethodMessage message,
                           const std::vector<std::string>& parameters);

/// The failure on demand that applies to the call, if one does; counts the call, and waits out its delay.
std::optional<Failure> failureOf(Lab& lab, Connection& connection, const MethodCall& call);
MethodResult runMethod(Lab& lab, const MethodCall& call);

} // namespace Zorvane

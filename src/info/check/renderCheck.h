// SPDX-License-Identifier: Apache-2.0
// A check as text for the terminal, and as a document.
#pragma once

#include "info/check/checkConversion.h"

#include <nlohmann/json_fwd.hpp>

namespace Zorvane {

class Session;

/// What the shell sees: CLEAR, BLOCKED, or NOT_ASKED where all that blocks is a missing answer.
int exitOf(const ConversionCheck& check);

void writeCheck(const ConversionCheck& check, const Session& session);
/// By share/schema/check.json.
nlohmann::ordered_json documentOf(const ConversionCheck& check);

} // namespace Zorvane

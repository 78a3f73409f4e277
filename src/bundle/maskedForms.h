// SPDX-License-Identifier: Apache-2.0
// Masking in files whose words mean something: only what they hold is masked, so that they can still be read.
#pragma once

#include "bundle/Mask.h"

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace Zorvane {

enum class Form : std::uint8_t {
    Text,
    Log,      ///< lines of a log: also learned from
    Toml,     ///< texts are masked, keys are not, and comments go
    Json,     ///< texts are masked, keys are not
    Document, ///< rows of the recovery database
};

/// A document as it stands in a file: indented, its texts as UTF-8 whatever code set they came in.
std::string jsonText(nlohmann::ordered_json document);

/// Learns the names of a file.
void learnFrom(Form form, const std::string& text, Mask& mask);
/// The masked file; nothing if it is not of that form, so that the names in it can't be told from the rest.
std::optional<std::string> maskedFile(Form form, const std::string& text, Mask& mask);

/// A log whose lines can be read: the one that runs on behind a client's name has a blank there.
std::string readableLog(std::string_view text);
/// The names that the lines of a log tell of: behind the keys of the trace, in command lines, in the
/// arguments of messages, in conditions on rows, and in what the request daemon is asked and answers.
void learnFromLog(std::string_view text, Mask& mask);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// Masking in files whose words mean something: only what they hold is masked, so that they can still be read.
#pragma once

#include "bundle/Mask.h"

#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace Zorvane {

enum class Form : std::uint8_t {
    Text,
    Log,      ///< lines of a log: also learned from
    Toml,     ///< texts and comments are masked, keys are not
    Json,     ///< texts are masked, keys are not
    Document, ///< rows of the recovery database
};

/// A document as it stands in a file: indented, and never refused for a name's code set.
std::string jsonText(const nlohmann::ordered_json& document);

/// Learns the names of a file.
void learnFrom(Form form, const std::string& text, Mask& mask);
/// The masked file. A document that can't be read becomes empty.
std::string maskedFile(Form form, const std::string& text, Mask& mask);

/// The names that the lines of a log tell of: behind the keys of the trace, in the arguments of messages, in
/// conditions on rows, and in answers of the request daemon.
void learnFromLog(std::string_view text, Mask& mask);

} // namespace Zorvane

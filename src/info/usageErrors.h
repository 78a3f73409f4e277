// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace Zorvane {

/// What is wrong with a command line, the nearest word that is known, and how the subcommand is used.
std::string textOf(const CLI::ParseError& error, const CLI::App& app);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// What the programs and their sources say, for comparison with the texts that come with them.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace Zorvane {

using Names = std::set<std::string>;

/// A file of the source tree.
std::string sourceText(const std::string& path);
/// What a command writes on standard output; its words are quoted for the shell.
std::string outputOf(const std::vector<std::string>& command);
/// The first group of the expression wherever it matches; "^" is the beginning of any line.
std::vector<std::string> matches(const std::string& text, const std::string& expression);
/// The same as a set.
Names names(const std::string& text, const std::string& expression);

/// Whether a program is installed here.
bool isInstalled(const std::string& program);

/// The options of zorb2v, without their dashes, in the order of their declaration.
std::vector<std::string> optionsOfZorb2v();

/// The help page of a program that is told by subcommands ("zorlab"), or of one of these.
std::string helpOf(const std::string& program, const std::string& subcommand = "");
/// What such a page names.
Names subcommandsIn(const std::string& help);
Names longOptionsIn(const std::string& help);

} // namespace Zorvane

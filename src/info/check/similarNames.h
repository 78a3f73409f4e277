// SPDX-License-Identifier: Apache-2.0
// Which of the names that exist was meant by one that doesn't.
#pragma once

#include <string>
#include <vector>

namespace Zorvane {

/// The names nearest to a misspelt one, best first: those equal but for case, paths that end with it, and
/// those that few edits lead to. Empty if none is near.
std::vector<std::string> similarNames(const std::string& name, const std::vector<std::string>& known);

/// A sentence that offers the nearest names, or lists the first of those that exist. "" if there are none.
std::string suggestionFor(const std::string& name, const std::vector<std::string>& known);

} // namespace Zorvane

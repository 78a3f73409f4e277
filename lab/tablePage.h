// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace Zorvane {

/// The reference page of all tables and enumerations, in Markdown.
std::string tablePage();

} // namespace Zorvane

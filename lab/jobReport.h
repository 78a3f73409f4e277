// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace Zorvane {

class Store;

/// The submitted jobs as a table for a reader: those that wait or run, then those that ended. A line of
/// headings stands first.
std::string jobReport(const Store& store);

} // namespace Zorvane

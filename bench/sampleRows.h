// SPDX-License-Identifier: Apache-2.0
// Rows and documents of any size for the benchmarks: the same for the same number, so that figures compare.
#pragma once

#include "model/CZor.h"

#include <cstddef>
#include <string>

namespace Zorvane::Bench {

/// Adds so many rows, dealt out to all tables by turns, every field filled. Identifiers count from 1 in each
/// table.
void addMixedRows(CZor& zor, std::size_t count);

/// The document of a container.
std::string documentOf(CZor& zor, int filter = FOR_ALL);

/// The document of so many mixed rows.
std::string mixedDocument(std::size_t rows);

} // namespace Zorvane::Bench

// SPDX-License-Identifier: Apache-2.0
// A configuration held against the one that it was copied from.
#pragma once

#include "model/CZor.h"

namespace Zorvane {

/// 1 if this is a copied configuration in which an interface of its source is missing (by MAC address), so
/// that it restores onto dissimilar hardware; else 0, also if the source can't be read, which is logged. Asks
/// the recovery daemon, and blocks for it.
int isDSRConfig(const CZor& zor);

} // namespace Zorvane

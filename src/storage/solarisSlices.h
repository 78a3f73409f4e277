// SPDX-License-Identifier: Apache-2.0
// The slices of a Solaris client's disks.
#pragma once

#include "model/CZor.h"

#include <vector>

namespace Zorvane {

/// 1 if the slice's volume is mounted or swapped on, or the slice is part of a storage pool; else 0.
int IsSliceInUse(const CZor& zor, const CSolarisSlice& slice);

/// The slices that a QuVM volume encapsulates, one for each of its subdisks. Without `marked` they are marked
/// as encapsulated and the result is empty; with it, those that are marked are returned, borrowed from the
/// container.
std::vector<CSolarisSlice*> FindEncapsulatedQuVMVolumeSlice(CZor& zor, const CQuvmVolume& volume,
                                                            bool marked);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#include <xercesc/framework/MemoryManager.hpp>

namespace Zorvane {

/// The size of the blocks that a large tree is made of: one huge page.
inline constexpr std::size_t TREE_BLOCK = std::size_t{2} << 20;

/// Where the XML library takes the memory of its trees from. Blocks of TREE_BLOCK bytes are huge pages, which
/// stay with the process for the next tree, since the first touch of memory costs more than the reading of
/// what is put there; meanwhile the kernel may take their content's place. All else is plain memory. A lack
/// of memory is std::bad_alloc. For any thread.
xercesc::MemoryManager& treeMemory();

} // namespace Zorvane

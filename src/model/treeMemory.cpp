// SPDX-License-Identifier: Apache-2.0
#include "model/treeMemory.h"

#include <cstdint>
#include <mutex>
#include <new>
#include <unordered_set>
#include <vector>

#include <sys/mman.h>

namespace Zorvane {

namespace {

// So many blocks are mapped at once: a mapping is larger than what is used of it by one block at most.
constexpr std::size_t BLOCKS_AT_ONCE = 16;

// So many are kept for the next document; of a larger one the rest is given back, since a process may live long
// and have a limit.
constexpr std::size_t BLOCKS_KEPT = 128;

class TreeMemory final : public xercesc::MemoryManager {
  public:
    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

    void* allocate(XMLSize_t size) override {
        return size == TREE_BLOCK ? takeBlock() : ::operator new(size);
    }

    void deallocate(void* memory) override {
        // A block stands at a multiple of its size, where other memory hardly ever does.
        if (memory && reinterpret_cast<std::uintptr_t>(memory) % TREE_BLOCK == 0 && giveBack(memory))
            return;
        ::operator delete(memory);
    }

  private:
    void* takeBlock() {
        const std::lock_guard lock(m_lock);
        if (m_free.empty())
            mapBlocks();
        void* block = m_free.back();
        m_free.pop_back();
        return block;
    }

    bool giveBack(void* block) {
        const std::lock_guard lock(m_lock);
        const auto place = m_blocks.find(block);
        if (place == m_blocks.end())
            return false;
        if (m_free.size() >= BLOCKS_KEPT) {
            m_blocks.erase(place);
            munmap(block, TREE_BLOCK);
            return true;
        }
        madvise(block, TREE_BLOCK, MADV_FREE);
        m_free.push_back(block);
        return true;
    }

    void mapBlocks() {
        const std::size_t length = (BLOCKS_AT_ONCE + 1) * TREE_BLOCK;
        m_blocks.reserve(m_blocks.size() + BLOCKS_AT_ONCE);
        m_free.reserve(m_blocks.size() + BLOCKS_AT_ONCE); // so that giving back never fails
        void* const mapped =
            mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped == MAP_FAILED)
            throw std::bad_alloc();
        char* const start = static_cast<char*>(mapped);
        const std::size_t unaligned = reinterpret_cast<std::uintptr_t>(mapped) % TREE_BLOCK;
        char* const first = start + (unaligned ? TREE_BLOCK - unaligned : 0);
        madvise(first, BLOCKS_AT_ONCE * TREE_BLOCK, MADV_HUGEPAGE); // without it, it is but slower
        for (std::size_t i = BLOCKS_AT_ONCE; i-- > 0;) {
            m_blocks.insert(first + i * TREE_BLOCK);
            m_free.push_back(first + i * TREE_BLOCK);
        }
    }

    std::mutex m_lock;
    std::unordered_set<void*> m_blocks; ///< all of them
    std::vector<void*> m_free;          ///< used from its end
};

} // namespace

xercesc::MemoryManager& treeMemory() {
    static auto& memory = *new TreeMemory; // trees may outlive everything
    return memory;
}

} // namespace Zorvane

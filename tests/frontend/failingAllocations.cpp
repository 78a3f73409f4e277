// SPDX-License-Identifier: Apache-2.0
// In a source of its own: a compiler that sees both halves at once takes the pair of them for a mismatch.
#include "frontend/failingAllocations.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace Zorvane::Test {
long g_allocationsLeft = NEVER;
}

using namespace Zorvane::Test;

void* operator new(std::size_t size) {
    bool fails = g_allocationsLeft != NEVER && g_allocationsLeft-- <= 0;
    for (;;) {
        if (!std::exchange(fails, false))
            if (void* memory = std::malloc(size == 0 ? 1 : size))
                return memory;
        g_allocationsLeft = NEVER;
        if (const std::new_handler handler = std::get_new_handler())
            handler(); // which may have made room
        else
            throw std::bad_alloc();
    }
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

// SPDX-License-Identifier: Apache-2.0
// Where a sanitizer brings an operator new that calls no malloc, it is counted by itself.
#include <cstddef>
#include <new>

#include <dlfcn.h>

extern "C" {
#include "torture/shim.h"
}

namespace {

template <class... Arguments>
void* allocate(const char* name, Arguments... arguments) {
    // Without a table of the names: each is looked up anew, which a sanitizer's run does not notice.
    return reinterpret_cast<void* (*)(Arguments...)>(dlsym(RTLD_NEXT, name))(arguments...);
}

void mayFail() {
    if (tortureFails(CLASS_memory))
        throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    mayFail();
    return allocate("_Znwm", size);
}
void* operator new[](std::size_t size) {
    mayFail();
    return allocate("_Znam", size);
}
void* operator new(std::size_t size, const std::nothrow_t& nothrow) noexcept {
    return tortureFails(CLASS_memory) ? nullptr : allocate("_ZnwmRKSt9nothrow_t", size, &nothrow);
}
void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept {
    return tortureFails(CLASS_memory) ? nullptr : allocate("_ZnamRKSt9nothrow_t", size, &nothrow);
}

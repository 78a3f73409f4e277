// SPDX-License-Identifier: Apache-2.0
#include "model/xmlLibrary.h"

#include <mutex>
#include <new>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Zorvane {

namespace {

std::mutex countLock;

// The library's own manager reports a lack of memory by an exception of the library's. With this one it is
// the std::bad_alloc that the program's frame knows.
class StandardMemory final : public xercesc::MemoryManager {
  public:
    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }
    void* allocate(XMLSize_t size) override { return ::operator new(size); }
    void deallocate(void* block) override { ::operator delete(block); }
};

// Setting the library up and taking it down costs more than reading a small document: a hold that is never
// given back keeps it for the life of the process once it was needed.
void holdForLife() {
    static const bool isHeld = [] {
        static auto& memory = *new StandardMemory;
        xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr,
                                              &memory);
        return true;
    }();
    (void)isHeld;
}

} // namespace

XmlLibraryHold::XmlLibraryHold() {
    const std::lock_guard lock(countLock);
    holdForLife();
    xercesc::XMLPlatformUtils::Initialize();
}

XmlLibraryHold::~XmlLibraryHold() {
    const std::lock_guard lock(countLock);
    xercesc::XMLPlatformUtils::Terminate();
}

} // namespace Zorvane

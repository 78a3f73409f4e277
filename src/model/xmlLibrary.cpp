// SPDX-License-Identifier: Apache-2.0
#include "model/xmlLibrary.h"

#include <exception>
#include <mutex>
#include <new>
#include <stdexcept>

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PanicHandler.hpp>
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

// The library calls this where its set-up fails, and by itself would end the process with a text and a status
// of its own. The failure goes on to who wanted the library.
class Rethrow final : public xercesc::PanicHandler {
  public:
    [[noreturn]] void panic(PanicReasons reason) override {
        if (const std::exception_ptr failure = std::current_exception())
            std::rethrow_exception(failure);
        throw std::runtime_error(getPanicReasonString(reason));
    }
};

// Setting the library up and taking it down costs more than reading a small document: a hold that is never
// given back keeps it for the life of the process once it was needed.
void holdForLife() {
    // After a set-up that failed half-way the library must not be called any more: who asks again gets the
    // failure again.
    enum class State { Unused, Broken, Held };
    static State state = State::Unused;
    if (state == State::Held)
        return;
    if (state == State::Broken)
        throw std::bad_alloc();
    static Rethrow panics;
    static auto& memory = *new StandardMemory;
    state = State::Broken;
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, &panics, &memory);
    state = State::Held;
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

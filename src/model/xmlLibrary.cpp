// SPDX-License-Identifier: Apache-2.0
#include "model/xmlLibrary.h"

#include <mutex>

#include <xercesc/util/PlatformUtils.hpp>

namespace Zorvane {

namespace {

std::mutex countLock;

// Setting the library up and taking it down costs more than reading a small document: a hold that is never given
// back keeps it for the life of the process once it was needed.
void holdForLife() {
    static const bool isHeld = [] {
        xercesc::XMLPlatformUtils::Initialize();
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

// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Zorvane {

/// One hold on the XML library, which the first one sets up. The library counts its
/// holds without a lock; this one has a lock, for programs that parse on several threads.
class XmlLibraryHold {
  public:
    /// Throws xercesc::XMLException, or std::bad_alloc for want of memory, if the library can't be set up;
    /// the latter from then on.
    XmlLibraryHold();
    XmlLibraryHold(const XmlLibraryHold&) = delete;
    XmlLibraryHold& operator=(const XmlLibraryHold&) = delete;
    ~XmlLibraryHold();
};

} // namespace Zorvane

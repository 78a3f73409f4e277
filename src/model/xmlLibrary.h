// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace Zorvane {

/// One hold on the XML library, which the first one sets up. The library counts its
/// holds without a lock; this one has a lock, for programs that parse on several threads.
class XmlLibraryHold {
  public:
    /// Throws xercesc::XMLException if the library can't be set up.
    XmlLibraryHold();
    XmlLibraryHold(const XmlLibraryHold&) = delete;
    XmlLibraryHold& operator=(const XmlLibraryHold&) = delete;
    ~XmlLibraryHold();
};

} // namespace Zorvane

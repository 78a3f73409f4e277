// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "suite/descriptor.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace Zorvane {

/// A bundle can't be written; the text is for the user: what is wrong, with which name, and what to do.
class BundleFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A file for its owner alone (0600) that stands at its place as a whole, or not at all: it is made under
/// another name beside it.
class NewFile {
  public:
    /// Throws BundleFailure, as do all operations. What stands at the path already is replaced only if that
    /// is wanted, and only if it is a plain file: no link is followed, no device taken away.
    NewFile(std::string path, bool isReplacing);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    /// Without a commit, nothing is left.
    ~NewFile();

    void write(std::string_view bytes);
    void commit();

  private:
    [[noreturn]] void fail(const char* step) const;

    std::string m_path, m_temporary;
    bool m_isReplacing;
    Suite::Descriptor m_file;
};

} // namespace Zorvane

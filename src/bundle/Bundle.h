// SPDX-License-Identifier: Apache-2.0
// What a support engineer needs, in one archive: members are gathered, then masked if wanted, and written.
#pragma once

#include "bundle/Mask.h"
#include "bundle/maskedForms.h"

#include <ctime>
#include <string>
#include <vector>

namespace Zorvane {

struct BundleOptions {
    std::string program; ///< "zorinfo"
    std::string version;
    std::string output{}; ///< empty: PROGRAM-bundle-TIME.tar.gz in the current folder
    std::string legend{}; ///< a file for the stand-ins and what they stand for, or empty
    bool isMasked = false;
    bool isReplacing = false;
};

struct BundleMember {
    std::string path; ///< below the archive's folder
    std::string what;
    Form form;
    std::string text;
};

struct MissingMember {
    std::string what;
    std::string why;
    bool isFailure; ///< somebody who was asked did not answer; else a site just has no such thing
};

class Bundle {
  public:
    explicit Bundle(BundleOptions options);

    [[nodiscard]] const BundleOptions& options() const { return m_options; }
    /// For names that no member gives away.
    [[nodiscard]] Mask& mask() { return m_mask; }

    void add(const std::string& path, const std::string& what, Form form, std::string text);
    void miss(const std::string& what, const std::string& why, bool isFailure = false);
    /// A file; whole, or not at all. `edit` makes of its text what is added.
    void addFile(const std::string& path, const std::string& what, Form form, const std::string& file,
                 std::string (*edit)(const std::string&) = nullptr);
    /// The last lines of a file.
    void addEnd(const std::string& path, const std::string& what, const std::string& file);

    /// Adds the table of contents and writes the archive, and the legend if there is one. Throws
    /// BundleFailure.
    void write();

    // Behind write():
    [[nodiscard]] const std::vector<BundleMember>& members() const { return m_members; }
    [[nodiscard]] const std::vector<MissingMember>& missing() const { return m_missing; }
    [[nodiscard]] bool hasFailures() const;
    /// Of the archive, in bytes.
    [[nodiscard]] std::size_t size() const { return m_size; }

  private:
    void maskMembers();
    void addContents();

    BundleOptions m_options;
    std::time_t m_made;
    std::string m_folder;
    Mask m_mask;
    std::vector<BundleMember> m_members;
    std::vector<MissingMember> m_missing;
    std::size_t m_size = 0;
};

/// A name as a part of a member's path: other signs than letters, digits, dots and dashes are replaced.
std::string pathPart(const std::string& name);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// What a support engineer needs, in one archive: members are gathered, then masked if wanted, and written.
#pragma once

#include "bundle/Mask.h"
#include "bundle/maskedForms.h"

#include <ctime>
#include <optional>
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

/// Paths and words on members are the same in every bundle: they hold no names.
struct BundleMember {
    std::string path; ///< below the archive's folder
    std::string what;
    Form form;
    std::string text;
};

struct MissingMember {
    std::string what; ///< the same in every bundle, too
    std::string why;
    bool isFailure; ///< somebody who was asked did not answer; else a site just has no such thing
};

class Bundle {
  public:
    /// Throws BundleFailure if the archive can't be made at its path.
    explicit Bundle(BundleOptions options);

    [[nodiscard]] const BundleOptions& options() const { return m_options; }
    /// For names that no member gives away.
    [[nodiscard]] Mask& mask() { return m_mask; }

    /// Contents of files and values that are called secrets go out of documents; what is none is missing
    /// then.
    void add(const std::string& path, const std::string& what, Form form, const std::string& text);
    void miss(const std::string& what, const std::string& why, bool isFailure = false);
    /// Where names for the mask could not be had: the archive then says that it may hold more of them.
    void missNames(const std::string& what, const std::string& why);
    /// A file; whole, or not at all. `edit` makes of its text what is added, or nothing if it can't.
    void addFile(const std::string& path, const std::string& what, Form form, const std::string& file,
                 std::optional<std::string> (*edit)(const std::string&) = nullptr);
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
    /// What was written, and what is missing, for the terminal.
    [[nodiscard]] std::string report() const;

  private:
    void missFile(const std::string& what, const std::string& file, const std::string& why, bool isFailure);
    void maskMembers();
    void addContents();

    BundleOptions m_options;
    std::time_t m_made;
    std::string m_folder;
    Mask m_mask;
    bool m_isMaskPartial = false;
    std::vector<BundleMember> m_members;
    std::vector<MissingMember> m_missing;
    std::size_t m_size = 0;
};

} // namespace Zorvane

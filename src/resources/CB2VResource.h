// SPDX-License-Identifier: Apache-2.0
// A kind of conversion target: the steps that differ by target, and those that are the same for all.
#pragma once

#include "resources/B2VInput.h"
#include "resources/Finding.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Zorvane {

/// Virtual operations are the steps that a target may override; the bodies here do nothing and succeed. All
/// operations return 0 for success; where the user is to see why one failed, getError() holds the text.
class CB2VResource {
  public:
    CB2VResource() = default;
    CB2VResource(const CB2VResource&) = delete;
    CB2VResource& operator=(const CB2VResource&) = delete;
    virtual ~CB2VResource() = default;

    /// Whom the steps report to from here on; borrowed. Without it they stop at the first finding that
    /// blocks.
    void reportTo(Findings& findings) { m_findings = &findings; }

    /// `pending` becomes true if a conversion of the client waits or runs.
    virtual std::uint32_t isAnyPendingP2Vjob(B2VInput& input, bool& pending);
    /// Adds the restore task and its disk map to the records that are to be inserted.
    virtual std::uint32_t prepareRestoreTask(B2VInput& input);
    /// Records the target's settings, or finds a profile with the same; profileName tells which.
    virtual std::uint32_t insertVeProfile(B2VInput& input);
    /// Makes a hidden profile visible.
    virtual std::uint32_t enableVeProfile(const std::string& profileName);
    /// Fills in what the user left open.
    virtual std::uint32_t initializeVeDefaults(B2VInput& input);
    /// Holds every named target object against the inventory, and the profile against the daemon.
    virtual std::uint32_t validateSetup(B2VInput& input);

    /// Whether the client's configuration can be converted at all.
    bool isClientSupported(const CZor& clientConfig);
    /// The last gate before the job is submitted: disks that can't go into a virtual machine. 0, or 1.
    std::uint32_t preSubmitCheck(B2VInput& input);
    /// 0 if the backup catalogue holds full backups of everything that a restore needs; 1 if not, 3 if the
    /// configuration can't be read, or the status of a catalogue command that failed.
    std::uint32_t isFullBackupAvail(const B2VInput& input, const std::string& configName);
    /// Inserts the prepared records and asks the daemon to run the job.
    std::uint32_t submitJob(B2VInput& input);
    /// Removes a profile. Its failure is logged only.
    std::uint32_t deleteVeProfile(std::uint32_t veType, const std::string& profileName);

    /// The text of the last failure that the user is to see.
    [[nodiscard]] const std::string& getError() const { return m_errorText; }

  protected:
    /// Reports what refuses the conversion, or what the user should know. Whether the step goes on.
    bool report(const Finding& finding);
    /// The same, with the finding's message as the error text, if it has one.
    bool refuse(const Finding& finding);
    /// What the one that is reported to takes an unknown name for; "" for none.
    [[nodiscard]] std::string meantBy(const Finding& unknown) const;
    /// Takes the text of a catalogue message as the error text. Never throws: a failed lookup leaves a fixed
    /// text.
    void setErrorFromCatalogue(std::uint64_t messageId);
    void setErrorFromCatalogue(std::uint64_t messageId, const std::string& argument);
    void setErrorFromCatalogue(std::uint64_t messageId, std::uint32_t argument);

  private:
    std::string m_errorText;
    Findings* m_findings = nullptr;
};

/// The resource of a VE type; null for an unknown one.
std::unique_ptr<CB2VResource> CreateB2VResource(const std::uint32_t* veType);

} // namespace Zorvane

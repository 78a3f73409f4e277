// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "resources/CB2VResource.h"

namespace Zorvane {

class Trace;

/// What a listing of the inventory held; nothing if it failed.
struct ListedNames {
    std::vector<std::string> names;
    bool isAnswered = false;
};

/// The last component of a data center's path: what the inventory's listings and the folder listing go by.
std::string dataCenterComponent(const std::string& dataCenter);

/// A vCenter, or a stand-alone ESX host.
class CVmwareB2VResource : public CB2VResource {
  public:
    std::uint32_t isAnyPendingP2Vjob(B2VInput& input, bool& pending) override;
    std::uint32_t prepareRestoreTask(B2VInput& input) override;
    /// 0, 3, 18 (the profile's name is taken) or 19 (the console's settings exist under another name).
    std::uint32_t insertVeProfile(B2VInput& input) override;
    std::uint32_t enableVeProfile(const std::string& profileName) override;
    std::uint32_t initializeVeDefaults(B2VInput& input) override;
    std::uint32_t validateSetup(B2VInput& input) override;

    /// The target's part of validateSetup: 0, or 3 with the error text of the first check that failed.
    std::uint32_t validateVMwareVEsetup(B2VInput& input);

    /// What insertVeProfile would do, without doing it: its result, and the profile that it would insert;
    /// none where an equal one is used again, which the input then names.
    std::uint32_t previewVeProfile(B2VInput& input, CZor& draft);
    /// Has the daemon hold the profile that the input names against the target: 0, 3 or a code of the query.
    std::uint32_t verifyVeProfile(const B2VInput& input);

    // Whether an object of that name exists in the inventory, whatever the case. A listing that fails makes
    // them false, but for the display name, which then counts as free. `listed` receives what there is.

    bool isValidVmProxy(const std::string& proxy, const std::string& master, ListedNames* listed = nullptr);
    /// `type` receives the server's type: 1 is a vCenter, anything else a stand-alone host.
    bool isValidVmServer(const std::string& server, const std::string& master, int& type,
                         ListedNames* listed = nullptr);
    bool isValidEsxhost(const std::string& esx, const std::string& proxy, const std::string& vmServer,
                        const std::string& master, ListedNames* listed = nullptr);
    bool isValidDatacenter(const std::string& dataCenter, const std::string& proxy,
                           const std::string& vmServer, const std::string& master,
                           ListedNames* listed = nullptr);
    bool isValidVmFolder(const std::string& folder, const std::string& proxy, const std::string& vmServer,
                         const std::string& dataCenter, const std::string& master,
                         ListedNames* listed = nullptr);
    bool isValidCluster(const std::string& cluster, const std::string& proxy, const std::string& vmServer,
                        const std::string& master, ListedNames* listed = nullptr);
    bool isValidRpool(const std::string& pool, const std::string& proxy, const std::string& esx,
                      const std::string& vmServer, const std::string& master, ListedNames* listed = nullptr);
    /// True if no machine of that name exists.
    bool isValidVmDisplayName(const std::string& name, const std::string& proxy, const std::string& esx,
                              const std::string& vmServer, const std::string& master,
                              ListedNames* listed = nullptr);
    /// `size` receives the free size in MB.
    bool isValidDataStore(const std::string& store, const std::string& proxy, const std::string& esx,
                          const std::string& vmServer, const std::string& master, std::int64_t& size,
                          ListedNames* listed = nullptr);
    bool isValidNetwork(const std::string& network, const std::string& proxy, const std::string& esx,
                        const std::string& vmServer, const std::string& master,
                        ListedNames* listed = nullptr);

  private:
    void noteDoubts(FindingKind rule, const std::string& name, const ListedNames& known,
                    const std::string& assumption);
    std::uint32_t draftVeProfile(Trace& trace, B2VInput& input, CZor& profiles);
    std::uint32_t verifyVeProfile(Trace& trace, const B2VInput& input);
};

} // namespace Zorvane

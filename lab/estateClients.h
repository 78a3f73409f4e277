// SPDX-License-Identifier: Apache-2.0
// One client of an estate, made from a sample.
#pragma once

#include "lab/Dice.h"
#include "model/CZor.h"

#include <cstdint>
#include <string>

namespace Zorvane {

/// A sample without the rows that an estate has no use for: registry, files, backup settings.
struct EstateTemplate {
    CZor rows;
    std::string shortName;    ///< "ledger01"
    bool convertible = false; ///< a Windows server that qualifies
};

struct EstateClient {
    std::string shortName;  ///< of the host: "db-0137"
    std::string clientName; ///< as the suite calls it; may hold any letter
    std::size_t number = 0; ///< from 1, of all
    std::size_t disks = 0;  ///< a Windows server gets data disks up to that many
    std::int64_t saved = 0; ///< seconds since 1970
    std::string configuration = "current";
    bool pointInTime = false;
};

/// A copy of the template's rows with the client's names, addresses, dates and disks.
std::unique_ptr<CZor> makeEstateClient(const EstateTemplate& from, const EstateClient& client, Dice& dice);

/// Leaves out what an estate has no use for.
void prune(CZor& rows);

} // namespace Zorvane

// SPDX-License-Identifier: Apache-2.0
// The catalogue commands of the suite, played on a catalogue: nothing is ever run on this machine.
//
//   kvnclimagelist -client N [-policy P] [-X] [-s START] [-e END] [-t NOT_ARCHIVE] [-ct TYPE] [-Listseconds]
//                  [-likelydate]
//   kvnlist -C N [-k P] [-t TYPE] [-X] [-s START] [-e END] [-E] [-I] PATH
//
// Dates are seconds since 1970. With -likelydate the first field of the output is a date: from "-s 0" the
// start of the newest full image, from any other start the end of what can be restored from there.
#pragma once

#include "lab/Catalogue.h"

#include <string>

namespace Zorvane {

/// What the commands end with.
enum CatalogueStatus : int {
    CATALOGUE_DONE = 0,
    CATALOGUE_BAD_OPTION = 20,
    CATALOGUE_NO_ENTITY = 227, ///< no such client under that type, or nothing that was asked for
    CATALOGUE_NO_COMMAND = 127,
};

struct CommandResult {
    int status = CATALOGUE_DONE;
    std::string output;
};

[[nodiscard]] CommandResult runCatalogueCommand(const Catalogue& catalogue, const std::string& commandLine);

} // namespace Zorvane

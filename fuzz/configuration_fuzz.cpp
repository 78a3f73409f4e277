// SPDX-License-Identifier: Apache-2.0
// The suite's configuration file.
#include "fuzz/fuzzing.h"
#include "suite/configurationDocument.h"

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string complaints;
    const Suite::Configuration read =
        Suite::parseConfiguration(Fuzz::Input(data, size).rest(), "kvn.toml", complaints);
    Fuzz::require(read.present || !complaints.empty());
    Fuzz::require(complaints.empty() || complaints.back() == '\n');
    return 0;
}

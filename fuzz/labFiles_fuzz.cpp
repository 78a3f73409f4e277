// SPDX-License-Identifier: Apache-2.0
// A lab's own files: its inventory, its catalogue, and the ports of its configuration.
#include "fuzz/fuzzing.h"
#include "lab/Catalogue.h"
#include "lab/Inventory.h"
#include "lab/LabDirectory.h"
#include "lab/LabError.h"
#include "suite/Scratch.h"

using namespace Zorvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Scratch scratch;
    Fuzz::Input input(data, size);
    const unsigned kind = input.choice(3);
    scratch.write("kvn.toml", input.rest());
    try {
        if (kind == 0)
            readInventory(scratch.path("kvn.toml"));
        else if (kind == 1)
            readCatalogue(scratch.path("kvn.toml"));
        else
            static_cast<void>(LabDirectory(scratch.path("")).ports());
    } catch (const LabError& failure) {
        Fuzz::require(std::string(failure.what()).find("kvn.toml") != std::string::npos);
    }
    return 0;
}

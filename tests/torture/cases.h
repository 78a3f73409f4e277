// SPDX-License-Identifier: Apache-2.0
// The cases: what is wrong in which repetition.
#pragma once

#include "torture/Site.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Zorvane::Torture {

struct Options {
    int jobs = 2;
    bool cuts = false;              ///< damaged connections instead of failing calls
    std::size_t sample = 0;         ///< about as many cases, spread evenly; 0 for all
    std::size_t allocations = 5000; ///< of a run, spread evenly, in the full torture
    std::string only;               ///< the beginning of the names of the cases
    bool verbose = false;
};

/// Throws std::runtime_error, with what is allowed, for an option that it doesn't know.
Options readOptions(int argc, char** argv);

/// What a model can't see of its own run: the profile that it made and removed again.
void completeModels(std::vector<Model>& models);

/// In a fixed order. Throws std::runtime_error if there is none of the name that is wanted.
std::vector<Case> makeCases(const std::vector<Model>& models, const Options& options);

} // namespace Zorvane::Torture

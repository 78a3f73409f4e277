// SPDX-License-Identifier: Apache-2.0
// The parts of a bundle that the daemons are asked for. Each question is given up at a limit, for the bundle
// is made when something is wrong.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace Zorvane {

class Bundle;
struct B2VInput;

struct BundleQuestions {
    std::string client; ///< empty: no configuration is asked for
    std::string config;
    std::vector<std::string> words; ///< the options of zorb2v
    bool isChecked = false;         ///< whether they are a conversion's
    std::chrono::seconds limit{};
};

/// Adds the client's configuration document.
void addDocument(Bundle& bundle, const BundleQuestions& questions);
/// Adds what stands against the conversion.
void addCheck(Bundle& bundle, const BundleQuestions& questions);

/// Lets the mask know what the options and the target's file name ...
void learnInput(Bundle& bundle, const B2VInput& input);
/// ... and all clients, conversions, profiles and target objects that the daemons tell of.
void learnFromDaemons(Bundle& bundle, const BundleQuestions& questions, const B2VInput& input);

} // namespace Zorvane

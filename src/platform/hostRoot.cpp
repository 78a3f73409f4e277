// SPDX-License-Identifier: Apache-2.0
#include "platform/hostRoot.h"

namespace Zorvane {

namespace {

// Inside a function: constants of other files are composed with it before main.
std::string& hostRoot() {
    static std::string root;
    return root;
}

} // namespace

std::string HostPath(std::string_view path) {
    return hostRoot() + std::string(path);
}

void SetHostRoot(std::string_view directory) {
    hostRoot() = directory;
}

} // namespace Zorvane

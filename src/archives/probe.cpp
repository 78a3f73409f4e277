// SPDX-License-Identifier: Apache-2.0
// Linked once, when a build is configured: whether the installed archives take what this folder puts in.
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>

int main() {
    xercesc::XMLPlatformUtils::Initialize();
    { const xercesc::XercesDOMParser parser; }
    xercesc::XMLPlatformUtils::Terminate();
}

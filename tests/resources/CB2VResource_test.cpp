// SPDX-License-Identifier: Apache-2.0
#include "logging/CZorLog.h"
#include "logging/getMessage.h"
#include "resources/CHypervB2VResource.h"
#include "resources/CVmwareB2VResource.h"
#include "suite/Scratch.h"

#include <gtest/gtest.h>

namespace Zorvane {
namespace {

TEST(CB2VResource, isMadeByItsType) {
    const auto make = [](std::uint32_t type) { return CreateB2VResource(&type); };
    EXPECT_TRUE(dynamic_cast<CVmwareB2VResource*>(make(1).get()));
    EXPECT_TRUE(dynamic_cast<CHypervB2VResource*>(make(2).get()));
    EXPECT_FALSE(make(0) || make(3));
}

TEST(CB2VResource, hasAnErrorTextAlsoWithoutACatalogueMessage) {
    struct Probe : CB2VResource {
        using CB2VResource::setErrorFromCatalogue;
    } probe;
    const Scratch scratch;
    const std::string arguments[] = {"204"};
    probe.setErrorFromCatalogue(11, 204);
    EXPECT_EQ(probe.getError(), getMessage(ZOR_COMMAND_ORIGINATOR, 11, arguments));
    probe.setErrorFromCatalogue(21, "p\x1b[2J");
    EXPECT_NE(probe.getError().find("\"p\\x1b[2J\""), std::string::npos);
    probe.setErrorFromCatalogue(2999);
    EXPECT_EQ(probe.getError(), "Message catalog error!");
}

} // namespace
} // namespace Zorvane

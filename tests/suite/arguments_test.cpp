// SPDX-License-Identifier: Apache-2.0
#include "suite/quul.h"

#include <cerrno>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(ArgumentLists, growAndAreFreed) {
    mrthLisArgs_t list{};
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(mrthLis(&list, 0, "%s of %s", std::to_string(i).c_str(), static_cast<const char*>(nullptr)), 0);
    ASSERT_EQ(list.count, 40U);
    EXPECT_STREQ(list.cells[38]->text, "19");
    EXPECT_STREQ(list.cells[39]->text, "") << "a text that is not there";
    mrthLisFree(&list);
    EXPECT_EQ(list.count, 0U);
    mrthLisFree(nullptr);
}

TEST(ArgumentLists, aCellTakesOneValueAfterTheOther) {
    mrthLisAny_t any{};
    EXPECT_EQ(mrthLisAny_string(&any, "first"), 0);
    EXPECT_EQ(mrthLisAny_utf8string(&any, "second"), 0);
    EXPECT_STREQ(any.text, "second");
    EXPECT_EQ(mrthLisAny_ulong(&any, 7), 0);
    EXPECT_EQ(any.text, nullptr);
}

TEST(ArgumentLists, whatIsMissingIsRefused) {
    mrthLisArgs_t list{};
    mrthLisAny_t any{};
    const std::int32_t results[] = {mrthLisAny_string(nullptr, "x"), mrthLisAny_utf8string(&any, nullptr),
                                    mrthLisAny_ulong(nullptr, 1), mrthLisAddArg(nullptr, &any),
                                    mrthLisAddArg(&list, nullptr)};
    for (const std::int32_t result : results)
        EXPECT_EQ(mrthLogMapLisResToLoggingRes(result), EINVAL);
    EXPECT_EQ(mrthLogMapLisResToLoggingRes(MRTH_LIS_NO_MEMORY), ENOMEM);
    EXPECT_EQ(mrthLogMapLisResToLoggingRes(MRTH_LIS_NO_MESSAGE), ENOENT);
    EXPECT_EQ(mrthLogMapLisResToLoggingRes(0), 0);
}

} // namespace

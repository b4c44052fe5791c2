// SPDX-License-Identifier: Apache-2.0
#include "LcMl.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(LcMl, IsOneCategoryNamedZavMl)
{
    EXPECT_STREQ("zav.ml", lcMl().categoryName());
    EXPECT_EQ(&lcMl(), &lcMl());
}

TEST(LcMl, EnablesEveryLevel)
{
    EXPECT_TRUE(lcMl().isDebugEnabled());
    EXPECT_TRUE(lcMl().isInfoEnabled());
    EXPECT_TRUE(lcMl().isWarningEnabled());
    EXPECT_TRUE(lcMl().isCriticalEnabled());
}

TEST(LcMl, FollowsTheRulesOfTheHost)
{
    QLoggingCategory::setFilterRules(QStringLiteral("zav.ml.debug=false\nzav.ml.info=false"));
    EXPECT_FALSE(lcMl().isDebugEnabled());
    EXPECT_FALSE(lcMl().isInfoEnabled());
    EXPECT_TRUE(lcMl().isWarningEnabled());
    QLoggingCategory::setFilterRules({});
    EXPECT_TRUE(lcMl().isDebugEnabled());
}

} // namespace
} // namespace zav

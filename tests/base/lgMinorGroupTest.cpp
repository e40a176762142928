#include "base/lgMinorGroup.h"

#include "base/exInternalError.h"

#include <gtest/gtest.h>

namespace
{

using Zu::LgMajorGroup;
using Zu::LgMinorGroup;
namespace LgTypes = Zu::LgTypes;

TEST(LgMinorGroup, AsksItsMajorGroupEachTime)
{
    LgMajorGroup major;
    const LgMinorGroup minor(major, "UI");
    for (int threshold = 0; threshold < LgTypes::NUM_LEVELS; ++threshold)
    {
        major.setLogThreshold(static_cast<LgTypes::Level>(threshold), true);
        for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
        {
            // The last threshold adds Profiling to Tracing, which stood before it.
            const bool isProfiling = level == LgTypes::Profiling;
            const bool expected = isProfiling ? threshold == LgTypes::Profiling
                                              : level <= threshold || level <= LgTypes::FatalError;
            EXPECT_EQ(minor.isLevelEnabled(static_cast<LgTypes::Level>(level)), expected)
                << threshold << level;
        }
    }
}

TEST(LgMinorGroup, KeepsItsNameAsAPointer)
{
    const LgMajorGroup major;
    const char* const name = "UI";
    EXPECT_EQ(LgMinorGroup(major, name).getName(), name);
}

TEST(LgMinorGroup, NeedsAName)
{
    const LgMajorGroup major;
    try
    {
        const LgMinorGroup minor(major, nullptr);
        FAIL();
    }
    catch (const Zu::ExInternalError& exception)
    {
        EXPECT_STREQ(exception.getReason(), "Assertion 'n' failed.");
    }
}

} // namespace

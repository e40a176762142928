#include "base/osFsPlatform.h"

#include <gtest/gtest.h>

namespace
{

using Zu::OsFileTypes;
using Zu::osFsMode;

TEST(OsFsPlatform, ModeBitsStandInTheOrderReadWriteExecute)
{
    // By access bits: 1 read, 2 write, 4 execute.
    const unsigned int bits[8] = {0, 4, 2, 6, 1, 5, 3, 7};
    for (int user = 0; user < 8; ++user)
        for (int group = 0; group < 8; ++group)
            for (int other = 0; other < 8; ++other)
                EXPECT_EQ(osFsMode(OsFileTypes::Permissions(user, group, other)),
                          64 * bits[user] + 8 * bits[group] + bits[other]);
}

TEST(OsFsPlatform, UsualModeLetsTheOwnerWriteAndAllRead)
{
    EXPECT_EQ(osFsMode(OsFileTypes::Permissions()), 0644U);
}

} // namespace

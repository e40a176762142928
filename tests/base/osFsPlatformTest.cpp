#include "base/osFsPlatform.h"

#include <gtest/gtest.h>
#include <ios>

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

TEST(OsFsPlatform, TheExampleOfTheHeaderIsRight)
{
    EXPECT_EQ(osFsMode(OsFileTypes::Permissions(7, 5, 4)), 0751U);
    EXPECT_EQ(osFsMode(OsFileTypes::Permissions(3, 1, 1)), 0644U);
}

TEST(OsFsPlatform, UsualModeLetsTheOwnerWriteAndAllRead)
{
    EXPECT_EQ(osFsMode(OsFileTypes::Permissions()), 0644U);
}

TEST(OsFsPlatform, AModeIsKeptAsFarAsOwnerAndGroupAre)
{
    struct Row
    {
        unsigned int _mode;
        bool _isOwnerKept;
        bool _isGroupKept;
        unsigned int _expected;
    };
    for (const Row& row :
         {Row{0644, true, true, 0644}, Row{07777, true, true, 07777}, Row{07777, false, true, 0777},
          Row{07777, true, false, 0777}, Row{07777, false, false, 0777},
          Row{0660, false, true, 0660}, Row{0660, true, false, 0600}, Row{0640, false, false, 0600},
          Row{0604, true, false, 0644}, Row{0601, false, false, 0611}, Row{0070, true, false, 0000},
          Row{0007, true, false, 0077}, Row{02755, true, false, 0755}, Row{0, false, false, 0}})
        EXPECT_EQ(Zu::osFsKeptMode(row._mode, row._isOwnerKept, row._isGroupKept), row._expected)
            << std::oct << row._mode;
}

} // namespace

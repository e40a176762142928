#include "base/osUtils.h"

#include "support/platform.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace
{

using support::onWindows;
using Zu::OsUtils;

TEST(OsUtils, ProcessIdIsThatOfThePlatform)
{
    EXPECT_EQ(OsUtils::getPid(), support::processId());
    EXPECT_NE(OsUtils::getPid(), 0U);
}

TEST(OsUtils, ThreadIdIsThatOfThePlatform)
{
    EXPECT_EQ(OsUtils::getThreadId(), support::threadId());
    EXPECT_EQ(OsUtils::getThreadId(), OsUtils::getThreadId());
}

TEST(OsUtils, ThreadIdsDiffer)
{
    std::uint32_t fromLibrary = 0;
    std::uint32_t fromPlatform = 0;
    std::thread other(
        [&]
        {
            fromLibrary = OsUtils::getThreadId();
            fromPlatform = support::threadId();
        });
    other.join();
    EXPECT_EQ(fromLibrary, fromPlatform);
    EXPECT_NE(fromLibrary, OsUtils::getThreadId());
}

TEST(OsUtils, TheHostsNameIsThatOfThePlatform)
{
    const std::string expected = support::hostName();
    ASSERT_NE(expected, "");
    const Zu::ArrayPtrRet<char> name = OsUtils::getHostName();
    ASSERT_FALSE(name.isNull());
    EXPECT_EQ(name.get(), expected);
}

TEST(OsUtils, TheUserHasANameWhateverTheFlag)
{
    const Zu::ArrayPtrRet<char> with = OsUtils::getUserName(true);
    const Zu::ArrayPtrRet<char> without = OsUtils::getUserName(false);
    ASSERT_FALSE(with.isNull());
    EXPECT_GT(std::strlen(with.get()), 0U);
    EXPECT_LE(std::strlen(with.get()), 256U);
    EXPECT_STREQ(with.get(), without.get());
}

TEST(OsUtils, SleepLastsAtLeastItsSeconds)
{
    OsUtils::sleep(0);
    // Windows counts in ticks of its scheduler, of which the first is not whole.
    const auto tick = std::chrono::milliseconds(onWindows ? 16 : 0);
    const auto start = std::chrono::steady_clock::now();
    OsUtils::sleep(1);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1) - tick);
}

} // namespace

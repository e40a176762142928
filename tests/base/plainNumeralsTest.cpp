#include "base/plainNumerals.h"

#include "support/commaLocale.h"
#include "support/platform.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace
{

using Zu::PlainNumerals;

std::string textOf(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

TEST(PlainNumerals, ChangeNothingInAPlainProcess)
{
    const PlainNumerals plain;
    EXPECT_EQ(textOf(1234.5), "1234.50");
}

TEST(PlainNumerals, HoldUntilTheirEndWhateverTheLocaleIs)
{
    const support::CommaNumerals comma;
    if (!comma.isSet()) GTEST_SKIP() << "there is no locale with a comma here, nor localedef";
    EXPECT_EQ(textOf(1234.5), "1234,50");
    {
        const PlainNumerals plain;
        EXPECT_EQ(textOf(1234.5), "1234.50");
        const PlainNumerals again;
        EXPECT_EQ(textOf(1234.5), "1234.50");
    }
    EXPECT_EQ(textOf(1234.5), "1234,50");
}

TEST(PlainNumerals, OtherThreadsDoNotNotice)
{
    if (support::onWindows) GTEST_SKIP() << "the process has one locale on Windows";
    const support::CommaNumerals comma;
    if (!comma.isSet()) GTEST_SKIP() << "there is no locale with a comma here, nor localedef";
    const PlainNumerals plain;
    std::string text;
    std::thread([&text] { text = textOf(1234.5); }).join();
    EXPECT_EQ(text, "1234,50");
}

} // namespace

#include "base/dbgLibraryBuildInfo.h"

#include <gtest/gtest.h>
#include <regex>
#include <string>

namespace
{

using Zu::LibraryBuildInfo;

TEST(LibraryBuildInfo, NamesTheApiAndItsVersion)
{
    const LibraryBuildInfo info;
    EXPECT_STREQ(info.getApiName(), "Corvane");
    EXPECT_EQ(info.getMajorVersion(), 0);
    EXPECT_EQ(info.getMinorVersion(), 2);
    EXPECT_STREQ(info.getVersionLabel(), "pre-alpha");
    EXPECT_STREQ(info.getLibraryName(false), "libZUbase");
    EXPECT_STREQ(info.getLibraryName(true), "libZUbase");
}

TEST(LibraryBuildInfo, HasALongAndAShortStamp)
{
    const LibraryBuildInfo info;
    EXPECT_STREQ(info.getBuildStamp(true), "ProductRV-Corvane_187");
    EXPECT_STREQ(info.getBuildStamp(false), "P. 187");
}

// Their content depends on the build, so only their form can be checked.
TEST(LibraryBuildInfo, TellsDateConfigurationAndBuilder)
{
    const std::regex date("(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 123][0-9] "
                          "[0-9]{4}");
    const std::regex builder("[^\\\\]+\\\\[^\\\\]+");
    const LibraryBuildInfo info;
    for (const bool verbose : {false, true})
    {
        EXPECT_TRUE(std::regex_match(info.getBuildDate(verbose), date))
            << info.getBuildDate(verbose);
        EXPECT_STRNE(info.getBuildConfiguration(verbose), "");
        EXPECT_TRUE(std::regex_match(info.getBuiltBy(verbose), builder))
            << info.getBuiltBy(verbose);
        EXPECT_STREQ(info.getBuildNotes(verbose), "[Information not available]");
    }
}

} // namespace

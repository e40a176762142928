#include "app/apNearest.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Zu::apDidYouMean;
using Zu::apDistance;
using Zu::apNearest;

TEST(ApNearest, DistanceCountsChanges)
{
    const struct
    {
        const char* _a;
        const char* _b;
        std::size_t _distance;
    } cases[] = {
        {"", "", 0},
        {"", "abc", 3},
        {"abc", "", 3},
        {"port", "port", 0},
        {"port", "PORT", 0},
        {"port", "prot", 1},
        {"port", "por", 1},
        {"por", "port", 1},
        {"port", "port2", 1},
        {"port", "part", 1},
        {"ab", "ba", 1},
        {"ca", "abc", 3},
        {"kitten", "sitting", 3},
        {"sunday", "saturday", 3},
        {"abcdef", "badcfe", 3},
    };
    for (const auto& row : cases)
        EXPECT_EQ(apDistance(row._a, row._b), row._distance) << row._a << " and " << row._b;
}

TEST(ApNearest, IsTheFirstOfTheNearestIfNearEnough)
{
    const std::vector<std::string> names = {"port", "part", "directory", "help", "x"};
    const struct
    {
        const char* _text;
        const char* _nearest;
    } cases[] = {
        {"prot", "port"},
        {"pirt", "port"},
        {"part", "part"},
        {"HELP", "help"},
        {"direktory", "directory"},
        {"dircetori", "directory"},
        {"verbose", ""},
        {"", ""},
        {"y", ""},
        {"halp", "help"},
        {"ho", ""},
    };
    for (const auto& row : cases) EXPECT_EQ(apNearest(row._text, names), row._nearest) << row._text;
    EXPECT_EQ(apNearest("port", {}), "");
}

TEST(ApNearest, IsAskedFor)
{
    EXPECT_EQ(apDidYouMean("--prot", {"--port", "--part"}), "; did you mean '--port'?");
    EXPECT_EQ(apDidYouMean("--verbose", {"--port"}), "");
}

} // namespace

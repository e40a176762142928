#include "zulog/zlReports.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace
{

TEST(ZlReports, ReportsTheFirstTenLinesOfAFileOneByOne)
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    for (std::uint64_t line = 1; line <= 12; ++line) reports.wrongLine("a\x1b.log", line, "bad");
    EXPECT_EQ(reported.str().substr(0, 24), "zulog: a\\x1b.log:1: bad\n");
    EXPECT_EQ(reported.str().find(":11:"), std::string::npos);
    reports.endReports();
    EXPECT_NE(reported.str().find("zulog: a\\x1b.log: 2 more lines like these\n"),
              std::string::npos);
    EXPECT_FALSE(reports.hasFailed());
}

TEST(ZlReports, OnlyAFailureChangesTheExitValue)
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    reports.note("a note");
    EXPECT_FALSE(reports.hasFailed());
    reports.failed("a\nfailure");
    EXPECT_TRUE(reports.hasFailed());
    EXPECT_EQ(reported.str(), "zulog: a note\nzulog: a\\x0afailure\n");
}

} // namespace

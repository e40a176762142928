#include "zulog/zlPager.h"

#include "support/variableGuard.h"
#include "zulog/zlPlatform.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace
{

TEST(ZlPager, FindsTheProgramInACommand)
{
    const struct
    {
        const char* _command;
        const char* _program;
    } rows[] = {
        {"less", "less"},
        {"  less\t-R -S", "less"},
        {"/usr/bin/most +x", "/usr/bin/most"},
        {"C:\\bin\\less.exe -R", "C:\\bin\\less.exe"},
        // What only the shell understands.
        {"LESS=R less", ""},
        {"\"my pager\" -x", ""},
        {"~/bin/pager", ""},
        {"less|cat", ""},
        {"$VIEWER", ""},
        {"", ""},
        {"  ", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(Zu::zlProgramOf(row._command), row._program);
}

TEST(ZlPager, ReportsOneThatIsNotThere)
{
    const support::VariableGuard pager("PAGER");
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    pager.set("noSuchPager -x");
    EXPECT_EQ(Zu::zlOpenPager(reports), nullptr);
    EXPECT_EQ(reported.str(), "zulog: there is no pager \"noSuchPager\", so none is started\n");
    EXPECT_FALSE(reports.hasFailed());
}

TEST(ZlPager, StartsOneThatIsThere)
{
    // A program of both platforms, which reads nothing here.
    const support::VariableGuard pager("PAGER");
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    pager.set("sort");
    std::FILE* const file = Zu::zlOpenPager(reports);
    if (!file) GTEST_SKIP() << "there is no sort: " << reported.str();
    EXPECT_TRUE(Zu::ZlPlatform::closePager(file));
    EXPECT_EQ(reported.str(), "");
}

} // namespace

#include "app/apLogCheck.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

const std::string LEVELS =
    "Internal Error, Fatal Error, Error, Warning, Informational, Tracing, Profiling";

TEST(ApLogCheck, FindsWhatHasNotTheForm)
{
    const std::string expected = ": expected GROUP=LEVEL,GROUP=LEVEL... with the levels " + LEVELS;
    const struct
    {
        const char* _value;
        std::string _where;
    } cases[] = {
        {"", ""},
        {"Http=Warning", ""},
        {"Http=Warning,", ""},
        {"Http=Warning,Data Base=Fatal Error", ""},
        {"Http=nothing", ""},
        {"Http", "'Http' has no level"},
        {"Http=", "'Http' has no level"},
        {"Http=Error,Other", "'Other' has no level"},
        {"Http,Other=Error", "'Http' has no level"},
        {"=Error", "a group has no name"},
        {"Http=Error,,Other=Error", "a group has no name"},
        {"Http=Error,,", "a group has no name"},
        {",", "a group has no name"},
    };
    for (const auto& row : cases)
    {
        const std::string text = "ZU_LOG_GROUPS is '" + std::string(row._value) + "', where ";
        EXPECT_EQ(Zu::apGroupsError(row._value),
                  row._where.empty() ? "" : text + row._where + expected)
            << row._value;
    }
}

TEST(ApLogCheck, NotesWhatHasNoEffect)
{
    const Texts used = {"Http", "Database"};
    const struct
    {
        const char* _value;
        Texts _notes;
    } cases[] = {
        {"", {}},
        {"Http=Warning,Database=Profiling", {}},
        {"Http=Waring", {"ZU_LOG_GROUPS: 'Waring' is not a level; did you mean 'Warning'?"}},
        {"Http=warning", {"ZU_LOG_GROUPS: 'warning' is not a level; did you mean 'Warning'?"}},
        {"Http=3", {"ZU_LOG_GROUPS: '3' is not a level; the levels are " + LEVELS}},
        {"Htpt=Error",
         {"ZU_LOG_GROUPS: no statement belongs to the group 'Htpt'; did you mean 'Http'?"}},
        {"Shop=Error",
         {"ZU_LOG_GROUPS: no statement belongs to the group 'Shop'; the groups are "
          "Http, Database"}},
        {"Shop=3,Http=Error",
         {"ZU_LOG_GROUPS: '3' is not a level; the levels are " + LEVELS,
          "ZU_LOG_GROUPS: no statement belongs to the group 'Shop'; the groups are "
          "Http, Database"}},
    };
    for (const auto& row : cases) EXPECT_EQ(Zu::apGroupsNotes(row._value, used), row._notes);
}

TEST(ApLogCheck, NotesADefaultThatIsNoLevel)
{
    EXPECT_EQ(Zu::apDefaultLevelNote("Fatal Error"), "");
    EXPECT_EQ(Zu::apDefaultLevelNote("Trace"),
              "ZU_LOG_DEFAULT_LEVEL: 'Trace' is not a level; the levels are " + LEVELS);
    EXPECT_EQ(Zu::apDefaultLevelNote("Errors"),
              "ZU_LOG_DEFAULT_LEVEL: 'Errors' is not a level; did you mean 'Error'?");
}

} // namespace

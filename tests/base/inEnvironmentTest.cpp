#include "base/inEnvironment.h"

#include <gtest/gtest.h>
#include <sstream>

namespace
{

using Zu::InEnvironment;

struct EntryCase
{
    const char* _entry;
    const char* _name;
    const char* _value;
};

TEST(InEnvironment, SplitsAtTheFirstEqualsSign)
{
    const EntryCase cases[] = {
        {"NAME=value", "NAME", "value"}, {"NAME=a=b", "NAME", "a=b"}, {"NAME=", "NAME", ""},
        {"=value", "", "value"},         {"A B=c d", "A B", "c d"},
    };
    for (const EntryCase& row : cases)
    {
        const char* const entries[] = {row._entry, nullptr};
        std::ostringstream messages;
        const InEnvironment environment(entries, messages);
        ASSERT_NE(environment.find(row._name), nullptr) << row._entry;
        EXPECT_STREQ(environment.find(row._name), row._value) << row._entry;
        EXPECT_EQ(messages.str(), "");
    }
}

TEST(InEnvironment, ALaterEntryOfANameWins)
{
    const char* const entries[] = {"NAME=first", "OTHER=x", "NAME=second", nullptr};
    std::ostringstream messages;
    const InEnvironment environment(entries, messages);
    EXPECT_STREQ(environment.find("NAME"), "second");
    EXPECT_STREQ(environment.find("OTHER"), "x");
}

TEST(InEnvironment, AnEntryWithoutEqualsSignIsSkippedAndReported)
{
    const char* const entries[] = {"broken", "NAME=value", nullptr};
    std::ostringstream messages;
    const InEnvironment environment(entries, messages);
    EXPECT_EQ(messages.str(), "Skipping over Environment Variable: broken\n");
    EXPECT_EQ(environment.find("broken"), nullptr);
    EXPECT_STREQ(environment.find("NAME"), "value");
}

TEST(InEnvironment, AbsentAndNullNamesGiveNull)
{
    std::ostringstream messages;
    const InEnvironment environment(nullptr, messages);
    EXPECT_EQ(environment.find("NAME"), nullptr);
    EXPECT_EQ(environment.find(nullptr), nullptr);
}

TEST(InEnvironment, ChangesOfTheSourceDoNotShow)
{
    char entry[] = "NAME=old";
    const char* const entries[] = {entry, nullptr};
    std::ostringstream messages;
    const InEnvironment environment(entries, messages);
    entry[5] = 'b';
    EXPECT_STREQ(environment.find("NAME"), "old");
}

TEST(InEnvironment, TheProcessHasAnEnvironment)
{
    std::ostringstream messages;
    const InEnvironment environment(Zu::inProcessEnvironment(), messages);
    EXPECT_NE(environment.find("PATH"), nullptr);
}

} // namespace

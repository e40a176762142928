#include "base/osCommandLine.h"

#include <gtest/gtest.h>

namespace
{

using Zu::osCommandLine;

TEST(OsCommandLine, EachWordHasOneBlankBehindIt)
{
    const char* const one[] = {"program", nullptr};
    EXPECT_EQ(osCommandLine(one), "program ");
    const char* const three[] = {"program", "-x", "y", nullptr};
    EXPECT_EQ(osCommandLine(three), "program -x y ");
}

TEST(OsCommandLine, NothingIsQuoted)
{
    const char* const words[] = {"a program", "b \"c\"", "d\\", " ", "", "e", nullptr};
    EXPECT_EQ(osCommandLine(words), "a program b \"c\" d\\    e ");
}

TEST(OsCommandLine, NoWordGivesTheEmptyLine)
{
    const char* const none[] = {nullptr};
    EXPECT_EQ(osCommandLine(none), "");
}

} // namespace

#include "app/apText.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

TEST(ApText, NamesAreJoinedByCommas)
{
    const struct
    {
        std::vector<std::string> _names;
        const char* _text;
    } cases[] = {{{}, ""}, {{"a"}, "a"}, {{"a", "b", "c"}, "a, b, c"}, {{"", "b", ""}, ", b, "}};
    for (const auto& row : cases) EXPECT_EQ(Zu::apJoined(row._names), row._text);
}

TEST(ApText, TheLastPartOfAPathFollowsItsLastSeparator)
{
    const struct
    {
        const char* _path;
        const char* _part;
    } cases[] = {{"", ""},     {"a", "a"},        {"/", ""},       {"/a/b.c", "b.c"},
                 {"a/b/", ""}, {"C:\\a\\b", "b"}, {"a\\b/c", "c"}, {"a/b\\c", "c"}};
    for (const auto& row : cases) EXPECT_EQ(Zu::apLastPart(row._path), row._part) << row._path;
}

} // namespace

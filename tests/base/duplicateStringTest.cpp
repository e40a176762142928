#include "base/duplicateString.h"

#include <cstring>

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace
{

using Zu::ArrayPtr;
using Zu::duplicateString;

TEST(DuplicateString, CopiesTheWholeText)
{
    const char text[] = "some text";
    const ArrayPtr<char> copy(duplicateString(text));
    EXPECT_STREQ(copy.get(), "some text");
    EXPECT_NE(copy.get(), text);
}

TEST(DuplicateString, OfNullGivesAnAllocatedEmptyString)
{
    const ArrayPtr<char> whole(duplicateString(nullptr));
    ASSERT_FALSE(whole.isNull());
    EXPECT_STREQ(whole.get(), "");
    const ArrayPtr<char> limited(duplicateString(nullptr, 10));
    ASSERT_FALSE(limited.isNull());
    EXPECT_STREQ(limited.get(), "");
}

TEST(DuplicateString, OfTheEmptyTextGivesAnAllocatedEmptyString)
{
    const ArrayPtr<char> copy(duplicateString(""));
    ASSERT_FALSE(copy.isNull());
    EXPECT_STREQ(copy.get(), "");
}

TEST(DuplicateString, CopiesNoMoreThanTheLimit)
{
    const std::string text = "abcdef";
    for (unsigned int limit = 0; limit < 10; ++limit)
    {
        const ArrayPtr<char> copy(duplicateString(text.c_str(), limit));
        ASSERT_FALSE(copy.isNull());
        EXPECT_EQ(copy.get(), text.substr(0, limit));
    }
}

TEST(DuplicateString, HasRoomForTheLimitAndTheTerminatorAlsoBehindAShortText)
{
    const ArrayPtr<char> copy(duplicateString("ab", 10));
    std::memset(copy.get(), 'x', 10);
    copy[10] = 0;
    EXPECT_STREQ(copy.get(), "xxxxxxxxxx");
    const ArrayPtr<char> ofNull(duplicateString(nullptr, 3));
    std::memset(ofNull.get(), 'y', 3);
    ofNull[3] = 0;
    EXPECT_STREQ(ofNull.get(), "yyy");
}

TEST(DuplicateString, ReadsNothingBehindTheTerminatorOrTheLimit)
{
    // Arrays of exactly this size, so that a read beyond their ends is detected.
    const std::unique_ptr<char[]> terminated(new char[3]{'a', 'b', 0});
    const ArrayPtr<char> first(duplicateString(terminated.get(), 100));
    EXPECT_STREQ(first.get(), "ab");
    const std::unique_ptr<char[]> open(new char[3]{'a', 'b', 'c'});
    const ArrayPtr<char> second(duplicateString(open.get(), 3));
    EXPECT_STREQ(second.get(), "abc");
}

TEST(DuplicateString, StopsAtATerminatorInsideTheText)
{
    const char text[] = "ab\0cd";
    const ArrayPtr<char> copy(duplicateString(text, 5));
    EXPECT_STREQ(copy.get(), "ab");
}

} // namespace

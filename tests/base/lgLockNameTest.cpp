#include "base/lgLockName.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace
{

constexpr std::uint32_t USER = 1000;
const std::string PREFIX = "/ZU-lock-1000-";

// The name that a text of this form represents.
std::string decoded(const std::string& text)
{
    std::string name;
    for (std::size_t at = PREFIX.size(); at < text.size(); ++at)
    {
        if (text[at] != '%')
        {
            name += text[at];
            continue;
        }
        name += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
        at += 2;
    }
    return name;
}

TEST(LgLockName, PlainNamesStandBehindThePrefixAsTheyAre)
{
    EXPECT_EQ(Zu::lgLockName("MyLock-2_b.x", USER), "/ZU-lock-1000-MyLock-2_b.x");
    EXPECT_EQ(Zu::lgLockName("..", USER), "/ZU-lock-1000-..");
    EXPECT_EQ(Zu::lgLockName("", USER), "/ZU-lock-1000-");
}

TEST(LgLockName, EachUserHasLocksOfHisOwn)
{
    EXPECT_EQ(Zu::lgLockName("a", 0), "/ZU-lock-0-a");
    EXPECT_EQ(Zu::lgLockName("a", 4294967294), "/ZU-lock-4294967294-a");
    EXPECT_NE(Zu::lgLockName("1-a", 1), Zu::lgLockName("a", 11));
}

TEST(LgLockName, OtherBytesAreEscaped)
{
    EXPECT_EQ(Zu::lgLockName("a b", USER), "/ZU-lock-1000-a%20b");
    EXPECT_EQ(Zu::lgLockName("100%", USER), "/ZU-lock-1000-100%25");
    EXPECT_EQ(Zu::lgLockName("%20", USER), "/ZU-lock-1000-%2520");
    EXPECT_EQ(Zu::lgLockName("\x01", USER), "/ZU-lock-1000-%01");
    EXPECT_EQ(Zu::lgLockName("\x80\x99", USER), "/ZU-lock-1000-%80%99");
}

TEST(LgLockName, EveryByteIsEitherKeptOrEscaped)
{
    const std::string kept = "abcdefghijklmnopqrstuvwxyz"
                             "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";
    const std::string digits = "0123456789abcdefABCDEF";
    for (int byte = 1; byte < 256; ++byte)
    {
        const std::string name(1, static_cast<char>(byte));
        const std::string text = Zu::lgLockName(name.c_str(), USER);
        if (kept.find(name) != std::string::npos)
        {
            EXPECT_EQ(text, PREFIX + name) << byte;
            continue;
        }
        ASSERT_EQ(text.size(), PREFIX.size() + 3) << byte;
        EXPECT_EQ(text.substr(0, PREFIX.size() + 1), PREFIX + "%") << byte;
        EXPECT_EQ(text.find_first_not_of(digits, PREFIX.size() + 1), std::string::npos) << byte;
        EXPECT_EQ(decoded(text), name) << byte;
    }
}

// A name can be recovered from its text, so no two names have the same text; and a name of slashes
// and dots does not lead to another directory.
TEST(LgLockName, NamesOfDifferentTextStayDifferentAndNoneLeadsElsewhere)
{
    std::mt19937 random(3);
    const std::string characters = "aA0%2fF/\\.-_ :";
    for (int i = 0; i < 10000; ++i)
    {
        std::string name;
        for (auto length = random() % 12; length > 0; --length)
            name += characters[random() % characters.size()];
        const std::string text = Zu::lgLockName(name.c_str(), USER);
        ASSERT_EQ(decoded(text), name);
        ASSERT_EQ(text.rfind('/'), 0U) << name;
        ASSERT_EQ(text.find('\\'), std::string::npos) << name;
    }
}

} // namespace

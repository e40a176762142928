#include "zulog/zlCursor.h"

#include "support/fileTest.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace
{

using Zu::ZlCursor;
using Zu::ZlCursorFile;

ZlCursor cursor()
{
    ZlCursor cursor;
    cursor._destination = "relp://host:20514";
    cursor._places["/var/log/a.log"] = {{2049, 131}, 4096, 0xc0ffee, 81920, 0xbead};
    cursor._places["/var/log/line\nfeed\\.log"] = {{1, 2}, 0, 0, 0, std::nullopt};
    return cursor;
}

// The checksum of the text, by a loop of the test's own: FNV-1a with 64 bits.
std::string sealed(const std::string& text)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char character : text)
    {
        hash ^= static_cast<unsigned char>(character);
        hash *= 0x100000001b3U;
    }
    char digits[32];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return text + "sum " + digits + "\n";
}

std::string refusalOf(const std::string& text)
{
    try
    {
        Zu::zlReadCursor(text, "c");
    }
    catch (const Zu::ZlError& error)
    {
        return error.what();
    }
    return "taken";
}

TEST(ZlCursor, IsATextThatIsReadBack)
{
    const std::string text = Zu::zlWriteCursor(cursor());
    EXPECT_EQ(text, sealed("zulog cursor 2\n"
                           "to relp://host:20514\n"
                           "at 2049 131 4096 0000000000c0ffee 81920 000000000000bead "
                           "/var/log/a.log\n"
                           "at 1 2 0 0000000000000000 0 - /var/log/line\\nfeed\\\\.log\n"));
    EXPECT_EQ(Zu::zlReadCursor(text, "c"), cursor());
}

TEST(ZlCursor, AnEarlierVersionHasNoHashOfWhatIsInFrontOfAPlace)
{
    const std::string text = sealed("zulog cursor 1\n"
                                    "to relp://host:20514\n"
                                    "at 2049 131 4096 0000000000c0ffee 81920 /var/log/a.log\n"
                                    "at 1 2 0 0000000000000000 0 /var/log/line\\nfeed\\\\.log\n");
    ZlCursor expected = cursor();
    expected._places["/var/log/a.log"]._last.reset();
    EXPECT_EQ(Zu::zlReadCursor(text, "c"), expected);
}

constexpr const char* DAMAGED = "\"c\" is damaged; without it, all of the logs is shipped again";
constexpr const char* HEAD = "zulog cursor 2\nto x\n";
constexpr const char* PLACE = "at 1 2 3 0000000000000004 5 0000000000000006 /a\n";
constexpr const char* OTHER_PLACE = "at 1 2 3 0000000000000004 5 - /b\n";

TEST(ZlCursor, RefusesWhatItHasNotWritten)
{
    EXPECT_EQ(refusalOf("hello\n"), "\"c\" is no cursor of zulog");
    EXPECT_EQ(refusalOf(sealed("zulog cursor 3\nto x\n")),
              "\"c\" is the cursor of a newer zulog, of version 3");
    const std::string head = HEAD;
    EXPECT_EQ(refusalOf(sealed(head)), "taken");
    for (const std::string& text : {std::string(), head, head + "sum 0\n",
                                    sealed(head).substr(0, 40), sealed(head) + "more\n"})
        EXPECT_EQ(refusalOf(text), DAMAGED) << text;
}

TEST(ZlCursor, RefusesLinesThatItHasNotWritten)
{
    for (const char* const text : {"zulog cursor one\nto x\n", "zulog cursor 2\nfrom x\n"})
        EXPECT_EQ(refusalOf(sealed(text)), DAMAGED) << text;
    const std::string head = HEAD;
    const std::string both = head + PLACE + OTHER_PLACE;
    EXPECT_EQ(refusalOf(sealed(both)), "taken");
    EXPECT_EQ(refusalOf(sealed(both + "at 1 2 3 0000000000000004 5 - /c\n")), "taken");
    // Numbers and the order of places have one form.
    for (const char* const line :
         {"at 1 2 3\n", "at 1 2 3 0000000000000004 5 - \n", "at -1 2 3 0000000000000004 5 - /c\n",
          "at 1 2 4097 0000000000000004 5 - /c\n",
          "at 1 2 3 0000000000000004 99999999999999999999 - /c\n",
          "at 1 2 3 0000000000000004 5 - /c\\x\n", "at 1 2 3 0000000000000004 5 /c\n",
          "at 1 2 3 0000000000000004 5 -/c\n", "at 1 2 3 4 5 - /c\n",
          "at 01 2 3 0000000000000004 5 - /c\n", "at 1 2 3 000000000000000A 5 - /c\n", PLACE,
          OTHER_PLACE, "at 1 2 3 0000000000000004 5 - /\n"})
        EXPECT_EQ(refusalOf(sealed(both + line)), DAMAGED) << line;
}

TEST(ZlCursor, EveryChangedByteIsNoticed)
{
    const std::string text = Zu::zlWriteCursor(cursor());
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        std::string changed = text;
        changed[i] = static_cast<char>(changed[i] ^ 1);
        EXPECT_NE(refusalOf(changed), "taken") << i;
    }
}

TEST(ZlCursorFile, IsReplacedAsAWhole)
{
    const support::TempDir dir;
    ZlCursorFile file(dir.file("cursor"));
    EXPECT_EQ(file.read(), std::nullopt);
    file.replace("one");
    file.replace("two");
    EXPECT_EQ(file.read(), "two");
    EXPECT_FALSE(std::filesystem::exists(dir.file("cursor.new")));
}

TEST(ZlCursorFile, IsForOneProcessAtATime)
{
    const support::TempDir dir;
    const std::string name = dir.file("cursor");
    {
        const ZlCursorFile file(name);
        try
        {
            const ZlCursorFile second(name);
            ADD_FAILURE();
        }
        catch (const Zu::ZlError& error)
        {
            EXPECT_NE(std::string(error.what()).find("is the cursor of another zulog that runs"),
                      std::string::npos)
                << error.what();
        }
    }
    const ZlCursorFile next(name);
}

TEST(ZlCursorFile, WhatIsTooLargeOrCannotBeReadIsRefused)
{
    const support::TempDir dir;
    const ZlCursorFile file(dir.file("cursor"));
    support::writeFile(dir.file("cursor"), std::string((1U << 20) + 1, 'x'));
    EXPECT_THROW(file.read(), Zu::ZlError);
    EXPECT_THROW(ZlCursorFile(dir.file("missing") + "/cursor"), Zu::ZlError);
}

} // namespace

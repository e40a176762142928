#include "zulog/zlNames.h"

#include "support/fileTest.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace
{

// The text is UTF-8, the path is what the system takes: both name the same file.
TEST(ZlNames, PathsOfNamesInUtf8AreReadBack)
{
    for (const char* const name :
         {"", "a.log", "a/b.log", "caf\xc3\xa9.log", "\xe6\x97\xa5/\xe6\x9c\xac"})
        EXPECT_EQ(Zu::zlNameOf(Zu::zlPathOf(name)), name);
    EXPECT_EQ(Zu::zlPathOf("caf\xc3\xa9"), std::filesystem::path(u"caf\u00e9"));
}

struct Row
{
    const char* _name;
    const char* _directory;
};

constexpr Row DIRECTORIES[] = {
    {"a.log", "."},
    {"logs/a.log", "logs"},
    {"logs/shop/a.log", "logs/shop"},
    {"./a.log", "."},
    {"../a.log", ".."},
    {"/var/log/a.log", "/var/log"},
    {"\xc3\xa9/a.log", "\xc3\xa9"},
    {"logs/", "logs"},
    {"", "."},
};

TEST(ZlNames, ANameWithoutADirectoryIsInThePresentOne)
{
    for (const Row& row : DIRECTORIES)
        EXPECT_EQ(Zu::zlDirectoryOf(row._name), row._directory) << row._name;
}

TEST(ZlNames, ADirectoryIsOneThatIsThere)
{
    const support::TempDir directory;
    support::writeFile(directory.file("file"), "");
    EXPECT_TRUE(Zu::zlIsDirectory(directory.path()));
    EXPECT_FALSE(Zu::zlIsDirectory(directory.file("file")));
    EXPECT_FALSE(Zu::zlIsDirectory(directory.file("file/in it")));
    EXPECT_FALSE(Zu::zlIsDirectory(directory.file("nothing")));
}

} // namespace

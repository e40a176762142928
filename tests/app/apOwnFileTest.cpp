#include "app/apOwnFile.h"

#include "support/platform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

class ApOwnFileTest : public testing::Test
{
protected:
    void write(const std::string& content) const
    {
        std::ofstream(_path, std::ios::binary) << content;
        fs::permissions(_path, fs::perms::owner_read | fs::perms::owner_write);
    }

    std::string read()
    {
        _content = "before";
        return Zu::apReadOwnFile(_path, _content);
    }

    const support::TempDir _dir;
    const std::string _path = _dir.file("settings.toml");
    std::string _content;
};

TEST_F(ApOwnFileTest, IsReadWhole)
{
    for (const std::size_t size : {std::size_t(0), std::size_t(1), Zu::AP_LONGEST_FILE})
    {
        write(std::string(size, '\n'));
        EXPECT_EQ(read(), "") << size;
        EXPECT_EQ(_content, std::string(size, '\n')) << size;
    }
}

TEST_F(ApOwnFileTest, ThatIsTooLongIsRefused)
{
    write(std::string(Zu::AP_LONGEST_FILE + 1, 'x'));
    EXPECT_EQ(read(), "it is longer than 1 MiB");
}

TEST_F(ApOwnFileTest, ThatIsNotThereIsRefused)
{
    EXPECT_NE(read(), "");
}

TEST_F(ApOwnFileTest, ADirectoryIsRefused)
{
    fs::create_directory(_path);
    EXPECT_NE(read(), "");
}

#ifndef _WIN32
TEST_F(ApOwnFileTest, ThatOthersCanChangeIsRefused)
{
    write("a = 1");
    fs::permissions(_path, fs::perms(0664));
    EXPECT_EQ(read(), "others can change it: its mode is 0664");
    fs::permissions(_path, fs::perms(0602));
    EXPECT_EQ(read(), "others can change it: its mode is 0602");
    fs::permissions(_path, fs::perms(0644));
    EXPECT_EQ(read(), "");
}
#endif

TEST(ApOwnFile, AnAccessListIsToBeTrustedUnlessOthersMayChangeTheFile)
{
    using Kind = Zu::ApAccessEntry::Kind;
    using Entries = std::vector<Zu::ApAccessEntry>;
    const std::string unknown = "it has an access rule of an unknown type";
    const std::string bob = "others can change it: bob may write";
    const struct
    {
        Entries _entries;
        std::string _refusal;
    } cases[] = {
        {{}, ""},
        {{{Kind::Allows, false, true, true, "me"}}, ""},
        {{{Kind::Allows, false, false, false, "bob"}}, ""},
        {{{Kind::Allows, false, true, false, "bob"}}, bob},
        {{{Kind::Allows, true, true, false, "bob"}}, ""},
        {{{Kind::Denies, false, true, false, "bob"}}, ""},
        {{{Kind::Unknown, false, false, false, ""}}, unknown},
        {{{Kind::Unknown, true, false, false, ""}}, ""},
        {{{Kind::Denies, false, true, false, "bob"}, {Kind::Allows, false, true, false, "bob"}},
         bob},
        {{{Kind::Allows, false, true, true, "me"}, {Kind::Unknown, false, false, false, ""}},
         unknown},
    };
    for (const auto& row : cases) EXPECT_EQ(Zu::apRefusalOf(row._entries), row._refusal);
}

} // namespace

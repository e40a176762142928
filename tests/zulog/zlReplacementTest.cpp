#include "zulog/zlReplacement.h"

#include "logTexts.h"
#include "support/fileTest.h"
#include "support/tempDir.h"
#include "zulog/zlFile.h"

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace
{

namespace fs = std::filesystem;

class ZlReplacement : public ::testing::Test
{
protected:
    std::ptrdiff_t countFiles() const
    {
        const fs::directory_iterator files(_directory.path());
        return std::distance(fs::begin(files), fs::end(files));
    }

    support::TempDir _directory;
    const std::string _name = _directory.file("page.html");
};

TEST_F(ZlReplacement, TakesThePlaceWhenItIsComplete)
{
    logTexts::writeFile(_name, "old");
    Zu::ZlReplacement replacement(_name);
    std::fputs("new", replacement.getFile());
    std::fflush(replacement.getFile());
    EXPECT_EQ(support::readFile(_name), "old");
    replacement.finish();
    EXPECT_EQ(support::readFile(_name), "new");
    EXPECT_EQ(countFiles(), 1);
}

TEST_F(ZlReplacement, LeavesNothingWhenItIsNotFinished)
{
    logTexts::writeFile(_name, "old");
    {
        const Zu::ZlReplacement replacement(_name);
        std::fputs("new", replacement.getFile());
    }
    EXPECT_EQ(support::readFile(_name), "old");
    {
        const Zu::ZlReplacement other(_directory.file("other"));
        std::fputs("new", other.getFile());
    }
    EXPECT_EQ(countFiles(), 1);
}

TEST_F(ZlReplacement, ReportsWhatCantBeOpened)
{
    EXPECT_THROW(Zu::ZlReplacement(_directory.file("missing/page.html")), Zu::ZlError);
    EXPECT_THROW(Zu::ZlReplacement(_directory.path()), Zu::ZlError);
}

TEST_F(ZlReplacement, KeepsPermissionsAndLinks)
{
    logTexts::writeFile(_name, "old");
    constexpr fs::perms READABLE = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(_name, READABLE);
    const fs::perms before = fs::status(_name).permissions();
    const std::string link = _directory.file("link");
    std::error_code error;
    fs::create_symlink(_name, link, error);
    if (error) GTEST_SKIP() << "there are no links here: " << error.message();
    Zu::ZlReplacement replacement(link);
    std::fputs("new", replacement.getFile());
    replacement.finish();
    EXPECT_EQ(support::readFile(_name), "new");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::status(_name).permissions(), before);
}

} // namespace

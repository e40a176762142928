#include "support/platform.h"

#ifndef _WIN32

#include "app/lgNewFile.h"

#include "support/tempDir.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using support::TempDir;

using Make = int (*)(const std::string&, const Zu::LgPrepare&);

bool prepareNothing(int)
{
    return true;
}

// Both ways but for the moment at which the file has its name.
class LgNewFileTest : public testing::TestWithParam<Make>
{
protected:
    int make(const Zu::LgPrepare& prepare = &prepareNothing)
    {
        errno = 0;
        return GetParam()(_path, prepare);
    }

    const TempDir _dir;
    const std::string _path = _dir.file("file");
};

INSTANTIATE_TEST_SUITE_P(Ways, LgNewFileTest, testing::Values(&Zu::lgNewFile, &Zu::lgNewNamedFile));

TEST_P(LgNewFileTest, IsForItsUserAlone)
{
    const int file = make();
    ASSERT_GT(file, 2) << std::strerror(errno);
    EXPECT_EQ(fcntl(file, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    struct stat status = {};
    ASSERT_EQ(stat(_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    EXPECT_EQ(status.st_nlink, 1U);
    ASSERT_EQ(write(file, "text", 4), 4);
    EXPECT_EQ(std::filesystem::file_size(_path), 4U);
    close(file);
}

TEST_P(LgNewFileTest, NeverReplacesOne)
{
    std::ofstream(_path) << "there already";
    EXPECT_LT(make(), 0);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(std::filesystem::file_size(_path), 13U);
}

TEST_P(LgNewFileTest, IsNotMadeWhereItCannotBePrepared)
{
    const auto fail = [](int)
    {
        errno = EDOM;
        return false;
    };
    EXPECT_LT(make(fail), 0);
    EXPECT_EQ(errno, EDOM);
    EXPECT_TRUE(std::filesystem::is_empty(_dir.path()));
}

TEST_P(LgNewFileTest, IsRefusedWithoutADirectory)
{
    errno = 0;
    EXPECT_LT(GetParam()(_dir.file("none") + "/file", &prepareNothing), 0);
    EXPECT_EQ(errno, ENOENT);
}

TEST(LgNewFile, HasItsNameOnlyWhenItIsPrepared)
{
    const TempDir dir;
    bool isThere = true;
    const int file = Zu::lgNewFile(dir.file("file"),
                                   [&](int)
                                   {
                                       isThere = std::filesystem::exists(dir.file("file"));
                                       return true;
                                   });
    ASSERT_GE(file, 0);
    EXPECT_FALSE(isThere);
    EXPECT_TRUE(std::filesystem::exists(dir.file("file")));
    close(file);
}

TEST(LgNewFile, MayBeInTheCurrentDirectory)
{
    const TempDir dir;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(dir.path());
    const int file = Zu::lgNewFile("file", &prepareNothing);
    std::filesystem::current_path(before);
    ASSERT_GE(file, 0);
    EXPECT_TRUE(std::filesystem::exists(dir.file("file")));
    close(file);
}

} // namespace

#endif

#include "base/osFilePlatform.h"

#include "base/exSysError.h"
#include "support/errorCode.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

namespace Platform = Zu::OsFilePlatform;
using support::codeOf;
using support::onWindows;
using support::readFile;
using support::writeFile;
using Zu::OsFileTypes;

const OsFileTypes::Permissions usual;

// The code that an exception would have now.
int lastError()
{
    return codeOf([] { throw Zu::ExSysErrorWindows("file", 1); });
}

class OsFilePlatformTest : public testing::Test
{
protected:
    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    std::string made(const std::string& name, const std::string& content) const
    {
        writeFile(file(name), content);
        return file(name);
    }

    std::string directory() const
    {
        return _dir.path();
    }

private:
    support::TempDir _dir;
};

class OsFilePlatformLinuxTest : public OsFilePlatformTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Links and modes are Linux's.";
    }
};

std::vector<std::string> sortedNames(const std::string& directory)
{
    std::vector<std::string> names;
    Platform::Scan scan(directory.c_str());
    const char* name = nullptr;
    while (scan.next(name) == Platform::Scan::Result::Name) names.emplace_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(OsFilePlatformTest, AHandleReadsWritesOrBothAsOpened)
{
    const std::string path = made("f", "content");
    const auto canRead = [](Platform::Handle handle)
    {
        char byte;
        std::uint32_t count = 0;
        return Platform::read(handle, &byte, 1, count) && count == 1;
    };
    const auto canWrite = [](Platform::Handle handle)
    {
        std::uint32_t count = 0;
        return Platform::write(handle, "#", 1, count) && count == 1;
    };
    const Platform::Handle reading = Platform::openExisting(path.c_str(), OsFileTypes::AccessRead);
    EXPECT_TRUE(canRead(reading));
    EXPECT_FALSE(canWrite(reading));
    const Platform::Handle writing = Platform::openExisting(path.c_str(), OsFileTypes::AccessWrite);
    EXPECT_FALSE(canRead(writing));
    EXPECT_TRUE(canWrite(writing));
    const Platform::Handle both = Platform::openExisting(path.c_str(), 3);
    EXPECT_TRUE(canRead(both));
    EXPECT_TRUE(canWrite(both));
    EXPECT_EQ(readFile(path), "##ntent");
    for (const Platform::Handle handle : {reading, writing, both})
        EXPECT_EQ(Platform::close(handle), Platform::Closed::Done);
}

TEST_F(OsFilePlatformTest, FailuresSetTheLastError)
{
    const std::string missing = file("missing");
    EXPECT_EQ(Platform::openExisting(missing.c_str(), 3), Platform::NONE);
    EXPECT_EQ(lastError(), 2);
    EXPECT_EQ(Platform::openNew(made("f", "").c_str(), usual, true), Platform::NONE);
    EXPECT_EQ(lastError(), onWindows ? 80 : 17);
    std::uint64_t size = 0;
    EXPECT_FALSE(Platform::sizeOf(missing.c_str(), size));
    EXPECT_EQ(lastError(), 2);
    OsFileTypes::ElementType type;
    EXPECT_FALSE(Platform::typeOf(missing.c_str(), type));
    EXPECT_EQ(lastError(), 2);
    EXPECT_FALSE(Platform::remove(missing.c_str()));
    EXPECT_EQ(lastError(), 2);
    EXPECT_FALSE(Platform::removeDirectory(missing.c_str()));
    EXPECT_EQ(lastError(), 2);
    EXPECT_FALSE(Platform::createDirectory(directory().c_str(), usual));
    EXPECT_EQ(lastError(), onWindows ? 183 : 17);
    EXPECT_FALSE(Platform::replace(missing.c_str(), file("f").c_str()));
    EXPECT_EQ(lastError(), 2);
    EXPECT_TRUE(std::filesystem::exists(file("f")));
    Platform::Moment moment;
    EXPECT_FALSE(Platform::lastModificationOf(missing.c_str(), moment));
    EXPECT_EQ(lastError(), 2);
    EXPECT_FALSE(Platform::lastAccessOf(missing.c_str(), moment));
    EXPECT_EQ(lastError(), 2);
}

TEST(OsFilePlatform, ErrorsThatNoCallReportsHaveThePlatformsCodes)
{
    EXPECT_EQ(Platform::codeOf(Platform::Error::DiskFull), onWindows ? 112 : 28);
    EXPECT_EQ(Platform::codeOf(Platform::Error::TooLarge), onWindows ? 223 : 27);
    EXPECT_EQ(Platform::codeOf(Platform::Error::TooManyLinks), onWindows ? 1921 : 40);
}

TEST_F(OsFilePlatformTest, SizesAreToldIn64Bits)
{
    const std::string path = made("f", "");
    const std::int64_t large = (std::int64_t{1} << 32) + 7;
    const Platform::Handle handle = Platform::openExisting(path.c_str(), OsFileTypes::AccessWrite);
    ASSERT_TRUE(Platform::resize(handle, large));
    std::int64_t position = 0;
    EXPECT_TRUE(Platform::seek(handle, 0, OsFileTypes::SeekCurrent, position));
    EXPECT_EQ(position, large);
    EXPECT_TRUE(Platform::flush(handle));
    EXPECT_EQ(Platform::close(handle), Platform::Closed::Done);
    std::uint64_t size = 0;
    EXPECT_TRUE(Platform::sizeOf(path.c_str(), size));
    EXPECT_EQ(size, static_cast<std::uint64_t>(large));
}

TEST_F(OsFilePlatformTest, OnlyTheAccessThatIsAskedForIsTold)
{
    const std::string path = made("f", "content");
    for (const int mask : {0, 1, 2, 3, 4, 7})
        EXPECT_EQ(Platform::accessTo(path.c_str(), mask), mask & 3);
    for (const std::string& none : {file("missing"), directory()})
        EXPECT_EQ(Platform::accessTo(none.c_str(), 7), 0);
}

TEST_F(OsFilePlatformTest, ReplacingTakesThePlaceInOneStep)
{
    const std::string from = made("f", "new");
    const std::string to = made("g", "old");
    EXPECT_TRUE(Platform::replace(from.c_str(), to.c_str()));
    EXPECT_EQ(readFile(to), "new");
    EXPECT_FALSE(std::filesystem::exists(from));
    EXPECT_TRUE(Platform::replace(to.c_str(), from.c_str()));
    EXPECT_EQ(readFile(from), "new");
}

TEST_F(OsFilePlatformTest, ADirectoryIsMadeOnceAndRemovedOnce)
{
    const std::string path = file("d");
    EXPECT_TRUE(Platform::createDirectory(path.c_str(), OsFileTypes::Permissions(7, 7, 7)));
    EXPECT_FALSE(Platform::createDirectory(path.c_str(), OsFileTypes::Permissions(7, 7, 7)));
    made("d/f", "content");
    EXPECT_FALSE(Platform::removeDirectory(path.c_str()));
    EXPECT_TRUE(Platform::remove(file("d/f").c_str()));
    EXPECT_TRUE(Platform::removeDirectory(path.c_str()));
    EXPECT_FALSE(Platform::removeDirectory(path.c_str()));
}

TEST_F(OsFilePlatformTest, APlainFileIsNoDeviceAndNothing)
{
    const Platform::Handle plain =
        Platform::openExisting(made("f", "").c_str(), OsFileTypes::AccessRead);
    EXPECT_TRUE(Platform::isPlain(plain));
    EXPECT_EQ(Platform::close(plain), Platform::Closed::Done);
    EXPECT_FALSE(Platform::isPlain(Platform::NONE));
    const Platform::Handle device =
        Platform::openExisting(onWindows ? "NUL" : "/dev/null", OsFileTypes::AccessRead);
    EXPECT_FALSE(Platform::isPlain(device));
    EXPECT_EQ(Platform::close(device), Platform::Closed::Done);
}

TEST_F(OsFilePlatformTest, TimesOfAFileAndOfADirectoryCanBeSetAndAreTold)
{
    std::filesystem::create_directory(file("d"));
    const Platform::Handle handles[] = {
        Platform::openExisting(made("f", "").c_str(),
                               OsFileTypes::AccessRead | OsFileTypes::AccessWrite),
        Platform::openDirectory(file("d").c_str(), OsFileTypes::AccessWrite)};
    for (const Platform::Handle handle : handles)
    {
        ASSERT_NE(handle, Platform::NONE);
        Platform::Attributes attributes;
        ASSERT_TRUE(Platform::attributesOf(handle, attributes));
        // The lower half of a count of Windows, and seconds of Linux.
        attributes._modified[0] = 500000000;
        attributes._accessed[0] = 400000000;
        EXPECT_TRUE(Platform::setAttributes(handle, attributes));
        Platform::Attributes found;
        ASSERT_TRUE(Platform::attributesOf(handle, found));
        EXPECT_EQ(found._modified[0], 500000000);
        EXPECT_EQ(found._modified[1], attributes._modified[1]);
        EXPECT_EQ(found._accessed[0], 400000000);
        EXPECT_EQ(found._mode, attributes._mode);
        EXPECT_EQ(Platform::close(handle), Platform::Closed::Done);
    }
    EXPECT_EQ(Platform::openDirectory(file("missing").c_str(), OsFileTypes::AccessRead),
              Platform::NONE);
}

TEST_F(OsFilePlatformLinuxTest, OnlyLinksHaveATarget)
{
    const std::string longest(255, 'n');
    std::string target = longest;
    while (target.size() < 4000) target += "/" + longest;
    std::filesystem::create_symlink(target, file("link"));
    std::string found = "none";
    for (const std::string& path : {made("f", ""), directory(), file("missing")})
        EXPECT_FALSE(Platform::linkTarget(path.c_str(), found));
    EXPECT_EQ(found, "none");
    EXPECT_TRUE(Platform::linkTarget(file("link").c_str(), found));
    EXPECT_EQ(found, target);
}

TEST_F(OsFilePlatformTest, TwoPathsAreTheSameIfTheyLeadToTheSame)
{
    const std::string path = made("f", "content");
    const std::string twin = made("g", "content");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_hard_link(path, file("hard"));
    const auto isSame = [](const std::string& a, const std::string& b)
    { return Platform::isSame(a.c_str(), b.c_str()); };
    EXPECT_TRUE(isSame(path, path));
    EXPECT_TRUE(isSame(path, file("d/../f")));
    EXPECT_TRUE(isSame(path, file("hard")));
    EXPECT_TRUE(isSame(directory(), file("d/..")));
    EXPECT_FALSE(isSame(path, twin));
    EXPECT_FALSE(isSame(path, directory()));
    EXPECT_FALSE(isSame(path, file("missing")));
    EXPECT_FALSE(isSame(file("missing"), path));
    EXPECT_FALSE(isSame(file("missing"), file("missing")));
}

TEST_F(OsFilePlatformTest, AResolvedPathHasNoSteps)
{
    std::filesystem::create_directory(file("d"));
    const std::string plain = Platform::resolved(file("d").c_str());
    EXPECT_NE(plain, "");
    EXPECT_EQ(Platform::resolved(file("d/../d/.").c_str()), plain);
    EXPECT_EQ(Platform::resolved(file("missing").c_str()), "");
}

TEST_F(OsFilePlatformLinuxTest, AResolvedPathHasNoLinks)
{
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("d"), file("link"));
    EXPECT_EQ(Platform::resolved(file("link").c_str()),
              std::filesystem::canonical(file("d")).string());
}

TEST_F(OsFilePlatformLinuxTest, ModesAreCopiedWithoutTheMask)
{
    const support::ModeMaskGuard mask(0077);
    const std::string from = made("f", "");
    const std::string to = made("g", "");
    std::filesystem::permissions(from, std::filesystem::perms{0754});
    const Platform::Handle handle = Platform::openExisting(to.c_str(), OsFileTypes::AccessWrite);
    Platform::keepOwnerAndModes(from.c_str(), handle);
    EXPECT_EQ(support::modeOf(to), 0754U);
    // Without a model nothing happens, nor for a directory or a link.
    std::filesystem::create_symlink(made("h", ""), file("link"));
    for (const std::string& other : {file("missing"), directory(), file("link")})
    {
        Platform::keepOwnerAndModes(other.c_str(), handle);
        EXPECT_EQ(support::modeOf(to), 0754U);
    }
    EXPECT_EQ(Platform::close(handle), Platform::Closed::Done);
}

TEST_F(OsFilePlatformLinuxTest, TheDirectoryOfAnyPathIsFlushedWithoutALeak)
{
    const std::size_t before = support::openHandles();
    for (const std::string& path : {file("f"), std::string("f"), std::string("/f"), file("no/f")})
        Platform::flushDirectoryOf(path.c_str());
    EXPECT_EQ(support::openHandles(), before);
}

TEST_F(OsFilePlatformTest, TheVolumeOfAFileIsThatOfItsDirectory)
{
    Platform::Volume volume;
    ASSERT_TRUE(Platform::volumeOf(made("f", "").c_str(), volume));
    EXPECT_GE(volume._sectorSize, 512U);
    EXPECT_FALSE(volume._name.empty());
    Platform::Volume same;
    ASSERT_TRUE(Platform::volumeOf(directory().c_str(), same));
    EXPECT_EQ(same._sectorSize, volume._sectorSize);
    EXPECT_EQ(same._isRemote, volume._isRemote);
}

TEST_F(OsFilePlatformTest, AScanTellsAllNamesButTheDots)
{
    EXPECT_EQ(sortedNames(directory()), std::vector<std::string>());
    std::vector<std::string> expected;
    for (int i = 0; i < 1000; ++i)
        expected.push_back(std::filesystem::path(made(std::to_string(i), "")).filename().string());
    for (const char* const name : {"...", "..a", ".a", "a b"})
    {
        // Windows drops dots at the end of a name.
        if (onWindows && std::string(name) == "...") continue;
        made(name, "");
        expected.emplace_back(name);
    }
    std::filesystem::create_directory(file("d"));
    expected.emplace_back("d");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(sortedNames(directory()), expected);
}

TEST_F(OsFilePlatformTest, AScanEndsOnceAndForAll)
{
    made("f", "");
    Platform::Scan scan(directory().c_str());
    const char* name = nullptr;
    EXPECT_EQ(scan.next(name), Platform::Scan::Result::Name);
    EXPECT_STREQ(name, "f");
    EXPECT_EQ(scan.next(name), Platform::Scan::Result::End);
    EXPECT_EQ(scan.next(name), Platform::Scan::Result::End);
}

TEST_F(OsFilePlatformTest, AScanOfWhatIsNoDirectoryFails)
{
    const char* name = nullptr;
    for (const std::string& path : {file("missing"), made("f", "content")})
    {
        Platform::Scan scan(path.c_str());
        EXPECT_EQ(scan.next(name), Platform::Scan::Result::Failed) << path;
        EXPECT_NE(lastError(), 0);
    }
}

} // namespace

#include "base/osFileTools.h"

#include "base/exSysError.h"
#include "base/osDateTypes.h"
#include "base/osFileEx.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using support::CurrentDirectoryGuard;
using support::DIRECTORY_MARK;
using support::modeOf;
using support::onWindows;
using support::readFile;
using support::Tree;
using support::treeAt;
using support::writeFile;
using Zu::ExSysErrorANSI;
using Zu::ExSysErrorWindows;
using Zu::ObjPtr;
using Zu::OsDirectory;
using Zu::OsFile;
using Zu::OsFileEx;
using Zu::OsFilePath;
using Zu::OsFileReader;
using Zu::OsFileTools;
using Zu::OsFileTypes;
using Zu::OsFileWriter;
using Zu::OsLeafFileFilter;
using Zu::OsPassThroughFilter;
using Zu::Vector;

using Names = std::vector<std::string>;

const OsFileTypes::Permissions usual;
const OsPassThroughFilter everything;
const std::int64_t gibi = std::int64_t(1) << 30;
const std::size_t mebi = std::size_t(1) << 20;

// Windows accepts full paths of up to 259 characters, so a name there has to be shorter.
const std::size_t longestName = onWindows ? 150 : 255;

OsFilePath pathOf(const std::string& text)
{
    return OsFilePath(text.c_str());
}

// Bytes of all values without a short period.
std::string bytes(std::size_t length)
{
    std::string text(length, '\0');
    std::uint32_t state = 12345;
    for (char& byte : text)
    {
        state = state * 1103515245 + 12345;
        byte = static_cast<char>(state >> 16 & 0xff);
    }
    return text;
}

// The text of an exception; empty if none of this type is raised.
template <class Exception, class Act> std::string reasonOf(Act act)
{
    try
    {
        act();
    }
    catch (const Exception& exception)
    {
        return exception.getReason();
    }
    return "";
}

// The errno that an ExSysErrorANSI carries; 0 if none is raised.
template <class Act> int errnoOf(Act act)
{
    try
    {
        act();
    }
    catch (const ExSysErrorANSI& exception)
    {
        return exception.getError();
    }
    return 0;
}

class OsFileToolsTest : public testing::Test
{
protected:
    // A path in the test's directory, from one with "/".
    std::string file(std::string name) const
    {
        for (char& character : name)
            if (character == '/') character = *OsFilePath::getSeparator();
        return _dir.path() + OsFilePath::getSeparator() + name;
    }

    OsFilePath at(const std::string& name) const
    {
        return pathOf(file(name));
    }

    std::string path() const
    {
        return _dir.path();
    }

    void makeDirectory(const std::string& name) const
    {
        std::filesystem::create_directories(file(name));
    }

    void makeFile(const std::string& name, const std::string& text = "text") const
    {
        writeFile(file(name), text);
    }

    void makeTree(const std::string& name) const
    {
        makeDirectory(name + "/empty");
        makeDirectory(name + "/sub/with blanks/deep");
        makeFile(name + "/.hidden");
        makeFile(name + "/f");
        makeFile(name + "/sub/with blanks/deep/" + std::string(onWindows ? 100 : 255, 'n'));
        for (int i = 0; i < 100; ++i) makeFile(name + "/sub/" + std::to_string(i), "");
    }

    std::string missingReason(const std::string& name) const
    {
        return "Invalid path: '" + file(name) + "'.";
    }

private:
    support::TempDir _dir;
};

class OsFileToolsLinkTest : public OsFileToolsTest
{
protected:
    void SetUp() override
    {
        std::error_code failure;
        std::filesystem::create_directory_symlink(path(), file("probe"), failure);
        if (failure) GTEST_SKIP() << "No symbolic links are to be had: " << failure.message();
        std::filesystem::remove(file("probe"));
    }

    // The target is as the link has it, so relative to the link.
    void makeLink(const std::string& name, const std::string& target) const
    {
        std::filesystem::create_symlink(target, file(name));
    }
};

class OsFileToolsModeTest : public OsFileToolsTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Windows has no modes and ignores permissions.";
    }

    void setMode(const std::string& name, unsigned int mode) const
    {
        std::filesystem::permissions(file(name), static_cast<std::filesystem::perms>(mode));
    }
};

TEST_F(OsFileToolsTest, TheEmptyPathRaisesEverywhere)
{
    using Null = OsFileEx::ExNullFilePath;
    const std::string reason = "File has null file path.";
    const OsFilePath none;
    makeFile("f");
    EXPECT_EQ(reasonOf<Null>([&] { (void)OsFileTools::getSize64(none); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { (void)OsFileTools::readAll(none); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { OsFileTools::replaceAll(none, "x"); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { OsFileTools::removeWithAllContents(none); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { OsFileTools::copyWithModesAndTimes(none, at("g")); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { OsFileTools::copyWithModesAndTimes(at("f"), none); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { OsFileTools::copyWithModesAndTimes(pathOf(path()), none); }),
              reason);
    EXPECT_EQ(reasonOf<Null>([&] { (void)OsFileTools::haveSameContent(none, none); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { (void)OsFileTools::haveSameContent(at("f"), none); }), reason);
    EXPECT_EQ(reasonOf<Null>([&] { (void)OsFileTools::haveSameContent(none, at("f")); }), reason);
    EXPECT_EQ(reasonOf<Null>(
                  [&] {
                      OsFileTools::getSortedChildrenPath(OsDirectory(none), OsFileTypes::PathFull,
                                                         everything);
                  }),
              reason);
    EXPECT_EQ(treeAt(path()), Tree({{"f", "text"}}));
}

TEST_F(OsFileToolsTest, TheSizeIsThatOfTheContent)
{
    for (const std::size_t size : {0U, 1U, 65536U, 1000003U})
    {
        makeFile("f", std::string(size, 'x'));
        EXPECT_EQ(OsFileTools::getSize64(at("f")), size);
    }
}

TEST_F(OsFileToolsTest, AMissingFileHasNoSize)
{
    EXPECT_EQ(reasonOf<OsFileEx::ExInvalidPath>([&] { (void)OsFileTools::getSize64(at("no")); }),
              missingReason("no"));
}

TEST_F(OsFileToolsTest, AFileOfMoreThanFourGibibytesIsWrittenAndRead)
{
    const std::int64_t place = 5 * gibi;
    OsFileWriter writer(at("f"), usual, true);
    bool fits = false;
    try
    {
        fits = OsFileTools::seek64(writer, place, OsFileTypes::SeekBegin) == place &&
               writer.write("x", 1) == 1;
    }
    catch (const ExSysErrorWindows& exception)
    {
        GTEST_SKIP() << "The file system has no room for it: " << exception.getReason();
    }
    if (!fits) GTEST_SKIP() << "The file system has no room for a file of 5 GiB.";
    EXPECT_EQ(OsFileTools::seek64(writer, 0, OsFileTypes::SeekCurrent), place + 1);
    writer.close();
    EXPECT_EQ(OsFileTools::getSize64(at("f")), std::uint64_t(place) + 1);
    EXPECT_EQ(std::filesystem::file_size(file("f")), std::uintmax_t(place) + 1);
    // A size that does not fit in 32 bits is never truncated.
    EXPECT_THROW((void)OsFile(at("f")).getSize(), ExSysErrorWindows);

    OsFileReader reader(at("f"));
    char byte = 0;
    EXPECT_EQ(OsFileTools::seek64(reader, 0, OsFileTypes::SeekEnd), place + 1);
    EXPECT_EQ(reader.read(&byte, 1), 0U);
    EXPECT_EQ(OsFileTools::seek64(reader, -1, OsFileTypes::SeekCurrent), place);
    EXPECT_EQ(reader.read(&byte, 1), 1U);
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(OsFileTools::seek64(reader, place - 1, OsFileTypes::SeekBegin), place - 1);
    EXPECT_THROW(reader.seek(0, OsFileTypes::SeekEnd), ExSysErrorWindows);
    char two[2] = {'a', 'b'};
    EXPECT_EQ(reader.read(two, 2), 2U);
    EXPECT_EQ(two[0], '\0');
    EXPECT_EQ(two[1], 'x');
    EXPECT_EQ(OsFileTools::seek64(reader, -place - 1, OsFileTypes::SeekEnd), 0);
}

TEST_F(OsFileToolsTest, ReserveGivesAFileAnySizeAndMovesToItsEnd)
{
    OsFileWriter writer(at("f"), usual, true);
    ASSERT_EQ(writer.write("0123456789", 10), 10U);
    const std::int64_t large = 6 * gibi + 7;
    try
    {
        OsFileTools::reserve64(writer, large);
    }
    catch (const ExSysErrorWindows& exception)
    {
        GTEST_SKIP() << "The file system has no room for it: " << exception.getReason();
    }
    EXPECT_EQ(OsFileTools::seek64(writer, 0, OsFileTypes::SeekCurrent), large);
    EXPECT_EQ(OsFileTools::getSize64(at("f")), std::uint64_t(large));
    for (const std::int64_t size : {std::int64_t(100), std::int64_t(5), std::int64_t(0)})
    {
        OsFileTools::reserve64(writer, size);
        EXPECT_EQ(OsFileTools::seek64(writer, 0, OsFileTypes::SeekCurrent), size);
        EXPECT_EQ(OsFileTools::getSize64(at("f")), std::uint64_t(size));
    }
    OsFileTools::reserve64(writer, 3);
    EXPECT_EQ(writer.write("x", 1), 1U);
    writer.close();
    EXPECT_EQ(readFile(file("f")), std::string("\0\0\0x", 4));
}

TEST_F(OsFileToolsTest, ANegativeSizeRaisesAndChangesNothing)
{
    OsFileWriter writer(at("f"), usual, true);
    ASSERT_EQ(writer.write("0123456789", 10), 10U);
    EXPECT_THROW(OsFileTools::reserve64(writer, -1), ExSysErrorWindows);
    EXPECT_THROW(OsFileTools::reserve64(writer, -5 * gibi), ExSysErrorWindows);
    EXPECT_EQ(OsFileTools::getSize64(at("f")), 10U);
}

TEST_F(OsFileToolsTest, SeekCountsFromTheBeginningThePositionAndTheEnd)
{
    makeFile("f", "0123456789");
    OsFileReader reader(at("f"));
    struct Row
    {
        std::int64_t _offset;
        OsFileTypes::SeekMode _mode;
        std::int64_t _position;
    };
    const Row rows[] = {
        {4, OsFileTypes::SeekBegin, 4},
        {3, OsFileTypes::SeekCurrent, 7},
        {-5, OsFileTypes::SeekCurrent, 2},
        {0, OsFileTypes::SeekCurrent, 2},
        {0, OsFileTypes::SeekEnd, 10},
        {-1, OsFileTypes::SeekEnd, 9},
        {5, OsFileTypes::SeekEnd, 15},
        {100 * gibi, OsFileTypes::SeekCurrent, 100 * gibi + 15},
        {-100 * gibi, OsFileTypes::SeekCurrent, 15},
        {0, OsFileTypes::SeekBegin, 0},
    };
    for (const Row& row : rows)
        EXPECT_EQ(OsFileTools::seek64(reader, row._offset, row._mode), row._position);
    OsFileWriter writer(at("g"), usual, true);
    for (int i = 0; i < 10; ++i) ASSERT_EQ(writer.write("x", 1), 1U);
    for (const Row& row : rows)
        if (row._mode != OsFileTypes::SeekCurrent)
        {
            EXPECT_EQ(OsFileTools::seek64(writer, row._offset, row._mode), row._position);
        }
}

TEST_F(OsFileToolsTest, APlaceBeforeTheBeginningRaisesAndThePositionStays)
{
    makeFile("f", "0123456789");
    OsFileReader reader(at("f"));
    OsFileWriter writer(at("g"), usual, true);
    OsFileTools::seek64(reader, 4, OsFileTypes::SeekBegin);
    OsFileTools::seek64(writer, 4, OsFileTypes::SeekBegin);
    for (const auto mode : {OsFileTypes::SeekBegin, OsFileTypes::SeekCurrent, OsFileTypes::SeekEnd})
        for (const std::int64_t offset : {std::int64_t(-11), -5 * gibi})
        {
            EXPECT_THROW(OsFileTools::seek64(reader, offset, mode), ExSysErrorWindows);
            EXPECT_THROW(OsFileTools::seek64(writer, offset, mode), ExSysErrorWindows);
        }
    EXPECT_EQ(OsFileTools::seek64(reader, 0, OsFileTypes::SeekCurrent), 4);
    EXPECT_EQ(OsFileTools::seek64(writer, 0, OsFileTypes::SeekCurrent), 4);
}

TEST_F(OsFileToolsTest, ClosedObjectsRaise)
{
    makeFile("f");
    OsFileReader reader(at("f"));
    OsFileWriter writer(at("g"), usual, true);
    reader.close();
    writer.close();
    for (const auto mode : {OsFileTypes::SeekBegin, OsFileTypes::SeekCurrent, OsFileTypes::SeekEnd})
    {
        EXPECT_EQ(errnoOf([&] { OsFileTools::seek64(reader, 0, mode); }), EBADF);
        EXPECT_EQ(errnoOf([&] { OsFileTools::seek64(writer, 0, mode); }), EBADF);
    }
    EXPECT_EQ(errnoOf([&] { OsFileTools::reserve64(writer, 1); }), EBADF);
    EXPECT_EQ(OsFileTools::getSize64(at("g")), 0U);
}

TEST_F(OsFileToolsTest, WriteAllWritesAnySizeBehindThePositionAndCounts)
{
    OsFileWriter writer(at("f"), usual, true);
    const std::string content = bytes(mebi + 1);
    std::uint64_t written = 4711;
    OsFileTools::writeAll(writer, "", written);
    EXPECT_EQ(written, 0U);
    OsFileTools::writeAll(writer, "head", written);
    EXPECT_EQ(written, 4U);
    OsFileTools::writeAll(writer, content, written);
    EXPECT_EQ(written, content.size());
    writer.close();
    EXPECT_TRUE(readFile(file("f")) == "head" + content);
    written = 4711;
    EXPECT_EQ(errnoOf([&] { OsFileTools::writeAll(writer, "x", written); }), EBADF);
    EXPECT_EQ(written, 0U);
}

TEST_F(OsFileToolsTest, ReadAllGivesEveryByte)
{
    for (const std::size_t size :
         {std::size_t(0), std::size_t(1), std::size_t(65535), std::size_t(65536),
          std::size_t(65537), std::size_t(131072), mebi + 1})
    {
        const std::string content = bytes(size);
        makeFile("f", content);
        EXPECT_TRUE(OsFileTools::readAll(at("f")) == content) << size;
    }
    const std::string text("\0a\r\nb\n\x1a\0\xff", 9);
    makeFile("with blanks", text);
    EXPECT_EQ(OsFileTools::readAll(at("with blanks")), text);
}

TEST_F(OsFileToolsTest, WhatIsNoFileCanNotBeRead)
{
    makeDirectory("d");
    EXPECT_THROW((void)OsFileTools::readAll(at("no")), ExSysErrorWindows);
    EXPECT_THROW((void)OsFileTools::readAll(at("no/f")), ExSysErrorWindows);
    EXPECT_THROW((void)OsFileTools::readAll(at("d")), ExSysErrorWindows);
}

TEST_F(OsFileToolsTest, AFileThatTellsNoSizeIsReadWhole)
{
    if (onWindows) GTEST_SKIP() << "Linux has such files.";
    const std::string status = OsFileTools::readAll(pathOf("/proc/self/status"));
    EXPECT_EQ(status.rfind("Name:", 0), 0U);
    EXPECT_NE(status.find("Threads:"), std::string::npos);
}

TEST_F(OsFileToolsTest, ReplaceAllMakesANewFile)
{
    const std::string content = bytes(mebi + 1);
    OsFileTools::replaceAll(at("f"), content);
    OsFileTools::replaceAll(at("a b"), "of a b");
    OsFileTools::replaceAll(at("empty"), "");
    EXPECT_TRUE(treeAt(path()) == Tree({{"f", content}, {"a b", "of a b"}, {"empty", ""}}));
}

TEST_F(OsFileToolsTest, ReplaceAllTakesTheLongestNames)
{
    const std::string name(longestName, 'n');
    for (const char* const content : {"first", "second"})
    {
        OsFileTools::replaceAll(at(name), content);
        EXPECT_EQ(treeAt(path()), Tree({{name, content}}));
    }
}

TEST_F(OsFileToolsTest, ReplaceAllReplacesTheWholeContent)
{
    const std::string odd("\0a\r\nb\n\x1a\0\xff", 9);
    makeFile("f", bytes(100000));
    for (const std::string& content : {std::string("short"), bytes(65537), odd, std::string()})
    {
        OsFileTools::replaceAll(at("f"), content);
        EXPECT_TRUE(treeAt(path()) == Tree({{"f", content}}));
    }
}

TEST_F(OsFileToolsTest, ReplaceAllTakesAPathFromTheCurrentDirectory)
{
    const CurrentDirectoryGuard current(path());
    makeDirectory("d");
    for (const char* const content : {"first", "second"})
    {
        OsFileTools::replaceAll(pathOf("f"), content);
        OsFileTools::replaceAll(pathOf("d") + "g", content);
        EXPECT_EQ(treeAt(path()), Tree({{"f", content}, {"d", DIRECTORY_MARK}, {"d/g", content}}));
    }
}

TEST_F(OsFileToolsTest, AFailedReplacementLeavesEverythingAsItWas)
{
    makeDirectory("empty");
    makeTree("d");
    makeFile("f");
    const Tree before = treeAt(path());
    for (const char* const name : {"no/f", "empty", "d", "f/below"})
    {
        EXPECT_THROW(OsFileTools::replaceAll(at(name), "new"), ExSysErrorWindows) << name;
        EXPECT_TRUE(treeAt(path()) == before) << name;
    }
    EXPECT_THROW(OsFileTools::replaceAll(at(std::string(300, 'n')), "new"), ExSysErrorWindows);
    EXPECT_THROW(OsFileTools::replaceAll(at(std::string(9000, 'n')), "new"), ExSysErrorWindows);
    EXPECT_TRUE(treeAt(path()) == before);
}

TEST_F(OsFileToolsModeTest, ReplaceAllKeepsTheModesOfAFile)
{
    const support::ModeMaskGuard mask(0077);
    for (const unsigned int mode : {0666U, 0640U, 0751U, 0444U, 0600U})
    {
        makeFile("f");
        setMode("f", mode);
        OsFileTools::replaceAll(at("f"), "new", OsFileTypes::Permissions(7, 7, 7));
        EXPECT_EQ(modeOf(file("f")), mode);
        EXPECT_EQ(readFile(file("f")), "new");
        std::filesystem::remove(file("f"));
    }
}

TEST_F(OsFileToolsModeTest, ReplaceAllGivesANewFileThePermissionsLessTheMask)
{
    {
        const support::ModeMaskGuard mask(0);
        OsFileTools::replaceAll(at("usual"), "x");
        OsFileTools::replaceAll(at("mixed"), "x", OsFileTypes::Permissions(7, 5, 4));
        OsFileTools::replaceAll(at("none"), "x", OsFileTypes::Permissions(0, 0, 0));
    }
    EXPECT_EQ(modeOf(file("usual")), 0644U);
    EXPECT_EQ(modeOf(file("mixed")), 0751U);
    EXPECT_EQ(modeOf(file("none")), 0U);
    const support::ModeMaskGuard mask(0027);
    OsFileTools::replaceAll(at("masked"), "x", OsFileTypes::Permissions(7, 7, 7));
    EXPECT_EQ(modeOf(file("masked")), 0750U);
}

TEST_F(OsFileToolsTest, WhoeverHasTheOldFileOpenKeepsTheOldContent)
{
    if (onWindows) GTEST_SKIP() << "Windows does not replace a file that is open.";
    makeFile("f", "the old content");
    OsFileReader reader(at("f"));
    char buffer[64] = {};
    ASSERT_EQ(reader.read(buffer, 4), 4U);
    OsFileTools::replaceAll(at("f"), "THE NEW CONTENT");
    EXPECT_EQ(readFile(file("f")), "THE NEW CONTENT");
    const std::uint32_t length = reader.read(buffer + 4, 60);
    EXPECT_EQ(std::string(buffer, 4 + length), "the old content");
}

TEST_F(OsFileToolsTest, ThreadsSeeWholeContentsOnly)
{
    const auto contentOf = [](int writer)
    { return std::string(70000U + 5000U * unsigned(writer), char('a' + writer)); };
    OsFileTools::replaceAll(at("f"), contentOf(0));
    std::atomic<int> torn(0);
    std::atomic<int> failed(0);
    std::atomic<int> replaced(0);
    std::atomic<int> seen(0);
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 3; ++writer)
        threads.emplace_back(
            [&, writer]
            {
                for (int round = 0; round < 12; ++round) try
                    {
                        OsFileTools::replaceAll(at("f"), contentOf(writer));
                        ++replaced;
                    }
                    catch (const ExSysErrorWindows&)
                    {
                        ++failed;
                    }
            });
    for (int reader = 0; reader < 3; ++reader)
        threads.emplace_back(
            [&]
            {
                for (int round = 0; round < 200; ++round) try
                    {
                        const std::string content = OsFileTools::readAll(at("f"));
                        const int writer = content.empty() ? -1 : content[0] - 'a';
                        if (writer < 0 || writer > 2 || content != contentOf(writer)) ++torn;
                        ++seen;
                    }
                    catch (const ExSysErrorWindows&)
                    {
                        ++failed;
                    }
            });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(torn, 0);
    // Windows refuses a file that others have open at that moment.
    if (!onWindows)
    {
        EXPECT_EQ(failed, 0);
        EXPECT_EQ(replaced, 36);
        EXPECT_EQ(seen, 600);
    }
    EXPECT_EQ(failed + replaced + seen, 636);
    EXPECT_GT(seen, 0);
    EXPECT_EQ(treeAt(path()).size(), 1U);
}

TEST_F(OsFileToolsTest, ThreadsReplaceNeighbouringFilesWithoutEachOther)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [&, thread]
            {
                const std::string name = std::to_string(thread);
                for (int round = 0; round < 8; ++round)
                    OsFileTools::replaceAll(at(name), std::string(1000, char('a' + thread)));
            });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(treeAt(path()), Tree({{"0", std::string(1000, 'a')},
                                    {"1", std::string(1000, 'b')},
                                    {"2", std::string(1000, 'c')},
                                    {"3", std::string(1000, 'd')}}));
}

TEST_F(OsFileToolsTest, SortedChildrenAreInTheOrderOfTheirBytes)
{
    Names names = {"10", "9", "_", "a", "a b", "a.b", "ab", "b1", "A1", "Z", ".h"};
    if (!onWindows) names.insert(names.end(), {"\xff", "\x80", "\x01", "z\xff"});
    makeDirectory("d/C");
    for (const std::string& name : names) makeFile("d/" + name);
    names.push_back("C");
    // Bytes count as unsigned here, too.
    std::sort(names.begin(), names.end());
    const OsDirectory subject(at("d"));
    for (const auto type : {OsFileTypes::PathFull, OsFileTypes::PathRelative})
    {
        const ObjPtr<Vector<OsFilePath>> paths =
            OsFileTools::getSortedChildrenPath(subject, type, everything);
        ASSERT_EQ(paths->size(), names.size());
        for (std::size_t i = 0; i < names.size(); ++i)
            EXPECT_EQ((*paths)[i].getChars(),
                      type == OsFileTypes::PathFull ? file("d/" + names[i]) : names[i]);
    }
    const ObjPtr<Vector<OsFilePath>> chosen = OsFileTools::getSortedChildrenPath(
        subject, OsFileTypes::PathRelative, OsLeafFileFilter("b"));
    ASSERT_EQ(chosen->size(), 3U);
    EXPECT_STREQ((*chosen)[0].getChars(), "a b");
    EXPECT_STREQ((*chosen)[1].getChars(), "a.b");
    EXPECT_STREQ((*chosen)[2].getChars(), "ab");
}

TEST_F(OsFileToolsTest, SortedChildrenAreNoneOrRaiseAsTheListingDoes)
{
    makeDirectory("d");
    makeFile("f");
    const auto list = [this](const std::string& name)
    {
        return OsFileTools::getSortedChildrenPath(OsDirectory(at(name)), OsFileTypes::PathFull,
                                                  everything);
    };
    EXPECT_EQ(list("d")->size(), 0U);
    EXPECT_THROW(list("no"), ExSysErrorWindows);
    EXPECT_THROW(list("f"), ExSysErrorWindows);
}

TEST_F(OsFileToolsTest, RemovalTakesAFileOrATreeAndNothingBeside)
{
    makeTree("kept");
    const Tree expected = treeAt(path());
    makeFile("f");
    makeDirectory("empty");
    makeTree("d");
    makeTree("e");
    for (const char* const name : {"f", "empty", "d", "e/"})
        OsFileTools::removeWithAllContents(at(name));
    EXPECT_TRUE(treeAt(path()) == expected);
}

TEST_F(OsFileToolsTest, RemovalOfWhatIsNotThereRaises)
{
    for (const char* const name : {"no", "no/below"})
        EXPECT_EQ(reasonOf<OsFileEx::ExInvalidPath>(
                      [&] { OsFileTools::removeWithAllContents(at(name)); }),
                  missingReason(name));
}

// The system refuses to remove the target of such a path, but only after its content is gone.
TEST_F(OsFileToolsTest, RemovalOfWhatEndsInAStepIsRefusedBeforeAnythingIsGone)
{
    makeTree("q");
    makeDirectory("q/e");
    const Tree before = treeAt(path());
    const CurrentDirectoryGuard current(file("q/e"));
    for (const std::string& name : {file("q/."), file("q/e/.."), file("q/./"), file("q/e/..//"),
                                    std::string("."), std::string(".."), std::string("../")})
    {
        EXPECT_EQ(reasonOf<OsFileEx::ExInvalidPath>(
                      [&] { OsFileTools::removeWithAllContents(pathOf(name)); }),
                  "Invalid path: '" + name + "'.");
        EXPECT_TRUE(treeAt(path()) == before) << name;
    }
}

TEST_F(OsFileToolsTest, RemovalTakesNamesThatLookLikeSteps)
{
    for (const char* const name : {".hidden", "..x", "a.", "q/../r"})
    {
        if (onWindows && std::string(name) == "a.") continue; // there it is "a"
        makeDirectory("q");
        makeDirectory(std::string(name) + "/sub");
        OsFileTools::removeWithAllContents(at(name));
        std::filesystem::remove(file("q"));
        EXPECT_EQ(treeAt(path()), Tree()) << name;
    }
}

TEST_F(OsFileToolsTest, RemovalDescendsFarOrRaises)
{
    std::string deep = "d";
    for (int level = 0; level < (onWindows ? 30 : 50); ++level) deep += "/s";
    makeDirectory(deep);
    makeFile(deep + "/f");
    OsFileTools::removeWithAllContents(at("d"));
    EXPECT_EQ(treeAt(path()), Tree());
    if (onWindows) return;
    // Beyond 1,024 characters it may raise, but never leaves half a tree without a word.
    deep = "e";
    for (int level = 0; level < 20; ++level) deep += "/" + std::string(100, 's');
    makeDirectory(deep);
    makeFile(deep + "/f");
    const std::string reason =
        reasonOf<ExSysErrorWindows>([&] { OsFileTools::removeWithAllContents(at("e")); });
    EXPECT_EQ(reason.empty(), treeAt(path()).empty()) << reason;
}

TEST_F(OsFileToolsLinkTest, ReplaceAllMakesWhatADanglingLinkNames)
{
    if (onWindows) GTEST_SKIP() << "Windows replaces the link itself.";
    makeDirectory("d/sub");
    makeLink("absolute", file("d/one"));
    makeLink("relative", "d/two");
    makeLink("d/sub/up", "../three");
    makeLink("first", "d/second");
    makeLink("d/second", "sub/third");
    makeLink("d/sub/third", "../four");
    for (const char* const name : {"absolute", "relative", "d/sub/up", "first"})
        OsFileTools::replaceAll(at(name), name);
    Tree expected = {{"d", DIRECTORY_MARK},
                     {"d/sub", DIRECTORY_MARK},
                     {"absolute", "<link> " + file("d/one")},
                     {"relative", "<link> d/two"},
                     {"d/sub/up", "<link> ../three"},
                     {"first", "<link> d/second"},
                     {"d/second", "<link> sub/third"},
                     {"d/sub/third", "<link> ../four"},
                     {"d/one", "absolute"},
                     {"d/two", "relative"},
                     {"d/three", "d/sub/up"},
                     {"d/four", "first"}};
    EXPECT_EQ(treeAt(path()), expected);
    // Now that they are there, they are replaced.
    OsFileTools::replaceAll(at("first"), "again");
    expected["d/four"] = "again";
    EXPECT_EQ(treeAt(path()), expected);
    const CurrentDirectoryGuard current(path());
    makeLink("bare", "new");
    OsFileTools::replaceAll(pathOf("bare"), "of bare");
    EXPECT_EQ(readFile(file("new")), "of bare");
    EXPECT_TRUE(std::filesystem::is_symlink(file("bare")));
}

TEST_F(OsFileToolsLinkTest, ReplaceAllThroughLinksThatLeadNowhereRaises)
{
    if (onWindows) GTEST_SKIP() << "Windows replaces the link itself.";
    makeLink("loop", "loop");
    makeLink("a", "b");
    makeLink("b", "a");
    makeLink("toMissing", "missing/f");
    const Tree before = treeAt(path());
    for (const char* const name : {"loop", "a", "b", "toMissing"})
    {
        EXPECT_THROW(OsFileTools::replaceAll(at(name), "x"), ExSysErrorWindows) << name;
        EXPECT_EQ(treeAt(path()), before);
    }
    EXPECT_NE(reasonOf<ExSysErrorWindows>([&] { OsFileTools::replaceAll(at("loop"), "x"); })
                  .find("symbolic links"),
              std::string::npos);
}

TEST_F(OsFileToolsLinkTest, ReplaceAllFollowsAsManyLinksAsTheSystem)
{
    if (onWindows) GTEST_SKIP() << "Windows replaces the link itself.";
    for (int i = 0; i < 41; ++i) makeLink(std::to_string(i), std::to_string(i + 1));
    EXPECT_THROW(OsFileTools::replaceAll(at("0"), "x"), ExSysErrorWindows);
    OsFileTools::replaceAll(at("1"), "x");
    EXPECT_EQ(readFile(file("41")), "x");
    EXPECT_EQ(readFile(file("1")), "x");
}

// In whole seconds, which every file system keeps. The runtime of Windows sets no directory's.
void setTimes(const std::string& path, int year)
{
    if (onWindows && std::filesystem::is_directory(path)) return;
    using namespace std::chrono;
    const sys_time<nanoseconds> noon = sys_days(std::chrono::year(year) / July / 15) + hours(12);
    std::filesystem::last_write_time(
        path,
        time_point_cast<std::filesystem::file_time_type::duration>(file_clock::from_sys(noon)));
}

std::filesystem::file_time_type timeOf(const std::string& path)
{
    return std::filesystem::last_write_time(path);
}

TEST_F(OsFileToolsTest, ACopyOfAFileKeepsItsTimes)
{
    makeFile("f", bytes(100000));
    makeFile("g", "to be replaced");
    makeDirectory("d");
    setTimes(file("f"), 2001);
    const ObjPtr<Zu::OsDateTypes::DateRep> accessed(OsFile(at("f")).getLastAccessTime());
    for (const char* const name : {"new", "g", "d/f"})
    {
        OsFileTools::copyWithModesAndTimes(at("f"), at(std::string(name) == "d/f" ? "d" : name));
        EXPECT_TRUE(readFile(file(name)) == bytes(100000)) << name;
        EXPECT_EQ(timeOf(file(name)), timeOf(file("f"))) << name;
    }
    const ObjPtr<Zu::OsDateTypes::DateRep> again(OsFile(at("new")).getLastAccessTime());
    EXPECT_FALSE(*again < *accessed);
}

TEST_F(OsFileToolsTest, ACopyOfATreeKeepsTheTimesOfAllThatIsInIt)
{
    makeTree("d");
    int year = 1981;
    Names names = {"d"};
    for (const auto& [name, content] : treeAt(file("d"))) names.push_back("d/" + name);
    // From within, as making something in a directory changes its time.
    std::sort(names.rbegin(), names.rend());
    for (const std::string& name : names) setTimes(file(name), 1981 + year++ % 40);
    makeDirectory("there");
    OsFileTools::copyWithModesAndTimes(at("d"), at("new"));
    OsFileTools::copyWithModesAndTimes(at("d"), at("there"));
    // Into directories that are there already, too.
    setTimes(file("there/d/sub"), 2020);
    OsFileTools::copyWithModesAndTimes(at("d"), at("there"));
    EXPECT_TRUE(treeAt(file("new")) == treeAt(file("d")));
    EXPECT_TRUE(treeAt(file("there/d")) == treeAt(file("d")));
    for (const std::string& name : names)
    {
        EXPECT_EQ(timeOf(file("new" + name.substr(1))), timeOf(file(name))) << name;
        EXPECT_EQ(timeOf(file("there/" + name)), timeOf(file(name))) << name;
    }
}

TEST_F(OsFileToolsTest, ACopyWithModesAndTimesIsRefusedAsOtherCopiesAre)
{
    makeTree("d");
    makeFile("f");
    const Tree before = treeAt(path());
    EXPECT_THROW(OsFileTools::copyWithModesAndTimes(at("f"), at("f")), OsFileEx::ExInvalidPath);
    EXPECT_THROW(OsFileTools::copyWithModesAndTimes(at("d"), at("d/sub")), OsFileEx::ExInvalidPath);
    EXPECT_THROW(OsFileTools::copyWithModesAndTimes(at("d"), at("f")), OsFileEx::ExFileExists);
    EXPECT_THROW(OsFileTools::copyWithModesAndTimes(at("no"), at("g")), ExSysErrorWindows);
    EXPECT_TRUE(treeAt(path()) == before);
}

TEST_F(OsFileToolsModeTest, ACopyKeepsTheModesWhateverTheMask)
{
    const support::ModeMaskGuard mask(0077);
    makeTree("d");
    const std::vector<std::pair<std::string, unsigned int>> modes = {
        {"/f", 0640},   {"/.hidden", 0444}, {"/sub/7", 0751},
        {"/sub", 0775}, {"/empty", 0711},   {"", 0750}};
    for (const auto& [name, mode] : modes) setMode("d" + name, mode);
    // A file that is there has other ones before.
    makeFile("g");
    setMode("g", 0666);
    OsFileTools::copyWithModesAndTimes(at("d/f"), at("g"));
    EXPECT_EQ(modeOf(file("g")), 0640U);
    OsFileTools::copyWithModesAndTimes(at("d"), at("new"));
    for (const auto& [name, mode] : modes) EXPECT_EQ(modeOf(file("new" + name)), mode) << name;
}

TEST_F(OsFileToolsModeTest, RightsThatAFileLendsAreNotCopied)
{
    makeFile("f");
    setMode("f", 06755);
    OsFileTools::copyWithModesAndTimes(at("f"), at("g"));
    EXPECT_EQ(modeOf(file("g")), 0755U);
}

TEST_F(OsFileToolsLinkTest, RemovalTakesLinksAndNeverWhatTheyLeadTo)
{
    makeTree("kept");
    makeFile("f");
    const Tree expected = treeAt(path());
    makeDirectory("d/sub");
    makeLink("toTree", "kept");
    makeLink("toFile", "f");
    makeLink("dangling", "nowhere");
    makeLink("loop", "loop");
    makeLink("d/toTree", "../kept");
    makeLink("d/sub/toFile", "../../f");
    makeLink("d/sub/up", "..");
    makeLink("d/sub/dangling", "nowhere");
    makeLink("d/all", "..");
    for (const char* const name : {"toTree", "toFile", "dangling", "loop", "d"})
        OsFileTools::removeWithAllContents(at(name));
    EXPECT_TRUE(treeAt(path()) == expected);
}

TEST_F(OsFileToolsLinkTest, ASeparatorBehindALinkDoesNotExposeItsTree)
{
    makeTree("kept");
    const Tree expected = treeAt(file("kept"));
    makeLink("toTree", "kept");
    // Whether the link is removed or the removal fails: its target is not its content.
    reasonOf<Zu::ExBase>([&] { OsFileTools::removeWithAllContents(at("toTree/")); });
    EXPECT_TRUE(treeAt(file("kept")) == expected);
}

TEST_F(OsFileToolsTest, EqualFilesHaveTheSameContent)
{
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 131072U, 131073U})
    {
        const std::string content = bytes(size);
        makeFile("a", content);
        makeFile("b", content);
        EXPECT_TRUE(OsFileTools::haveSameContent(at("a"), at("b"))) << size;
        EXPECT_TRUE(OsFileTools::haveSameContent(at("a"), at("a"))) << size;
        makeFile("b", content + '\0');
        EXPECT_FALSE(OsFileTools::haveSameContent(at("a"), at("b"))) << size;
        EXPECT_FALSE(OsFileTools::haveSameContent(at("b"), at("a"))) << size;
    }
}

TEST_F(OsFileToolsTest, OneByteMakesADifference)
{
    for (const std::size_t size : {1U, 65535U, 65536U, 65537U, 131072U, 131073U})
        for (const std::size_t place :
             {std::size_t(0), std::size_t(65534), std::size_t(65535), std::size_t(65536), size - 1})
        {
            if (place >= size) continue;
            std::string content = bytes(size);
            makeFile("a", content);
            content[place] = static_cast<char>(content[place] ^ 0x80);
            makeFile("b", content);
            EXPECT_FALSE(OsFileTools::haveSameContent(at("a"), at("b"))) << size << ' ' << place;
            EXPECT_FALSE(OsFileTools::haveSameContent(at("b"), at("a"))) << size << ' ' << place;
        }
}

TEST_F(OsFileToolsTest, AMissingFileCanNotBeCompared)
{
    makeFile("f");
    EXPECT_THROW((void)OsFileTools::haveSameContent(at("f"), at("no")), ExSysErrorWindows);
    EXPECT_THROW((void)OsFileTools::haveSameContent(at("no"), at("f")), ExSysErrorWindows);
    EXPECT_THROW((void)OsFileTools::haveSameContent(at("no"), at("no")), ExSysErrorWindows);
}

TEST_F(OsFileToolsTest, NothingStaysOpenBehindAnyTool)
{
    makeFile("f");
    makeFile("g", "other");
    makeDirectory("d");
    const auto before = support::openHandles();
    for (int round = 0; round < 500; ++round)
    {
        EXPECT_EQ(OsFileTools::getSize64(at("f")), 4U);
        EXPECT_EQ(OsFileTools::readAll(at("f")), "text");
        EXPECT_FALSE(OsFileTools::haveSameContent(at("f"), at("g")));
        EXPECT_THROW((void)OsFileTools::haveSameContent(at("f"), at("no")), ExSysErrorWindows);
        EXPECT_THROW((void)OsFileTools::readAll(at("d")), ExSysErrorWindows);
        EXPECT_THROW(OsFileTools::replaceAll(at("d"), "x"), ExSysErrorWindows);
        EXPECT_THROW(OsFileTools::replaceAll(at("no/x"), "x"), ExSysErrorWindows);
        makeDirectory("tree/sub");
        EXPECT_THROW(OsFileTools::copyWithModesAndTimes(at("no"), at("x")), ExSysErrorWindows);
        OsFileTools::copyWithModesAndTimes(at("tree"), at("copy"));
        OsFileTools::copyWithModesAndTimes(at("f"), at("copy"));
        OsFileTools::removeWithAllContents(at("tree"));
        OsFileTools::removeWithAllContents(at("copy"));
    }
    OsFileTools::replaceAll(at("g"), "x");
    EXPECT_EQ(support::openHandles(), before);
}

} // namespace

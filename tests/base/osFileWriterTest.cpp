#include "base/osFileWriter.h"

#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "base/osFileReader.h"
#include "base/osFileTools.h"
#include "support/errorCode.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace
{

using support::codeOf;
using support::ModeMaskGuard;
using support::modeOf;
using support::noise;
using support::onWindows;
using support::readFile;
using support::writeFile;
using Zu::ExSysErrorANSI;
using Zu::ExSysErrorWindows;
using Zu::OsFile;
using Zu::OsFileEx;
using Zu::OsFilePath;
using Zu::OsFileReader;
using Zu::OsFileTools;
using Zu::OsFileTypes;
using Zu::OsFileWriter;

static_assert(!std::is_polymorphic_v<OsFileWriter>);
static_assert(!std::is_copy_constructible_v<OsFileWriter>);
static_assert(!std::is_copy_assignable_v<OsFileWriter>);
static_assert(sizeof(OsFileWriter) == sizeof(OsFilePath) + sizeof(std::int64_t));

constexpr std::uint32_t CHUNK = 65536;
const OsFileTypes::Permissions usual;

OsFilePath pathOf(const std::string& text)
{
    return OsFilePath(text.c_str());
}

std::uint32_t writeTo(OsFileWriter& writer, const std::string& content)
{
    return writer.write(content.data(), static_cast<std::uint32_t>(content.size()));
}

// The code of the C runtime that an act raises; nothing if it raises none.
template <class Act> std::optional<int> codeOfClosed(Act act)
{
    errno = 0;
    try
    {
        act();
    }
    catch (const ExSysErrorANSI& ex)
    {
        return ex.getError();
    }
    return std::nullopt;
}

class OsFileWriterTest : public testing::Test
{
protected:
    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    OsFilePath path(const std::string& name = "f") const
    {
        return pathOf(file(name));
    }

    std::uintmax_t size() const
    {
        return std::filesystem::file_size(file("f"));
    }

private:
    support::TempDir _dir;
};

class OsFileWriterModeTest : public OsFileWriterTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Windows has no modes and ignores permissions.";
    }
};

class OsFileWriterFullTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Linux alone has a device that is always full.";
    }
};

TEST(OsFileWriter, TheEmptyPathRaises)
{
    const OsFilePath empty;
    for (const bool exclusive : {false, true})
    {
        EXPECT_THROW(OsFileWriter(empty, usual, exclusive), OsFileEx::ExNullFilePath);
        EXPECT_THROW(OsFileWriter(OsFile(empty), usual, exclusive), OsFileEx::ExNullFilePath);
    }
    try
    {
        const OsFileWriter writer(empty, usual, false);
        FAIL() << "nothing raised";
    }
    catch (const OsFileEx::ExNullFilePath& ex)
    {
        EXPECT_STREQ(ex.getReason(), "File has null file path.");
    }
}

TEST_F(OsFileWriterTest, ANewFileIsMadeByPathAndByFileExclusiveOrNot)
{
    for (const bool exclusive : {false, true})
    {
        {
            OsFileWriter writer(path(), usual, exclusive);
            EXPECT_EQ(size(), 0U);
            EXPECT_EQ(writeTo(writer, "by path"), 7U);
        }
        EXPECT_EQ(readFile(file("f")), "by path");
        std::filesystem::remove(file("f"));
        {
            OsFileWriter writer(OsFile(path()), usual, exclusive);
            EXPECT_EQ(writeTo(writer, "by file"), 7U);
        }
        EXPECT_EQ(readFile(file("f")), "by file");
        std::filesystem::remove(file("f"));
    }
}

TEST_F(OsFileWriterTest, AnExistingFileIsEmptiedAtOnce)
{
    writeFile(file("f"), "old content");
    const OsFileWriter writer(path(), usual, false);
    EXPECT_EQ(size(), 0U);
}

TEST_F(OsFileWriterTest, ExclusiveRefusesAnExistingFileAndLeavesIt)
{
    writeFile(file("f"), "old content");
    const int there = onWindows ? 80 : 17;
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(path(), usual, true); }), there);
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(OsFile(path()), usual, true); }), there);
    EXPECT_EQ(readFile(file("f")), "old content");
}

TEST_F(OsFileWriterTest, ExclusiveDoesNotFollowALinkThatLeadsNowhere)
{
    if (onWindows) GTEST_SKIP() << "Links are recognised on Linux only.";
    std::filesystem::create_symlink(file("missing"), file("f"));
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(path(), usual, true); }), 17);
    EXPECT_FALSE(std::filesystem::exists(file("missing")));
    const OsFileWriter writer(path(), usual, false);
    EXPECT_TRUE(std::filesystem::exists(file("missing")));
}

TEST_F(OsFileWriterTest, WhatCanNotBeOpenedRaisesTheCodeOfTheSystem)
{
    std::filesystem::create_directory(file("d"));
    const int onTheWay = onWindows ? 3 : 2;
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(path("no/f"), usual, false); }), onTheWay);
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(path("no/f"), usual, true); }), onTheWay);
    // Is a directory; on Windows access is denied.
    EXPECT_EQ(codeOf([&] { const OsFileWriter writer(path("d"), usual, false); }),
              onWindows ? 5 : 21);
    EXPECT_TRUE(std::filesystem::is_directory(file("d")));
}

TEST_F(OsFileWriterTest, TheWriterKeepsNoReferenceToThePathItWasGiven)
{
    auto given = std::make_unique<OsFilePath>(path());
    OsFileWriter writer(*given, usual, true);
    given.reset();
    writeTo(writer, "content");
    writer.close();
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileWriterTest, ContentOfEverySizeIsWrittenInPiecesOfEverySize)
{
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{CHUNK - 1}, std::size_t{CHUNK},
          std::size_t{CHUNK + 1}, std::size_t{1} << 20})
    {
        const std::string content = noise(size);
        for (const std::size_t piece : {CHUNK - 1, CHUNK, CHUNK + 1, 1U << 20})
        {
            {
                OsFileWriter writer(path(), usual, false);
                for (std::size_t at = 0; at < size; at += piece)
                {
                    const std::string part = content.substr(at, piece);
                    EXPECT_EQ(writeTo(writer, part), part.size());
                }
            }
            // Not compared by the framework, which would print megabytes.
            EXPECT_TRUE(readFile(file("f")) == content) << size << " by " << piece;
        }
    }
}

TEST_F(OsFileWriterTest, BytesAreNotTranslated)
{
    std::string content;
    for (int byte = 0; byte < 256; ++byte) content += static_cast<char>(byte);
    content += "\r\n\n\r\x1a after";
    OsFileWriter writer(path(), usual, false);
    EXPECT_EQ(writeTo(writer, content), content.size());
    writer.close();
    EXPECT_EQ(readFile(file("f")), content);
}

TEST_F(OsFileWriterTest, WritingNothingChangesNothing)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "abc");
    writer.seek(1, OsFileTypes::SeekBegin);
    EXPECT_EQ(writer.write("#", 0), 0U);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), 1);
    EXPECT_EQ(size(), 3U);
    // Not even beyond the end.
    writer.seek(100, OsFileTypes::SeekBegin);
    EXPECT_EQ(writer.write("#", 0), 0U);
    EXPECT_EQ(size(), 3U);
}

TEST_F(OsFileWriterTest, WhatIsWrittenIsInTheFileBeforeItIsClosed)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "x");
    OsFileReader reader(path());
    char byte = '#';
    EXPECT_EQ(reader.read(&byte, 1), 1U);
    EXPECT_EQ(byte, 'x');
}

TEST_F(OsFileWriterTest, WritingReplacesBytesAndGoesOnBehindTheEnd)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "0123456789");
    EXPECT_EQ(writer.seek(-2, OsFileTypes::SeekEnd), 8);
    EXPECT_EQ(writeTo(writer, "abcd"), 4U);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), 12);
    EXPECT_EQ(writer.seek(1, OsFileTypes::SeekBegin), 1);
    EXPECT_EQ(writeTo(writer, "#"), 1U);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekEnd), 12);
    writer.close();
    EXPECT_EQ(readFile(file("f")), "0#234567abcd");
}

TEST_F(OsFileWriterTest, AGapBehindTheEndIsReadAsZeros)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "ab");
    EXPECT_EQ(writer.seek(3, OsFileTypes::SeekEnd), 5);
    EXPECT_EQ(size(), 2U);
    writeTo(writer, "z");
    writer.close();
    EXPECT_EQ(readFile(file("f")), std::string("ab\0\0\0z", 6));
}

TEST_F(OsFileWriterTest, APlaceBeforeTheBeginningRaisesAndThePositionStays)
{
    const int before = onWindows ? 131 : 22;
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "0123456789");
    writer.seek(4, OsFileTypes::SeekBegin);
    EXPECT_EQ(codeOf([&] { writer.seek(-1, OsFileTypes::SeekBegin); }), before);
    EXPECT_EQ(codeOf([&] { writer.seek(-5, OsFileTypes::SeekCurrent); }), before);
    EXPECT_EQ(codeOf([&] { writer.seek(-11, OsFileTypes::SeekEnd); }), before);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), 4);
}

TEST_F(OsFileWriterTest, ThePositionGoesToTheLargestOf32BitsAndNoFurther)
{
    constexpr std::int32_t LARGEST = std::numeric_limits<std::int32_t>::max();
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "0123456789");
    EXPECT_EQ(writer.seek(LARGEST, OsFileTypes::SeekBegin), LARGEST);
    EXPECT_THROW(writer.seek(1, OsFileTypes::SeekCurrent), ExSysErrorWindows);
    EXPECT_THROW(writer.seek(LARGEST - 9, OsFileTypes::SeekEnd), ExSysErrorWindows);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), LARGEST);
    EXPECT_EQ(size(), 10U);
}

TEST_F(OsFileWriterTest, ReservingGrowsTheFileWithZerosAndMovesToItsEnd)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "0123456789");
    writer.reserve(100);
    EXPECT_EQ(size(), 100U);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), 100);
    writeTo(writer, "x");
    writer.close();
    EXPECT_EQ(readFile(file("f")), "0123456789" + std::string(90, '\0') + "x");
}

TEST_F(OsFileWriterTest, ReservingShrinksTheFileAndMovesToItsEnd)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "0123456789");
    writer.reserve(5);
    EXPECT_EQ(size(), 5U);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), 5);
    writeTo(writer, "x");
    writer.close();
    EXPECT_EQ(readFile(file("f")), "01234x");
}

TEST_F(OsFileWriterTest, ReservingGivesExactlyTheSizeWhereverThePositionIs)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "0123456789");
    for (const std::uint32_t wanted : {10U, 11U, 9U, 0U, 1U, CHUNK - 1, CHUNK, CHUNK + 1, 0U, 10U})
    {
        writer.seek(7, OsFileTypes::SeekBegin);
        writer.reserve(wanted);
        EXPECT_EQ(size(), wanted);
        EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), static_cast<std::int32_t>(wanted));
    }
    writer.close();
    EXPECT_EQ(readFile(file("f")), std::string(10, '\0'));
}

TEST_F(OsFileWriterTest, ReservingTakesAllOf32Bits)
{
    OsFileWriter writer(path(), usual, false);
    writer.reserve(0xffffffff);
    EXPECT_EQ(size(), 0xffffffffU);
    EXPECT_EQ(OsFileTools::seek64(writer, 0, OsFileTypes::SeekCurrent), 0xffffffff);
    // This is more than a 32-bit position.
    EXPECT_THROW(writer.seek(0, OsFileTypes::SeekCurrent), ExSysErrorWindows);
    EXPECT_EQ(OsFileTools::seek64(writer, 0, OsFileTypes::SeekCurrent), 0xffffffff);
    writer.reserve(3);
    EXPECT_EQ(size(), 3U);
}

TEST_F(OsFileWriterTest, EveryOperationOnAClosedWriterRaisesThatTheHandleIsBad)
{
    OsFileWriter writer(path(), usual, false);
    writeTo(writer, "content");
    writer.close();
    EXPECT_EQ(codeOfClosed([&] { writer.write("x", 1); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { writer.write("x", 0); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { writer.seek(0, OsFileTypes::SeekBegin); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { writer.seek(0, OsFileTypes::SeekCurrent); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { writer.seek(0, OsFileTypes::SeekEnd); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { writer.reserve(0); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { writer.close(); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { writer.close(); }), EBADF);
    EXPECT_EQ(readFile(file("f")), "content");
}

TEST_F(OsFileWriterTest, TheDestructorClosesTheFile)
{
    const std::size_t before = support::openHandles();
    {
        OsFileWriter writer(path(), usual, false);
        writeTo(writer, "content");
        EXPECT_EQ(support::openHandles(), before + 1);
    }
    EXPECT_EQ(support::openHandles(), before);
    EXPECT_EQ(readFile(file("f")), "content");
    // An open file is not renamed on Windows.
    std::filesystem::rename(file("f"), file("g"));
    EXPECT_TRUE(std::filesystem::exists(file("g")));
}

TEST_F(OsFileWriterTest, TheDestructorClosesTheFileWhileAnExceptionPasses)
{
    std::size_t before = 0;
    // The system keeps open what the first exception opens.
    for (int round = 0; round < 2; ++round)
    {
        before = support::openHandles();
        try
        {
            OsFileWriter writer(path(), usual, false);
            writeTo(writer, "content");
            throw std::runtime_error("passing");
        }
        catch (const std::runtime_error& ex)
        {
            EXPECT_STREQ(ex.what(), "passing");
        }
    }
    EXPECT_EQ(support::openHandles(), before);
    std::filesystem::rename(file("f"), file("g"));
    EXPECT_EQ(readFile(file("g")), "content");
}

TEST_F(OsFileWriterTest, TwoWritersOnOneFileHaveTheirOwnPositions)
{
    OsFileWriter first(path(), usual, false);
    OsFileWriter second(path(), usual, false);
    writeTo(first, "aaaa");
    EXPECT_EQ(second.seek(0, OsFileTypes::SeekCurrent), 0);
    writeTo(second, "bb");
    EXPECT_EQ(first.seek(0, OsFileTypes::SeekCurrent), 4);
    writeTo(first, "cc");
    EXPECT_EQ(readFile(file("f")), "bbaacc");
    // The third empties the file under the others.
    const OsFileWriter third(path(), usual, false);
    EXPECT_EQ(size(), 0U);
    writeTo(second, "d");
    EXPECT_EQ(readFile(file("f")), std::string("\0\0d", 3));
}

TEST_F(OsFileWriterModeTest, ANewFileGetsThePermissionsLessTheMask)
{
    const ModeMaskGuard mask(0027);
    const OsFileWriter all(path("all"), OsFileTypes::Permissions(7, 7, 7), false);
    EXPECT_EQ(modeOf(file("all")), 0750U);
    const OsFileWriter plain(path("plain"), usual, true);
    EXPECT_EQ(modeOf(file("plain")), 0640U);
    const OsFileWriter mixed(path("mixed"), OsFileTypes::Permissions(3, 3, 0), true);
    EXPECT_EQ(modeOf(file("mixed")), 0640U);
}

TEST_F(OsFileWriterModeTest, PermissionsAreAppliedWhole)
{
    const ModeMaskGuard mask(0);
    const OsFileWriter mixed(path("mixed"), OsFileTypes::Permissions(7, 5, 4), true);
    EXPECT_EQ(modeOf(file("mixed")), 0751U);
    // Also where the writer could not open its own file again.
    OsFileWriter none(path("none"), OsFileTypes::Permissions(0, 0, 0), false);
    EXPECT_EQ(modeOf(file("none")), 0U);
    EXPECT_EQ(writeTo(none, "x"), 1U);
}

TEST_F(OsFileWriterModeTest, AnExistingFileKeepsItsMode)
{
    const ModeMaskGuard mask(0);
    writeFile(file("f"), "old");
    std::filesystem::permissions(file("f"), std::filesystem::perms{0604});
    const OsFileWriter writer(path(), OsFileTypes::Permissions(7, 7, 7), false);
    EXPECT_EQ(modeOf(file("f")), 0604U);
}

TEST_F(OsFileWriterFullTest, AFullDiskGivesAShortCountAndNoException)
{
    OsFileWriter writer(pathOf("/dev/full"), usual, false);
    EXPECT_EQ(writeTo(writer, "content"), 0U);
    EXPECT_EQ(writeTo(writer, noise(CHUNK)), 0U);
    EXPECT_EQ(writeTo(writer, "content"), 0U);
    EXPECT_NO_THROW(writer.close());
}

TEST_F(OsFileWriterFullTest, WhatIsNoFileHasNoSizeToReserve)
{
    OsFileWriter writer(pathOf("/dev/full"), usual, false);
    EXPECT_EQ(codeOf([&] { writer.reserve(100); }), 22);
}

TEST_F(OsFileWriterFullTest, AWriteThatTheSystemRefusesRaisesItsCode)
{
    // There is no memory at the address 0.
    OsFileWriter writer(pathOf("/proc/self/mem"), usual, false);
    EXPECT_EQ(codeOf([&] { writer.write("x", 1); }), 5);
}

TEST_F(OsFileWriterTest, DescriptorsAreGivenBackHoweverItEnds)
{
    writeFile(file("f"), "content");
    const std::size_t before = support::openHandles();
    for (int i = 0; i < 1000; ++i)
    {
        EXPECT_THROW(OsFileWriter(path(), usual, true), ExSysErrorWindows);
        EXPECT_THROW(OsFileWriter(path("no/f"), usual, false), ExSysErrorWindows);
        EXPECT_THROW(OsFileWriter(OsFilePath(), usual, false), OsFileEx::ExNullFilePath);
        if (!onWindows)
        {
            OsFileWriter full(pathOf("/dev/full"), usual, false);
            EXPECT_EQ(full.write("x", 1), 0U);
            EXPECT_THROW(full.reserve(1), ExSysErrorWindows);
        }
        OsFileWriter closed(path(), usual, false);
        closed.close();
        EXPECT_THROW(closed.close(), ExSysErrorANSI);
        OsFileWriter open(path(), usual, false);
        EXPECT_THROW(open.seek(-1, OsFileTypes::SeekBegin), ExSysErrorWindows);
    }
    EXPECT_EQ(support::openHandles(), before);
}

TEST_F(OsFileWriterTest, ClosingTakesOneDescriptorAwayOnce)
{
    const std::size_t before = support::openHandles();
    OsFileWriter first(path(), usual, false);
    EXPECT_EQ(support::openHandles(), before + 1);
    first.close();
    EXPECT_EQ(support::openHandles(), before);
    {
        // It likely has the number that the first one had.
        const OsFileWriter second(path(), usual, false);
        EXPECT_THROW(first.close(), ExSysErrorANSI);
        EXPECT_EQ(support::openHandles(), before + 1);
    }
    EXPECT_EQ(support::openHandles(), before);
}

} // namespace

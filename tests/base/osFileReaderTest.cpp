#include "base/osFileReader.h"

#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "base/osFileTools.h"
#include "base/osFileWriter.h"
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
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::codeOf;
using support::noise;
using support::onWindows;
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

static_assert(!std::is_polymorphic_v<OsFileReader>);
static_assert(!std::is_copy_constructible_v<OsFileReader>);
static_assert(!std::is_copy_assignable_v<OsFileReader>);
static_assert(sizeof(OsFileReader) == sizeof(OsFilePath) + sizeof(std::int64_t));

constexpr std::uint32_t CHUNK = 65536;

OsFilePath pathOf(const std::string& text)
{
    return OsFilePath(text.c_str());
}

// The content up to the end, read in pieces of this size.
std::string readOn(OsFileReader& reader, std::uint32_t size)
{
    std::string content;
    std::vector<char> piece(size);
    while (const std::uint32_t count = reader.read(piece.data(), size))
        content.append(piece.data(), count);
    return content;
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

class OsFileReaderTest : public testing::Test
{
protected:
    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    // The path of a new file with this content.
    OsFilePath made(const std::string& content, const std::string& name = "f") const
    {
        writeFile(file(name), content);
        return pathOf(file(name));
    }

private:
    support::TempDir _dir;
};

TEST(OsFileTypes, SeekModesHaveFixedValues)
{
    EXPECT_EQ(OsFileTypes::SeekCurrent, 0);
    EXPECT_EQ(OsFileTypes::SeekBegin, 1);
    EXPECT_EQ(OsFileTypes::SeekEnd, 2);
}

TEST(OsFileReader, TheEmptyPathRaises)
{
    const OsFilePath empty;
    EXPECT_THROW(OsFileReader{empty}, OsFileEx::ExNullFilePath);
    EXPECT_THROW(OsFileReader{OsFile(empty)}, OsFileEx::ExNullFilePath);
    try
    {
        const OsFileReader reader(empty);
        FAIL() << "nothing raised";
    }
    catch (const OsFileEx::ExNullFilePath& ex)
    {
        EXPECT_STREQ(ex.getReason(), "File has null file path.");
    }
}

TEST_F(OsFileReaderTest, AMissingFileRaisesTheCodeOfTheSystemAndIsNotMade)
{
    EXPECT_EQ(codeOf([&] { const OsFileReader reader(pathOf(file("missing"))); }), 2);
    EXPECT_EQ(codeOf([&] { const OsFileReader reader{OsFile(pathOf(file("missing")))}; }), 2);
    // Windows distinguishes a missing directory on the way from a missing file.
    EXPECT_EQ(codeOf([&] { const OsFileReader reader(pathOf(file("no/f"))); }), onWindows ? 3 : 2);
    EXPECT_FALSE(std::filesystem::exists(file("missing")));
}

TEST_F(OsFileReaderTest, APathAndAFileOpenTheSame)
{
    const OsFilePath path = made("content");
    OsFileReader byPath(path);
    EXPECT_EQ(readOn(byPath, 100), "content");
    OsFileReader byFile{OsFile(path)};
    EXPECT_EQ(readOn(byFile, 100), "content");
}

TEST_F(OsFileReaderTest, TheReaderKeepsNoReferenceToThePathItWasGiven)
{
    auto path = std::make_unique<OsFilePath>(made("content"));
    OsFileReader reader(*path);
    path.reset();
    EXPECT_EQ(readOn(reader, 100), "content");
}

TEST_F(OsFileReaderTest, ContentOfEverySizeIsReadInPiecesOfEverySize)
{
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{CHUNK - 1}, std::size_t{CHUNK},
          std::size_t{CHUNK + 1}, std::size_t{1} << 20})
    {
        const std::string content = noise(size);
        const OsFilePath path = made(content);
        for (const std::uint32_t piece : {CHUNK - 1, CHUNK, CHUNK + 1, 1U << 20, 3U << 20})
        {
            OsFileReader reader(path);
            // Not compared by the framework, which would print megabytes.
            EXPECT_TRUE(readOn(reader, piece) == content) << size << " by " << piece;
        }
    }
}

TEST_F(OsFileReaderTest, ReadingReturnsWhatIsLeftAndThenNothing)
{
    OsFileReader reader(made("0123456789"));
    char buffer[8] = {};
    EXPECT_EQ(reader.read(buffer, 7), 7U);
    EXPECT_EQ(std::string(buffer, 7), "0123456");
    EXPECT_EQ(reader.read(buffer, 7), 3U);
    EXPECT_EQ(std::string(buffer, 7), "7893456");
    EXPECT_EQ(reader.read(buffer, 7), 0U);
    EXPECT_EQ(reader.read(buffer, 7), 0U);
    EXPECT_EQ(std::string(buffer, 7), "7893456");
}

TEST_F(OsFileReaderTest, NoMoreThanAskedForIsWritten)
{
    OsFileReader reader(made("0123456789"));
    std::string buffer(6, '#');
    EXPECT_EQ(reader.read(buffer.data() + 1, 4), 4U);
    EXPECT_EQ(buffer, "#0123#");
}

TEST_F(OsFileReaderTest, ReadingNothingMovesNothing)
{
    OsFileReader reader(made("ab"));
    char byte = '#';
    EXPECT_EQ(reader.read(&byte, 0), 0U);
    EXPECT_EQ(byte, '#');
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), 0);
    EXPECT_EQ(reader.read(&byte, 1), 1U);
    EXPECT_EQ(byte, 'a');
}

TEST_F(OsFileReaderTest, BytesAreNotTranslated)
{
    std::string content;
    for (int byte = 0; byte < 256; ++byte) content += static_cast<char>(byte);
    content += "\r\n\n\r\x1a after";
    OsFileReader reader(made(content));
    EXPECT_EQ(readOn(reader, 1000), content);
}

TEST_F(OsFileReaderTest, SeekingMovesFromThePositionTheBeginningAndTheEnd)
{
    struct Row
    {
        std::int32_t _offset;
        OsFileTypes::SeekMode _mode;
        std::int32_t _position;
    };
    // One after the other, in a file of 10 bytes; each position is where the next row starts.
    const Row rows[] = {
        {0, OsFileTypes::SeekCurrent, 0},  {4, OsFileTypes::SeekCurrent, 4},
        {-1, OsFileTypes::SeekCurrent, 3}, {-3, OsFileTypes::SeekCurrent, 0},
        {7, OsFileTypes::SeekBegin, 7},    {0, OsFileTypes::SeekBegin, 0},
        {0, OsFileTypes::SeekEnd, 10},     {-10, OsFileTypes::SeekEnd, 0},
        {-1, OsFileTypes::SeekEnd, 9},     {5, OsFileTypes::SeekEnd, 15},
        {10, OsFileTypes::SeekBegin, 10},  {-2, OsFileTypes::SeekCurrent, 8},
    };
    const std::string content = "0123456789";
    OsFileReader reader(made(content));
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row._offset << " mode " << row._mode);
        EXPECT_EQ(reader.seek(row._offset, row._mode), row._position);
        EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), row._position);
        char byte = '#';
        const bool isInside = row._position < 10;
        EXPECT_EQ(reader.read(&byte, 1), isInside ? 1U : 0U);
        EXPECT_EQ(byte, isInside ? content[static_cast<std::size_t>(row._position)] : '#');
        reader.seek(row._position, OsFileTypes::SeekBegin);
    }
}

TEST_F(OsFileReaderTest, ReadingMovesThePosition)
{
    OsFileReader reader(made("0123456789"));
    char buffer[6];
    reader.read(buffer, 6);
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), 6);
    reader.read(buffer, 6);
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), 10);
}

TEST_F(OsFileReaderTest, APlaceBeforeTheBeginningRaisesAndThePositionStays)
{
    // Invalid argument, and the code of Windows for a negative position.
    const int before = onWindows ? 131 : 22;
    OsFileReader reader(made("0123456789"));
    reader.seek(4, OsFileTypes::SeekBegin);
    EXPECT_EQ(codeOf([&] { reader.seek(-1, OsFileTypes::SeekBegin); }), before);
    EXPECT_EQ(codeOf([&] { reader.seek(-5, OsFileTypes::SeekCurrent); }), before);
    EXPECT_EQ(codeOf([&] { reader.seek(-11, OsFileTypes::SeekEnd); }), before);
    EXPECT_EQ(
        codeOf([&]
               { reader.seek(std::numeric_limits<std::int32_t>::min(), OsFileTypes::SeekEnd); }),
        before);
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), 4);
    EXPECT_EQ(readOn(reader, 100), "456789");
}

TEST_F(OsFileReaderTest, ThePositionGoesToTheLargestOf32BitsAndNoFurther)
{
    constexpr std::int32_t LARGEST = std::numeric_limits<std::int32_t>::max();
    OsFileReader reader(made("0123456789"));
    EXPECT_EQ(reader.seek(LARGEST, OsFileTypes::SeekBegin), LARGEST);
    EXPECT_EQ(reader.seek(-1, OsFileTypes::SeekCurrent), LARGEST - 1);
    EXPECT_EQ(reader.seek(1, OsFileTypes::SeekCurrent), LARGEST);
    EXPECT_THROW(reader.seek(1, OsFileTypes::SeekCurrent), ExSysErrorWindows);
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), LARGEST);
    EXPECT_THROW(reader.seek(LARGEST, OsFileTypes::SeekCurrent), ExSysErrorWindows);
    EXPECT_THROW(reader.seek(LARGEST - 9, OsFileTypes::SeekEnd), ExSysErrorWindows);
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), LARGEST);
    EXPECT_EQ(reader.seek(LARGEST - 10, OsFileTypes::SeekEnd), LARGEST);
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekBegin), 0);
}

TEST_F(OsFileReaderTest, ALargeFileIsReadOnWhereItsPositionIsNoLongerTold)
{
    const std::int64_t start = (std::int64_t{1} << 32) + 5;
    const OsFilePath path = made("begin");
    {
        OsFileWriter writer(path, {}, false);
        writer.write("begin", 5);
        OsFileTools::seek64(writer, start, OsFileTypes::SeekBegin);
        writer.write("beyond", 6);
    }
    OsFileReader reader(path);
    EXPECT_THROW(reader.seek(0, OsFileTypes::SeekEnd), ExSysErrorWindows);
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekCurrent), 0);
    EXPECT_EQ(OsFileTools::seek64(reader, start, OsFileTypes::SeekBegin), start);
    EXPECT_THROW(reader.seek(0, OsFileTypes::SeekCurrent), ExSysErrorWindows);
    EXPECT_THROW(reader.seek(-1, OsFileTypes::SeekCurrent), ExSysErrorWindows);
    EXPECT_EQ(readOn(reader, 100), "beyond");
    EXPECT_EQ(reader.seek(1, OsFileTypes::SeekBegin), 1);
    char buffer[4];
    EXPECT_EQ(reader.read(buffer, 4), 4U);
    EXPECT_EQ(std::string(buffer, 4), "egin");
}

TEST_F(OsFileReaderTest, EveryOperationOnAClosedReaderRaisesThatTheHandleIsBad)
{
    OsFileReader reader(made("content"));
    reader.close();
    char byte = '#';
    EXPECT_EQ(codeOfClosed([&] { reader.read(&byte, 1); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { reader.read(&byte, 0); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { reader.seek(0, OsFileTypes::SeekBegin); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { reader.seek(0, OsFileTypes::SeekCurrent); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { reader.seek(0, OsFileTypes::SeekEnd); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { reader.close(); }), EBADF);
    EXPECT_EQ(codeOfClosed([&] { reader.close(); }), EBADF);
    EXPECT_EQ(byte, '#');
}

TEST_F(OsFileReaderTest, OthersMayReadAndWriteTheFileMeanwhile)
{
    const OsFilePath path = made("0123456789");
    OsFileReader first(path);
    OsFileReader second(path);
    char buffer[4];
    EXPECT_EQ(first.read(buffer, 4), 4U);
    EXPECT_EQ(second.seek(0, OsFileTypes::SeekCurrent), 0);
    EXPECT_EQ(readOn(second, 3), "0123456789");
    EXPECT_EQ(readOn(first, 100), "456789");

    OsFileWriter writer(path, {}, false);
    EXPECT_EQ(first.read(buffer, 4), 0U);
    writer.write("0123456789new", 13);
    EXPECT_EQ(readOn(first, 100), "new");
    EXPECT_EQ(readOn(second, 100), "new");
}

TEST_F(OsFileReaderTest, AReadOnlyFileIsRead)
{
    const OsFilePath path = made("content");
    std::filesystem::permissions(file("f"), std::filesystem::perms::owner_read);
    {
        OsFileReader reader(path);
        EXPECT_EQ(readOn(reader, 100), "content");
    }
    // Windows does not remove it otherwise.
    std::filesystem::permissions(file("f"), std::filesystem::perms::owner_all);
}

TEST_F(OsFileReaderTest, ADirectoryCanNotBeRead)
{
    std::filesystem::create_directory(file("d"));
    const auto act = [&]
    {
        OsFileReader reader(pathOf(file("d")));
        char byte;
        reader.read(&byte, 1);
    };
    // Is a directory; on Windows access is denied.
    EXPECT_EQ(codeOf(act), onWindows ? 5 : 21);
}

TEST_F(OsFileReaderTest, TheDestructorClosesTheFile)
{
    const OsFilePath path = made("content");
    const std::size_t before = support::openHandles();
    {
        const OsFileReader reader(path);
        EXPECT_EQ(support::openHandles(), before + 1);
    }
    EXPECT_EQ(support::openHandles(), before);
    // An open file is not removed on Windows.
    EXPECT_TRUE(std::filesystem::remove(file("f")));
}

TEST_F(OsFileReaderTest, DescriptorsAreGivenBackHoweverItEnds)
{
    const OsFilePath path = made("content");
    const OsFilePath missing = pathOf(file("missing"));
    std::filesystem::create_directory(file("d"));
    const OsFilePath directory = pathOf(file("d"));
    const std::size_t before = support::openHandles();
    for (int i = 0; i < 2000; ++i)
    {
        EXPECT_THROW(OsFileReader{missing}, ExSysErrorWindows);
        EXPECT_THROW(OsFileReader{OsFilePath()}, OsFileEx::ExNullFilePath);
        EXPECT_THROW(
            {
                // Windows can't open a directory, Linux can't read one.
                OsFileReader reader(directory);
                char byte;
                reader.read(&byte, 1);
            },
            ExSysErrorWindows);
        OsFileReader closed(path);
        closed.close();
        EXPECT_THROW(closed.close(), ExSysErrorANSI);
        OsFileReader open(path);
        EXPECT_THROW(open.seek(-1, OsFileTypes::SeekBegin), ExSysErrorWindows);
    }
    EXPECT_EQ(support::openHandles(), before);
}

TEST_F(OsFileReaderTest, ClosingTakesOneDescriptorAwayOnce)
{
    const OsFilePath path = made("content");
    const std::size_t before = support::openHandles();
    OsFileReader first(path);
    EXPECT_EQ(support::openHandles(), before + 1);
    first.close();
    EXPECT_EQ(support::openHandles(), before);
    {
        // It likely has the number that the first one had.
        const OsFileReader second(path);
        EXPECT_THROW(first.close(), ExSysErrorANSI);
        EXPECT_EQ(support::openHandles(), before + 1);
    }
    EXPECT_EQ(support::openHandles(), before);
}

TEST_F(OsFileReaderTest, ALinkIsFollowed)
{
    if (onWindows) GTEST_SKIP() << "Links are recognised on Linux only.";
    made("content");
    std::filesystem::create_symlink(file("f"), file("link"));
    OsFileReader reader(pathOf(file("link")));
    EXPECT_EQ(readOn(reader, 100), "content");
}

TEST_F(OsFileReaderTest, DevicesAreReadLikeFiles)
{
    if (onWindows) GTEST_SKIP() << "These devices are Linux's.";
    OsFileReader zeros(pathOf("/dev/zero"));
    std::string buffer(100, '#');
    EXPECT_EQ(zeros.read(buffer.data(), 100), 100U);
    EXPECT_EQ(buffer, std::string(100, '\0'));
    OsFileReader nothing(pathOf("/dev/null"));
    EXPECT_EQ(nothing.read(buffer.data(), 100), 0U);
}

TEST_F(OsFileReaderTest, AReadThatTheSystemRefusesRaisesItsCode)
{
    if (onWindows) GTEST_SKIP() << "Linux's own memory as a file is what refuses here.";
    // There is no memory at the address 0.
    OsFileReader reader(pathOf("/proc/self/mem"));
    char byte = '#';
    EXPECT_EQ(codeOf([&] { reader.read(&byte, 1); }), 5);
    EXPECT_EQ(byte, '#');
}

TEST_F(OsFileReaderTest, ExcessivePathsRaiseAndNothingIsOverrun)
{
    for (const std::size_t size : {1023U, 1024U, 1025U, 4096U, 100000U})
    {
        const OsFilePath path = pathOf(file(std::string(size, 'x')));
        EXPECT_NE(codeOf([&] { const OsFileReader reader(path); }), 0) << size;
    }
}

} // namespace

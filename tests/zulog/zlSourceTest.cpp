#include "zulog/zlSource.h"

#include "logTexts.h"
#include "support/tempDir.h"
#include "zulog/zlFile.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <zlib.h>

namespace
{

using Zu::ZlError;
using Zu::ZlFile;

std::string readAll(Zu::ZlSource& source, std::size_t piece)
{
    std::string text;
    std::string block(piece, '\0');
    while (const std::size_t count = source.read(block.data(), piece)) text.append(block, 0, count);
    return text;
}

// As zlib's own writer of such files makes it.
std::string compressed(const std::string& text, const std::string& path)
{
    const gzFile file = gzopen(path.c_str(), "wb");
    gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
    gzclose(file);
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string manyLines()
{
    std::string text;
    for (int i = 0; i < 20000; ++i) text += "line " + std::to_string(i * 7919) + "\n";
    return text;
}

class ZlSource : public ::testing::Test
{
protected:
    support::TempDir _directory;
    const std::string _path = _directory.file("a.log");
};

TEST_F(ZlSource, ReadsPlainFilesOfAnySize)
{
    for (const std::string& text : {std::string(), std::string("a"), std::string("\x1f"),
                                    std::string("\x1f\x8c"), std::string("ab\0c", 4), manyLines()})
        for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{65536}})
        {
            logTexts::writeFile(_path, text);
            EXPECT_EQ(readAll(*Zu::zlOpenSource(_path), piece), text);
        }
}

TEST_F(ZlSource, ReadsCompressedFilesWhateverTheirName)
{
    const std::string text = manyLines();
    const std::string bytes = compressed(text, _path);
    EXPECT_LT(bytes.size(), text.size() / 2);
    for (const std::size_t piece : {std::size_t{1}, std::size_t{1000}, std::size_t{1} << 20})
        EXPECT_EQ(readAll(*Zu::zlOpenSource(_path), piece), text);
    logTexts::writeFile(_path, bytes + bytes);
    EXPECT_EQ(readAll(*Zu::zlOpenSource(_path), 4096), text + text);
    EXPECT_EQ(compressed("", _path).empty(), false);
    EXPECT_EQ(readAll(*Zu::zlOpenSource(_path), 4096), "");
}

TEST_F(ZlSource, ReportsADamagedFileBehindWhatCouldBeRead)
{
    const std::string text = manyLines();
    const std::string bytes = compressed(text, _path);
    std::string damaged = bytes;
    damaged[bytes.size() - 6] ^= 1;
    const struct
    {
        std::string _bytes;
        const char* _reason;
        std::size_t _least;
    } rows[] = {{bytes.substr(0, bytes.size() / 2), "can't be uncompressed: the file ends early",
                 text.size() / 3},
                // Only the checksum is wrong.
                {damaged, "can't be uncompressed: incorrect data check", text.size()}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row._reason);
        logTexts::writeFile(_path, row._bytes);
        const auto source = Zu::zlOpenSource(_path);
        std::string read;
        char block[512];
        try
        {
            while (const std::size_t count = source->read(block, sizeof block))
                read.append(block, count);
            FAIL() << "nothing was raised";
        }
        catch (const ZlError& error)
        {
            EXPECT_NE(std::string(error.what()).find(row._reason), std::string::npos)
                << error.what();
        }
        EXPECT_GE(read.size(), row._least);
        EXPECT_EQ(read, text.substr(0, read.size()));
    }
}

TEST_F(ZlSource, ReportsWhatIsNoFile)
{
    EXPECT_THROW(ZlFile(_directory.file("missing")), ZlError);
    EXPECT_THROW(ZlFile(_directory.path()), ZlError);
    ZlFile::Identity identity;
    EXPECT_FALSE(ZlFile::find(_directory.file("missing"), identity));
}

TEST_F(ZlSource, KnowsAFileWhateverItsName)
{
    logTexts::writeFile(_path, "text");
    ZlFile file(_path);
    ZlFile::Identity identity;
    ASSERT_TRUE(ZlFile::find(_path, identity));
    EXPECT_EQ(file.getIdentity(), identity);
    const std::string other = _directory.file("b.log");
    // Others may rename it while it is open.
    std::filesystem::rename(_path, other);
    logTexts::writeFile(_path, "further");
    ASSERT_TRUE(ZlFile::find(other, identity));
    EXPECT_EQ(file.getIdentity(), identity);
    ASSERT_TRUE(ZlFile::find(_path, identity));
    EXPECT_FALSE(file.getIdentity() == identity);
    EXPECT_EQ(file.getSize(), 4U);
    char text[10];
    EXPECT_EQ(file.read(text, sizeof text), 4U);
    EXPECT_EQ(file.getOffset(), 4U);
    file.seek(1);
    EXPECT_EQ(file.read(text, sizeof text), 3U);
    EXPECT_EQ(std::string(text, 3), "ext");
    EXPECT_EQ(file.read(text, sizeof text), 0U);
}

TEST_F(ZlSource, TakesNamesInUtf8)
{
    const std::string name = _directory.file("gr\xc3\xb6\xc3\x9f"
                                             "e.log");
    const std::filesystem::path path(std::u8string(name.begin(), name.end()));
    std::ofstream(path, std::ios::binary) << "text";
    EXPECT_EQ(readAll(*Zu::zlOpenSource(name), 100), "text");
}

} // namespace

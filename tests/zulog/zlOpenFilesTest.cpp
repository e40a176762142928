#include "zulog/zlOpenFiles.h"

#include "logTexts.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace
{

using Zu::ZlPooledFile;

class ZlOpenFiles : public ::testing::Test
{
protected:
    std::unique_ptr<ZlPooledFile> open(const std::string& name)
    {
        return std::make_unique<ZlPooledFile>(_directory.file(name), _pool);
    }

    void write(const std::string& name, const std::string& text) const
    {
        logTexts::writeFile(_directory.file(name), text);
    }

    static std::string read(ZlPooledFile& file, std::size_t size)
    {
        std::string text(size, '\0');
        text.resize(file.read(text.data(), size));
        return text;
    }

    support::TempDir _directory;
    const std::shared_ptr<Zu::ZlOpenFiles> _pool = std::make_shared<Zu::ZlOpenFiles>(2);
};

TEST_F(ZlOpenFiles, ReadsManyFilesInTurns)
{
    std::vector<std::unique_ptr<ZlPooledFile>> files;
    for (int i = 0; i < 5; ++i)
    {
        const std::string name = "a" + std::to_string(i);
        write(name, name + " has this text");
        files.push_back(open(name));
        EXPECT_LE(_pool->getOpenCount(), 2U);
    }
    std::vector<std::string> texts(5);
    for (std::size_t piece = 0; piece < 8; ++piece)
        for (std::size_t i = 0; i < 5; ++i)
        {
            texts[i] += read(*files[i], 2);
            EXPECT_EQ(files[i]->getOffset(), 2 * piece + 2);
            EXPECT_EQ(_pool->getOpenCount(), 2U);
        }
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(texts[i], "a" + std::to_string(i) + " has this text");
    files.clear();
    EXPECT_EQ(_pool->getOpenCount(), 0U);
}

TEST_F(ZlOpenFiles, FindsAFileThatWasRotatedMeanwhile)
{
    write("a.log", "one two");
    write("b", "");
    write("c", "");
    const auto file = open("a.log");
    EXPECT_EQ(read(*file, 4), "one ");
    const auto second = open("b");
    const auto third = open("c");
    std::filesystem::rename(_directory.file("a.log"), _directory.file("a.log.1"));
    write("a.log", "three four");
    EXPECT_EQ(read(*file, 4), "two");
}

TEST_F(ZlOpenFiles, RefusesAFileThatWasReplacedMeanwhile)
{
    write("a.log", "one two");
    write("b", "");
    write("c", "");
    const auto file = open("a.log");
    EXPECT_EQ(read(*file, 4), "one ");
    const auto second = open("b");
    const auto third = open("c");
    // So that the new one does not have the place of the old one.
    std::filesystem::rename(_directory.file("a.log"), _directory.file("other"));
    write("a.log", "three four");
    EXPECT_THROW(read(*file, 4), Zu::ZlError);
    EXPECT_EQ(read(*second, 4), "");
}

TEST_F(ZlOpenFiles, WithoutAPoolAFileStaysOpen)
{
    write("a", "one two");
    ZlPooledFile file(_directory.file("a"), nullptr);
    file.seek(4);
    EXPECT_EQ(read(file, 9), "two");
    EXPECT_EQ(file.getFacts()._size, 7U);
}

} // namespace

#include "app/lgServiceCompression.h"

#include "app/brackets.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace
{

namespace fs = std::filesystem;
namespace Platform = Zu::LgServiceFilePlatform;
using support::Brackets;
using support::readFile;
using support::writeFile;
using Zu::LgServiceCompression;
using Zu::LgServiceCompressor;
using Zu::LgServiceFile;
using Tree = std::map<std::string, std::string>;

class LgServiceCompressionTest : public testing::Test
{
protected:
    ~LgServiceCompressionTest() override
    {
        Brackets::meanwhile = nullptr;
    }

    void put(const Tree& tree) const
    {
        for (const auto& [name, text] : tree) writeFile(_dir.file(name), text);
    }

    Tree found() const
    {
        return support::treeAt(_dir.path());
    }

    void clear() const
    {
        for (const auto& entry : fs::directory_iterator(_dir.path())) fs::remove_all(entry.path());
    }

    // Does this once, the first time that a file is compressed.
    static void once(std::function<void()> act)
    {
        Brackets::meanwhile = [act = std::move(act), isDone = false]() mutable
        {
            if (!isDone) act();
            isDone = true;
            return true;
        };
    }

    bool compressAll()
    {
        return _compression.compressAll(_path);
    }

    support::TempDir _dir;
    const std::string _path = _dir.file("log");
    const std::string _temporary = LgServiceCompression::temporaryOf(_path);
    std::mutex _reading;
    LgServiceCompression _compression{_reading, &Brackets::make,
                                      LgServiceCompression::WithoutThread()};
};

// What is there, and what is there afterwards.
struct Row
{
    const char* _name;
    Tree _before;
    Tree _after;
};

TEST_F(LgServiceCompressionTest, EachRotatedFileIsCompressedAndTheOthersAreNot)
{
    const std::string large = support::noise(200000);
    const Row rows[] = {
        {"nothing", {}, {}},
        {"the log alone", {{"log", "a"}}, {{"log", "a"}}},
        {"several",
         {{"log", "a"}, {"log.1", "b"}, {"log.2", "c"}, {"log.3.gz", "d"}, {"log.4", ""}},
         {{"log", "a"},
          {"log.1.gz", "[b]"},
          {"log.2.gz", "[c]"},
          {"log.3.gz", "d"},
          {"log.4.gz", "[]"}}},
        {"a rotation was interrupted",
         {{"log.1", "a"}, {"log.3", "b"}},
         {{"log.1.gz", "[a]"}, {"log.3.gz", "[b]"}}},
        {"of another log, and what looks alike",
         {{"other.1", "a"}, {"log.20261123", "b"}, {"log.1x", "c"}, {"log", ""}},
         {{"other.1", "a"}, {"log.20261123", "b"}, {"log.1x", "c"}, {"log", ""}}},
        {"large", {{"log.1", large}}, {{"log.1.gz", "[" + large + "]"}}},
        // The process was killed
        {"while it compressed",
         {{"log.1", "a"}, {"log.compressing", "[half"}},
         {{"log.1.gz", "[a]"}}},
        {"while it compressed a file that is gone",
         {{"log", "a"}, {"log.compressing", "[half"}},
         {{"log", "a"}}},
        {"before it removed the original",
         {{"log.1", "a"}, {"log.1.gz", "[a or half of it"}},
         {{"log.1.gz", "[a]"}}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row._name);
        put(row._before);
        EXPECT_TRUE(compressAll());
        EXPECT_EQ(found(), row._after);
        EXPECT_TRUE(compressAll());
        EXPECT_EQ(found(), row._after);
        clear();
    }
}

TEST_F(LgServiceCompressionTest, ADirectoryOfThatNameIsLeftAlone)
{
    fs::create_directory(_path + ".1");
    put({{"log.2", "a"}});
    EXPECT_TRUE(compressAll());
    EXPECT_EQ(found(), (Tree{{"log.1", support::DIRECTORY_MARK}, {"log.2.gz", "[a]"}}));
}

TEST_F(LgServiceCompressionTest, ALinkOfThatNameIsLeftAlone)
{
    if (support::onWindows) GTEST_SKIP() << "Links need a right there that users do not have";
    put({{"other", "a"}});
    fs::create_symlink("other", _path + ".1");
    EXPECT_TRUE(compressAll());
    EXPECT_EQ(readFile(_dir.file("other")), "a");
    EXPECT_TRUE(fs::is_symlink(_path + ".1"));
    EXPECT_FALSE(fs::exists(_path + ".1.gz"));
}

TEST_F(LgServiceCompressionTest, TheCompressedFileHasTheRightsOfTheOriginal)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no modes";
    for (const unsigned int mode : {0600U, 0640U, 0444U})
    {
        put({{"log.1", "a"}});
        fs::permissions(_path + ".1", static_cast<fs::perms>(mode));
        EXPECT_TRUE(compressAll());
        EXPECT_EQ(support::modeOf(_path + ".1.gz"), mode);
        clear();
    }
}

TEST_F(LgServiceCompressionTest, ARotationMeanwhileGivesItItsNewNumber)
{
    put({{"log", "a"}, {"log.1", "b"}});
    once(
        [this]
        {
            LgServiceFile file(_path, {0, -1, 5});
            EXPECT_EQ(file.rotate(), 0);
        });
    EXPECT_TRUE(compressAll());
    EXPECT_EQ(found(), (Tree{{"log.1.gz", "[a]"}, {"log.2.gz", "[b]"}}));
}

TEST_F(LgServiceCompressionTest, AFileThatARotationRemovesMeanwhileIsGone)
{
    put({{"log", "a"}, {"log.1", "b"}});
    once(
        [this]
        {
            LgServiceFile file(_path, {0, -1, 1});
            EXPECT_EQ(file.rotate(), 0);
        });
    EXPECT_TRUE(compressAll());
    EXPECT_EQ(found(), (Tree{{"log.1.gz", "[a]"}}));
}

TEST_F(LgServiceCompressionTest, AFileThatAnotherProcessHasCompressedIsLeftToIt)
{
    put({{"log.1", "a"}});
    once(
        [this]
        {
            writeFile(_path + ".1.gz", "{a}");
            fs::remove(_path + ".1");
        });
    EXPECT_TRUE(compressAll());
    EXPECT_EQ(found(), (Tree{{"log.1.gz", "{a}"}}));
}

TEST_F(LgServiceCompressionTest, AFileThatGrowsMeanwhileIsCompressedAnew)
{
    put({{"log.1", "a"}});
    once([this] { std::ofstream(_path + ".1", std::ios::binary | std::ios::app) << "b"; });
    EXPECT_TRUE(compressAll());
    EXPECT_EQ(found(), (Tree{{"log.1.gz", "[ab]"}}));
}

TEST_F(LgServiceCompressionTest, AFileThatGrowsEachTimeIsLeftForLater)
{
    put({{"log.1", "a"}});
    Brackets::meanwhile = [this]
    {
        std::ofstream(_path + ".1", std::ios::binary | std::ios::app) << "b";
        return true;
    };
    EXPECT_FALSE(compressAll());
    const Tree tree = found();
    ASSERT_EQ(tree.size(), 1U);
    EXPECT_EQ(tree.begin()->first, "log.1");
}

TEST_F(LgServiceCompressionTest, OneProcessAtATimeCompressesAndTheOtherWaitsForNothing)
{
    put({{"log.1", "a"}, {"log.2", "b"}});
    std::mutex reading;
    LgServiceCompression other(reading, &Brackets::make, LgServiceCompression::WithoutThread());
    once([&] { EXPECT_FALSE(other.compressAll(_path)); });
    EXPECT_TRUE(compressAll());
    EXPECT_EQ(found(), (Tree{{"log.1.gz", "[a]"}, {"log.2.gz", "[b]"}}));
    // Not even a file that it finds begun, with nothing to compress.
    const Platform::File like = Platform::openToRead(_path + ".1.gz");
    const Platform::File begun = Platform::createAlone(_temporary, like);
    ASSERT_NE(begun, Platform::NO_FILE);
    EXPECT_TRUE(compressAll());
    EXPECT_TRUE(fs::exists(_temporary));
    EXPECT_EQ(Platform::createAlone(_temporary, like), Platform::NO_FILE);
    EXPECT_TRUE(Platform::isInUse(Platform::lastError()));
    Platform::close(begun);
    Platform::close(like);
    EXPECT_TRUE(compressAll());
    EXPECT_FALSE(fs::exists(_temporary));
}

TEST_F(LgServiceCompressionTest, AnEndLeavesTheFileAsItIs)
{
    const std::string large = support::noise(200000);
    put({{"log.1", "a"}, {"log.2", large}});
    once([this] { _compression.stop(); });
    EXPECT_FALSE(compressAll());
    // The first one was complete.
    EXPECT_EQ(found(), (Tree{{"log.1.gz", "[a]"}, {"log.2", large}}));
    LgServiceCompression next(_reading, &Brackets::make, LgServiceCompression::WithoutThread());
    EXPECT_TRUE(next.compressAll(_path));
    EXPECT_EQ(found(), (Tree{{"log.1.gz", "[a]"}, {"log.2.gz", "[" + large + "]"}}));
}

TEST_F(LgServiceCompressionTest, WhatCanNotBeCompressedIsReportedOnceAndStays)
{
    const support::StreamCapture errors(std::cerr);
    put({{"log.1", "a"}});
    Brackets::meanwhile = [] { return false; };
    EXPECT_FALSE(compressAll());
    EXPECT_FALSE(compressAll());
    EXPECT_EQ(found(), (Tree{{"log.1", "a"}}));
    const std::string head =
        "The rotated log file \"" + _path + ".1\" can't be compressed, and stays as it is: ";
    EXPECT_EQ(errors.text(), head + "the compressor fails\n");
    Brackets::meanwhile = nullptr;
    EXPECT_TRUE(compressAll());
    put({{"log.1", "b"}});
    Brackets::meanwhile = [] { return false; };
    EXPECT_FALSE(compressAll());
    EXPECT_EQ(errors.text(), head + "the compressor fails\n" + head + "the compressor fails\n");
}

TEST_F(LgServiceCompressionTest, APlaceThatIsTakenIsReported)
{
    const support::StreamCapture errors(std::cerr);
    put({{"log.1", "a"}});
    fs::create_directory(_temporary);
    EXPECT_FALSE(compressAll());
    EXPECT_EQ(errors.text().find("The rotated log file \"" + _path + ".1\" can't be compressed"),
              0U);
    EXPECT_EQ(readFile(_path + ".1"), "a");
}

TEST_F(LgServiceCompressionTest, AFactoryThatMakesNoneIsReported)
{
    const support::StreamCapture errors(std::cerr);
    put({{"log.1", "a"}});
    LgServiceCompression none(
        _reading, [] { return std::unique_ptr<LgServiceCompressor>(); },
        LgServiceCompression::WithoutThread());
    EXPECT_FALSE(none.compressAll(_path));
    EXPECT_NE(errors.text().find("there is no compressor"), std::string::npos);
    EXPECT_EQ(found(), (Tree{{"log.1", "a"}}));
}

// The one that rotates does not wait for the whole of a file.
TEST_F(LgServiceCompressionTest, NothingIsLockedWhileAFileIsCompressed)
{
    put({{"log.1", "a"}});
    bool isFree = false;
    once(
        [&]
        {
            std::thread(
                [&]
                {
                    isFree = _reading.try_lock();
                    if (isFree) _reading.unlock();
                })
                .join();
        });
    EXPECT_TRUE(compressAll());
    EXPECT_TRUE(isFree);
}

TEST_F(LgServiceCompressionTest, ItsThreadEndsWhateverItIsAsked)
{
    for (int round = 0; round < 20; ++round)
    {
        LgServiceCompression compression(_reading, &Brackets::make);
        if (round % 2 == 0) compression.ask();
    }
}

} // namespace

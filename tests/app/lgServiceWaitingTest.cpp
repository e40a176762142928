#include "app/lgServiceWaiting.h"

#include "app/lgLeftMap.h"
#include "base/hwCounter.h"
#include "base/lgReader.h"
#include "base/osCpuInfo.h"
#include "stress/hardEnd.h"
#include "support/platform.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace
{

namespace fs = std::filesystem;
namespace LgMap = Zu::LgMap;

using support::StreamCapture;
using support::TempDir;
using Zu::LgLeftMap;
using Zu::LgServiceLog;
using Zu::LgServiceMap;
using Zu::LgServiceWaiting;
using Lines = std::vector<LgServiceLog::Line>;

constexpr std::uint32_t LOG = 3;

// A file that can't be opened at first, and a map for what waits for it.
class LgServiceWaitingTest : public testing::Test
{
protected:
    LgServiceWaitingTest()
    {
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        const std::string separator(1, static_cast<char>(fs::path::preferred_separator));
        _settings._mapDirectory = _maps.path() + separator;
        _settings._logDirectory = _dir.path();
        setLimit(1ULL << 30);
        fs::create_directory(_path);
        _log = std::make_unique<LgServiceLog>(_path);
        const StreamCapture errors(std::cerr);
        EXPECT_FALSE(_log->prepare(0));
    }

    ~LgServiceWaitingTest() override
    {
        _log->takeWaiting();
        LgServiceLog::setSettings({});
    }

    static void setLimit(std::uint64_t limit)
    {
        LgServiceLog::Settings settings;
        settings._pendingLimit = limit;
        LgServiceLog::setSettings(settings);
    }

    // As the service's thread does with a batch of one line.
    void wait(const std::string& line)
    {
        _log->prepare(line.size(), 1);
        _log->wait(line, {{static_cast<std::uint32_t>(line.size()), true}});
        _waiting.store(LOG, *_log, ++_batch);
    }

    // What the next service would find.
    LgLeftMap::Waiting find() const
    {
        const auto read = [this](std::uint64_t offset, void* to, std::size_t size)
        {
            std::ifstream file(_map.getPath(), std::ios::binary);
            file.seekg(static_cast<std::streamoff>(offset));
            file.read(static_cast<char*>(to), static_cast<std::streamsize>(size));
            return file.gcount() == static_cast<std::streamsize>(size);
        };
        LgLeftMap map;
        EXPECT_TRUE(map.load(read)) << map.getReason();
        EXPECT_EQ(map.getDamaged(), 0U);
        for (std::uint32_t i = 0; i < LgMap::MOST_FILES; ++i)
            EXPECT_TRUE(i == LOG || map.getWaiting()[i]._text.empty()) << i;
        return map.getWaiting()[LOG];
    }

    TempDir _maps;
    TempDir _dir;
    const std::string _path = _dir.file("events.log");
    LgServiceMap::Settings _settings;
    LgServiceMap _map;
    LgServiceWaiting _waiting{_map};
    std::unique_ptr<LgServiceLog> _log;
    std::uint64_t _batch = 40;
};

TEST_F(LgServiceWaitingTest, WhatWaitsIsFoundWithTheNumberOfItsBatch)
{
    _map.begin(_settings);
    EXPECT_EQ(find()._batch, 0U);
    std::string expected;
    for (int i = 0; i < 1000; ++i)
    {
        const std::string line = "line " + std::to_string(i) + std::string(200, 'x') + '\n';
        expected += line;
        wait(line);
        if (i % 37 > 1 && i < 990) continue;
        const LgLeftMap::Waiting found = find();
        ASSERT_EQ(found._text, expected) << i;
        ASSERT_EQ(found._batch, _batch);
        ASSERT_EQ(found._dropped, 0U);
    }
}

TEST_F(LgServiceWaitingTest, TextsOfAnySizeFollowEachOther)
{
    _map.begin(_settings);
    for (const std::size_t size : {10, 65536, 65537, 3000, 1000000, 131072, 1, 300000})
    {
        _log->takeWaiting();
        const std::string line(size, static_cast<char>('a' + size % 26));
        wait(line);
        ASSERT_EQ(find()._text, line) << size;
        wait("more\n");
        ASSERT_EQ(find()._text, line + "more\n") << size;
    }
}

TEST_F(LgServiceWaitingTest, WhatIsWrittenIsFoundNoMore)
{
    _map.begin(_settings);
    for (const char* const line : {"one\n", "two\n", "three\n"}) wait(line);
    fs::remove(_path);
    _log->tryNow();
    const StreamCapture errors(std::cerr);
    ASSERT_TRUE(_log->prepare(0));
    _log->write({}, {});
    EXPECT_EQ(find()._text, "one\ntwo\nthree\n");
    _waiting.store(LOG, *_log, 99);
    EXPECT_EQ(find()._text, "");
    EXPECT_EQ(find()._batch, 99U);
    // Where nothing waits, nothing is stored.
    _waiting.store(LOG, *_log, 100);
    EXPECT_EQ(find()._batch, 99U);
}

// The first line has been written, and the others have the same size as all had before.
TEST_F(LgServiceWaitingTest, OtherLinesOfTheSameSizeAreStored)
{
    _map.begin(_settings);
    wait("first\n");
    wait("later\n");
    _log->takeWaiting();
    wait("later\nagain\n");
    EXPECT_EQ(find()._text, "later\nagain\n");
}

TEST_F(LgServiceWaitingTest, WhatIsDroppedIsCountedThere)
{
    _map.begin(_settings);
    setLimit(10);
    wait("12345678\n");
    EXPECT_EQ(find()._dropped, 0U);
    const std::uint64_t batch = _batch;
    wait("dropped\n");
    wait("dropped\n");
    const LgLeftMap::Waiting found = find();
    EXPECT_EQ(found._text, "12345678\n");
    EXPECT_EQ(found._dropped, 2U);
    EXPECT_EQ(found._failingSince, _log->getFailingSince());
    EXPECT_EQ(found._batch, batch + 2);
}

// All lines are written but the one that says how many are missing.
TEST_F(LgServiceWaitingTest, ACountAloneKeepsTheFile)
{
    _map.begin(_settings);
    setLimit(4);
    wait("dropped\n");
    EXPECT_EQ(find()._text, "");
    EXPECT_EQ(find()._dropped, 1U);
    _map.removeFileIfEmpty();
    EXPECT_EQ(find()._dropped, 1U);
    EXPECT_TRUE(_waiting.keep(LOG, *_log));
    _waiting.giveBack(LOG, *_log);
    EXPECT_EQ(_log->getDropped(), 1U);
}

TEST_F(LgServiceWaitingTest, WhatIsKeptComesBackWithTheNextService)
{
    _map.begin(_settings);
    const std::uint64_t before = Zu::LgReader::getUnwrittenCount();
    wait("one\n");
    wait("two\n");
    EXPECT_TRUE(_waiting.keep(LOG, *_log));
    EXPECT_EQ(_log->getPending(), 0U);
    _map.removeFileIfEmpty();
    EXPECT_EQ(find()._text, "one\ntwo\n");
    _log = std::make_unique<LgServiceLog>(_path);
    _waiting.giveBack(LOG, *_log);
    EXPECT_EQ(_log->getWaiting(), "one\ntwo\n");
    EXPECT_TRUE(_log->isTryDue());
    wait("three\n");
    EXPECT_EQ(find()._text, "one\ntwo\nthree\n");
    // Once.
    _log->takeWaiting();
    _waiting.giveBack(LOG, *_log);
    EXPECT_EQ(_log->getPending(), 0U);
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before);
}

TEST_F(LgServiceWaitingTest, WhatIsNotStoredIsNotKept)
{
    wait("without a map\n");
    EXPECT_FALSE(_waiting.keep(LOG, *_log));
    _map.begin(_settings);
    wait("stored\n");
    const std::string line = "and this is not\n";
    _log->wait(line, {{static_cast<std::uint32_t>(line.size()), true}});
    EXPECT_FALSE(_waiting.keep(LOG, *_log));
    EXPECT_GT(_log->getPending(), 0U);
}

TEST_F(LgServiceWaitingTest, TheFileIsRemovedWhenNothingWaits)
{
    _map.begin(_settings);
    const std::string path = _map.getPath();
    wait("one\n");
    _map.removeFileIfEmpty();
    EXPECT_EQ(find()._text, "one\n");
    _log->takeWaiting();
    _waiting.store(LOG, *_log, ++_batch);
    _map.removeFileIfEmpty();
    // Windows keeps the name until the memory is no longer used.
    EXPECT_EQ(fs::exists(path), support::onWindows);
}

// What the parent has mapped is there no more.
TEST_F(LgServiceWaitingTest, AChildBeginsAnew)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork.";
    _map.begin(_settings);
    wait("one\n");
    _log->takeWaiting();
    wait("another\n");
    {
        const std::lock_guard guard(_map.mutex());
        _map.leaveInChild();
        _waiting.leaveInChild();
    }
    _log->takeWaiting();
    wait("without a map\n");
    _map.begin(_settings);
    for (const char* const line : {"three\n", "four\n", "five\n"})
    {
        _log->takeWaiting();
        wait(line);
        EXPECT_EQ(find()._text, line);
    }
}

TEST_F(LgServiceWaitingTest, MoreThanAllowedIsReportedAndThatPartIsKept)
{
    _map.begin(_settings);
    wait("first\n");
    const StreamCapture errors(std::cerr);
    const std::string line(LgMap::MOST_WAITING, 'x');
    wait(line);
    wait("last\n");
    EXPECT_EQ(errors.text(), "Some events are not kept in case the process is killed: more of them "
                             "wait for a file that fails than are kept\n");
    EXPECT_EQ(find()._text, "first\n");
    EXPECT_FALSE(_waiting.keep(LOG, *_log));
}

TEST_F(LgServiceWaitingTest, WithoutRoomTheLinesStayInTheProcess)
{
    if (support::onWindows) GTEST_SKIP() << "Windows does not limit the size of files.";
    _map.begin(_settings);
    wait("first\n");
    const StreamCapture errors(std::cerr);
    {
        const stress::ResourceLimit limit(stress::Resource::FILE_SIZE, LgMap::BLOCKS_AT);
        wait(std::string(300000, 'x') + '\n');
        EXPECT_EQ(find()._text, "first\n");
        EXPECT_FALSE(_waiting.keep(LOG, *_log));
        // The first line is written, and for the others there is no room.
        LgServiceLog::Waiting rest = _log->takeWaiting();
        rest._text.erase(0, 6);
        rest._lines.erase(rest._lines.begin());
        _log->setWaiting(std::move(rest));
        _waiting.store(LOG, *_log, ++_batch);
        EXPECT_EQ(find()._text, "");
        EXPECT_EQ(find()._batch, _batch);
    }
    wait("later\n");
    EXPECT_EQ(find()._text, std::string(300000, 'x') + "\nlater\n");
    EXPECT_EQ(errors.text().rfind("Some events are not kept in case the process is killed: ", 0),
              0U);
}

} // namespace

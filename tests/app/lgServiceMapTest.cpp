#include "app/lgServiceMap.h"

#include "app/lgLeftMap.h"
#include "base/hwCounter.h"
#include "base/osCpuInfo.h"
#include "stress/hardEnd.h"
#include "support/platform.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace
{

namespace fs = std::filesystem;
namespace LgMap = Zu::LgMap;
namespace LgTypes = Zu::LgTypes;

using support::StreamCapture;
using support::TempDir;
using Zu::LgLeftMap;
using Zu::LgQueue;
using Zu::LgServiceMap;

using Texts = std::vector<std::string>;

bool add(LgQueue& queue, const std::string& text)
{
    if (!queue.reserveEntry(LgTypes::Warning)) return false;
    queue.getStream() << text << Zu::ends;
    queue.addEntry();
    return true;
}

// What waits in a queue, which is emptied.
Texts take(LgQueue& queue)
{
    Texts texts;
    std::vector<char> text(Zu::LgStream::BufSize);
    while (!queue.isEmpty())
    {
        const LgQueue::Entry& entry = queue.readEntry();
        if (entry.isOverflowEntry())
            texts.push_back("lost " + std::to_string(entry.getOverflowCount()));
        else
        {
            queue.getStream() >> text.data();
            texts.emplace_back(text.data());
        }
        queue.removeEntry();
    }
    return texts;
}

void end(LgQueue* queue)
{
    take(*queue);
    LgQueue::end(queue);
}

// What a successor would find in the file.
Texts find(const std::string& path, LgLeftMap& map)
{
    const auto read = [&path](std::uint64_t offset, void* to, std::size_t size)
    {
        std::ifstream file(path, std::ios::binary);
        file.seekg(static_cast<std::streamoff>(offset));
        file.read(static_cast<char*>(to), static_cast<std::streamsize>(size));
        return file.gcount() == static_cast<std::streamsize>(size);
    };
    Texts texts;
    EXPECT_TRUE(map.load(read)) << map.getReason();
    for (const LgLeftMap::Event& event : map.getEvents())
        texts.push_back(event._isOverflow ? "lost " + std::to_string(event._value) : event._text);
    return texts;
}

Texts find(const std::string& path)
{
    LgLeftMap map;
    return find(path, map);
}

class LgServiceMapTest : public testing::Test
{
protected:
    LgServiceMapTest()
    {
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        const std::string separator(1, static_cast<char>(fs::path::preferred_separator));
        _settings._mapDirectory = _dir.path() + separator;
        _settings._logDirectory = "/logs/here";
    }

    std::size_t files() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(_dir.path()), fs::directory_iterator()));
    }

    TempDir _dir;
    LgServiceMap::Settings _settings;
    LgServiceMap _map;
};

TEST_F(LgServiceMapTest, ThereIsAFileFromTheBeginningOn)
{
    EXPECT_FALSE(_map.isOpen());
    const StreamCapture errors(std::cerr);
    _map.begin(_settings);
    ASSERT_TRUE(_map.isOpen());
    EXPECT_EQ(errors.text(), "");
    EXPECT_EQ(files(), 1U);
    const std::string prefix = _settings._mapDirectory + LgServiceMap::prefixFor("/logs/here");
    EXPECT_EQ(_map.getPath().compare(0, prefix.size(), prefix), 0) << _map.getPath();
    EXPECT_NE(LgServiceMap::prefixFor("/logs/here"), LgServiceMap::prefixFor("/logs/there"));
    const fs::perms own = fs::perms::owner_read | fs::perms::owner_write;
    // Windows has no modes of files.
    EXPECT_TRUE(support::onWindows || fs::status(_map.getPath()).permissions() == own);
}

TEST_F(LgServiceMapTest, TheHeaderSaysWhoseItIs)
{
    _map.begin(_settings);
    LgLeftMap map;
    EXPECT_EQ(find(_map.getPath(), map), Texts());
    EXPECT_EQ(map.getHeader()._process, support::processId());
    EXPECT_EQ(map.getHeader()._host, support::hostName());
    EXPECT_STREQ(map.getHeader()._directory, "/logs/here");
    EXPECT_GT(map.getHeader()._ticksPerSecond, 0U);
    // The next service of the process names another directory.
    _settings._logDirectory = "/there";
    _map.begin(_settings);
    EXPECT_EQ(files(), 1U);
    find(_map.getPath(), map);
    EXPECT_STREQ(map.getHeader()._directory, "/there");
}

TEST_F(LgServiceMapTest, ALongLogDirectoryIsCut)
{
    _settings._logDirectory = std::string(3000, 'd');
    _map.begin(_settings);
    LgLeftMap map;
    find(_map.getPath(), map);
    EXPECT_EQ(map.getHeader()._directory, std::string(LgMap::DIRECTORY_SIZE - 1, 'd'));
}

TEST_F(LgServiceMapTest, WhatWaitsIsFoundInTheFile)
{
    _map.begin(_settings);
    LgQueue* const one = _map.makeQueue(11);
    LgQueue* const other = _map.makeQueue(22);
    EXPECT_TRUE(add(*one, "first"));
    EXPECT_TRUE(add(*other, "second"));
    EXPECT_TRUE(add(*one, ""));
    EXPECT_TRUE(add(*other, std::string(32000, 'x')));
    LgLeftMap map;
    EXPECT_EQ(find(_map.getPath(), map), (Texts{"first", "second", "", std::string(32000, 'x')}));
    EXPECT_EQ(map.getEvents()[0]._thread, 11U);
    EXPECT_EQ(map.getEvents()[1]._thread, 22U);
    EXPECT_EQ(map.getEvents()[0]._value, int{LgTypes::Warning});
    EXPECT_EQ(_map.indexOf(*one), 0U);
    EXPECT_EQ(_map.indexOf(*other), 1U);
    take(*one);
    EXPECT_EQ(find(_map.getPath()), (Texts{"second", std::string(32000, 'x')}));
    end(one);
    end(other);
    EXPECT_EQ(find(_map.getPath()), Texts());
}

// Through several laps, with a reader that lags behind: at each moment the file has what waits.
TEST_F(LgServiceMapTest, TheFileFollowsTheQueueRoundItsRings)
{
    _settings._entries = 64;
    _settings._characters = 32768;
    _map.begin(_settings);
    LgQueue* const queue = _map.makeQueue(1);
    Texts waiting;
    for (int i = 0; i < 300; ++i)
    {
        waiting.push_back(std::to_string(i) + std::string(static_cast<std::size_t>(i), '.'));
        ASSERT_TRUE(add(*queue, waiting.back()));
        ASSERT_EQ(i % 7 == 0 ? find(_map.getPath()) : waiting, waiting) << i;
        if (waiting.size() < 40) continue;
        ASSERT_EQ(take(*queue), waiting);
        waiting.clear();
    }
    end(queue);
}

TEST_F(LgServiceMapTest, LossesAreFoundInTheFile)
{
    _map.begin(_settings);
    LgQueue* const queue = _map.makeQueue(1);
    std::uint32_t waiting = 0;
    while (add(*queue, "e")) ++waiting;
    for (int i = 0; i < 16; ++i) EXPECT_FALSE(add(*queue, "e"));
    // One is left for lost events, and a ring is never full.
    EXPECT_EQ(waiting, _settings._entries - 2);
    LgLeftMap map;
    EXPECT_EQ(find(_map.getPath(), map).back(), "lost 17");
    EXPECT_EQ(map.getEvents().size(), waiting + 1);
    EXPECT_EQ(map.getQueues().at(0)._lost, 17U);
    EXPECT_EQ(map.getQueues().at(0)._reported, 0U);
    end(queue);
}

TEST_F(LgServiceMapTest, BeyondTheLimitQueuesAreSmall)
{
    _settings._limit = 4096 * sizeof(LgMap::Entry) + 262144;
    _map.begin(_settings);
    LgQueue* const large = _map.makeQueue(1);
    LgQueue* const small = _map.makeQueue(2);
    EXPECT_EQ(_map.queueAt(_map.indexOf(*large))._entries, 4096U);
    EXPECT_EQ(_map.queueAt(_map.indexOf(*large))._characters, 262144U);
    EXPECT_EQ(_map.queueAt(_map.indexOf(*small))._entries, 1024U);
    EXPECT_EQ(_map.queueAt(_map.indexOf(*small))._characters, 32768U);
    // What is given back can be had again.
    end(large);
    end(small);
    LgQueue* const again = _map.makeQueue(3);
    EXPECT_EQ(_map.queueAt(_map.indexOf(*again))._entries, 4096U);
    end(again);
}

TEST_F(LgServiceMapTest, AQueueThatWasGivenBackIsUsedAgainAndIsZero)
{
    _map.begin(_settings);
    LgQueue* const first = _map.makeQueue(1);
    const std::string text(1000, 'x');
    for (int i = 0; i < 300; ++i) add(*first, text);
    const std::uint32_t index = _map.indexOf(*first);
    const LgMap::Queue facts = _map.queueAt(index);
    const auto size = fs::file_size(_map.getPath());
    end(first);
    EXPECT_EQ(_map.queueAt(index)._block, 0U);
    LgQueue* const second = _map.makeQueue(2);
    EXPECT_EQ(static_cast<void*>(second), static_cast<void*>(first));
    EXPECT_EQ(_map.indexOf(*second), index);
    EXPECT_EQ(_map.queueAt(index)._block, facts._block);
    EXPECT_EQ(_map.queueAt(index)._thread, 2U);
    EXPECT_EQ(fs::file_size(_map.getPath()), size);
    std::ifstream file(_map.getPath(), std::ios::binary);
    file.seekg(static_cast<std::streamoff>(facts._block + facts._entriesAt));
    const std::size_t rings = facts._charactersAt - facts._entriesAt + facts._characters;
    std::string content(rings, 'x');
    file.read(content.data(), static_cast<std::streamsize>(rings));
    // Entries are made anew, as lines that are none; no text is left.
    const std::size_t entries = facts._charactersAt - facts._entriesAt;
    EXPECT_EQ(content.find('x'), std::string::npos);
    EXPECT_EQ(content.substr(entries), std::string(facts._characters, '\0'));
    EXPECT_TRUE(add(*second, "new"));
    EXPECT_EQ(find(_map.getPath()), Texts{"new"});
    end(second);
}

TEST_F(LgServiceMapTest, ManyQueuesComeAndGo)
{
    _settings._entries = 64;
    _settings._characters = 32768;
    _map.begin(_settings);
    Texts expected;
    std::vector<LgQueue*> queues;
    for (std::uint32_t round = 0; round < 3; ++round)
    {
        for (std::uint32_t i = 0; i < 200; ++i)
        {
            queues.push_back(_map.makeQueue(i));
            ASSERT_NE(_map.indexOf(*queues.back()), std::uint32_t{LgMap::NONE});
            expected.push_back(std::to_string(round) + " " + std::to_string(i));
            add(*queues.back(), expected.back());
        }
        EXPECT_EQ(find(_map.getPath()), expected);
        for (LgQueue* const queue : queues) end(queue);
        queues.clear();
        expected.clear();
        EXPECT_EQ(find(_map.getPath()), Texts());
        EXPECT_EQ(_map.header()._queueCount, 200U);
    }
}

TEST_F(LgServiceMapTest, AFileWithEventsIsNotRemoved)
{
    _map.begin(_settings);
    const std::string path = _map.getPath();
    LgQueue* const queue = _map.makeQueue(1);
    add(*queue, "waits");
    _map.removeFileIfEmpty();
    EXPECT_EQ(find(path), Texts{"waits"});
    take(*queue);
    _map.removeFileIfEmpty();
    // Windows keeps the name until the memory is no longer used.
    EXPECT_EQ(fs::exists(path), support::onWindows);
    // The queue stays usable.
    EXPECT_TRUE(add(*queue, "later"));
    EXPECT_EQ(take(*queue), Texts{"later"});
    end(queue);
}

TEST_F(LgServiceMapTest, TheStateOfABatchIsOneWord)
{
    _map.begin(_settings);
    _map.batch(5)._lineCount = 3;
    _map.commit(5, LgMap::Writing);
    LgLeftMap map;
    find(_map.getPath(), map);
    EXPECT_EQ(map.getNumber(), 5U);
    EXPECT_EQ(map.getState(), LgMap::Writing);
    EXPECT_EQ(map.getBatch()._lineCount, 3U);
    EXPECT_NE(&_map.batch(5), &_map.batch(6));
    EXPECT_EQ(&_map.batch(5), &_map.batch(7));
}

// The parent may end a queue before the child has left it.
TEST_F(LgServiceMapTest, AChildHasTheQueuesAsTheyWereBeforeTheFork)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork.";
    _map.begin(_settings);
    LgQueue* const queue = _map.makeQueue(1);
    const LgQueue::Home* const home = queue->getHome();
    const std::string ended = _dir.file("ended");
    _map.mutex().lock();
    _map.keepForChild(nullptr);
    const support::Side side = support::forkProcess();
    if (side == support::Side::CHILD)
    {
        while (!fs::exists(ended)) std::this_thread::yield();
        _map.leaveInChild();
        _map.mutex().unlock();
        const bool isWhole = queue->getHome() == home && queue->getThreadId() == 1;
        std::_Exit(isWhole && add(*queue, "later") && take(*queue) == Texts{"later"} ? 0 : 1);
    }
    _map.forgetKept();
    _map.mutex().unlock();
    end(queue);
    std::ofstream(ended) << "it is";
    EXPECT_EQ(support::awaitForkedChild(), 0);
}

class LgServiceMapRefused : public LgServiceMapTest
{
protected:
    // Queues are on the heap, and there is one line on standard error.
    void checkHeap(const std::string& what)
    {
        std::string text;
        LgQueue* queues[2];
        {
            const StreamCapture errors(std::cerr);
            _map.begin(_settings);
            for (LgQueue*& queue : queues) queue = _map.makeQueue(1);
            _map.begin(_settings);
            text = errors.text();
        }
        EXPECT_EQ(text.compare(0, what.size(), what), 0) << text;
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
        for (LgQueue* const queue : queues)
        {
            EXPECT_EQ(queue->getHome(), nullptr);
            EXPECT_EQ(_map.indexOf(*queue), std::uint32_t{LgMap::NONE});
            EXPECT_TRUE(add(*queue, "kept"));
            EXPECT_EQ(take(*queue), Texts{"kept"});
            LgQueue::end(queue);
        }
    }
};

const std::string NO_FILE = "Events are not kept in case the process is killed: ";

TEST_F(LgServiceMapRefused, WithoutADirectoryQueuesAreOnTheHeap)
{
    _settings._mapDirectory = _dir.file("none") + "/";
    checkHeap(NO_FILE);
    EXPECT_FALSE(_map.isOpen());
    _map.removeFileIfEmpty();
    // A later service tries again.
    _settings._mapDirectory = _dir.path() + "/";
    _map.begin(_settings);
    EXPECT_TRUE(_map.isOpen());
}

TEST_F(LgServiceMapRefused, ADirectoryInWhichNobodyCanMakeFilesIsReported)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no such directory.";
    _settings._mapDirectory = "/proc/";
    checkHeap(NO_FILE);
}

TEST_F(LgServiceMapRefused, FilesThatMustBeShortAreNotMade)
{
    if (support::onWindows) GTEST_SKIP() << "Windows does not limit the size of files.";
    {
        const stress::ResourceLimit limit(stress::Resource::FILE_SIZE, LgMap::BLOCKS_AT - 1);
        checkHeap(NO_FILE);
    }
    EXPECT_EQ(files(), 0U);
}

TEST_F(LgServiceMapRefused, AQueueThatFindsNoRoomInTheFileIsOnTheHeap)
{
    if (support::onWindows) GTEST_SKIP() << "Windows does not limit the size of files.";
    const stress::ResourceLimit limit(stress::Resource::FILE_SIZE, LgMap::BLOCKS_AT + 65536);
    checkHeap("The events of some threads are not kept in case the process is killed: ");
    EXPECT_TRUE(_map.isOpen());
    EXPECT_EQ(_map.header()._queueCount, 0U);
}

// A file can be as long as it is, but in the first lap no more of it is given by the system.
TEST_F(LgServiceMapRefused, GrowthGoesOnInPrivateMemory)
{
    if (support::onWindows) GTEST_SKIP() << "Windows gives all room at once.";
    _map.begin(_settings);
    LgQueue* const queue = _map.makeQueue(1);
    Texts expected;
    const StreamCapture errors(std::cerr);
    std::optional<stress::ResourceLimit> limit;
    const auto fill = [&]
    {
        expected.clear();
        for (int i = 0; i < 4000; ++i)
        {
            // Not before the rings have grown once.
            if (i == 700) limit.emplace(stress::Resource::FILE_SIZE, LgMap::BLOCKS_AT);
            expected.push_back(std::to_string(i) + std::string(50, 'x'));
            ASSERT_TRUE(add(*queue, expected.back())) << i;
        }
    };
    fill();
    limit.reset();
    EXPECT_EQ(queue->getLostCount(), 0U);
    const std::string text = errors.text();
    EXPECT_EQ(
        text.compare(0, 67, "Some events are not kept in case the process is killed: File too la"),
        0)
        << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    // What lies beyond the usable part is known to be lost for a successor.
    LgLeftMap map;
    EXPECT_EQ(find(_map.getPath(), map), Texts());
    EXPECT_EQ(map.getDamaged(), 4000U);
    EXPECT_EQ(take(*queue), expected);
    // In the next laps, too.
    fill();
    limit.reset();
    EXPECT_EQ(take(*queue), expected);
    const std::uint32_t index = _map.indexOf(*queue);
    end(queue);
    // Its memory is not used again, but its place in the table is.
    LgQueue* const next = _map.makeQueue(2);
    EXPECT_EQ(_map.indexOf(*next), index);
    EXPECT_TRUE(add(*next, "in the file"));
    EXPECT_EQ(find(_map.getPath()), Texts{"in the file"});
    end(next);
}

} // namespace

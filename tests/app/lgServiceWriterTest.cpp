#include "app/lgServiceWriter.h"

#include "app/lgLeftMap.h"
#include "app/lgServiceRegistry.h"
#include "app/lgServiceThreads.h"
#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgReader.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace
{

namespace LgMap = Zu::LgMap;
namespace LgTypes = Zu::LgTypes;

using support::PieceRecorder;
using support::StreamCapture;
using Zu::LgLog;
using Zu::LgQueue;
using Zu::LgServiceLog;
using Zu::LgServiceMap;
using Zu::LgServiceWriter;
using Step = Zu::LgServiceWriter::Step;
using Texts = std::vector<std::string>;

// What is called at each step of a batch.
std::function<void(Step)> step;

void add(LgQueue& queue, const std::string& text, LgTypes::Level level = LgTypes::Warning)
{
    ASSERT_TRUE(queue.reserveEntry(level));
    queue.getStream() << text << Zu::ends;
    queue.addEntry();
}

class LgServiceWriterTest : public testing::Test
{
protected:
    LgServiceWriterTest()
    {
        LgLog::setOutputFunction(&LgServiceLog::open);
        const std::string separator(1,
                                    static_cast<char>(std::filesystem::path::preferred_separator));
        _settings._mapDirectory = _maps.path() + separator;
        // Longer than any batch.
        _settings._characters = 1U << 20;
    }

    ~LgServiceWriterTest() override
    {
        LgServiceWriter::_atStep = nullptr;
        step = nullptr;
        endQueues();
        if (_writer) writeAll();
        _writer.reset();
        _logger.reset();
    }

    // The logger and what writes; the environment is as it has to be.
    void start()
    {
        _logger.emplace();
        LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new Zu::LgServiceRegistry));
        _map.begin(_settings);
        ASSERT_TRUE(_map.isOpen());
        _writer.emplace(_map, _waiting);
    }

    LgQueue& makeQueue()
    {
        _queues.push_back(_mapInUse->makeQueue(static_cast<std::uint32_t>(_queues.size() + 1)));
        LgLog::getRegistry()->registerQueue(_queues.back());
        return *_queues.back();
    }

    // As if their threads had ended.
    void endQueues()
    {
        for (LgQueue* const queue : _queues) queue->creatorExit();
        _queues.clear();
    }

    int writeAll()
    {
        int batches = 0;
        while (_writer->writeBatch()) ++batches;
        return batches;
    }

    Texts texts(const std::string& name = "events.log") const
    {
        return _logger->textsOf(name);
    }

    static void atSteps(std::function<void(Step)> action)
    {
        step = std::move(action);
        LgServiceWriter::_atStep = [](Step at) { step(at); };
    }

    // The sum of the losses in the file.
    std::uint64_t lostInFile() const
    {
        std::uint64_t sum = 0;
        for (const std::string& text : texts())
        {
            unsigned long long count = 0;
            if (std::sscanf(text.c_str(), "Event overflow [%llu]", &count) == 1) sum += count;
        }
        return sum;
    }

    support::TempDir _maps;
    support::TempDir _other;
    LgServiceMap::Settings _settings;
    LgServiceMap _map;
    // Where queues are made.
    LgServiceMap* _mapInUse = &_map;
    Zu::LgServiceWaiting _waiting{_map};
    std::optional<support::RunningLogger> _logger;
    std::optional<LgServiceWriter> _writer;
    std::vector<LgQueue*> _queues;
};

TEST_F(LgServiceWriterTest, WithoutEventsThereIsNothingToDo)
{
    start();
    EXPECT_FALSE(_writer->writeBatch());
    makeQueue();
    EXPECT_FALSE(_writer->writeBatch());
    EXPECT_EQ(texts(), Texts());
}

TEST_F(LgServiceWriterTest, MergesTheEventsOfAllQueuesByTime)
{
    start();
    LgQueue* queues[5];
    for (LgQueue*& queue : queues) queue = &makeQueue();
    Texts expected;
    for (std::size_t i = 0; i < 200; ++i)
    {
        expected.push_back("event " + std::to_string(i));
        add(*queues[i * i % 5], expected.back());
    }
    EXPECT_EQ(writeAll(), 1);
    EXPECT_EQ(texts(), expected);
    // Lines have the ids of the threads: the third event is the fifth queue's.
    EXPECT_NE(_logger->linesOf("events.log")[2].find(" (0x00000005) Warning: event 2"),
              std::string::npos);
}

TEST_F(LgServiceWriterTest, WritesABatchAtOnceAndBetweenItsCommits)
{
    start();
    LgQueue& one = makeQueue();
    LgQueue& other = makeQueue();
    for (int i = 0; i < 10; ++i) add(i % 2 == 0 ? one : other, std::to_string(i));
    std::vector<Step> steps;
    std::vector<std::size_t> lines;
    std::vector<std::uint64_t> states;
    atSteps(
        [&](Step at)
        {
            steps.push_back(at);
            lines.push_back(texts().size());
            states.push_back(_map.header()._state);
        });
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(steps, (std::vector<Step>{Step::Collected, Step::Prepared, Step::Committed,
                                        Step::Wrote, Step::CommittedAgain, Step::MovedOne,
                                        Step::MovedOne, Step::Done}));
    EXPECT_EQ(lines, (std::vector<std::size_t>{0, 0, 0, 10, 10, 10, 10, 10}));
    // The number of the batch, and Idle, Writing or Written.
    EXPECT_EQ(states, (std::vector<std::uint64_t>{0, 0, 5, 5, 6, 6, 6, 4}));
}

TEST_F(LgServiceWriterTest, ThePartOfTheFileIsInTheMapBeforeItIsWritten)
{
    start();
    add(makeQueue(), "text");
    std::uint64_t size = 0;
    std::optional<LgMap::Batch> batch;
    LgServiceLog* const log = dynamic_cast<LgServiceLog*>(LgLog::getLevelOutput(LgTypes::Warning));
    ASSERT_NE(log, nullptr);
    std::string written;
    atSteps(
        [&](Step at)
        {
            if (at == Step::Committed)
            {
                batch = _map.batch(1);
                size = log->file().getSize();
            }
            if (at != Step::Wrote) return;
            written.resize(log->file().getSize() - size);
            log->file().readAt(size, written.data(), written.size());
        });
    EXPECT_TRUE(_writer->writeBatch());
    ASSERT_TRUE(batch);
    ASSERT_EQ(batch->_fileCount, 1U);
    EXPECT_EQ(batch->_files[0]._offset, size);
    EXPECT_EQ(batch->_files[0]._length, written.size());
    // The dates, and the line.
    ASSERT_EQ(batch->_lineCount, 2U);
    ASSERT_EQ(batch->_lines[0]._length + batch->_lines[1]._length, written.size());
    EXPECT_EQ(batch->_lines[0]._queue, LgMap::NONE);
    EXPECT_EQ(batch->_lines[1]._queue, 0);
    const std::size_t dates = batch->_lines[0]._length;
    EXPECT_EQ(batch->_lines[0]._hash, LgMap::hashOf(written.data(), dates));
    EXPECT_EQ(batch->_lines[1]._hash,
              LgMap::hashOf(written.data() + dates, written.size() - dates));
    EXPECT_EQ(batch->_queueCount, 1U);
}

// The writer keeps the list of the queues; threads come and go all the same.
TEST_F(LgServiceWriterTest, QueuesAreSeenFromTheirFirstEventToTheirEnd)
{
    start();
    // Of threads of other tests.
    const std::size_t before = LgLog::getRegistry()->getQueueList().size();
    Texts expected;
    for (int i = 0; i < 20; ++i)
    {
        LgQueue& queue = makeQueue();
        expected.push_back(std::to_string(i));
        add(queue, expected.back());
        if (i % 3 == 0) endQueues();
        EXPECT_TRUE(_writer->writeBatch());
        EXPECT_EQ(texts(), expected);
        // Takes the ended ones out of the registry.
        writeAll();
    }
    EXPECT_EQ(LgLog::getRegistry()->getQueueList().size(), before + _queues.size());
}

TEST_F(LgServiceWriterTest, BatchesAreBounded)
{
    start();
    LgQueue& queue = makeQueue();
    for (int i = 0; i < 2500; ++i) add(queue, std::to_string(i));
    std::vector<std::size_t> counts;
    while (_writer->writeBatch()) counts.push_back(texts().size());
    EXPECT_EQ(counts, (std::vector<std::size_t>{992, 1984, 2500}));
}

TEST_F(LgServiceWriterTest, BatchesOfLongTextsAreBoundedByTheirSize)
{
    start();
    LgQueue& queue = makeQueue();
    const std::string text(20000, 'x');
    for (int i = 0; i < 30; ++i) add(queue, text);
    // Until 256 KiB are reached.
    std::vector<std::size_t> counts;
    while (_writer->writeBatch()) counts.push_back(texts().size());
    EXPECT_EQ(counts, (std::vector<std::size_t>{14, 28, 30}));
}

// Beside many queues, one look at all of them serves several batches.
class LgServiceWriterLookTest : public LgServiceWriterTest
{
protected:
    static constexpr std::size_t SILENT = 200;
    static constexpr std::size_t MOST = LgMap::MOST_EVENTS;
    // For 16 lines per queue.
    static constexpr std::size_t BATCHES = 4;

    void startBesideSilentThreads()
    {
        _settings._characters = 32768;
        _settings._limit = 1ULL << 30;
        start();
        for (std::size_t i = 0; i < SILENT; ++i) makeQueue();
        _settings._characters = 1U << 20;
    }

    // Events of several queues.
    void fill(std::size_t count)
    {
        LgQueue* queues[5];
        for (LgQueue*& queue : queues) queue = &makeQueue();
        for (std::size_t i = 0; i < count; ++i)
        {
            _expected.push_back(std::to_string(i));
            add(*queues[i * i % 5], _expected.back());
        }
    }

    // Reserved before the others, and so earlier; published during the first batch.
    void publishLate()
    {
        LgQueue& late = *_queues.front();
        atSteps(
            [&late](Step at)
            {
                if (at != Step::Wrote || !late.isEmpty()) return;
                late.getStream() << "late" << Zu::ends;
                late.addEntry();
                LgServiceWriter::_atStep = nullptr;
            });
    }

    void expectLateAt(std::size_t place)
    {
        _expected.insert(_expected.begin() + static_cast<std::ptrdiff_t>(place), "late");
        EXPECT_EQ(texts(), _expected);
    }

    Texts _expected;
};

TEST_F(LgServiceWriterLookTest, SeveralBatchesOfALookMergeAllQueuesByTime)
{
    startBesideSilentThreads();
    fill(3500);
    EXPECT_EQ(writeAll(), 4);
    EXPECT_EQ(texts(), _expected);
}

TEST_F(LgServiceWriterLookTest, ALookServesABoundedNumberOfBatches)
{
    startBesideSilentThreads();
    ASSERT_TRUE(_queues.front()->reserveEntry(LgTypes::Warning));
    fill(6000);
    publishLate();
    EXPECT_EQ(writeAll(), 7);
    expectLateAt(BATCHES * MOST);
}

TEST_F(LgServiceWriterLookTest, AQueueThatComesBringsANewLook)
{
    startBesideSilentThreads();
    ASSERT_TRUE(_queues.front()->reserveEntry(LgTypes::Warning));
    fill(3000);
    publishLate();
    EXPECT_TRUE(_writer->writeBatch());
    add(makeQueue(), "new");
    _expected.emplace_back("new");
    writeAll();
    expectLateAt(MOST);
}

TEST_F(LgServiceWriterLookTest, AQueueWhoseThreadEndsIsWrittenToItsEnd)
{
    startBesideSilentThreads();
    const std::size_t before = LgLog::getRegistry()->getQueueList().size() - SILENT;
    fill(3000);
    EXPECT_TRUE(_writer->writeBatch());
    add(*_queues.back(), "last");
    _expected.emplace_back("last");
    endQueues();
    writeAll();
    EXPECT_EQ(texts(), _expected);
    EXPECT_EQ(LgLog::getRegistry()->getQueueList().size(), before);
}

TEST_F(LgServiceWriterLookTest, LossesAreReportedOnce)
{
    startBesideSilentThreads();
    LgQueue& queue = makeQueue();
    const auto flood = [&queue]
    {
        int added = 0;
        for (; queue.reserveEntry(LgTypes::Warning); ++added)
        {
            queue.getStream() << "x" << Zu::ends;
            queue.addEntry();
        }
        for (int i = 1; i < 7; ++i) EXPECT_FALSE(queue.reserveEntry(LgTypes::Warning));
        return added;
    };
    int added = flood();
    EXPECT_TRUE(_writer->writeBatch());
    added += flood();
    writeAll();
    EXPECT_EQ(lostInFile(), 14U);
    EXPECT_EQ(_map.queueAt(_map.indexOf(queue))._reported, 14U);
    const Texts found = texts();
    EXPECT_EQ(std::count(found.begin(), found.end(), "x"), added);
}

// A look knows a queue without events by where it stands, which a whole lap does not change.
TEST_F(LgServiceWriterLookTest, ALapIsNotTakenForSilence)
{
    _settings._entries = 64;
    start();
    LgQueue& queue = makeQueue();
    for (int i = 0; i < 300; ++i)
    {
        for (int j = 0; j < 16; ++j)
        {
            _expected.push_back(std::to_string(i) + "." + std::to_string(j));
            add(queue, _expected.back());
        }
        if (i % 3 != 0) continue;
        EXPECT_EQ(writeAll(), 1);
    }
    writeAll();
    EXPECT_EQ(texts(), _expected);
}

TEST_F(LgServiceWriterLookTest, TheEarliestEventThatIsLeftIsKnown)
{
    constexpr std::uint64_t NONE = ~std::uint64_t{0};
    startBesideSilentThreads();
    EXPECT_EQ(_writer->getEarliestLeft(), NONE);
    LgQueue& queue = makeQueue();
    for (int i = 0; i < 2500; ++i) add(queue, "x");
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_TRUE(_writer->writeBatch());
        EXPECT_EQ(_writer->getEarliestLeft(), queue.readEntry().getTimeStamp());
    }
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(_writer->getEarliestLeft(), NONE);
}

TEST_F(LgServiceWriterLookTest, LogsThatAreOpenedAnewGetTheRest)
{
    startBesideSilentThreads();
    fill(3000);
    EXPECT_TRUE(_writer->writeBatch());
    _writer->reopen();
    writeAll();
    EXPECT_EQ(texts(), _expected);
}

// With the queues of the process, which a fork concerns.
class LgServiceWriterForkTest : public LgServiceWriterLookTest
{
protected:
    ~LgServiceWriterForkTest() override
    {
        _threads.stop();
    }

    void startThreads()
    {
        _settings._mapDirectory.clear();
        _settings._characters = 32768;
        _settings._limit = 1ULL << 30;
        _logger.emplace();
        _threads.start(_settings);
        ASSERT_TRUE(_threads.map().isOpen());
        _mapInUse = &_threads.map();
        _writer.emplace(_threads.map(), _threads.waiting());
        for (std::size_t i = 0; i < SILENT; ++i) makeQueue();
    }

    std::uint64_t waiting() const
    {
        const auto add = [](std::uint64_t sum, const LgQueue* queue)
        { return sum + queue->getWaitingCount(); };
        return std::accumulate(_queues.begin(), _queues.end(), std::uint64_t{0}, add);
    }

    // In the child of a fork. Returns whether its service has its own event to write, and no other.
    bool writesOwnEvent()
    {
        _threads.start(_settings);
        LgServiceWriter writer(_threads.map(), _threads.waiting());
        add(*Zu::LgServiceThreads::queueOfThread(), "of the child");
        const bool isWritten = writer.writeBatch();
        const bool isLeft = writer.getEarliestLeft() != ~std::uint64_t{0} || writer.writeBatch();
        _threads.stop();
        _threads.leaveNothing();
        return isWritten && !isLeft;
    }

    Zu::LgServiceThreads& _threads = Zu::LgServiceThreads::instance();
};

// What the look has found and not written yet is the parent's.
TEST_F(LgServiceWriterForkTest, AForkBetweenTwoBatchesOfALookLeavesTheRestToTheParent)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    startThreads();
    fill(3500);
    EXPECT_TRUE(_writer->writeBatch());
    const std::uint64_t left = _writer->getEarliestLeft();
    EXPECT_NE(left, ~std::uint64_t{0});
    if (support::forkProcess() == support::Side::CHILD) std::_Exit(writesOwnEvent() ? 0 : 1);
    EXPECT_EQ(support::awaitForkedChild(), 0);
    EXPECT_EQ(_writer->getEarliestLeft(), left);
    EXPECT_EQ(waiting(), 3500 - MOST);
    EXPECT_EQ(writeAll(), 3);
    _expected.insert(_expected.begin() + MOST, "of the child");
    EXPECT_EQ(texts(), _expected);
}

TEST_F(LgServiceWriterTest, WhatComesDuringABatchIsInTheNext)
{
    start();
    LgQueue& queue = makeQueue();
    add(queue, "one");
    atSteps(
        [&](Step at)
        {
            if (at == Step::Wrote) add(queue, "two");
        });
    EXPECT_TRUE(_writer->writeBatch());
    LgServiceWriter::_atStep = nullptr;
    EXPECT_EQ(texts(), Texts{"one"});
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(texts(), (Texts{"one", "two"}));
}

// Fills the queue; then so many events are lost.
void flood(LgQueue& queue, int losses)
{
    while (queue.reserveEntry(LgTypes::Warning))
    {
        queue.getStream() << "x" << Zu::ends;
        queue.addEntry();
    }
    while (--losses > 0) EXPECT_FALSE(queue.reserveEntry(LgTypes::Warning));
}

TEST_F(LgServiceWriterTest, LossesAddUpWhenTheThreadHasEnded)
{
    start();
    LgQueue& queue = makeQueue();
    const std::uint32_t index = _map.indexOf(queue);
    flood(queue, 7);
    writeAll();
    EXPECT_EQ(lostInFile(), 7U);
    flood(queue, 5);
    writeAll();
    EXPECT_EQ(lostInFile(), 12U);
    EXPECT_EQ(_map.queueAt(index)._reported, 12U);
    // No entry has these.
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.beginInsertion();
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(queue.reserveEntry(LgTypes::Warning));
    queue.getStream() << "last" << Zu::ends;
    queue.endInsertion();
    EXPECT_EQ(queue.getLostCount(), 15U);
    writeAll();
    EXPECT_EQ(lostInFile(), 12U);
    endQueues();
    writeAll();
    EXPECT_EQ(lostInFile(), 15U);
    EXPECT_EQ(texts().back(), "Event overflow [3]");
    EXPECT_EQ(_map.queueAt(index)._block, 0U);
}

TEST_F(LgServiceWriterTest, LossesOfThreadsThatLiveOnAddUpWhenTheServiceEnds)
{
    _settings._entries = 64;
    _settings._characters = 32768;
    start();
    // More than a batch can have lines for.
    constexpr int THREADS = Zu::LgMap::MOST_EVENTS + 1;
    std::uint64_t lost = 0;
    for (int i = 0; i < THREADS; ++i) flood(makeQueue(), 2);
    atSteps(
        [&](Step at)
        {
            // If its entry of losses is in the batch, no entry has these.
            if (at != Step::Committed) return;
            for (LgQueue* const queue : _queues)
                if (!queue->canReserve()) queue->reserveEntry(LgTypes::Warning);
        });
    writeAll();
    LgServiceWriter::_atStep = nullptr;
    for (const LgQueue* const queue : _queues) lost += queue->getLostCount();
    EXPECT_LT(lostInFile(), lost);
    EXPECT_EQ(_writer->finish(), LgServiceWriter::Rest::None);
    EXPECT_EQ(lostInFile(), lost);
    // The next service of the process does not report them again.
    EXPECT_EQ(_writer->finish(), LgServiceWriter::Rest::None);
    endQueues();
    writeAll();
    EXPECT_EQ(lostInFile(), lost);
}

TEST_F(LgServiceWriterTest, LossesOfQueuesOnTheHeapAddUpAsWell)
{
    // The file has no room for a queue.
    start();
    LgServiceMap other;
    _mapInUse = &other;
    LgServiceWriter writer(other, _waiting);
    LgQueue& queue = makeQueue();
    ASSERT_EQ(other.getReportedOnHeap(queue), 0U);
    flood(queue, 7);
    while (writer.writeBatch()) continue;
    EXPECT_EQ(lostInFile(), 7U);
    EXPECT_EQ(other.getReportedOnHeap(queue), 7U);
    // No entry has these.
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.beginInsertion();
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(queue.reserveEntry(LgTypes::Warning));
    queue.getStream() << "last" << Zu::ends;
    queue.endInsertion();
    while (writer.writeBatch()) continue;
    EXPECT_EQ(lostInFile(), 7U);
    EXPECT_EQ(writer.finish(), LgServiceWriter::Rest::None);
    EXPECT_EQ(lostInFile(), 10U) << "the end reports what no line has reported";
    EXPECT_EQ(writer.finish(), LgServiceWriter::Rest::None);
    const LgQueue* const former = &queue;
    endQueues();
    while (writer.writeBatch()) continue;
    EXPECT_EQ(lostInFile(), 10U);
    EXPECT_EQ(other.getReportedOnHeap(*former), std::nullopt);
}

TEST_F(LgServiceWriterTest, TheEndLooksAtTheQueuesThatThereAreThen)
{
    _settings._entries = 64;
    _settings._characters = 32768;
    start();
    const std::size_t before = LgLog::getRegistry()->getQueueList().size();
    flood(makeQueue(), 7);
    endQueues();
    for (int i = 0; i < 3 && LgLog::getRegistry()->getQueueList().size() > before; ++i)
        _writer->writeBatch();
    ASSERT_EQ(LgLog::getRegistry()->getQueueList().size(), before);
    // The memory of the queue that is gone is that of one of these.
    flood(makeQueue(), 5);
    flood(makeQueue(), 3);
    EXPECT_EQ(_writer->finish(), LgServiceWriter::Rest::None);
    EXPECT_EQ(lostInFile(), 15U);
}

TEST_F(LgServiceWriterTest, LossesOfAThreadThatFloodsItsQueueAddUp)
{
    _settings._entries = 64;
    _settings._characters = 32768;
    start();
    constexpr int COUNT = 20000;
    LgQueue& queue = makeQueue();
    int accepted = 0;
    std::uint64_t lost = 0;
    std::thread thread(
        [&]
        {
            for (int i = 0; i < COUNT; ++i)
            {
                if (!queue.reserveEntry(LgTypes::Warning)) continue;
                queue.getStream() << "event" << Zu::ends;
                queue.addEntry();
                ++accepted;
            }
            lost = queue.getLostCount();
            queue.creatorExit();
        });
    while (queue.isCreatorAlive()) _writer->writeBatch();
    thread.join();
    _queues.clear();
    writeAll();
    const Texts found = texts();
    EXPECT_EQ(std::count(found.begin(), found.end(), "event"), accepted);
    EXPECT_EQ(lostInFile(), lost);
    EXPECT_EQ(static_cast<std::uint64_t>(accepted) + lost, std::uint64_t{COUNT});
}

// A stream of the application's own.
class Pieces : public std::ostream
{
public:
    Pieces() : std::ostream(&_recorder) {}

    static inline Pieces* _last = nullptr;
    PieceRecorder _recorder;
};

TEST_F(LgServiceWriterTest, StreamsOfOtherKindsGetLineByLine)
{
    LgLog::setOutputFunction(
        [](const char* name, bool) -> std::unique_ptr<std::ostream>
        {
            if (std::string(name).find("events.log") == std::string::npos)
                return std::make_unique<LgServiceLog>(name);
            auto pieces = std::make_unique<Pieces>();
            Pieces::_last = pieces.get();
            return pieces;
        });
    start();
    LgLog::setOutputFunction(&LgServiceLog::open);
    ASSERT_NE(Pieces::_last, nullptr);
    const std::size_t before = Pieces::_last->_recorder.pieces().size();
    LgQueue& queue = makeQueue();
    for (const char* const text : {"one", "two", "three"}) add(queue, text);
    EXPECT_EQ(writeAll(), 1);
    Texts pieces = Pieces::_last->_recorder.pieces();
    pieces.erase(pieces.begin(), pieces.begin() + static_cast<std::ptrdiff_t>(before));
    for (std::string& piece : pieces)
        if (piece != "|") piece.erase(0, piece.find(": ") + 2);
    EXPECT_EQ(pieces, (Texts{"one\n", "|", "two\n", "|", "three\n", "|"}));
    // One that takes nothing loses its events, which are counted.
    const std::uint64_t unwritten = Zu::LgReader::getUnwrittenCount();
    Pieces::_last->setstate(std::ios::badbit);
    add(queue, "four");
    add(queue, "five");
    writeAll();
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), unwritten + 2);
}

TEST_F(LgServiceWriterTest, EchoedLevelsGoToStandardOutputToo)
{
    const support::VariableGuard warning("ZU_LOG_WARNING");
    const support::VariableGuard error("ZU_LOG_RECOVERABLE_ERROR");
    const support::VariableGuard fatal("ZU_LOG_FATAL_ERROR");
    const support::VariableGuard informational("ZU_LOG_INFORMATIONAL");
    warning.set("%" + _other.file("both.log"));
    error.set("%");
    fatal.set("--");
    informational.set("+" + _other.file("both.log"));
    start();
    LgQueue& queue = makeQueue();
    const std::uint64_t unwritten = Zu::LgReader::getUnwrittenCount();
    add(queue, "both", LgTypes::Warning);
    add(queue, "output", LgTypes::Error);
    add(queue, "nowhere", LgTypes::FatalError);
    add(queue, "file", LgTypes::Informational);
    add(queue, "events", LgTypes::InternalError);
    add(queue, "profile", LgTypes::Profiling);
    std::string out = support::coutOf([&] { writeAll(); });
    std::ifstream file(_other.file("both.log"));
    Texts found;
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line.rfind("=====", 0) != 0) found.push_back(line);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(out.substr(0, out.find('\n')), found[0]);
    EXPECT_NE(found[0].find("Warning: both"), std::string::npos);
    EXPECT_NE(found[1].find("Informational: file"), std::string::npos);
    out.erase(0, out.find('\n') + 1);
    EXPECT_NE(out.find("Error: output\n"), std::string::npos) << out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
    EXPECT_EQ(texts(), Texts{"events"});
    EXPECT_EQ(texts("prof.log"), Texts{"profile"});
    EXPECT_TRUE(queue.isEmpty());
    // These are not unwritten: they were not meant for a file.
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), unwritten);
}

TEST_F(LgServiceWriterTest, TimeStampsCanBeSwitchedOffAndOn)
{
    start();
    LgQueue& queue = makeQueue();
    const bool wereEnabled = LgLog::isTimeStampsEnabled();
    add(queue, "with");
    writeAll();
    LgLog::disableTimeStamps();
    add(queue, "without");
    writeAll();
    LgLog::enableTimeStamps();
    add(queue, "with again");
    writeAll();
    if (!wereEnabled) LgLog::disableTimeStamps();
    const Texts lines = _logger->linesOf("events.log");
    ASSERT_EQ(lines.size(), 3U);
    const std::string tail = " (0x00000001) Warning: with";
    EXPECT_EQ(lines[0].size(), 21 + tail.size());
    EXPECT_EQ(lines[0].substr(21), tail);
    EXPECT_EQ(lines[1], "without");
    EXPECT_EQ(lines[2].substr(21), tail + " again");
}

TEST_F(LgServiceWriterTest, ALockThatFailsRaisesAndKeepsTheEvents)
{
    const support::VariableGuard lock("ZU_INTERNAL_INTERPROCESS_LOG_LOCK");
    lock.set("lgServiceWriterTest-" + std::to_string(support::processId()));
    start();
    ASSERT_NE(LgLog::getInterProcessLock(), nullptr);
    LgQueue& queue = makeQueue();
    add(queue, "kept");
    // A holder that has died.
    std::thread([] { LgLog::getInterProcessLock()->lock(); }).join();
    EXPECT_ANY_THROW(_writer->writeBatch());
    EXPECT_FALSE(queue.isEmpty());
    EXPECT_EQ(texts(), Texts());
    EXPECT_EQ(_map.header()._state, 0U);
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(texts(), Texts{"kept"});
    EXPECT_TRUE(queue.isEmpty());
}

// Blocks the log of warnings while it lives, and stops the clock of its tries.
class BlockedLog
{
public:
    explicit BlockedLog(std::string path) : _path(std::move(path))
    {
        std::filesystem::remove(_path);
        std::filesystem::create_directory(_path);
        LgServiceLog::_now = [] { return LgServiceLog::Clock::time_point(std::chrono::hours(1)); };
    }

    ~BlockedLog()
    {
        unblock();
        LgServiceLog::_now = &LgServiceLog::Clock::now;
    }

    BlockedLog(const BlockedLog&) = delete;
    BlockedLog& operator=(const BlockedLog&) = delete;

    void unblock() const
    {
        std::error_code error;
        if (std::filesystem::is_directory(_path, error)) std::filesystem::remove(_path, error);
    }

private:
    const std::string _path;
    StreamCapture _errors{std::cerr};
};

LgServiceLog& logOfWarnings()
{
    return dynamic_cast<LgServiceLog&>(*LgLog::getLevelOutput(LgTypes::Warning));
}

TEST_F(LgServiceWriterTest, TheEndTriesOnceMore)
{
    start();
    const BlockedLog blocked(logOfWarnings().getPath());
    add(makeQueue(), "waits");
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_GT(logOfWarnings().getPending(), 0U);
    EXPECT_FALSE(_writer->writeBatch());
    blocked.unblock();
    EXPECT_EQ(_writer->finish(), LgServiceWriter::Rest::None);
    EXPECT_EQ(texts(), Texts{"waits"});
}

TEST_F(LgServiceWriterTest, WhatWaitsAtTheEndIsKeptForTheNextService)
{
    start();
    const std::uint64_t before = Zu::LgReader::getUnwrittenCount();
    const BlockedLog blocked(logOfWarnings().getPath());
    add(makeQueue(), "waits");
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(_writer->finish(), LgServiceWriter::Rest::Kept);
    EXPECT_EQ(logOfWarnings().getPending(), 0U);
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before);
    blocked.unblock();
    _writer.emplace(_map, _waiting);
    _writer->openLogs();
    add(makeQueue(), "later");
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(_writer->finish(), LgServiceWriter::Rest::None);
    EXPECT_EQ(texts(), (Texts{"waits", "later"}));
}

TEST_F(LgServiceWriterTest, WithoutAMapWhatWaitsAtTheEndIsCounted)
{
    start();
    const std::uint64_t before = Zu::LgReader::getUnwrittenCount();
    const BlockedLog blocked(logOfWarnings().getPath());
    LgServiceMap none;
    Zu::LgServiceWaiting nowhere(none);
    _writer.emplace(none, nowhere);
    add(makeQueue(), "waits");
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(_writer->finish(), LgServiceWriter::Rest::Lost);
    EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), before + 1);
    _writer.emplace(_map, _waiting);
}

// The intent of a batch names the log that fails, so that its lines are not taken for written ones.
TEST_F(LgServiceWriterTest, AFileThatFailsIsInTheBatch)
{
    start();
    const BlockedLog blocked(logOfWarnings().getPath());
    add(makeQueue(), "waits");
    std::vector<std::uint64_t> batches;
    atSteps(
        [&](Step at)
        {
            if (at != Step::Tried && at != Step::Wrote) return;
            const LgMap::Batch& batch = _map.batch(1);
            ASSERT_EQ(batch._fileCount, 1U);
            EXPECT_EQ(batch._files[0]._isOpen, 0U);
            ASSERT_EQ(batch._lineCount, 1U);
            EXPECT_EQ(batch._lines[0]._file, 0);
            const LgMap::WaitingLog& log = _map.header()._waiting[batch._files[0]._log];
            batches.push_back(log._waiting[log._current]._batch);
        });
    EXPECT_TRUE(_writer->writeBatch());
    EXPECT_EQ(batches, (std::vector<std::uint64_t>{0, 1}));
    blocked.unblock();
    _writer->finish();
}

TEST_F(LgServiceWriterTest, QueuesOnTheHeapAreWrittenToo)
{
    start();
    auto* const queue = new LgQueue(77);
    LgLog::getRegistry()->registerQueue(queue);
    _queues.push_back(queue);
    add(*queue, "heap");
    add(makeQueue(), "file");
    EXPECT_EQ(writeAll(), 1);
    EXPECT_EQ(texts(), (Texts{"heap", "file"}));
}

TEST_F(LgServiceWriterTest, QueuesOfEndedThreadsAreDeleted)
{
    start();
    const std::size_t before = LgLog::getRegistry()->getQueueList().size();
    for (int i = 0; i < 5; ++i) add(makeQueue(), std::to_string(i));
    endQueues();
    EXPECT_EQ(LgLog::getRegistry()->getQueueList().size(), before + 5);
    writeAll();
    EXPECT_EQ(LgLog::getRegistry()->getQueueList().size(), before);
    EXPECT_EQ(texts(), (Texts{"0", "1", "2", "3", "4"}));
}

} // namespace

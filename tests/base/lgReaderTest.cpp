#include "base/lgReader.h"

#include "base/lgInterProcessLock.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgRegistry.h"
#include "base/lgStream.h"

#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iomanip>
#include <iostream>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace
{

using support::addEvent;
using support::Entered;
using support::Environment;
using support::logOutputOf;
using support::printedBy;
using support::ProgramResult;
using support::setTimeOfNext;
using support::TempDir;
using Zu::LgLog;
using Zu::LgQueue;
using Zu::LgReader;
namespace LgTypes = Zu::LgTypes;

// With 4 entries; two events fill all the slots for events.
class SmallQueue : public LgQueue
{
public:
    explicit SmallQueue(std::uint32_t threadId = 0) : LgQueue(threadId, 4, 1024) {}
};

// What happens to a queue that a test does not own.
struct Notes
{
    bool _ended = false;
    int _removed = 0;
    std::function<void()> _onRemoved;
};

class Noting : public LgQueue::Observer
{
public:
    explicit Noting(Notes& notes) : _notes(notes) {}
    ~Noting() override
    {
        _notes._ended = true;
    }
    void entryAdded(LgQueue&) override {}
    void entryRemoved(LgQueue&) override
    {
        ++_notes._removed;
        if (_notes._onRemoved) _notes._onRemoved();
    }
    void waitForSpace(const LgQueue&, int) override {}

private:
    Notes& _notes;
};

void note(LgQueue& queue, Notes& notes)
{
    queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new Noting(notes)));
}

// All levels append to one file; written() returns what follows its banner. Time stamps are off
// unless a test enables them.
class LgReaderTest : public support::LogFilesTest
{
protected:
    LgReaderTest()
    {
        setAllLevels("+all.log");
    }

    void start()
    {
        init();
        LgLog::disableTimeStamps();
        _banner = support::bytesOf("all.log");
    }

    // A queue that belongs to the registry and, when its creator has ended, to the reader.
    static LgQueue& enterNew(Notes& notes)
    {
        auto* const queue = new LgQueue;
        note(*queue, notes);
        LgLog::getRegistry()->registerQueue(queue);
        return *queue;
    }

    static Zu::List<LgQueue*> entered()
    {
        return LgLog::getRegistry()->getQueueList();
    }

    std::string written() const
    {
        return support::bytesOf("all.log").substr(_banner.size());
    }

    LgReader _reader;

private:
    std::string _banner;
};

std::string prefixOf(std::uint64_t ticks, unsigned long thread, const char* level)
{
    std::array<char, 100> prefix{};
    std::snprintf(prefix.data(), prefix.size(),
                  "%010lu %010lu (0x%08lx) %s: ", static_cast<unsigned long>(ticks >> 32),
                  static_cast<unsigned long>(ticks & 0xFFFFFFFFU), thread, level);
    return prefix.data();
}

// Loses events of level Error one after another in a queue filled by two events, which are then
// taken out again.
void lose(SmallQueue& queue, int count)
{
    for (int i = 0; i < 2; ++i) addEvent(queue, LgTypes::Error, "fills");
    for (int i = 0; i < count; ++i) EXPECT_FALSE(queue.reserveEntry(LgTypes::Error));
    std::array<char, 1024> text{};
    for (int i = 0; i < 2; ++i)
    {
        queue.getStream() >> text.data();
        queue.removeEntry();
    }
    EXPECT_TRUE(queue.readEntry().isOverflowEntry());
}

TEST_F(LgReaderTest, WithoutEventsThereIsNothingToWrite)
{
    start();
    EXPECT_FALSE(_reader.eventsPending());
    EXPECT_FALSE(_reader.flushEarliest());
    _reader.flushAll();
    Entered<LgQueue> queues[2];
    EXPECT_FALSE(_reader.eventsPending());
    EXPECT_FALSE(_reader.flushEarliest());
    _reader.flushAll();
    EXPECT_EQ(entered().size(), 2U);
    EXPECT_EQ(written(), "");
}

TEST_F(LgReaderTest, EventsArePendingUntilTheyAreWritten)
{
    start();
    Entered<LgQueue> first;
    Entered<LgQueue> second;
    addEvent(second, LgTypes::Warning, "one");
    EXPECT_TRUE(_reader.eventsPending());
    addEvent(first, LgTypes::Warning, "two");
    EXPECT_TRUE(_reader.flushEarliest());
    EXPECT_TRUE(_reader.eventsPending());
    EXPECT_TRUE(_reader.flushEarliest());
    EXPECT_FALSE(_reader.eventsPending());
    EXPECT_FALSE(_reader.flushEarliest());
}

struct LineRow
{
    std::uint64_t _ticks;
    std::uint32_t _thread;
    LgTypes::Level _level;
    const char* _text;
    const char* _line;
};

const LineRow LINES[] = {
    {4294967301, 0xabc, LgTypes::FatalError, "BuildInfo Version mismatch",
     "0000000001 0000000005 (0x00000abc) Fatal Error: BuildInfo Version mismatch\n"},
    {0, 0, LgTypes::InternalError, "text",
     "0000000000 0000000000 (0x00000000) Internal Error: text\n"},
    {1, 1, LgTypes::Error, "text", "0000000000 0000000001 (0x00000001) Error: text\n"},
    {4294967295, 0xFFFFFFFF, LgTypes::Warning, "text",
     "0000000000 4294967295 (0xffffffff) Warning: text\n"},
    {4294967296, 0xABCDEF01, LgTypes::Informational, "text",
     "0000000001 0000000000 (0xabcdef01) Informational: text\n"},
    {1234567890123456789, 10, LgTypes::Tracing, "text",
     "0287445236 2112454933 (0x0000000a) Tracing: text\n"},
    {0x8000000000000000, 16, LgTypes::Profiling, "text",
     "2147483648 0000000000 (0x00000010) Profiling: text\n"},
    // Reserved one tick before the logger started.
    {0xFFFFFFFFFFFFFFFF, 7, LgTypes::Warning, "text",
     "4294967295 4294967295 (0x00000007) Warning: text\n"},
    {5, 7, LgTypes::Warning, "", "0000000000 0000000005 (0x00000007) Warning: \n"},
    {5, 7, LgTypes::Warning, "  100% %s\t\\n ",
     "0000000000 0000000005 (0x00000007) Warning:   100% %s\t\\n \n"},
    {5, 7, LgTypes::Warning, "first\nsecond\n\nthird\n",
     "0000000000 0000000005 (0x00000007) Warning: first\nsecond\n\nthird\n\n"},
    {5, 7, LgTypes::Warning, "r\xC3\xB6hre \xFF",
     "0000000000 0000000005 (0x00000007) Warning: r\xC3\xB6hre \xFF\n"},
};

TEST_F(LgReaderTest, ALineBearsTimeThreadLevelAndText)
{
    start();
    LgLog::enableTimeStamps();
    std::string expected;
    for (const LineRow& row : LINES)
    {
        Entered<LgQueue> queue(row._thread);
        addEvent(queue, row._level, row._text);
        setTimeOfNext(queue, row._ticks);
        EXPECT_TRUE(_reader.flushEarliest());
        EXPECT_TRUE(queue.isEmpty());
        expected += row._line;
        // Nothing waits in the stream: a line can be read as soon as it is written.
        EXPECT_EQ(written(), expected);
    }
}

TEST_F(LgReaderTest, TheTimeOfALineIsThatOfItsReservation)
{
    start();
    LgLog::enableTimeStamps();
    Entered<LgQueue> queue(0x1f);
    addEvent(queue, LgTypes::Error, "text");
    const std::uint64_t ticks = queue.readEntry().getTimeStamp() - LgLog::getStart();
    _reader.flushAll();
    EXPECT_EQ(written(), prefixOf(ticks, 0x1f, "Error") + "text\n");
}

TEST_F(LgReaderTest, WithoutTimeStampsTheLineIsTheText)
{
    start();
    Entered<SmallQueue> queue(0xabc);
    std::string expected;
    for (const LineRow& row : LINES)
    {
        addEvent(queue, row._level, row._text);
        EXPECT_TRUE(_reader.flushEarliest());
        expected += std::string(row._text) + "\n";
    }
    lose(queue, 17);
    EXPECT_TRUE(_reader.flushEarliest());
    EXPECT_EQ(written(), expected + "Event overflow [17]\n");
}

TEST_F(LgReaderTest, LostEventsAreALineOfLevelInformational)
{
    start();
    LgLog::enableTimeStamps();
    Entered<SmallQueue> queue(0xabc);
    lose(queue, 17);
    setTimeOfNext(queue, (std::uint64_t{2} << 32) + 98304);
    EXPECT_TRUE(_reader.flushEarliest());
    EXPECT_EQ(written(), "0000000002 0000098304 (0x00000abc) Informational: Event overflow [17]\n");
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(LgReaderTest, LostEventsGoWhereInformationalTextGoes)
{
    const struct
    {
        const char* _informational;
        bool _inFile;
        bool _printed;
    } cases[] = {{"info.log", true, false},
                 {"%info.log", true, true},
                 {"%", false, true},
                 {"+", false, false},
                 {"--", false, false}};
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row._informational);
        setAllLevels("%+all.log");
        set("ZU_LOG_INFORMATIONAL", row._informational);
        start();
        const std::string banner = support::bytesOf("info.log");
        Entered<SmallQueue> queue;
        lose(queue, 3);
        const std::string out = printedBy([&] { EXPECT_TRUE(_reader.flushEarliest()); });
        EXPECT_EQ(out, row._printed ? "Event overflow [3]\n" : "");
        EXPECT_EQ(support::bytesOf("info.log"),
                  banner + (row._inFile ? "Event overflow [3]\n" : ""));
        EXPECT_EQ(written(), "");
        EXPECT_TRUE(queue.isEmpty());
        destroy();
        std::filesystem::remove("info.log");
    }
}

TEST_F(LgReaderTest, ALineGoesToTheFileAndTheEchoOfItsLevel)
{
    const struct
    {
        const char* _value;
        bool _inFile;
        bool _printed;
    } cases[] = {{"own.log", true, false},   {"%own.log", true, true}, {"%", false, true},
                 {"+", false, false},        {"--", false, false},     {"%+", false, true},
                 {"%missing/x", false, true}};
    for (const support::LogLevel& level : support::LOG_LEVELS)
    {
        for (const auto& row : cases)
        {
            SCOPED_TRACE(std::string(level._variable) + "=" + row._value);
            setAllLevels("%+all.log");
            set(level._variable, row._value);
            start();
            LgLog::enableTimeStamps();
            const std::string banner = support::bytesOf("own.log");
            Entered<LgQueue> queue(0x2a);
            addEvent(queue, level._level, "first");
            setTimeOfNext(queue, 9);
            std::string out = printedBy([&] { EXPECT_TRUE(_reader.flushEarliest()); });
            // The second text shows that the first was taken from the stream.
            addEvent(queue, level._level, "second");
            setTimeOfNext(queue, 10);
            out += printedBy([&] { EXPECT_TRUE(_reader.flushEarliest()); });
            EXPECT_TRUE(queue.isEmpty());
            EXPECT_EQ(queue.getStream().getNextSize(), 0U);

            const std::string lines = prefixOf(9, 0x2a, level._name) + "first\n" +
                                      prefixOf(10, 0x2a, level._name) + "second\n";
            EXPECT_EQ(out, row._printed ? lines : "");
            EXPECT_EQ(support::bytesOf("own.log"), banner + (row._inFile ? lines : ""));
            EXPECT_EQ(written(), "");
            destroy();
            std::filesystem::remove("own.log");
        }
    }
}

TEST_F(LgReaderTest, LevelsOfOneFileAreLinesOfOneSequence)
{
    start();
    Entered<LgQueue> queue;
    std::string expected;
    for (const support::LogLevel& level : support::LOG_LEVELS)
    {
        addEvent(queue, level._level, level._name);
        expected += std::string(level._name) + "\n";
    }
    _reader.flushAll();
    EXPECT_EQ(written(), expected);
}

TEST_F(LgReaderTest, TheLongestTextIsWrittenWhole)
{
    start();
    Entered<LgQueue> queue;
    std::string expected;
    // The second one wraps around the end of the ring.
    for (const char letter : {'a', 'b'})
    {
        const std::string text(Zu::LgStream::getMaxSize(), letter);
        addEvent(queue, LgTypes::Warning, text);
        _reader.flushAll();
        expected += text + "\n";
    }
    EXPECT_EQ(expected.size(), 2U * 32767U);
    EXPECT_EQ(written(), expected);
}

TEST_F(LgReaderTest, OnEqualTimesTheQueueThatWasEnteredEarlierIsFirst)
{
    start();
    Entered<LgQueue> queues[3];
    for (const int i : {2, 1, 0})
    {
        addEvent(queues[i], LgTypes::Warning, std::to_string(i));
        setTimeOfNext(queues[i], 1000);
    }
    _reader.flushAll();
    EXPECT_EQ(written(), "0\n1\n2\n");
}

TEST_F(LgReaderTest, TheEarliestHeadIsWrittenWhereverItStands)
{
    std::array<std::uint64_t, 3> times = {10, 20, 30};
    start();
    std::string expected;
    do
    {
        Entered<LgQueue> queues[3];
        for (std::size_t i = 0; i < 3; ++i)
        {
            addEvent(queues[i], LgTypes::Warning, std::to_string(times[i]));
            setTimeOfNext(queues[i], times[i]);
        }
        for (const char* const text : {"10\n", "20\n", "30\n"})
        {
            EXPECT_TRUE(_reader.flushEarliest());
            expected += text;
            EXPECT_EQ(written(), expected);
        }
    } while (std::next_permutation(times.begin(), times.end()));
}

TEST_F(LgReaderTest, MergesManyEventsByTimeThenByQueue)
{
    constexpr std::size_t numQueues = 5;
    constexpr std::size_t numEvents = 40;
    // Time, queue and number in the queue of each event.
    std::vector<std::tuple<std::uint64_t, std::size_t, std::size_t>> events;
    std::mt19937 random(3);
    start();
    Entered<LgQueue> queues[numQueues];
    std::array<std::vector<std::uint64_t>, numQueues> times;
    for (std::size_t i = 0; i < numQueues; ++i)
    {
        std::uint64_t time = 0;
        for (std::size_t number = 0; number < numEvents; ++number)
        {
            time += random() % 3;
            times[i].push_back(time);
            events.emplace_back(time, i, number);
            addEvent(queues[i], LgTypes::Warning, std::to_string(i) + " " + std::to_string(number));
        }
        setTimeOfNext(queues[i], times[i][0]);
    }
    std::sort(events.begin(), events.end());
    std::array<std::size_t, numQueues> taken{};
    std::string expected;
    for (const auto& [time, queue, number] : events)
    {
        ASSERT_TRUE(_reader.flushEarliest());
        expected += std::to_string(queue) + " " + std::to_string(number) + "\n";
        ASSERT_EQ(written(), expected);
        if (++taken[queue] < numEvents) setTimeOfNext(queues[queue], times[queue][taken[queue]]);
    }
    EXPECT_FALSE(_reader.flushEarliest());
}

TEST_F(LgReaderTest, EventsAreMergedInTheOrderOfTheirReservation)
{
    start();
    LgLog::enableTimeStamps();
    Entered<LgQueue> first(1);
    Entered<LgQueue> second(2);
    ASSERT_TRUE(second.reserveEntry(LgTypes::Warning));
    second.getStream() << "reserved first" << Zu::ends;
    addEvent(first, LgTypes::Warning, "reserved second");
    second.addEntry();
    // A coarse counter may give both the same time.
    setTimeOfNext(first, second.readEntry().getTimeStamp() - LgLog::getStart() + 1);
    LgLog::disableTimeStamps();
    _reader.flushAll();
    EXPECT_EQ(written(), "reserved first\nreserved second\n");
}

TEST_F(LgReaderTest, AnEventThatIsNotPublishedHoldsNothingBack)
{
    start();
    Entered<LgQueue> slow;
    Entered<LgQueue> fast;
    ASSERT_TRUE(slow.reserveEntry(LgTypes::Warning));
    addEvent(fast, LgTypes::Warning, "reserved later");
    _reader.flushAll();
    EXPECT_EQ(written(), "reserved later\n");
    slow.getStream() << "published later" << Zu::ends;
    slow.addEntry();
    EXPECT_TRUE(_reader.flushEarliest());
    EXPECT_EQ(written(), "reserved later\npublished later\n");
}

TEST_F(LgReaderTest, LostEventsAreMergedByTheTimeOfTheFirstOne)
{
    start();
    Entered<SmallQueue> losing;
    Entered<LgQueue> other;
    for (const char* const text : {"one", "two"}) addEvent(losing, LgTypes::Error, text);
    EXPECT_FALSE(losing.reserveEntry(LgTypes::Error));
    addEvent(other, LgTypes::Error, "between the losses");
    EXPECT_FALSE(losing.reserveEntry(LgTypes::Error));
    _reader.flushAll();
    EXPECT_EQ(written(), "one\ntwo\nEvent overflow [2]\nbetween the losses\n");
}

TEST_F(LgReaderTest, AnOlderEventOfAnotherQueueIsWrittenBeforeLostOnes)
{
    start();
    Entered<SmallQueue> losing;
    Entered<LgQueue> other;
    lose(losing, 2);
    addEvent(other, LgTypes::Error, "older");
    setTimeOfNext(losing, 200);
    setTimeOfNext(other, 100);
    _reader.flushAll();
    EXPECT_EQ(written(), "older\nEvent overflow [2]\n");
}

TEST_F(LgReaderTest, AnEmptyQueueOfAThreadThatEndedIsDeletedInFrontOfTheFirstEvent)
{
    start();
    std::array<Notes, 5> notes;
    LgQueue& dead = enterNew(notes[0]);
    LgQueue& alive = enterNew(notes[1]);
    LgQueue& busy = enterNew(notes[2]);
    LgQueue& deadBehind = enterNew(notes[3]);
    LgQueue& aliveBehind = enterNew(notes[4]);
    dead.creatorExit();
    deadBehind.creatorExit();
    addEvent(busy, LgTypes::Warning, "text");

    EXPECT_TRUE(_reader.eventsPending());
    EXPECT_EQ(entered().size(), 5U);

    EXPECT_TRUE(_reader.flushEarliest());
    EXPECT_EQ(entered(), (Zu::List<LgQueue*>{&alive, &busy, &deadBehind, &aliveBehind}));
    EXPECT_TRUE(notes[0]._ended);
    EXPECT_FALSE(notes[3]._ended);

    EXPECT_FALSE(_reader.eventsPending());
    EXPECT_EQ(entered().size(), 4U);

    EXPECT_FALSE(_reader.flushEarliest());
    EXPECT_EQ(entered(), (Zu::List<LgQueue*>{&alive, &busy, &aliveBehind}));
    EXPECT_TRUE(notes[3]._ended);
    for (const std::size_t i : {1U, 2U, 4U}) EXPECT_FALSE(notes[i]._ended) << i;

    for (LgQueue* const queue : {&alive, &busy, &aliveBehind}) queue->creatorExit();
    EXPECT_FALSE(_reader.flushEarliest());
    EXPECT_TRUE(entered().empty());
    for (const Notes& note : notes) EXPECT_TRUE(note._ended);
    EXPECT_EQ(written(), "text\n");
}

TEST_F(LgReaderTest, FlushingAllDeletesTheQueuesOfAllThreadsThatEnded)
{
    start();
    std::array<Notes, 4> notes;
    LgQueue& drained = enterNew(notes[0]);
    LgQueue& busy = enterNew(notes[1]);
    LgQueue& dead = enterNew(notes[2]);
    LgQueue& alive = enterNew(notes[3]);
    addEvent(drained, LgTypes::Warning, "one");
    addEvent(busy, LgTypes::Warning, "two");
    addEvent(drained, LgTypes::Warning, "three");
    for (LgQueue* const queue : {&drained, &busy, &dead}) queue->creatorExit();
    _reader.flushAll();
    EXPECT_EQ(entered(), (Zu::List<LgQueue*>{&alive}));
    for (const std::size_t i : {0U, 1U, 2U}) EXPECT_TRUE(notes[i]._ended) << i;
    EXPECT_FALSE(notes[3]._ended);
    EXPECT_EQ(notes[0]._removed, 2);
    EXPECT_EQ(notes[1]._removed, 1);
    EXPECT_EQ(support::linesOf(written()).size(), 3U);
    alive.creatorExit();
    _reader.flushAll();
    EXPECT_TRUE(notes[3]._ended);
}

TEST_F(LgReaderTest, AQueueOfAThreadThatEndedIsDrainedAndDeletedAfterwards)
{
    start();
    Notes notes;
    LgQueue& queue = enterNew(notes);
    addEvent(queue, LgTypes::Warning, "one");
    addEvent(queue, LgTypes::Warning, "two");
    queue.creatorExit();
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_TRUE(_reader.flushEarliest());
        EXPECT_FALSE(notes._ended);
        EXPECT_EQ(entered().size(), 1U);
    }
    EXPECT_EQ(written(), "one\ntwo\n");
    EXPECT_FALSE(_reader.flushEarliest());
    EXPECT_TRUE(notes._ended);
    EXPECT_TRUE(entered().empty());
}

TEST_F(LgReaderTest, FlushingAllTakesInQueuesThatComeMeanwhile)
{
    start();
    Notes notes;
    Notes notesOfLater;
    LgQueue& queue = enterNew(notes);
    addEvent(queue, LgTypes::Warning, "one");
    addEvent(queue, LgTypes::Warning, "two");
    notes._onRemoved = [&]
    {
        if (notes._removed != 1) return;
        LgQueue& later = enterNew(notesOfLater);
        addEvent(later, LgTypes::Warning, "meanwhile");
        setTimeOfNext(later, 0);
        later.creatorExit();
    };
    _reader.flushAll();
    EXPECT_EQ(written(), "one\nmeanwhile\ntwo\n");
    EXPECT_TRUE(notesOfLater._ended);
    queue.creatorExit();
    _reader.flushAll();
}

// Guards its operations and counts how often the list was requested.
class GuardedRegistry : public Zu::LgRegistry
{
public:
    explicit GuardedRegistry(int& lists) : _lists(lists) {}

    void registerQueue(LgQueue* queue) override
    {
        const std::lock_guard guard(_mutex);
        _registry.registerQueue(queue);
    }

    void deregisterQueue(LgQueue* queue) override
    {
        const std::lock_guard guard(_mutex);
        _registry.deregisterQueue(queue);
    }

    Zu::List<LgQueue*> getQueueList() const override
    {
        const std::lock_guard guard(_mutex);
        ++_lists;
        return _registry.getQueueList();
    }

private:
    mutable std::mutex _mutex;
    Zu::LgSimpleRegistry _registry;
    int& _lists;
};

TEST_F(LgReaderTest, AsksForTheQueuesOncePerEvent)
{
    start();
    int lists = 0;
    LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new GuardedRegistry(lists)));
    Entered<LgQueue> queue;
    const auto asked = [&](const std::function<void()>& act)
    {
        lists = 0;
        act();
        return lists;
    };
    EXPECT_EQ(asked([&] { _reader.eventsPending(); }), 1);
    EXPECT_EQ(asked([&] { _reader.flushEarliest(); }), 1);
    EXPECT_EQ(asked([&] { _reader.flushAll(); }), 1);
    for (int i = 0; i < 5; ++i) addEvent(queue, LgTypes::Warning, "x");
    EXPECT_EQ(asked([&] { _reader.eventsPending(); }), 1);
    EXPECT_EQ(asked([&] { _reader.flushEarliest(); }), 1);
    EXPECT_EQ(asked([&] { _reader.flushAll(); }), 5);
    // The counter ends with the test.
    LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new Zu::LgSimpleRegistry));
}

// Puts the format of a stream back.
class FormatGuard
{
public:
    explicit FormatGuard(std::ostream& stream) : _stream(stream), _saved(nullptr)
    {
        _saved.copyfmt(stream);
    }
    FormatGuard(const FormatGuard&) = delete;
    FormatGuard& operator=(const FormatGuard&) = delete;
    ~FormatGuard()
    {
        _stream.copyfmt(_saved);
    }

private:
    std::ostream& _stream;
    std::ios _saved;
};

TEST_F(LgReaderTest, ALineLeavesFillAndBaseOfItsStreamsAsTheyAreAtFirst)
{
    setAllLevels("%+all.log");
    start();
    LgLog::enableTimeStamps();
    Entered<SmallQueue> queue;
    const FormatGuard guard(std::cout);
    std::ostream* const output = LgLog::getLevelOutput(LgTypes::Warning);
    const auto expectPlain = [&]
    {
        for (const std::ostream* const stream : {output, static_cast<std::ostream*>(&std::cout)})
        {
            EXPECT_EQ(stream->fill(), ' ');
            EXPECT_EQ(stream->flags() & std::ios_base::basefield, std::ios_base::dec);
            EXPECT_EQ(stream->width(), 0);
            EXPECT_TRUE(stream->good());
        }
    };
    addEvent(queue, LgTypes::Warning, "text");
    printedBy([&] { _reader.flushAll(); });
    expectPlain();
    lose(queue, 1);
    printedBy([&] { _reader.flushAll(); });
    expectPlain();
    // So it is, too, when somebody has left them in another state.
    for (std::ostream* const stream : {output, static_cast<std::ostream*>(&std::cout)})
        *stream << std::hex << std::setfill('*');
    addEvent(queue, LgTypes::Warning, "text");
    printedBy([&] { _reader.flushAll(); });
    expectPlain();
}

TEST_F(LgReaderTest, ALineHasItsFormWhateverTheStateOfItsStreams)
{
    const struct
    {
        const char* _what;
        void (*_change)(std::ostream&);
    } cases[] = {
        {"base", [](std::ostream& stream) { stream << std::hex; }},
        {"fill", [](std::ostream& stream) { stream << std::setfill('*'); }},
        {"letter case", [](std::ostream& stream) { stream << std::uppercase; }},
        {"base shown", [](std::ostream& stream) { stream << std::showbase; }},
        {"octal base shown", [](std::ostream& stream) { stream << std::oct << std::showbase; }},
        {"sign shown", [](std::ostream& stream) { stream << std::showpos; }},
        {"on the left", [](std::ostream& stream) { stream << std::left; }},
        {"internal", [](std::ostream& stream) { stream << std::internal; }},
    };
    setAllLevels("%+all.log");
    for (const auto& row : cases)
    {
        for (const bool withTimeStamps : {true, false})
        {
            SCOPED_TRACE(row._what + std::string(withTimeStamps ? "" : ", without time stamps"));
            start();
            if (withTimeStamps) LgLog::enableTimeStamps();
            const FormatGuard guard(std::cout);
            std::ostream* const output = LgLog::getLevelOutput(LgTypes::Warning);
            Entered<SmallQueue> queue(0xabc);
            std::string out;
            const auto flush = [&]
            {
                setTimeOfNext(queue, 4294967301);
                row._change(*output);
                row._change(std::cout);
                out += printedBy([&] { EXPECT_TRUE(_reader.flushEarliest()); });
            };
            addEvent(queue, LgTypes::Warning, "text");
            flush();
            lose(queue, 17);
            flush();
            const char* const expected =
                withTimeStamps
                    ? "0000000001 0000000005 (0x00000abc) Warning: text\n"
                      "0000000001 0000000005 (0x00000abc) Informational: Event overflow [17]\n"
                    : "text\nEvent overflow [17]\n";
            EXPECT_EQ(out, expected);
            EXPECT_EQ(written(), expected);
            destroy();
            LgLog::enableTimeStamps();
        }
    }
}

TEST_F(LgReaderTest, AStreamThatFailedLosesItsLinesAndKeepsTheEcho)
{
    setAllLevels("%+all.log");
    start();
    Entered<LgQueue> queue;
    const std::uint64_t unwritten = LgReader::getUnwrittenCount();
    LgLog::getLevelOutput(LgTypes::Warning)->setstate(std::ios_base::badbit);
    addEvent(queue, LgTypes::Warning, "lost");
    EXPECT_EQ(printedBy([&] { EXPECT_TRUE(_reader.flushEarliest()); }), "lost\n");
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(LgReader::getUnwrittenCount(), unwritten + 1);
    LgLog::getLevelOutput(LgTypes::Warning)->clear();
    addEvent(queue, LgTypes::Warning, "written");
    EXPECT_EQ(printedBy([&] { EXPECT_TRUE(_reader.flushEarliest()); }), "written\n");
    EXPECT_EQ(written(), "written\n");
    EXPECT_EQ(LgReader::getUnwrittenCount(), unwritten + 1);
}

// Takes nothing.
class FullBuffer : public std::streambuf
{
};

// Only events that a file should have had: lost ones are in another count, and the echo is no file.
TEST_F(LgReaderTest, EventsThatAFullFileDoesNotTakeAreCounted)
{
    setAllLevels("%+all.log");
    start();
    Entered<LgQueue> queue;
    std::ostream& file = *LgLog::getLevelOutput(LgTypes::Warning);
    FullBuffer full;
    std::streambuf* const former = file.rdbuf(&full);
    const std::uint64_t unwritten = LgReader::getUnwrittenCount();
    std::uint64_t events = 0;
    for (; queue.reserveEntry(LgTypes::Warning); ++events)
    {
        queue.getStream() << "lost" << Zu::ends;
        queue.addEntry();
    }
    ASSERT_EQ(queue.getLostCount(), 1U);
    printedBy([&] { _reader.flushAll(); });
    EXPECT_EQ(LgReader::getUnwrittenCount(), unwritten + events);
    file.rdbuf(former);
    addEvent(queue, LgTypes::Warning, "written");
    {
        const support::BufferGuard guard(std::cout, full);
        _reader.flushAll();
    }
    EXPECT_EQ(LgReader::getUnwrittenCount(), unwritten + events);
}

TEST_F(LgReaderTest, AFailedStandardOutputLeavesTheFile)
{
    setAllLevels("%+all.log");
    start();
    Entered<LgQueue> queue;
    addEvent(queue, LgTypes::Warning, "text");
    const std::string out = printedBy(
        [&]
        {
            std::cout.setstate(std::ios_base::badbit);
            EXPECT_TRUE(_reader.flushEarliest());
            std::cout.clear();
        });
    EXPECT_EQ(out, "");
    EXPECT_EQ(written(), "text\n");
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(LgReaderTest, AStreamThatIsAskedToRaiseLosesItsLinesAllTheSame)
{
    setAllLevels("%+all.log");
    start();
    Entered<LgQueue> queue;
    addEvent(queue, LgTypes::Warning, "one");
    addEvent(queue, LgTypes::Warning, "two");
    FullBuffer full;
    std::streambuf* const former = std::cout.rdbuf(&full);
    std::cout.exceptions(std::ios_base::badbit | std::ios_base::failbit);
    EXPECT_NO_THROW(_reader.flushAll());
    std::cout.exceptions(std::ios_base::goodbit);
    std::cout.clear();
    std::cout.rdbuf(former);
    EXPECT_EQ(written(), "one\ntwo\n");
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(LgReaderTest, AQueueThatWasEnteredTwiceIsDeletedOnce)
{
    start();
    Notes notes;
    LgQueue& queue = enterNew(notes);
    LgLog::getRegistry()->registerQueue(&queue);
    addEvent(queue, LgTypes::Warning, "text");
    queue.creatorExit();
    _reader.flushAll();
    EXPECT_EQ(entered(), Zu::List<LgQueue*>());
    EXPECT_TRUE(notes._ended);
}

TEST_F(LgReaderTest, AfterTheLoggersEndTheEchoIsLeft)
{
    setAllLevels("+all.log");
    set("ZU_LOG_WARNING", "%+all.log");
    start();
    Entered<LgQueue> queue;
    addEvent(queue, LgTypes::Warning, "echoed");
    addEvent(queue, LgTypes::Error, "nowhere");
    destroy();
    EXPECT_TRUE(_reader.eventsPending());
    EXPECT_EQ(printedBy([&] { _reader.flushAll(); }), "echoed\n");
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(written(), support::STOP_BANNER);
}

TEST_F(LgReaderTest, AnExceptionOfTheObserverReachesTheCaller)
{
    start();
    Notes notes;
    LgQueue& queue = enterNew(notes);
    addEvent(queue, LgTypes::Warning, "one");
    addEvent(queue, LgTypes::Warning, "two");
    notes._onRemoved = [] { throw std::runtime_error("of the observer"); };
    EXPECT_THROW(_reader.flushEarliest(), std::runtime_error);
    EXPECT_THROW(_reader.flushAll(), std::runtime_error);
    notes._onRemoved = nullptr;
    EXPECT_EQ(written(), "one\ntwo\n");
    EXPECT_FALSE(_reader.eventsPending());
    queue.creatorExit();
    _reader.flushAll();
    EXPECT_TRUE(notes._ended);
}

// Each text of a thread is its letter and a number.
void produce(LgQueue& queue, char letter, int count)
{
    for (int i = 0; i < count; ++i)
    {
        while (queue.isFull()) std::this_thread::yield();
        addEvent(queue, LgTypes::Warning, letter + std::to_string(i));
    }
    queue.creatorExit();
}

// The texts of one thread's lines, in their order.
std::vector<std::string> textsOf(const std::string& lines, char letter)
{
    std::vector<std::string> texts;
    for (const std::string& line : support::linesOf(lines))
    {
        const std::string text = line.substr(line.rfind(' ') + 1);
        if (text[0] == letter) texts.push_back(text);
    }
    return texts;
}

std::vector<std::string> numbered(char letter, int count)
{
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) texts.push_back(letter + std::to_string(i));
    return texts;
}

TEST_F(LgReaderTest, WhatThreadsLeftBehindIsSortedByTime)
{
    constexpr int count = 300;
    start();
    LgLog::enableTimeStamps();
    int lists = 0;
    LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new GuardedRegistry(lists)));
    std::array<Notes, 3> notes;
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c'})
    {
        Notes& notesOfThread = notes[static_cast<std::size_t>(letter - 'a')];
        threads.emplace_back([letter, &notesOfThread]
                             { produce(enterNew(notesOfThread), letter, count); });
    }
    for (std::thread& thread : threads) thread.join();
    _reader.flushAll();

    const std::vector<std::string> lines = support::linesOf(written());
    EXPECT_EQ(lines.size(), 3U * count);
    std::vector<std::string> times;
    for (const std::string& line : lines) times.push_back(line.substr(0, 21));
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    for (const char letter : {'a', 'b', 'c'})
        EXPECT_EQ(textsOf(written(), letter), numbered(letter, count));
    for (const Notes& note : notes) EXPECT_TRUE(note._ended);
    LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new Zu::LgSimpleRegistry));
}

TEST_F(LgReaderTest, TakesWhatThreadsProduceMeanwhile)
{
    constexpr int count = 3000;
    start();
    int lists = 0;
    LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new GuardedRegistry(lists)));
    std::array<Notes, 3> notes;
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c'})
    {
        // Entered before the reader looks, so that it can wait for all of them to go.
        LgQueue& queue = enterNew(notes[static_cast<std::size_t>(letter - 'a')]);
        threads.emplace_back([letter, &queue] { produce(queue, letter, count); });
    }
    while (!entered().empty())
        if (!_reader.flushEarliest()) std::this_thread::yield();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(support::linesOf(written()).size(), 3U * count);
    for (const char letter : {'a', 'b', 'c'})
        EXPECT_EQ(textsOf(written(), letter), numbered(letter, count));
    for (const Notes& note : notes) EXPECT_TRUE(note._ended);
    LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new Zu::LgSimpleRegistry));
}

// With a lock that no other test uses; each level's text is printed and is in no file.
class LgReaderLock : public testing::Test
{
protected:
    std::string outputOf(const std::vector<std::string>& words) const
    {
        Environment environment = {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", _name},
                                   {"ZU_LOG_DISABLE_TIMESTAMPS", "1"}};
        for (const support::LogLevel& level : support::LOG_LEVELS)
            environment[level._variable] = "%";
        std::vector<std::string> all = {"init", "queue"};
        all.insert(all.end(), words.begin(), words.end());
        return logOutputOf(all, environment);
    }

    const TempDir _dir;
    const std::string _name = std::filesystem::path(_dir.path()).filename().string();
};

TEST_F(LgReaderLock, IsHeldUntilTheEntryIsRemovedAndReleasedBehindIt)
{
    EXPECT_EQ(
        outputOf({"observe", "look", "put", "Warning", "text", "flush", "holding", "lockElsewhere",
                  "put", "Warning", "more", "flushAll", "holding", "lockElsewhere"}),
        "text\n"
        "held\n"
        "flushed\n"
        "not held\n"
        "free for others\n"
        "more\n"
        "held\n"
        "not held\n"
        "free for others\n"
        "end of main\n");
}

TEST_F(LgReaderLock, ItsExceptionReachesTheCallerAndNoEventIsLost)
{
    EXPECT_EQ(outputOf({"put", "Warning", "one", "put", "Warning", "two", "abandon", _name, "flush",
                        "pending", "flush", "abandon", _name, "flushAll", "pending",
                        "lockElsewhere", "flushAll", "pending", "flush"}),
              "flush: system error\n"
              "pending\n"
              "one\n"
              "flushed\n"
              "flush all: system error\n"
              "pending\n"
              "free for others\n"
              "two\n"
              "not pending\n"
              "nothing to flush\n"
              "end of main\n");
}

TEST_F(LgReaderLock, IsNotTakenWithoutAnEvent)
{
    EXPECT_EQ(outputOf({"abandon", _name, "pending", "flush", "flushAll", "put", "Warning", "text",
                        "flush"}),
              "not pending\n"
              "nothing to flush\n"
              "flush: system error\n"
              "end of main\n");
}

TEST_F(LgReaderLock, IsReleasedWhenAnExceptionLeavesTheReader)
{
    EXPECT_EQ(outputOf({"observe", "throw", "put", "Warning", "one", "flush", "holding",
                        "lockElsewhere", "pending"}),
              "one\n"
              "flush: std of the observer\n"
              "not held\n"
              "free for others\n"
              "not pending\n"
              "end of main\n");
}

TEST_F(LgReaderLock, TheCountOfUnwrittenEventsBeginsAtZeroInEachProcess)
{
    EXPECT_EQ(outputOf({"unwritten", "put", "Warning", "printed", "flush", "unwritten"}),
              "0\n"
              "printed\n"
              "flushed\n"
              "0\n"
              "end of main\n");
}

TEST_F(LgReaderLock, AFailedReleaseReachesTheCallerBehindTheLine)
{
    EXPECT_EQ(outputOf({"observe", "release", "put", "Warning", "one", "flush", "pending"}),
              "one\n"
              "held\n"
              "flush: system error\n"
              "not pending\n"
              "end of main\n");
}

TEST_F(LgReaderLock, KeepsAnotherProcessFromWriting)
{
    const std::string file = _dir.file("shared.log");
    const std::unique_ptr<Zu::LgInterProcessLock> lock(
        Zu::LgInterProcessLock::create(_name.c_str()));
    ProgramResult result;
    std::atomic<bool> ended = false;
    std::thread process(
        [&]
        {
            result = support::runProgram(
                "logProgram",
                {"init", "queue", "put", "Warning", "of the process", "sign", _dir.file("ready"),
                 "await", _dir.file("go"), "sign", _dir.file("gone"), "flush"},
                support::logEnvironment({{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", _name},
                                         {"ZU_LOG_DISABLE_TIMESTAMPS", "1"},
                                         {"ZU_LOG_WARNING", "+" + file}}));
            ended = true;
        });
    const auto await = [&](const char* sign)
    {
        while (!ended && !std::filesystem::exists(_dir.file(sign))) std::this_thread::yield();
    };
    await("ready");
    lock->lock();
    support::writeBytes(_dir.file("go"), "");
    await("gone");
    std::string expected = support::START_BANNER;
    for (int i = 0; i < 500; ++i)
    {
        // Gives the process all the time that it needs to break in.
        std::ofstream(file, std::ios::binary | std::ios::app) << "of this one\n";
        expected += "of this one\n";
        std::this_thread::yield();
    }
    lock->unlock();
    process.join();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "flushed\nend of main\n");
    EXPECT_EQ(support::bytesOf(file), expected + "of the process\n");
}

TEST_F(LgReaderLock, KeepsTheLinesOfProcessesWhole)
{
    const int count = 100;
    const std::string file = _dir.file("shared.log");
    support::writeBytes(file, "");
    std::vector<std::thread> processes;
    std::array<ProgramResult, 3> results;
    for (const char letter : {'a', 'b', 'c'})
    {
        ProgramResult& result = results[static_cast<std::size_t>(letter - 'a')];
        processes.emplace_back(
            [&, letter]
            {
                result = support::runProgram(
                    "logProgram",
                    {"init", "queue", "logMany", std::string(1, letter), std::to_string(count),
                     "destroy"},
                    support::logEnvironment({{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", _name},
                                             {"ZU_LOG_DISABLE_TIMESTAMPS", "1"},
                                             {"ZU_LOG_WARNING", "+" + file}}));
            });
    }
    for (std::thread& process : processes) process.join();
    for (const ProgramResult& result : results)
    {
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.out, "end of main\n");
        EXPECT_EQ(result.err, "");
    }
    std::vector<std::string> lines = support::linesOf(support::bytesOf(file));
    std::vector<std::string> expected;
    for (const char letter : {'a', 'b', 'c'})
    {
        for (int i = 0; i < count; ++i) expected.emplace_back(3000, letter);
        for (std::string banner : {support::START_BANNER, support::STOP_BANNER})
        {
            banner.pop_back();
            expected.push_back(banner);
        }
    }
    std::sort(lines.begin(), lines.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_TRUE(lines == expected) << lines.size() << " lines";
}

// A whole process, from its start to its end, as an application would have it.
TEST(LgReader, WritesWhatAnApplicationLogs)
{
    const TempDir dir;
    const std::string out = logOutputOf(
        {"start",   "queue",   "log",      "Warning",    "before", "activate", "log",
         "Warning", "one",     "log",      "Error",      "two",    "log",      "Informational",
         "off",     "pending", "flushAll", "deactivate", "log",    "Error",    "after"},
        {{"B7Q_TEST_DIR", dir.path()},
         {"ZU_LOG_RECOVERABLE_ERROR", "%" + dir.file("error.log")},
         {"ZU_LOG_DISABLE_TIMESTAMPS", "1"}});
    EXPECT_EQ(out, "Sample starts\n"
                   "Sample before\n"
                   "pending\n"
                   "Sample two\n"
                   "Sample after\n"
                   "Sample stops\n"
                   "end of main\n");
    const auto fileOf = [](const std::string& lines)
    { return support::START_BANNER + lines + support::STOP_BANNER; };
    EXPECT_EQ(support::bytesOf(dir.file("events.log")), fileOf("Sample one\n"));
    EXPECT_EQ(support::bytesOf(dir.file("error.log")), fileOf("Sample two\n"));
    EXPECT_EQ(support::bytesOf(dir.file("prof.log")), fileOf(""));
}

} // namespace

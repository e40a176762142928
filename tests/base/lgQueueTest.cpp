#include "base/lgQueue.h"

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Zu::LgQueue;
namespace LgTypes = Zu::LgTypes;

// A queue whose rings are so small that they are always full or about to wrap.
class SmallQueue : public LgQueue
{
public:
    SmallQueue(std::uint32_t entries, std::uint32_t characters) : LgQueue(7, entries, characters) {}
};

class LgQueueTest : public testing::Test
{
protected:
    LgQueueTest()
    {
        Zu::OsCpuInfo::initialize();
    }

    static bool add(LgQueue& queue, const std::string& text,
                    LgTypes::Level level = LgTypes::Warning)
    {
        if (!queue.reserveEntry(level)) return false;
        queue.getStream() << text << Zu::ends;
        queue.addEntry();
        return true;
    }

    // The text of the oldest entry, which is removed; "lost N" for one of lost events.
    static std::string take(LgQueue& queue)
    {
        std::array<char, 32768> text{};
        if (queue.readEntry().isOverflowEntry())
        {
            const std::string lost = "lost " + std::to_string(queue.readEntry().getOverflowCount());
            queue.removeEntry();
            return lost;
        }
        queue.getStream() >> text.data();
        queue.removeEntry();
        return text.data();
    }

    static void drain(LgQueue& queue)
    {
        while (!queue.isEmpty()) take(queue);
    }
};

TEST_F(LgQueueTest, IsEmptyAtFirst)
{
    const LgQueue queue(42);
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_FALSE(queue.isFull());
    EXPECT_TRUE(queue.isCreatorAlive());
    EXPECT_EQ(queue.getThreadId(), 42U);
    EXPECT_EQ(queue.getLostCount(), 0U);
    EXPECT_EQ(LgQueue::getMaxSize(), 1023U);
    EXPECT_EQ(LgQueue().getThreadId(), 0U);
}

TEST_F(LgQueueTest, AnEventComesOutWithItsLevelAndTheTimeOfItsReservation)
{
    LgQueue queue;
    const std::uint64_t before = Zu::HwCounter::timeStamp();
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Error));
    const std::uint64_t after = Zu::HwCounter::timeStamp();
    EXPECT_TRUE(queue.isEmpty());
    queue.getStream() << "text" << Zu::ends;
    queue.addEntry();
    EXPECT_FALSE(queue.isEmpty());
    EXPECT_FALSE(queue.readEntry().isOverflowEntry());
    EXPECT_EQ(queue.readEntry().getLevel(), LgTypes::Error);
    EXPECT_GE(queue.readEntry().getTimeStamp(), before);
    EXPECT_LE(queue.readEntry().getTimeStamp(), after);
    EXPECT_EQ(take(queue), "text");
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(LgQueueTest, AcceptsTwoFewerThanItsSlotsAndCountsWhatFollows)
{
    LgQueue queue;
    for (int i = 0; i < 1022; ++i) ASSERT_TRUE(add(queue, std::to_string(i))) << i;
    EXPECT_TRUE(queue.isFull());
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_TRUE(queue.isFull());
    EXPECT_FALSE(queue.isEmpty());
    EXPECT_FALSE(add(queue, "lost too"));
    EXPECT_EQ(queue.getLostCount(), 2U);
    for (int i = 0; i < 1022; ++i) ASSERT_EQ(take(queue), std::to_string(i));
    ASSERT_TRUE(add(queue, "next"));
    EXPECT_EQ(take(queue), "lost 2");
    EXPECT_EQ(take(queue), "next");
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(LgQueueTest, SecondLossInARowRaisesTheCountOfTheSameEntryAlsoAcrossTheWrap)
{
    // The overflow entry is put into every slot of the ring, the last one among them.
    for (int offset = 0; offset < 8; ++offset)
    {
        SmallQueue queue(8, 4096);
        for (int i = 0; i < offset; ++i)
        {
            ASSERT_TRUE(add(queue, "x"));
            take(queue);
        }
        for (int i = 0; i < 6; ++i) ASSERT_TRUE(add(queue, std::to_string(i)));
        for (int i = 0; i < 5; ++i) EXPECT_FALSE(add(queue, "lost"));
        for (int i = 0; i < 6; ++i) EXPECT_EQ(take(queue), std::to_string(i));
        EXPECT_EQ(take(queue), "lost 5");
        EXPECT_TRUE(queue.isEmpty());
    }
}

TEST_F(LgQueueTest, LossesThatAnEventSeparatesAreTwoEntries)
{
    SmallQueue queue(8, 4096);
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(add(queue, "x"));
    EXPECT_FALSE(add(queue, "lost"));
    for (int i = 0; i < 3; ++i) take(queue);
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(add(queue, "between"));
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_FALSE(add(queue, "lost"));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(take(queue), "x");
    EXPECT_EQ(take(queue), "lost 1");
    for (int i = 0; i < 2; ++i) EXPECT_EQ(take(queue), "between");
    EXPECT_EQ(take(queue), "lost 2");
}

TEST_F(LgQueueTest, AnOverflowEntryInASlotWithAnOldMarkKeepsTheOldCount)
{
    SmallQueue queue(8, 4096);
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(add(queue, "x"));
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(add(queue, "lost"));
    drain(queue);
    // Once around the ring, so that the next loss falls into the same slot.
    ASSERT_TRUE(add(queue, "x"));
    drain(queue);
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(add(queue, "x"));
    EXPECT_FALSE(add(queue, "lost"));
    for (int i = 0; i < 6; ++i) EXPECT_EQ(take(queue), "x");
    EXPECT_EQ(take(queue), "lost 3");
    EXPECT_EQ(queue.getLostCount(), 4U);
}

TEST_F(LgQueueTest, AFullStreamLosesEventsToo)
{
    SmallQueue queue(64, 16);
    ASSERT_TRUE(add(queue, "0123456789abcde"));
    EXPECT_FALSE(queue.isFull());
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_EQ(take(queue), "0123456789abcde");
    EXPECT_EQ(take(queue), "lost 2");
    EXPECT_TRUE(add(queue, "fits"));
    EXPECT_EQ(take(queue), "fits");
}

TEST_F(LgQueueTest, AnEventWithoutTextIsDropped)
{
    class Counting : public LgQueue::Observer
    {
    public:
        explicit Counting(int& calls) : _calls(calls) {}
        void entryAdded(LgQueue&) override
        {
            ++_calls;
        }
        void entryRemoved(LgQueue&) override
        {
            ++_calls;
        }
        void waitForSpace(const LgQueue&, int) override {}

    private:
        int& _calls;
    };
    int calls = 0;
    LgQueue queue;
    queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new Counting(calls)));
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.addEntry();
    // A bare end is not a text either, and leaves nothing in the stream.
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.getStream() << Zu::ends;
    queue.addEntry();
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(calls, 0);
    ASSERT_TRUE(add(queue, "text"));
    EXPECT_EQ(take(queue), "text");
    EXPECT_EQ(calls, 2);
}

TEST_F(LgQueueTest, AnEmptyTextIsAnEvent)
{
    LgQueue queue;
    ASSERT_TRUE(add(queue, ""));
    ASSERT_TRUE(add(queue, "next"));
    EXPECT_EQ(take(queue), "");
    EXPECT_EQ(take(queue), "next");
}

TEST_F(LgQueueTest, ATextThatWasNotEndedIsEnded)
{
    LgQueue queue;
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.getStream() << "open";
    queue.addEntry();
    ASSERT_TRUE(add(queue, "next"));
    EXPECT_EQ(take(queue), "open");
    EXPECT_EQ(take(queue), "next");
}

TEST_F(LgQueueTest, WhatFollowsTheEndOfATextIsDropped)
{
    // At every place of the ring, and in a fresh one.
    for (int offset = 0; offset < 40; ++offset)
    {
        SmallQueue queue(8, 32);
        for (int i = 0; i < offset; ++i)
        {
            ASSERT_TRUE(add(queue, ""));
            EXPECT_EQ(take(queue), "");
        }
        ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
        queue.getStream() << "one" << Zu::ends << "rest";
        queue.addEntry();
        ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
        queue.getStream() << "" << Zu::ends << "a" << Zu::ends << Zu::ends;
        queue.addEntry();
        ASSERT_TRUE(add(queue, "two"));
        EXPECT_EQ(take(queue), "one");
        EXPECT_EQ(take(queue), "");
        EXPECT_EQ(take(queue), "two");
        EXPECT_TRUE(queue.isEmpty());
    }
}

TEST_F(LgQueueTest, ATextThatFilledTheRingIsEndedToo)
{
    SmallQueue queue(8, 16);
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.getStream() << "123456789012345"
                      << "more";
    queue.addEntry();
    EXPECT_EQ(take(queue), "123456789012345");
    ASSERT_TRUE(add(queue, "next"));
    EXPECT_EQ(take(queue), "next");
}

TEST_F(LgQueueTest, ASecondAddOrOneAfterARefusalDoesNothing)
{
    SmallQueue queue(8, 4096);
    ASSERT_TRUE(add(queue, "one"));
    queue.addEntry();
    EXPECT_EQ(take(queue), "one");
    EXPECT_TRUE(queue.isEmpty());
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(add(queue, "x"));
    ASSERT_FALSE(queue.reserveEntry(LgTypes::Warning));
    queue.addEntry();
    for (int i = 0; i < 6; ++i) EXPECT_EQ(take(queue), "x");
    EXPECT_EQ(take(queue), "lost 1");
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(LgQueueTest, SuppressedEventsVanishUncounted)
{
    LgQueue queue;
    {
        const LgQueue::SuppressGuard outer(queue);
        {
            const LgQueue::SuppressGuard inner(queue);
            EXPECT_FALSE(add(queue, "x"));
        }
        EXPECT_FALSE(add(queue, "x"));
    }
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.getLostCount(), 0U);
    EXPECT_TRUE(add(queue, "seen"));
    drain(queue);
}

TEST_F(LgQueueTest, ALossBehindAConsumedOverflowEntryShowsInNoEntry)
{
    SmallQueue queue(8, 16);
    ASSERT_TRUE(add(queue, "0123456789abcde"));
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_EQ(take(queue), "0123456789abcde");
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.getStream() << "0123456789abcd";
    // Taken while the next event is being written, the entry keeps its mark.
    EXPECT_EQ(take(queue), "lost 1");
    EXPECT_FALSE(queue.reserveEntry(LgTypes::Warning));
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.getLostCount(), 2U);
    queue.addEntry();
    EXPECT_EQ(take(queue), "0123456789abcd");
}

TEST_F(LgQueueTest, TheObserverIsToldAndAsked)
{
    class Noting : public LgQueue::Observer
    {
    public:
        explicit Noting(std::vector<std::string>& notes) : _notes(notes) {}
        void entryAdded(LgQueue& queue) override
        {
            _notes.push_back("added " + std::to_string(queue.getThreadId()));
        }
        void entryRemoved(LgQueue& queue) override
        {
            _notes.push_back("removed " + std::to_string(queue.getThreadId()));
        }
        void waitForSpace(const LgQueue& queue, int size) override
        {
            _notes.push_back("wait " + std::to_string(queue.getThreadId()) + " " +
                             std::to_string(size));
        }

    private:
        std::vector<std::string>& _notes;
    };
    std::vector<std::string> notes;
    LgQueue queue(3);
    queue.waitForSpace(1);
    EXPECT_TRUE(queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new Noting(notes))).isNull());
    add(queue, "x");
    take(queue);
    queue.waitForSpace(9);
    EXPECT_EQ(notes, (std::vector<std::string>{"added 3", "removed 3", "wait 3 9"}));
}

// What the room function of the test below was asked, and what it does.
struct Asked
{
    int _calls = 0;
    LgTypes::Level _level = LgTypes::Tracing;
    bool _makesRoom = false;
    bool _result = false;
};
Asked asked;

TEST_F(LgQueueTest, TheRoomFunctionIsAskedBeforeAnEventIsLost)
{
    LgQueue queue;
    asked = {};
    LgQueue::setRoomFunction(
        [](LgQueue& full, LgTypes::Level level)
        {
            ++asked._calls;
            asked._level = level;
            if (asked._makesRoom) take(full);
            return asked._result;
        });
    for (int i = 0; i < 1022; ++i) ASSERT_TRUE(add(queue, std::to_string(i))) << i;
    EXPECT_EQ(asked._calls, 0);
    EXPECT_FALSE(queue.canReserve());
    // There is room only if it says so, and it is true.
    EXPECT_FALSE(add(queue, "lost", LgTypes::Error));
    EXPECT_EQ(asked._calls, 1);
    EXPECT_EQ(asked._level, LgTypes::Error);
    asked._result = true;
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_EQ(asked._level, LgTypes::Warning);
    asked = {0, LgTypes::Tracing, true, false};
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_EQ(queue.getLostCount(), 3U);
    // The overflow entry is in the way of two.
    take(queue);
    ASSERT_TRUE(add(queue, "room"));
    asked = {0, LgTypes::Tracing, true, true};
    EXPECT_TRUE(add(queue, "waited", LgTypes::Profiling));
    EXPECT_EQ(asked._calls, 1);
    EXPECT_EQ(queue.getLostCount(), 3U);
    // What is refused or suppressed asks nobody.
    {
        const LgQueue::SuppressGuard guard(queue);
        EXPECT_FALSE(add(queue, "suppressed"));
    }
    EXPECT_EQ(asked._calls, 1);
    LgQueue::setRoomFunction(nullptr);
    while (add(queue, "full")) continue;
    EXPECT_EQ(asked._calls, 1);
    drain(queue);
}

TEST_F(LgQueueTest, CountsWhatIsWaitingAcrossTheEndOfTheRing)
{
    LgQueue queue;
    EXPECT_EQ(queue.getNumEntries(), 1024U);
    for (int round = 0; round < 3; ++round)
    {
        for (std::uint32_t i = 0; i < 700; ++i)
        {
            EXPECT_EQ(queue.getWaitingCount(), i);
            ASSERT_TRUE(add(queue, "text"));
        }
        for (std::uint32_t i = 700; i > 0; --i)
        {
            EXPECT_EQ(queue.getWaitingCount(), i);
            take(queue);
        }
    }
    EXPECT_EQ(queue.getWaitingCount(), 0U);
}

TEST_F(LgQueueTest, TheObserverCanLookAtTheEntryThatWasAdded)
{
    LgQueue queue;
    for (int i = 0; i < 2000; ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i % LgTypes::NUM_LEVELS);
        ASSERT_TRUE(add(queue, "text", level));
        EXPECT_EQ(queue.getAddedEntry().getLevel(), level);
        EXPECT_EQ(queue.getAddedEntry().getTimeStamp(), queue.readEntry().getTimeStamp());
        take(queue);
    }
}

TEST_F(LgQueueTest, TheCreatorsEndIsNoted)
{
    LgQueue queue;
    queue.creatorExit();
    EXPECT_FALSE(queue.isCreatorAlive());
}

TEST_F(LgQueueTest, ACopySharesTheRings)
{
    LgQueue source(5);
    add(source, "text");
    LgQueue copy(source);
    LgQueue assigned;
    assigned = source;
    EXPECT_EQ(copy.getThreadId(), 5U);
    EXPECT_EQ(take(copy), "text");
    EXPECT_EQ(take(assigned), "text");
    EXPECT_EQ(take(source), "text");
}

TEST_F(LgQueueTest, ACopyOfAFullQueueIsFull)
{
    SmallQueue source(8, 256);
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(add(source, "taken and kept"));
    // The entries wrap round, so that the oldest is no longer the first of the ring.
    for (int i = 0; i < 3; ++i) take(source);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(add(source, "new"));
    LgQueue copy(source);
    LgQueue assigned;
    assigned = source;
    for (LgQueue* const queue : {&copy, &assigned})
    {
        EXPECT_TRUE(queue->isFull());
        EXPECT_FALSE(add(*queue, "too much"));
        EXPECT_EQ(queue->getLostCount(), 1U);
    }
    for (LgQueue* const queue : {&copy, &assigned}) drain(*queue);
    drain(source);
}

TEST(LgQueueEntry, BecomesAnOverflowEntryAndBack)
{
    LgQueue::Entry entry;
    EXPECT_FALSE(entry.isOverflowEntry());
    EXPECT_EQ(entry.getLevel(), LgTypes::InternalError);
    EXPECT_EQ(entry.getTimeStamp(), 0U);
    entry.setOverflowEntry(true);
    EXPECT_EQ(entry.getOverflowCount(), 1);
    entry.incOverflowCount();
    entry.setOverflowEntry(true);
    EXPECT_EQ(entry.getOverflowCount(), 2);
    entry.setOverflowEntry(false);
    EXPECT_EQ(entry.getLevel(), LgTypes::Tracing);
    entry.setLevel(LgTypes::Error);
    entry.setOverflowEntry(false);
    EXPECT_EQ(entry.getLevel(), LgTypes::Error);
}

// A loop that logs while a disk stalls gets there in minutes.
TEST(LgQueueEntry, ItsCountStaysAtTheLargest)
{
    constexpr std::int32_t LARGEST = std::numeric_limits<std::int32_t>::max();
    LgQueue::Entry entry;
    entry.setOverflowEntry(true);
    constexpr std::int32_t MARK = 0x5A;
    while (entry.getOverflowCount() < MARK) entry.incOverflowCount();
    // Counting that far takes too long, so the count is set in the entry.
    auto* const bytes = reinterpret_cast<unsigned char*>(&entry);
    std::size_t place = 0;
    while (std::memcmp(bytes + place, &MARK, sizeof MARK) != 0) place += sizeof MARK;
    const std::int32_t almost = LARGEST - 1;
    std::memcpy(bytes + place, &almost, sizeof almost);
    for (int i = 0; i < 3; ++i)
    {
        entry.incOverflowCount();
        EXPECT_EQ(entry.getOverflowCount(), LARGEST);
    }
}

using LgQueueDeathTest = LgQueueTest;

TEST_F(LgQueueDeathTest, BrokenRulesAreFatal)
{
    EXPECT_DEATH(LgQueue().readEntry(), "Assertion failed: _beg != _end, file");
    EXPECT_DEATH(LgQueue().removeEntry(), "Assertion failed: _beg != _end, file");
    EXPECT_DEATH(
        {
            LgQueue queue;
            add(queue, "x");
        },
        "Assertion failed: _beg == _end, file");
    EXPECT_DEATH(LgQueue::Entry().getOverflowCount(), "Assertion failed: _oflow, file");
    EXPECT_DEATH(LgQueue::Entry().incOverflowCount(), "Assertion failed: _oflow, file");
    EXPECT_DEATH(
        {
            LgQueue::Entry entry;
            entry.setOverflowEntry(true);
            entry.setLevel(LgTypes::Error);
        },
        "Assertion failed: !_oflow, file");
}

// Attempts are events that came out and events that were counted as lost, in any schedule.
// In rings that go round: the texts and entries up to the end that was asked for, and no later one.
TEST_F(LgQueueTest, AReaderThatLooksAheadAsksOnceForManyEntries)
{
    SmallQueue queue(8, 64);
    std::array<char, 32768> scratch{};
    for (int round = 0; round < 20; ++round)
    {
        LgQueue::ReadPosition position = queue.getReadPosition();
        EXPECT_EQ(queue.getEntriesEnd(), position._entry);
        for (int i = 0; i < 5; ++i) ASSERT_TRUE(add(queue, std::to_string(round * 10 + i)));
        const std::uint32_t end = queue.getEntriesEnd();
        ASSERT_TRUE(add(queue, "later"));
        EXPECT_NE(queue.getEntriesEnd(), end);
        for (int i = 0; i < 5; ++i)
        {
            ASSERT_NE(position._entry, end);
            EXPECT_EQ(queue.getTextAt(position, scratch.data()), std::to_string(round * 10 + i));
            queue.stepEntry(position);
        }
        EXPECT_EQ(position._entry, end);
        queue.removeUpTo(position);
        EXPECT_EQ(take(queue), "later");
    }
}

TEST_F(LgQueueTest, RandomOperationsKeepTheAccountAndTheOrder)
{
    std::mt19937 random(9);
    for (int round = 0; round < 400; ++round)
    {
        SmallQueue queue(4U << random() % 4, 16U << random() % 4);
        std::uint64_t attempted = 0;
        std::uint64_t taken = 0;
        std::deque<std::string> accepted;
        for (int step = 0; step < 300; ++step)
        {
            if (random() % 5 < 3)
            {
                ++attempted;
                const std::string text = std::to_string(random() % 1000);
                if (!queue.reserveEntry(LgTypes::Warning)) continue;
                const unsigned int room = queue.getStream().getNumCharacters();
                queue.getStream() << text << Zu::ends;
                queue.addEntry();
                accepted.push_back(text.size() <= room ? text : "#");
            }
            else if (!queue.isEmpty())
            {
                const bool isLoss = queue.readEntry().isOverflowEntry();
                const std::string text = take(queue);
                if (isLoss) continue;
                ASSERT_EQ(text, accepted.front());
                accepted.pop_front();
                ++taken;
            }
        }
        taken += accepted.size();
        drain(queue);
        ASSERT_EQ(attempted, taken + queue.getLostCount());
    }
}

TEST_F(LgQueueTest, OneThreadProducesWhileAnotherReads)
{
    constexpr int attempts = 30000;
    SmallQueue queue(16, 256);
    int accepted = 0;
    std::thread producer(
        [&]
        {
            for (int i = 0; i < attempts; ++i)
            {
                if (add(queue, std::to_string(i)))
                    ++accepted;
                else
                    std::this_thread::yield();
            }
            queue.creatorExit();
        });
    int taken = 0;
    int last = -1;
    while (queue.isCreatorAlive() || !queue.isEmpty())
    {
        if (queue.isEmpty())
        {
            std::this_thread::yield();
            continue;
        }
        if (queue.readEntry().isOverflowEntry())
        {
            EXPECT_GE(queue.readEntry().getOverflowCount(), 1);
            queue.removeEntry();
            continue;
        }
        const std::string text = take(queue);
        if (text == "#")
            ++last;
        else
        {
            const int number = std::stoi(text);
            ASSERT_GT(number, last);
            last = number;
        }
        ++taken;
    }
    producer.join();
    EXPECT_EQ(taken, accepted);
    EXPECT_EQ(static_cast<std::uint64_t>(attempts - accepted), queue.getLostCount());
}

} // namespace

#include "base/lgTrace.h"

#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/osCpuInfo.h"
#include "support/assertionText.h"
#include "support/streamCapture.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using support::coutOf;
using Zu::LgLog;
using Zu::LgQueue;
using Zu::LgTrace;
namespace LgTypes = Zu::LgTypes;

using Texts = std::vector<std::string>;

// The text of the oldest entry, which is removed.
std::string take(LgQueue& queue)
{
    std::vector<char> text(32768);
    if (!queue.readEntry().isOverflowEntry()) queue.getStream() >> text.data();
    queue.removeEntry();
    return text.data();
}

Texts takeAll(LgQueue& queue)
{
    Texts texts;
    while (!queue.isEmpty()) texts.push_back(take(queue));
    return texts;
}

bool hasSpace(const LgQueue& queue, int size)
{
    return !queue.isFull() &&
           queue.getStream().getNumCharacters() >= static_cast<unsigned int>(size);
}

// Acts as a reader: when it is asked to wait for room, makes room by taking what is there.
class DrainingObserver : public LgQueue::Observer
{
public:
    DrainingObserver(LgQueue& queue, std::vector<int>& waits, Texts& taken)
        : _queue(queue), _waits(waits), _taken(taken)
    {
    }

    void entryAdded(LgQueue&) override {}
    void entryRemoved(LgQueue&) override {}

    void waitForSpace(const LgQueue& queue, int size) override
    {
        EXPECT_EQ(&queue, &_queue);
        _waits.push_back(size);
        while (!hasSpace(queue, size)) _taken.push_back(take(_queue));
    }

private:
    LgQueue& _queue;
    std::vector<int>& _waits;
    Texts& _taken;
};

// Leaves it to another thread to make room.
class PatientObserver : public LgQueue::Observer
{
public:
    void entryAdded(LgQueue&) override {}
    void entryRemoved(LgQueue&) override {}

    void waitForSpace(const LgQueue& queue, int size) override
    {
        while (!hasSpace(queue, size)) std::this_thread::yield();
    }
};

// The process logs into a queue of the test, until the test ends.
class LgTraceTest : public testing::Test
{
protected:
    LgTraceTest()
    {
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        _current = &_queue;
        LgLog::setQueueFunction(
            []
            {
                ++_calls;
                return _current;
            });
        LgLog::setLoggerActivation(true);
    }

    ~LgTraceTest() override
    {
        LgLog::setLoggerActivation(false);
        LgLog::setBlockingTrace(false);
        LgLog::setQueueFunction(nullptr);
        takeAll(_queue);
        _calls = 0;
    }

    void drainWhenBlocked()
    {
        LgLog::setBlockingTrace(true);
        _queue.changeObserver(
            Zu::ObjPtr<LgQueue::Observer>(new DrainingObserver(_queue, _waits, _taken)));
    }

    void fillEntries()
    {
        for (int i = 0; i < 1022; ++i)
        {
            ASSERT_TRUE(_queue.reserveEntry(LgTypes::Warning));
            _queue.getStream() << "x" << Zu::ends;
            _queue.addEntry();
        }
    }

    // All lines in their order, those that were taken to make room before those that wait.
    Texts lines()
    {
        Texts all = _taken;
        const Texts waiting = takeAll(_queue);
        all.insert(all.end(), waiting.begin(), waiting.end());
        return all;
    }

    // A text in which no two stretches are alike.
    static std::string longText(std::size_t length)
    {
        std::string text;
        for (int i = 0; text.size() < length; ++i) text += std::to_string(i) + ' ';
        return text.substr(0, length);
    }

    static inline LgQueue* _current;
    static inline int _calls = 0;
    LgQueue _queue;
    std::vector<int> _waits;
    Texts _taken;
};

TEST_F(LgTraceTest, ATextIsATracingEventWithoutAGroup)
{
    LgTrace::print("text 100%s %n");
    ASSERT_FALSE(_queue.isEmpty());
    EXPECT_FALSE(_queue.readEntry().isOverflowEntry());
    EXPECT_EQ(_queue.readEntry().getLevel(), LgTypes::Tracing);
    EXPECT_EQ(takeAll(_queue), (Texts{"text 100%s %n"}));
}

TEST_F(LgTraceTest, TextsComeInTheirOrderAndKeepTheirNewLines)
{
    LgTrace::print("one");
    LgTrace::print("two\nlines\n");
    LgTrace::print(" ");
    EXPECT_EQ(takeAll(_queue), (Texts{"one", "two\nlines\n", " "}));
}

TEST_F(LgTraceTest, AnEmptyTextNeitherWritesNorReserves)
{
    EXPECT_EQ(coutOf([] { LgTrace::print(""); }), "");
    EXPECT_EQ(_calls, 0);
    EXPECT_TRUE(_queue.isEmpty());
    // A queue that is full counts every attempt.
    fillEntries();
    LgTrace::print("");
    EXPECT_EQ(_queue.getLostCount(), 0U);
    LgLog::setLoggerActivation(false);
    EXPECT_EQ(coutOf([] { LgTrace::print(""); }), "");
}

TEST_F(LgTraceTest, AnEmptyTextDoesNotWait)
{
    drainWhenBlocked();
    LgTrace::print("");
    EXPECT_TRUE(_waits.empty());
}

TEST_F(LgTraceTest, WhileTheLoggerIsInactiveTextsAreLinesOfStandardOutput)
{
    LgLog::setLoggerActivation(false);
    EXPECT_EQ(coutOf(
                  []
                  {
                      LgTrace::print("one 100%s");
                      LgTrace::print("two\nlines");
                  }),
              "one 100%s\ntwo\nlines\n");
    EXPECT_EQ(_calls, 0);
    EXPECT_TRUE(_queue.isEmpty());
}

// Lines of several threads would mix otherwise.
TEST_F(LgTraceTest, WhileTheLoggerIsInactiveALineIsWrittenInOnePieceAndFlushed)
{
    LgLog::setLoggerActivation(false);
    support::PieceRecorder recorder;
    {
        const support::BufferGuard guard(std::cout, recorder);
        LgTrace::print("text\nof two lines");
    }
    EXPECT_EQ(recorder.pieces(), (Texts{"text\nof two lines\n", "|"}));
}

TEST_F(LgTraceTest, WhileTheLoggerIsInactiveBlockingIsIgnored)
{
    drainWhenBlocked();
    LgLog::setLoggerActivation(false);
    const std::string text = longText(100000);
    EXPECT_EQ(coutOf([&] { LgTrace::print(text.c_str()); }), text + '\n');
    EXPECT_TRUE(_waits.empty());
    EXPECT_EQ(_calls, 0);
    EXPECT_TRUE(_queue.isEmpty());
}

TEST_F(LgTraceTest, WithoutBlockingAFullQueueLosesAndCounts)
{
    _queue.changeObserver(
        Zu::ObjPtr<LgQueue::Observer>(new DrainingObserver(_queue, _waits, _taken)));
    fillEntries();
    LgTrace::print("lost");
    LgTrace::print("lost too");
    EXPECT_TRUE(_waits.empty());
    EXPECT_EQ(_queue.getLostCount(), 2U);
    for (int i = 0; i < 1022; ++i) take(_queue);
    ASSERT_TRUE(_queue.readEntry().isOverflowEntry());
    EXPECT_EQ(_queue.readEntry().getOverflowCount(), 2);
    _queue.removeEntry();
    EXPECT_TRUE(_queue.isEmpty());
}

TEST_F(LgTraceTest, WithoutBlockingALongTextIsOnePieceOrAMark)
{
    const std::string fits = longText(32766);
    LgTrace::print(fits.c_str());
    EXPECT_EQ(takeAll(_queue), (Texts{fits}));
    LgTrace::print(longText(40000).c_str());
    EXPECT_EQ(takeAll(_queue), (Texts{"#"}));
}

TEST_F(LgTraceTest, SuppressedTextsVanishUncounted)
{
    {
        const LgQueue::SuppressGuard guard(_queue);
        LgTrace::print("suppressed");
        drainWhenBlocked();
        LgTrace::print("suppressed too");
    }
    LgTrace::print("seen");
    EXPECT_EQ(lines(), (Texts{"seen"}));
    EXPECT_EQ(_queue.getLostCount(), 0U);
}

TEST_F(LgTraceTest, BlockingWaitsForRoomForTheTextAndItsEnd)
{
    drainWhenBlocked();
    LgTrace::print("12345");
    LgTrace::print("x");
    EXPECT_EQ(_waits, (std::vector<int>{6, 2}));
    EXPECT_EQ(lines(), (Texts{"12345", "x"}));
}

TEST_F(LgTraceTest, BlockingATextThatJustFitsIsOnePiece)
{
    drainWhenBlocked();
    const std::string text = longText(32765);
    LgTrace::print("before");
    LgTrace::print(text.c_str());
    LgTrace::print(text.c_str());
    EXPECT_EQ(_waits, (std::vector<int>{7, 32766, 32766}));
    EXPECT_EQ(lines(), (Texts{"before", text, text}));
}

TEST_F(LgTraceTest, BlockingATextOfOneMoreIsTwoPieces)
{
    drainWhenBlocked();
    const std::string text = longText(32766);
    LgTrace::print(text.c_str());
    EXPECT_EQ(_waits, (std::vector<int>{32766, 2}));
    EXPECT_EQ(lines(), (Texts{text.substr(0, 32765), text.substr(32765)}));
}

TEST_F(LgTraceTest, BlockingALongTextIsSplitIntoLinesOfItsOwn)
{
    drainWhenBlocked();
    for (const std::size_t length : {65529U, 65530U, 65531U, 100000U, 1000000U})
    {
        _waits.clear();
        _taken.clear();
        const std::string text = longText(length);
        const std::string source = text;
        LgTrace::print(source.c_str());
        EXPECT_EQ(source, text);
        Texts pieces;
        std::vector<int> waits;
        for (std::size_t at = 0; at < length; at += 32765)
        {
            pieces.push_back(text.substr(at, 32765));
            waits.push_back(static_cast<int>(pieces.back().size()) + 1);
        }
        EXPECT_EQ(lines(), pieces) << length;
        EXPECT_EQ(_waits, waits) << length;
    }
    EXPECT_EQ(_queue.getLostCount(), 0U);
}

TEST_F(LgTraceTest, BlockingNoLineIsLost)
{
    drainWhenBlocked();
    Texts expected;
    for (int i = 0; i < 5000; ++i)
    {
        expected.push_back(std::to_string(i) + std::string(static_cast<std::size_t>(i) % 90, 'x'));
        LgTrace::print(expected.back().c_str());
    }
    EXPECT_FALSE(_taken.empty());
    EXPECT_EQ(lines(), expected);
    EXPECT_EQ(_queue.getLostCount(), 0U);
}

TEST_F(LgTraceTest, BlockingNoLineIsLostToAReaderInAnotherThread)
{
    constexpr int count = 3000;
    const std::string tail(100, 'x');
    LgLog::setBlockingTrace(true);
    _queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new PatientObserver));
    std::thread producer(
        [&]
        {
            for (int i = 0; i < count; ++i) LgTrace::print((std::to_string(i) + tail).c_str());
            _queue.creatorExit();
        });
    int taken = 0;
    while (_queue.isCreatorAlive() || !_queue.isEmpty())
    {
        if (_queue.isEmpty())
            std::this_thread::yield();
        else
            EXPECT_EQ(take(_queue), std::to_string(taken++) + tail);
    }
    producer.join();
    EXPECT_EQ(taken, count);
    EXPECT_EQ(_queue.getLostCount(), 0U);
}

TEST_F(LgTraceTest, BlockingWithoutAnObserverIsGoodWhileThereIsRoom)
{
    LgLog::setBlockingTrace(true);
    LgTrace::print("one");
    LgTrace::print("two");
    EXPECT_EQ(takeAll(_queue), (Texts{"one", "two"}));
}

using LgTraceDeathTest = LgTraceTest;

constexpr const char* NO_SPACE =
    "!q.isFull() && ( s.getNumCharacters() >= static_cast<unsigned int>( len ))";

TEST_F(LgTraceDeathTest, BlockingWithoutAnObserverOnAQueueWithoutFreeEntriesIsFatal)
{
    LgLog::setBlockingTrace(true);
    fillEntries();
    EXPECT_DEATH(LgTrace::print("text"), support::AssertionText(NO_SPACE));
}

TEST_F(LgTraceDeathTest, BlockingWithoutAnObserverOnAQueueWithoutFreeCharactersIsFatal)
{
    LgLog::setBlockingTrace(true);
    LgTrace::print(longText(20000).c_str());
    const unsigned int room = _queue.getStream().getNumCharacters();
    // Room for the text, but none for its terminator.
    EXPECT_DEATH(LgTrace::print(longText(room).c_str()), support::AssertionText(NO_SPACE));
    const std::string fits = longText(room - 1);
    LgTrace::print(fits.c_str());
    EXPECT_EQ(takeAll(_queue), (Texts{longText(20000), fits}));
}

TEST_F(LgTraceDeathTest, ANullTextIsFatalAlsoWhileTheLoggerIsInactive)
{
    EXPECT_DEATH(LgTrace::print(nullptr), support::AssertionText("mess"));
    LgLog::setLoggerActivation(false);
    EXPECT_DEATH(LgTrace::print(nullptr), support::AssertionText("mess"));
}

} // namespace

#include "base/lgRingMemory.h"

#include "base/lgQueue.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace
{

using Zu::LgQueue;
using Zu::LgRingMemory;
namespace LgTypes = Zu::LgTypes;

// Memory that becomes usable in steps. What lies beyond the usable part is marked, and must not be
// written to.
template <std::uint32_t SIZE, class Element> class Memory : public LgRingMemory
{
public:
    explicit Memory(std::uint32_t usable, std::uint32_t step = 64)
        : LgRingMemory(_storage, SIZE, usable), _step(step)
    {
        std::fill(bytes(), bytes() + sizeof _storage, MARK);
        clear(0, usable);
    }

    std::uint32_t grow(std::uint32_t needed) override
    {
        EXPECT_GT(needed, getUsable());
        EXPECT_LE(needed, SIZE);
        if (_refuses) return getUsable();
        const std::uint32_t usable = std::min(SIZE, std::max(needed, getUsable() + _step));
        clear(getUsable(), usable);
        setUsable(usable);
        return usable;
    }

    bool isBeyondUntouched()
    {
        return std::all_of(bytes() + getUsable() * sizeof(Element), bytes() + sizeof _storage,
                           [](char byte) { return byte == MARK; });
    }

    bool _refuses = false;

private:
    static constexpr char MARK = 0x55;

    char* bytes()
    {
        return reinterpret_cast<char*>(_storage);
    }

    void clear(std::uint32_t from, std::uint32_t to)
    {
        std::fill(bytes() + from * sizeof(Element), bytes() + to * sizeof(Element), '\0');
    }

    alignas(16) Element _storage[SIZE];
    std::uint32_t _step;
};

struct RawEntry
{
    char _bytes[sizeof(LgQueue::Entry)];
};

class Home : public LgQueue::Home
{
public:
    LgRingMemory& getEntries() override
    {
        return _entries;
    }

    LgRingMemory& getCharacters() override
    {
        return _characters;
    }

    void queueEnded() noexcept override
    {
        ++_ended;
    }

    bool isBeyondUntouched()
    {
        return _entries.isBeyondUntouched() && _characters.isBeyondUntouched();
    }

    Memory<256, RawEntry> _entries{64};
    Memory<131072, char> _characters{4096, 4096};
    int _ended = 0;
};

class LgRingMemoryTest : public testing::Test
{
protected:
    bool log(const std::string& text)
    {
        if (!_queue->reserveEntry(LgTypes::Warning)) return false;
        _queue->getStream() << text << Zu::ends;
        _queue->addEntry();
        return true;
    }

    std::string take()
    {
        std::vector<char> text(Zu::LgStream::BufSize + 1);
        LgQueue::ReadPosition position = _queue->getReadPosition();
        const std::string taken(_queue->getTextAt(position, text.data()));
        _queue->stepEntry(position);
        _queue->removeUpTo(position);
        return taken;
    }

    std::unique_ptr<Home> _home = std::make_unique<Home>();
    std::unique_ptr<LgQueue> _queue = std::make_unique<LgQueue>(7U, *_home);
};

TEST_F(LgRingMemoryTest, GrowsWithTheFirstLapAndIsUsedAgainInTheSecond)
{
    std::vector<std::string> expected;
    std::uint64_t taken = 0;
    for (int i = 0; i < 3000; ++i)
    {
        const std::string text =
            std::to_string(i) + std::string(static_cast<std::size_t>(i % 700), 'x');
        ASSERT_TRUE(log(text)) << i;
        ASSERT_TRUE(_home->isBeyondUntouched()) << i;
        expected.push_back(text);
        while (expected.size() - taken > 100)
        {
            ASSERT_EQ(take(), expected[taken]) << taken;
            ++taken;
        }
    }
    for (; taken < expected.size(); ++taken) ASSERT_EQ(take(), expected[taken]);
    EXPECT_EQ(_home->_entries.getUsable(), 256U);
    EXPECT_EQ(_home->_characters.getUsable(), 131072U);
    EXPECT_EQ(_queue->getLostCount(), 0U);
}

TEST_F(LgRingMemoryTest, OneEventTakesOneStep)
{
    ASSERT_TRUE(log("one"));
    EXPECT_EQ(_home->_entries.getUsable(), 64U);
    EXPECT_EQ(_home->_characters.getUsable(), 4096U);
    EXPECT_EQ(take(), "one");
}

TEST_F(LgRingMemoryTest, WithoutMoreEntriesEventsAreLostAndCountedUntilThereAreMore)
{
    _home->_entries._refuses = true;
    int accepted = 0;
    for (int i = 0; i < 200; ++i) accepted += log(std::to_string(i)) ? 1 : 0;
    ASSERT_TRUE(_home->isBeyondUntouched());
    EXPECT_EQ(accepted, 62);
    EXPECT_EQ(_queue->getLostCount(), 200U - 62U);
    for (int i = 0; i < accepted; ++i) EXPECT_EQ(take(), std::to_string(i));
    const LgQueue::Entry& rest = _queue->readEntry();
    ASSERT_TRUE(rest.isOverflowEntry());
    EXPECT_EQ(rest.getOverflowCount(), 200 - 62);
    _queue->removeEntry();
    _home->_entries._refuses = false;
    for (int i = 0; i < 600; ++i)
    {
        ASSERT_TRUE(log(std::to_string(i))) << i;
        ASSERT_EQ(take(), std::to_string(i));
    }
    ASSERT_TRUE(_home->isBeyondUntouched());
}

TEST_F(LgRingMemoryTest, WithoutMoreCharactersNothingIsWrittenBeyond)
{
    _home->_characters._refuses = true;
    int accepted = 0;
    for (int i = 0; i < 200; ++i) accepted += log(std::string(100, 'a')) ? 1 : 0;
    ASSERT_TRUE(_home->isBeyondUntouched());
    EXPECT_GT(accepted, 35);
    EXPECT_LT(accepted, 200);
    EXPECT_EQ(_queue->getLostCount() + static_cast<unsigned>(accepted), 200U);
    // A further end of a string needs no place either.
    for (int i = 0; i < 10; ++i) _queue->getStream() << "more" << Zu::ends;
    ASSERT_TRUE(_home->isBeyondUntouched());
    for (LgQueue::ReadPosition position = _queue->getReadPosition(); _queue->isWaiting(position);
         _queue->stepEntry(position))
        _queue->removeUpTo({(position._entry + 1) & 255U, position._text});
}

TEST_F(LgRingMemoryTest, PiecesThatDoNotFitBecomeAMarkWithoutMoreCharacters)
{
    _home->_characters._refuses = true;
    ASSERT_TRUE(log(std::string(3000, 'a')));
    ASSERT_TRUE(_queue->reserveEntry(LgTypes::Error));
    _queue->getStream() << "small " << std::string(3000, 'b') << " end" << Zu::ends;
    _queue->addEntry();
    ASSERT_TRUE(_home->isBeyondUntouched());
    EXPECT_EQ(take(), std::string(3000, 'a'));
    EXPECT_EQ(take(), "small # end");
}

// The longest text in a ring of 32,768 characters is 32,766 long.
TEST_F(LgRingMemoryTest, ATextInALargeRingIsNotLongerThanInTheUsualOne)
{
    for (int round = 0; round < 9; ++round)
    {
        ASSERT_TRUE(log(std::string(32766, 'x')));
        EXPECT_EQ(take(), std::string(32766, 'x'));
        ASSERT_TRUE(log(std::string(32767, 'x')));
        EXPECT_EQ(take(), "#");
        ASSERT_TRUE(_queue->reserveEntry(LgTypes::Error));
        for (int i = 0; i < 40000; ++i) _queue->getStream() << 'y';
        _queue->getStream() << "rest" << Zu::ends;
        _queue->addEntry();
        EXPECT_EQ(take(), std::string(32766, 'y'));
    }
}

TEST_F(LgRingMemoryTest, LookingAheadLeavesWhatIsThere)
{
    for (const char* const text : {"one", "", "three"})
    {
        ASSERT_TRUE(_queue->reserveEntry(LgTypes::Tracing));
        _queue->getStream() << text << Zu::ends;
        _queue->addEntry();
    }
    std::vector<char> scratch(Zu::LgStream::BufSize);
    for (int round = 0; round < 2; ++round)
    {
        LgQueue::ReadPosition position = _queue->getReadPosition();
        for (const char* const text : {"one", "", "three"})
        {
            ASSERT_TRUE(_queue->isWaiting(position));
            EXPECT_EQ(_queue->getEntryAt(position).getLevel(), LgTypes::Tracing);
            EXPECT_EQ(_queue->getTextAt(position, scratch.data()), text);
            _queue->stepEntry(position);
        }
        EXPECT_FALSE(_queue->isWaiting(position));
        if (round == 1) _queue->removeUpTo(position);
    }
    EXPECT_TRUE(_queue->isEmpty());
}

TEST_F(LgRingMemoryTest, TheEndOfAQueueIsReportedToItsHome)
{
    alignas(LgQueue) char place[sizeof(LgQueue)];
    auto* const queue = new (place) LgQueue(9U, *_home);
    LgQueue::end(queue);
    EXPECT_EQ(_home->_ended, 1);
    LgQueue::end(new LgQueue(9U));
    LgQueue::end(nullptr);
    EXPECT_EQ(_home->_ended, 1);
}

std::uint32_t numberAt(const LgQueue& queue, std::uint32_t place)
{
    return *reinterpret_cast<const std::uint32_t*>(reinterpret_cast<const char*>(&queue) + place);
}

TEST_F(LgRingMemoryTest, ThePlacesOfThePositionsAreThoseInTheObject)
{
    const LgQueue::Places places = _queue->getPlaces();
    log("four");
    log("five");
    EXPECT_EQ(numberAt(*_queue, places._entriesBegin), 0U);
    EXPECT_EQ(numberAt(*_queue, places._entriesEnd), 2U);
    EXPECT_EQ(numberAt(*_queue, places._textBegin), 0U);
    // An empty string, and two texts with their ends.
    EXPECT_EQ(numberAt(*_queue, places._textEnd), 10U);
    EXPECT_EQ(take(), "four");
    EXPECT_EQ(numberAt(*_queue, places._entriesBegin), 1U);
    EXPECT_EQ(numberAt(*_queue, places._textBegin), 5U);
    EXPECT_EQ(numberAt(*_queue, places._lost), 0U);
    ASSERT_TRUE(_queue->reserveEntry(LgTypes::Error));
    _queue->beginInsertion();
    EXPECT_FALSE(_queue->reserveEntry(LgTypes::Error));
    _queue->cancelInsertion();
    EXPECT_EQ(numberAt(*_queue, places._lost), 1U);
    EXPECT_EQ(take(), "five");
}

} // namespace

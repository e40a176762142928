#include "app/lgLeftMap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{

using Zu::LgLeftMap;
namespace LgMap = Zu::LgMap;

// Where the positions of a queue are in its block here.
constexpr std::uint32_t ENTRIES_BEGIN = 64;
constexpr std::uint32_t ENTRIES_END = 128;
constexpr std::uint32_t TEXT_BEGIN = 192;
constexpr std::uint32_t TEXT_END = 256;
constexpr std::uint32_t LOST = 320;

constexpr std::size_t LONGEST_TEXT = 32766;
constexpr std::int32_t LEVELS = 7;

// Reads from a text as from a file.
LgLeftMap::Read readerOf(const std::string& bytes)
{
    return [&bytes](std::uint64_t offset, void* to, std::size_t size)
    {
        if (offset > bytes.size() || size > bytes.size() - offset) return false;
        std::memcpy(to, bytes.data() + offset, size);
        return true;
    };
}

// Writes a map by hand.
class MapText
{
public:
    MapText() : _bytes(LgMap::BLOCKS_AT, '\0')
    {
        LgMap::Header header = {};
        std::memcpy(header._magic, LgMap::MAGIC, sizeof header._magic);
        header._version = 2;
        header._headerSize = sizeof(LgMap::Header);
        header._batchSize = sizeof(LgMap::Batch);
        header._queueSize = sizeof(LgMap::Queue);
        header._process = 4711;
        header._batches = LgMap::BATCHES_AT;
        header._queues = LgMap::QUEUES_AT;
        std::strcpy(header._host, "host");
        std::strcpy(header._directory, "/logs");
        put(0, header);
    }

    template <class Value> void put(std::uint64_t at, const Value& value)
    {
        std::memcpy(&_bytes[at], &value, sizeof value);
    }

    template <class Value> Value get(std::uint64_t at) const
    {
        Value value;
        std::memcpy(&value, &_bytes[at], sizeof value);
        return value;
    }

    // A queue whose next event comes after these positions, of which the second is the end of the
    // text before. Returns its index.
    std::uint32_t addQueue(std::uint32_t thread, std::uint32_t entry = 0, std::uint32_t text = 0)
    {
        LgMap::Queue queue = {};
        queue._block = _bytes.size();
        queue._thread = thread;
        queue._entries = LgMap::LEAST_ENTRIES;
        queue._characters = LgMap::LEAST_CHARACTERS;
        queue._usableEntries = queue._entries;
        queue._usableCharacters = queue._characters;
        queue._entriesAt = LgMap::PAGE;
        queue._charactersAt = LgMap::PAGE + queue._entries * sizeof(LgMap::Entry);
        queue._entriesBegin = ENTRIES_BEGIN;
        queue._entriesEnd = ENTRIES_END;
        queue._textBegin = TEXT_BEGIN;
        queue._textEnd = TEXT_END;
        queue._lost = LOST;
        _bytes.resize(_bytes.size() + queue._charactersAt + queue._characters);
        put(queue._block + ENTRIES_BEGIN, entry);
        put(queue._block + ENTRIES_END, entry);
        put(queue._block + TEXT_BEGIN, text);
        put(queue._block + TEXT_END, text);
        const std::uint32_t index = get<LgMap::Header>(0)._queueCount;
        put(placeOf(index), queue);
        put(offsetof(LgMap::Header, _queueCount), index + 1);
        return index;
    }

    static std::uint64_t placeOf(std::uint32_t queue)
    {
        return LgMap::QUEUES_AT + queue * sizeof(LgMap::Queue);
    }

    LgMap::Queue queue(std::uint32_t index) const
    {
        return get<LgMap::Queue>(placeOf(index));
    }

    void addEntry(std::uint32_t index, const LgMap::Entry& entry)
    {
        const LgMap::Queue facts = queue(index);
        const auto end = get<std::uint32_t>(facts._block + ENTRIES_END);
        put(facts._block + facts._entriesAt + end * sizeof entry, entry);
        put(facts._block + ENTRIES_END, (end + 1) & (facts._entries - 1));
    }

    void add(std::uint32_t index, std::uint64_t time, const std::string& text, int level = 3)
    {
        const LgMap::Queue facts = queue(index);
        auto end = get<std::uint32_t>(facts._block + TEXT_END);
        for (const char character : text + '\0')
        {
            end = (end + 1) & (facts._characters - 1);
            _bytes[facts._block + facts._charactersAt + end] = character;
        }
        put(facts._block + TEXT_END, end);
        addEntry(index, {0, {}, level, time});
    }

    void addLost(std::uint32_t index, std::uint64_t time, int count)
    {
        addEntry(index, {1, {}, count, time});
    }

    // Moves the beginning of a queue.
    void moveEntry(std::uint32_t index, std::uint32_t entry)
    {
        put(queue(index)._block + ENTRIES_BEGIN, entry);
    }

    void moveText(std::uint32_t index, std::uint32_t text)
    {
        put(queue(index)._block + TEXT_BEGIN, text);
    }

    void setState(std::uint64_t number, std::uint32_t state)
    {
        put(offsetof(LgMap::Header, _state), (number << LgMap::STATE_BITS) | state);
    }

    static std::uint64_t placeOfBatch(std::uint64_t number)
    {
        return LgMap::BATCHES_AT + (number & 1) * LgMap::BATCH_SPACE;
    }

    LgMap::Batch batch(std::uint64_t number) const
    {
        return get<LgMap::Batch>(placeOfBatch(number));
    }

    void setBatch(std::uint64_t number, std::uint32_t state, const LgMap::Batch& batch)
    {
        put(placeOfBatch(number), batch);
        setState(number, state);
    }

    // What waits for a log, at the end of the file.
    LgMap::WaitingLog addWaiting(std::uint32_t log, const std::string& text, std::uint64_t batch)
    {
        LgMap::WaitingLog slot = {};
        slot._current = 1;
        slot._waiting[1] = {_bytes.size(), text.size(), LgMap::hashBytes(text.data(), text.size()),
                            batch,         5,           6};
        _bytes += text;
        setWaiting(log, slot);
        return slot;
    }

    void setWaiting(std::uint32_t log, const LgMap::WaitingLog& slot)
    {
        put(placeOfWaiting(log), slot);
    }

    static std::uint64_t placeOfWaiting(std::uint32_t log)
    {
        return offsetof(LgMap::Header, _waiting) + log * sizeof(LgMap::WaitingLog);
    }

    std::string _bytes;
};

LgMap::BatchLine lineOf(std::uint16_t queue)
{
    return {10, 1, queue, 0, 0};
}

// The texts in their order; lost events as numbers.
std::vector<std::string> textsOf(const LgLeftMap& map)
{
    std::vector<std::string> texts;
    for (const LgLeftMap::Event& event : map.getEvents())
        texts.push_back(event._isOverflow ? "lost " + std::to_string(event._value) : event._text);
    return texts;
}

using Texts = std::vector<std::string>;

// What holds whatever the file contains.
void checkBounds(const LgLeftMap& map)
{
    ASSERT_LE(map.getQueues().size(), LgMap::MOST_QUEUES);
    ASSERT_LE(map.getBatchEvents(), map.getEvents().size());
    ASSERT_LE(map.getBatchEvents(), LgMap::MOST_EVENTS);
    ASSERT_LE(map.getState(), LgMap::Written);
    for (const LgLeftMap::Event& event : map.getEvents())
    {
        ASSERT_LT(event._queue, map.getQueues().size());
        const LgMap::Queue& facts = map.getQueues()[event._queue]._facts;
        ASSERT_LT(event._nextEntry, facts._entries);
        ASSERT_LT(event._nextText, facts._characters);
        ASSERT_LE(event._text.size(), LONGEST_TEXT);
        ASSERT_EQ(event._text.find('\0'), std::string::npos);
        // 0 for lost events that the batch has found to be reported before.
        ASSERT_GE(event._value, 0);
        ASSERT_TRUE(event._isOverflow || event._value < LEVELS);
    }
}

// Loads what may be damaged.
void loadAnything(const std::string& bytes)
{
    LgLeftMap map;
    if (map.load(readerOf(bytes)))
        checkBounds(map);
    else
        ASSERT_FALSE(map.getReason().empty());
}

TEST(LgLeftMap, AMapWithoutQueuesHasNoEvents)
{
    const MapText text;
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes)));
    EXPECT_EQ(map.getReason(), "");
    EXPECT_EQ(map.getHeader()._process, 4711U);
    EXPECT_STREQ(map.getHeader()._directory, "/logs");
    EXPECT_TRUE(map.getQueues().empty());
    EXPECT_TRUE(map.getEvents().empty());
    EXPECT_EQ(map.getState(), LgMap::Idle);
    EXPECT_EQ(map.getDamaged(), 0U);
}

TEST(LgLeftMap, EventsOfSeveralQueuesAreInTheOrderOfTime)
{
    MapText text;
    const std::uint32_t one = text.addQueue(11);
    const std::uint32_t other = text.addQueue(22);
    text.addQueue(33);
    text.add(one, 10, "a", 0);
    text.add(other, 15, "b", 6);
    text.add(one, 20, "");
    text.addLost(other, 25, 17);
    text.add(one, 30, "c");
    text.add(other, 35, "d");
    text.put(text.queue(other)._block + LOST, std::uint64_t{17});
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes)));
    EXPECT_EQ(textsOf(map), (Texts{"a", "b", "", "lost 17", "c", "d"}));
    EXPECT_EQ(map.getEvents()[0]._thread, 11U);
    EXPECT_EQ(map.getEvents()[0]._value, 0);
    EXPECT_EQ(map.getEvents()[1]._thread, 22U);
    EXPECT_EQ(map.getEvents()[1]._value, 6);
    EXPECT_EQ(map.getEvents()[1]._time, 15U);
    // "a" and its end, then the end of the empty one, then "c" and its end.
    EXPECT_EQ(map.getEvents()[0]._nextText, 2U);
    EXPECT_EQ(map.getEvents()[2]._nextText, 3U);
    EXPECT_EQ(map.getEvents()[4]._nextText, 5U);
    EXPECT_EQ(map.getEvents()[4]._nextEntry, 3U);
    // An entry that stands for lost events has no text.
    EXPECT_EQ(map.getEvents()[3]._nextText, 2U);
    EXPECT_EQ(map.getQueues().size(), 3U);
    EXPECT_EQ(map.getQueues()[1]._lost, 17U);
    EXPECT_EQ(map.getDamaged(), 0U);
}

TEST(LgLeftMap, EventsOfAQueueStayInTheirOrderEvenIfTheirTimesDoNot)
{
    MapText text;
    const std::uint32_t one = text.addQueue(1);
    const std::uint32_t other = text.addQueue(2);
    text.add(one, 50, "first");
    text.add(one, 10, "second");
    text.add(other, 30, "earlier");
    text.add(other, 60, "later");
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes)));
    EXPECT_EQ(textsOf(map), (Texts{"earlier", "first", "second", "later"}));
}

TEST(LgLeftMap, RingsWrapAtEveryPlace)
{
    const std::string longText(300, 'x');
    for (std::uint32_t i = 0; i < LgMap::LEAST_ENTRIES; ++i)
    {
        MapText text;
        const std::uint32_t begin = LgMap::LEAST_CHARACTERS - 1 - 10 * i;
        const std::uint32_t queue = text.addQueue(1, i, begin);
        Texts expected;
        for (std::uint32_t j = 0; j < LgMap::LEAST_ENTRIES - 1; ++j)
        {
            expected.push_back(std::to_string(j) + (j % 3 == 0 ? longText : ""));
            text.add(queue, j, expected.back());
        }
        LgLeftMap map;
        ASSERT_TRUE(map.load(readerOf(text._bytes)));
        ASSERT_EQ(textsOf(map), expected) << i;
        ASSERT_EQ(map.getEvents().back()._nextEntry, (i + 63) % 64) << i;
    }
}

TEST(LgLeftMap, TheLongestTextIsRead)
{
    for (const std::uint32_t begin : {0U, 1U, 20000U, LgMap::LEAST_CHARACTERS - 1})
    {
        MapText text;
        const std::string longest(LONGEST_TEXT, 'z');
        text.add(text.addQueue(1, 0, begin), 1, longest);
        LgLeftMap map;
        ASSERT_TRUE(map.load(readerOf(text._bytes)));
        EXPECT_EQ(textsOf(map), Texts{longest}) << begin;
    }
}

TEST(LgLeftMap, AQueueThatWasGivenBackIsNone)
{
    MapText text;
    text.add(text.addQueue(1), 1, "gone");
    text.add(text.addQueue(2), 2, "here");
    text.put(MapText::placeOf(0) + offsetof(LgMap::Queue, _block), std::uint64_t{0});
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes)));
    EXPECT_EQ(textsOf(map), Texts{"here"});
    EXPECT_EQ(map.getQueues().at(0)._index, 1U);
    EXPECT_EQ(map.getDamaged(), 0U);
}

TEST(LgLeftMap, EventsInMemoryThatTheProcessAloneHadAreCounted)
{
    struct Row
    {
        std::uint32_t _usableEntries;
        std::uint32_t _usableCharacters;
        bool _isRead;
    };
    // Three entries from 1 on; texts in the characters 1 to 9.
    for (const Row& row : {Row{4, 10, true}, Row{3, 10, false}, Row{4, 9, false}, Row{0, 0, false}})
    {
        MapText text;
        const std::uint32_t damaged = text.addQueue(1, 1);
        for (int i = 0; i < 3; ++i) text.add(damaged, 10, "ab");
        text.add(text.addQueue(2), 20, "other");
        LgMap::Queue queue = text.queue(damaged);
        queue._usableEntries = row._usableEntries;
        queue._usableCharacters = row._usableCharacters;
        text.put(MapText::placeOf(damaged), queue);
        LgLeftMap map;
        ASSERT_TRUE(map.load(readerOf(text._bytes)));
        EXPECT_EQ(textsOf(map), row._isRead ? (Texts{"ab", "ab", "ab", "other"}) : Texts{"other"});
        EXPECT_EQ(map.getDamaged(), row._isRead ? 0U : 3U) << row._usableEntries;
    }
}

// FNV-1a, with the values of its authors.
TEST(LgLeftMap, TheHashOfBytesIsAPublishedOne)
{
    EXPECT_EQ(LgMap::hashBytes("", 0), 0xCBF29CE484222325U);
    EXPECT_EQ(LgMap::hashBytes("a", 1), 0xAF63DC4C8601EC8CU);
    EXPECT_EQ(LgMap::hashBytes("foobar", 6), 0x85944171F73967E8U);
    EXPECT_EQ(LgMap::hashBytes("bar", 3, LgMap::hashBytes("foo", 3)), 0x85944171F73967E8U);
}

TEST(LgLeftMap, WhatWaitsForLogsIsReadAsItIs)
{
    MapText text;
    LgLeftMap none;
    ASSERT_TRUE(none.load(readerOf(text._bytes)));
    EXPECT_TRUE(none.isEmpty());
    text.addWaiting(0, "zero\n", 3);
    text.addWaiting(7, "seven\nand\teight\n", 4);
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes)));
    EXPECT_FALSE(map.isEmpty());
    ASSERT_EQ(map.getWaiting().size(), 8U);
    EXPECT_EQ(map.getWaiting()[0]._text, "zero\n");
    EXPECT_EQ(map.getWaiting()[0]._batch, 3U);
    EXPECT_EQ(map.getWaiting()[0]._dropped, 5U);
    EXPECT_EQ(map.getWaiting()[0]._failingSince, 6);
    EXPECT_EQ(map.getWaiting()[1]._text, "");
    EXPECT_EQ(map.getWaiting()[1]._batch, 0U);
    EXPECT_EQ(map.getWaiting()[7]._text, "seven\nand\teight\n");
    EXPECT_EQ(map.getDamaged(), 0U);
}

TEST(LgLeftMap, LostCountsAloneAreNotEmpty)
{
    MapText text;
    text.addWaiting(2, "", 3);
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes)));
    EXPECT_EQ(map.getWaiting()[2]._dropped, 5U);
    EXPECT_FALSE(map.isEmpty());
}

TEST(LgLeftMap, WhatWaitsAndMakesNoSenseIsLeftOutAndCounted)
{
    struct Row
    {
        const char* _what;
        void (*_change)(LgMap::Waiting&);
    };
    for (const Row& row :
         {Row{"hash", [](LgMap::Waiting& waiting) { ++waiting._hash; }},
          Row{"longer", [](LgMap::Waiting& waiting) { ++waiting._size; }},
          Row{"shorter", [](LgMap::Waiting& waiting) { --waiting._size; }},
          Row{"too long", [](LgMap::Waiting& waiting) { waiting._size = LgMap::MOST_WAITING + 1; }},
          Row{"endless", [](LgMap::Waiting& waiting) { waiting._size = ~std::uint64_t(0); }},
          Row{"elsewhere", [](LgMap::Waiting& waiting) { --waiting._place; }},
          Row{"nowhere", [](LgMap::Waiting& waiting) { waiting._place = ~std::uint64_t(0); }}})
    {
        MapText text;
        LgMap::WaitingLog slot = text.addWaiting(1, "damaged\n", 3);
        row._change(slot._waiting[1]);
        text.setWaiting(1, slot);
        text.addWaiting(2, "good\n", 4);
        LgLeftMap map;
        ASSERT_TRUE(map.load(readerOf(text._bytes)));
        EXPECT_EQ(map.getWaiting()[1]._text, "") << row._what;
        EXPECT_EQ(map.getWaiting()[1]._batch, 0U) << row._what;
        EXPECT_EQ(map.getWaiting()[2]._text, "good\n") << row._what;
        EXPECT_EQ(map.getDamaged(), 1U) << row._what;
        EXPECT_FALSE(map.isEmpty()) << row._what;
    }
}

TEST(LgLeftMap, WhatWaitsTakesNoMoreMemoryThanAllowed)
{
    MapText text;
    const std::string line(1000, 'x');
    for (std::uint32_t i = 0; i < 3; ++i) text.addWaiting(i, line, 1);
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes), 2500));
    EXPECT_EQ(map.getWaiting()[1]._text, line);
    EXPECT_EQ(map.getWaiting()[2]._text, "");
    EXPECT_EQ(map.getDamaged(), 1U);
}

class LgLeftMapBatch : public testing::Test
{
protected:
    // The batch 5 has two events of one queue and one of the other; one more waits in each.
    LgLeftMapBatch()
    {
        _one = _text.addQueue(1, 60, 1000);
        _other = _text.addQueue(2);
        _text.add(_one, 10, "a");
        _text.add(_other, 20, "b");
        _text.add(_one, 30, "c");
        _text.add(_one, 5, "d");
        _text.add(_other, 7, "e");
        _batch._fileCount = 1;
        _batch._queueCount = 2;
        _batch._queues[0] = {_one, 60, 1000, 0, 100};
        _batch._queues[1] = {_other, 0, 0, 0, 200};
        _batch._lineCount = 5;
        _batch._lines[0] = lineOf(LgMap::NONE);
        _batch._lines[1] = lineOf(0);
        _batch._lines[2] = lineOf(1);
        _batch._lines[3] = lineOf(0);
        _batch._lines[4] = lineOf(LgMap::NONE);
    }

    Texts load()
    {
        _map = LgLeftMap();
        EXPECT_TRUE(_map.load(readerOf(_text._bytes)));
        checkBounds(_map);
        return textsOf(_map);
    }

    MapText _text;
    std::uint32_t _one;
    std::uint32_t _other;
    LgMap::Batch _batch = {};
    LgLeftMap _map;
};

// The events "e" and "d" are behind those that are older in their queues.
const Texts BY_TIME = {"a", "b", "e", "c", "d"};

TEST_F(LgLeftMapBatch, ComesFirstWhileItIsBeingWritten)
{
    _text.setBatch(5, LgMap::Writing, _batch);
    EXPECT_EQ(load(), (Texts{"a", "b", "c", "e", "d"}));
    EXPECT_EQ(_map.getBatchEvents(), 3U);
    EXPECT_EQ(_map.getNumber(), 5U);
    EXPECT_EQ(_map.getState(), LgMap::Writing);
    EXPECT_EQ(_map.getBatch()._lineCount, 5U);
    EXPECT_EQ(_map.getQueues()[0]._inBatch, 2U);
    EXPECT_EQ(_map.getQueues()[1]._inBatch, 1U);
    EXPECT_EQ(_map.getQueues()[0]._reported, 100U);
}

TEST_F(LgLeftMapBatch, IsReadFromThePlaceOfItsNumber)
{
    _text.setBatch(5, LgMap::Writing, {});
    _text.setBatch(6, LgMap::Writing, _batch);
    load();
    EXPECT_EQ(_map.getBatchEvents(), 3U);
    _text.setState(7, LgMap::Writing);
    load();
    EXPECT_EQ(_map.getBatchEvents(), 0U);
}

TEST_F(LgLeftMapBatch, DoesNotCountWhenIdle)
{
    for (const std::uint32_t state : {0U, 3U})
    {
        _text.setBatch(5, state, _batch);
        // The positions of the queues count.
        _text.moveEntry(_one, 62);
        _text.moveText(_one, 1004);
        EXPECT_EQ(load(), (Texts{"d", "b", "e"}));
        EXPECT_EQ(_map.getBatchEvents(), 0U);
        EXPECT_EQ(_map.getState(), LgMap::Idle);
    }
}

// At each step of moving the positions behind a batch: all that waits is there once.
TEST_F(LgLeftMapBatch, IsWrittenWhileThePositionsAreBeingMoved)
{
    _text.setBatch(5, LgMap::Written, _batch);
    EXPECT_EQ(load(), (Texts{"a", "b", "c", "e", "d"}));
    EXPECT_EQ(_map.getBatchEvents(), 3U);
    _text.moveText(_one, 1004);
    EXPECT_EQ(load(), (Texts{"b", "d", "e"}));
    EXPECT_EQ(_map.getBatchEvents(), 1U);
    _text.moveEntry(_one, 62);
    EXPECT_EQ(load(), (Texts{"b", "d", "e"}));
    _text.moveText(_other, 2);
    EXPECT_EQ(load(), (Texts{"d", "e"}));
    _text.moveEntry(_other, 1);
    EXPECT_EQ(load(), (Texts{"d", "e"}));
    EXPECT_EQ(_map.getBatchEvents(), 0U);
}

// The room of a queue whose positions were moved is used again at once.
TEST_F(LgLeftMapBatch, MayBeOverwrittenOnceThePositionsAreMoved)
{
    _text.setBatch(5, LgMap::Written, _batch);
    _text.moveText(_one, 1004);
    _text.moveEntry(_one, 62);
    Texts expected = {"b", "d", "e"};
    for (int i = 0; i < 62; ++i)
    {
        _text.add(_one, 100, "new " + std::to_string(i));
        expected.push_back("new " + std::to_string(i));
        ASSERT_EQ(load(), expected) << i;
    }
    EXPECT_EQ(_map.getDamaged(), 0U);
}

// Entries of lost events have no text that would be moved.
TEST_F(LgLeftMapBatch, OfLostEventsAloneIsFoundToBeMovedByTheEntries)
{
    const std::uint32_t queue = _text.addQueue(3);
    _text.addLost(queue, 50, 7);
    _text.add(queue, 60, "f");
    _batch._queues[_batch._queueCount++] = {queue, 0, 0, 0, 0};
    _batch._lines[_batch._lineCount] = lineOf(2);
    _batch._lines[_batch._lineCount++]._lost = 7;
    _text.setBatch(5, LgMap::Written, _batch);
    EXPECT_EQ(load(), (Texts{"a", "b", "c", "lost 7", "e", "d", "f"}));
    EXPECT_EQ(_map.getBatchEvents(), 4U);
    _text.moveEntry(queue, 1);
    EXPECT_EQ(load(), (Texts{"a", "b", "c", "e", "d", "f"}));
    EXPECT_EQ(_map.getBatchEvents(), 3U);
}

// The batch was made when the entry counted fewer losses; the others are reported behind it.
TEST_F(LgLeftMapBatch, ReportsTheLossesThatItCountedAndNotThoseThatCameSince)
{
    const std::uint32_t queue = _text.addQueue(3);
    _text.addLost(queue, 50, 7);
    _text.add(queue, 60, "f");
    _text.put(_text.queue(queue)._block + LOST, std::uint64_t{7});
    _batch._queues[_batch._queueCount++] = {queue, 0, 0, 0, 0};
    _batch._lines[_batch._lineCount] = lineOf(2);
    _batch._lines[_batch._lineCount++]._lost = 5;
    for (const auto state : {LgMap::Writing, LgMap::Written})
    {
        _text.setBatch(5, state, _batch);
        EXPECT_EQ(load(), (Texts{"a", "b", "c", "lost 5", "e", "d", "f", "lost 2"}));
        EXPECT_EQ(_map.getBatchEvents(), 4U);
    }
}

TEST_F(LgLeftMapBatch, ThatMakesNoSenseIsNone)
{
    const LgMap::Batch good = _batch;
    const std::vector<void (*)(LgMap::Batch&)> changes = {
        [](LgMap::Batch& batch) { batch._fileCount = LgMap::MOST_FILES + 1; },
        [](LgMap::Batch& batch) { batch._fileCount = 0xFFFFFFFF; },
        [](LgMap::Batch& batch) { batch._queueCount = LgMap::MOST_LINES + 1; },
        [](LgMap::Batch& batch) { batch._queueCount = 0xFFFFFFFF; },
        [](LgMap::Batch& batch) { batch._lineCount = LgMap::MOST_LINES + 1; },
        [](LgMap::Batch& batch) { batch._lineCount = 0xFFFFFFFF; },
        // More events than a process puts into one.
        [](LgMap::Batch& batch)
        {
            batch._lineCount = LgMap::MOST_LINES;
            std::fill(std::begin(batch._lines), std::end(batch._lines), lineOf(0));
        },
        [](LgMap::Batch& batch)
        {
            batch._lineCount = LgMap::MOST_EVENTS + 1;
            std::fill(std::begin(batch._lines), std::end(batch._lines), lineOf(1));
        }};
    for (std::size_t i = 0; i < changes.size(); ++i)
    {
        _batch = good;
        changes[i](_batch);
        _text.setBatch(5, LgMap::Writing, _batch);
        EXPECT_EQ(load(), BY_TIME) << i;
        EXPECT_EQ(_map.getState(), LgMap::Idle) << i;
        EXPECT_EQ(_map.getBatchEvents(), 0U) << i;
    }
}

TEST_F(LgLeftMapBatch, OfMoreLinesThanEventsIsWithinBounds)
{
    _batch._lineCount = LgMap::MOST_EVENTS;
    std::fill(std::begin(_batch._lines), std::end(_batch._lines), lineOf(0));
    for (const std::uint32_t state : {LgMap::Writing, LgMap::Written})
    {
        _text.setBatch(5, state, _batch);
        EXPECT_EQ(load(), (Texts{"a", "c", "d", "b", "e"}));
        EXPECT_EQ(_map.getBatchEvents(), 3U);
    }
}

TEST_F(LgLeftMapBatch, WithAQueueTwiceLosesNone)
{
    _batch._queues[1] = _batch._queues[0];
    for (const std::uint32_t state : {LgMap::Writing, LgMap::Written})
    {
        _text.setBatch(5, state, _batch);
        Texts texts = load();
        std::sort(texts.begin(), texts.end());
        EXPECT_EQ(texts, (Texts{"a", "b", "c", "d", "e"}));
    }
}

TEST_F(LgLeftMapBatch, WithPositionsOutsideOfTheRingsMakesTheQueueDamaged)
{
    _batch._queues[0]._entry = LgMap::LEAST_ENTRIES;
    _text.setBatch(5, LgMap::Writing, _batch);
    EXPECT_EQ(load(), (Texts{"b", "e"}));
    EXPECT_EQ(_map.getDamaged(), 1U);
    _batch._queues[0] = {_one, 60, LgMap::LEAST_CHARACTERS, 0, 0};
    _text.setBatch(5, LgMap::Writing, _batch);
    EXPECT_EQ(load(), (Texts{"b", "e"}));
    EXPECT_EQ(_map.getDamaged(), 1U);
}

class LgLeftMapHostile : public LgLeftMapBatch
{
protected:
    // Why a map with this header is refused.
    template <class Change> std::string reasonAfter(const Change& change)
    {
        auto header = _text.get<LgMap::Header>(0);
        change(header);
        std::string bytes = _text._bytes;
        std::memcpy(bytes.data(), &header, sizeof header);
        LgLeftMap map;
        EXPECT_FALSE(map.load(readerOf(bytes)));
        EXPECT_TRUE(map.getEvents().empty());
        return map.getReason();
    }

    void changeQueue(void (*change)(LgMap::Queue&))
    {
        LgMap::Queue queue = _text.queue(_one);
        change(queue);
        MapText text = _text;
        text.put(MapText::placeOf(_one), queue);
        std::swap(text, _text);
        EXPECT_EQ(load(), (Texts{"b", "e"}));
        EXPECT_GT(_map.getDamaged(), 0U);
        std::swap(text, _text);
    }
};

TEST_F(LgLeftMapHostile, AnotherKindOfFileOrVersionIsRefused)
{
    const std::string another = "it has another version";
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { header._magic[7] = 'p'; }),
              "it is not a map of events");
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { header._version = 0; }), another);
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { header._version = 3; }), another);
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { ++header._headerSize; }), another);
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { --header._batchSize; }), another);
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { header._queueSize = 0; }), another);
}

TEST_F(LgLeftMapHostile, AHeaderThatMakesNoSenseIsRefused)
{
    const std::string damaged = "it is damaged";
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { header._queueCount = 16385; }), damaged);
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { header._queueCount = 0xFFFFFFFF; }), damaged);
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { ++header._batches; }), damaged);
    EXPECT_EQ(reasonAfter([](LgMap::Header& header) { header._queues = ~0ULL; }), damaged);
}

TEST_F(LgLeftMapHostile, NamesWithoutAnEndAreEnded)
{
    auto header = _text.get<LgMap::Header>(0);
    std::memset(header._host, 'h', sizeof header._host);
    std::memset(header._boot, 'b', sizeof header._boot);
    std::memset(header._directory, 'd', sizeof header._directory);
    _text.put(0, header);
    load();
    EXPECT_EQ(_map.getHeader()._host, std::string(LgMap::NAME_SIZE - 1, 'h'));
    EXPECT_EQ(_map.getHeader()._boot, std::string(LgMap::NAME_SIZE - 1, 'b'));
    EXPECT_EQ(_map.getHeader()._directory, std::string(LgMap::DIRECTORY_SIZE - 1, 'd'));
}

TEST_F(LgLeftMapHostile, AFileThatIsTooShortGivesWhatItHas)
{
    _text.setBatch(5, LgMap::Writing, _batch);
    const std::string whole = _text._bytes;
    for (std::size_t size = 0; size <= whole.size(); size += size < 2000 ? 1 : 997)
        loadAnything(whole.substr(0, size));
    _text._bytes.resize(sizeof(LgMap::Header) - 1);
    LgLeftMap map;
    EXPECT_FALSE(map.load(readerOf(_text._bytes)));
    EXPECT_EQ(map.getReason(), "it is not a map of events");
    _text._bytes = whole;
    // Without the block of the second queue.
    _text._bytes.resize(_text.queue(_other)._block);
    EXPECT_EQ(load(), (Texts{"a", "c", "d"}));
    EXPECT_EQ(_map.getDamaged(), 1U);
}

TEST_F(LgLeftMapHostile, AQueueThatMakesNoSenseIsLeftOutAndCounted)
{
    changeQueue([](LgMap::Queue& queue) { queue._block = ~0ULL; });
    changeQueue([](LgMap::Queue& queue) { queue._block = ~0ULL - 4096; });
    changeQueue([](LgMap::Queue& queue) { queue._block = 1ULL << 48; });
    changeQueue([](LgMap::Queue& queue) { queue._block = (1ULL << 48) - 1; });
    changeQueue([](LgMap::Queue& queue) { queue._entriesAt = ~0ULL; });
    changeQueue([](LgMap::Queue& queue) { queue._entriesAt = 0 - queue._block; });
    changeQueue([](LgMap::Queue& queue) { queue._charactersAt = ~0ULL; });
    changeQueue([](LgMap::Queue& queue) { queue._charactersAt = 0 - queue._block; });
    changeQueue([](LgMap::Queue& queue) { queue._entries = 0; });
    changeQueue([](LgMap::Queue& queue) { queue._entries = 32; });
    changeQueue([](LgMap::Queue& queue) { queue._entries = 96; });
    changeQueue([](LgMap::Queue& queue) { queue._entries = 1U << 21; });
    changeQueue([](LgMap::Queue& queue) { queue._characters = 0; });
    changeQueue([](LgMap::Queue& queue) { queue._characters = 16384; });
    changeQueue([](LgMap::Queue& queue) { queue._characters = 1U << 31; });
    changeQueue([](LgMap::Queue& queue) { queue._usableEntries = queue._entries + 1; });
    changeQueue([](LgMap::Queue& queue) { queue._usableCharacters = ~0U; });
    changeQueue([](LgMap::Queue& queue) { queue._entriesBegin = 65536; });
    changeQueue([](LgMap::Queue& queue) { queue._entriesEnd = ~0U; });
    changeQueue([](LgMap::Queue& queue) { queue._textBegin = ~0U; });
    changeQueue([](LgMap::Queue& queue) { queue._textEnd = 65536; });
    changeQueue([](LgMap::Queue& queue) { queue._lost = ~0U; });
}

TEST_F(LgLeftMapHostile, AnEntryThatMakesNoSenseEndsItsQueue)
{
    const std::uint64_t at = _text.queue(_one)._block + LgMap::PAGE + 61 * sizeof(LgMap::Entry);
    const LgMap::Entry entries[] = {{0, {}, 7, 30},
                                    {0, {}, -1, 30},
                                    {0, {}, std::numeric_limits<std::int32_t>::min(), 30},
                                    {1, {}, 0, 30},
                                    {1, {}, -1, 30}};
    for (const LgMap::Entry& entry : entries)
    {
        _text.put(at, entry);
        EXPECT_EQ(load(), (Texts{"a", "b", "e"}));
        EXPECT_EQ(_map.getDamaged(), 2U) << entry._value;
    }
}

TEST_F(LgLeftMapHostile, TextsWithoutAnEndAreLeftOutAndCounted)
{
    const LgMap::Queue facts = _text.queue(_one);
    for (std::uint32_t i = 0; i < facts._characters; ++i)
        _text._bytes[facts._block + facts._charactersAt + i] = 'x';
    EXPECT_EQ(load(), (Texts{"b", "e"}));
    EXPECT_EQ(_map.getDamaged(), 3U);
}

// A ring that is larger than the smallest can hold a text that no event has.
TEST_F(LgLeftMapHostile, ATextThatIsTooLongIsLeftOutAndCounted)
{
    MapText text;
    const std::uint32_t index = text.addQueue(1);
    LgMap::Queue queue = text.queue(index);
    queue._characters = queue._usableCharacters = 65536;
    text._bytes.resize(text._bytes.size() + 65536);
    text.put(MapText::placeOf(index), queue);
    text.add(index, 1, std::string(LONGEST_TEXT, 'x'));
    text.add(index, 2, std::string(LONGEST_TEXT + 1, 'y'));
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes)));
    EXPECT_EQ(map.getEvents().size(), 1U);
    EXPECT_EQ(map.getDamaged(), 1U);
}

// All queues may lie in the same place; so what they take together is bounded.
TEST_F(LgLeftMapHostile, ManyQueuesInOnePlaceTakeNoMoreMemoryThanAllowed)
{
    constexpr std::uint32_t COUNT = 2000;
    MapText text;
    const std::uint32_t index = text.addQueue(1);
    LgMap::Queue queue = text.queue(index);
    constexpr std::uint32_t CHARACTERS = 1U << 24;
    queue._characters = queue._usableCharacters = CHARACTERS;
    text.put(MapText::placeOf(index), queue);
    text.add(index, 1, "x");
    text._bytes.resize(text._bytes.size() + CHARACTERS);
    text.put(queue._block + TEXT_END, CHARACTERS - 1);
    for (std::uint32_t i = 0; i < COUNT; ++i) text.put(MapText::placeOf(i), queue);
    text.put(offsetof(LgMap::Header, _queueCount), COUNT);
    std::uint64_t most = 0;
    std::uint64_t sum = 0;
    const LgLeftMap::Read read = readerOf(text._bytes);
    LgLeftMap map;
    ASSERT_TRUE(map.load(
        [&](std::uint64_t offset, void* to, std::size_t size)
        {
            most = std::max<std::uint64_t>(most, size);
            sum += size;
            return read(offset, to, size);
        }));
    EXPECT_LT(most, std::uint64_t{CHARACTERS});
    EXPECT_LT(sum, LgLeftMap::MOST_TEXT + (1U << 20));
    EXPECT_EQ(map.getEvents().size() + map.getDamaged(), COUNT);
    EXPECT_GT(map.getDamaged(), COUNT / 2);
}

// Entries of lost events have no text, and an event takes more memory than an entry.
TEST_F(LgLeftMapHostile, ManyEventsWithoutTextTakeNoMoreMemoryThanAllowed)
{
    constexpr std::uint32_t COUNT = 50;
    constexpr std::uint32_t EVENTS = LgMap::LEAST_ENTRIES - 1;
    MapText text;
    const std::uint32_t index = text.addQueue(1);
    for (std::uint32_t i = 0; i < EVENTS; ++i) text.addLost(index, i, 1);
    const LgMap::Queue queue = text.queue(index);
    for (std::uint32_t i = 0; i < COUNT; ++i) text.put(MapText::placeOf(i), queue);
    text.put(offsetof(LgMap::Header, _queueCount), COUNT);
    constexpr std::uint64_t MOST = 10 * EVENTS * sizeof(LgLeftMap::Event);
    LgLeftMap map;
    ASSERT_TRUE(map.load(readerOf(text._bytes), MOST));
    EXPECT_EQ(map.getEvents().size(), 10 * EVENTS);
    EXPECT_EQ(map.getDamaged(), (COUNT - 10) * EVENTS);
}

TEST_F(LgLeftMapHostile, AnySingleByteMayBeWrong)
{
    for (const std::uint32_t state : {LgMap::Writing, LgMap::Written})
    {
        _text.setBatch(5, state, _batch);
        const std::uint64_t waiting = _text.addWaiting(1, "waits\n", 4)._waiting[1]._place;
        std::string bytes = _text._bytes;
        const LgMap::Queue one = _text.queue(_one);
        const std::uint64_t batch = MapText::placeOfBatch(5);
        const std::uint64_t parts[][2] = {
            {0, offsetof(LgMap::Header, _directory)},
            {MapText::placeOfWaiting(1), MapText::placeOfWaiting(2)},
            {waiting, waiting + 6},
            {batch, batch + offsetof(LgMap::Batch, _queues) + 3 * sizeof(LgMap::BatchQueue)},
            {batch + offsetof(LgMap::Batch, _lines),
             batch + offsetof(LgMap::Batch, _lines) + 6 * sizeof(LgMap::BatchLine)},
            {LgMap::QUEUES_AT, MapText::placeOf(3)},
            {one._block + ENTRIES_BEGIN, one._block + LOST + 8},
            {one._block + one._entriesAt, one._block + one._entriesAt + 1024},
            {one._block + one._charactersAt + 990, one._block + one._charactersAt + 1020}};
        for (const auto& [begin, end] : parts)
            for (std::uint64_t at = begin; at < end; ++at)
            {
                const char former = bytes[at];
                std::vector<char> values = {'\0', '\xFF', '\x7F', '\x80'};
                for (int bit = 0; bit < 8; ++bit)
                    values.push_back(static_cast<char>(former ^ (1 << bit)));
                for (const char value : values)
                {
                    bytes[at] = value;
                    loadAnything(bytes);
                    ASSERT_FALSE(HasFatalFailure()) << "byte " << at << ", value " << int(value);
                }
                bytes[at] = former;
            }
    }
}

// Several numbers at once: any, and those at which something changes.
TEST_F(LgLeftMapHostile, AnyNumbersMayBeWrong)
{
    constexpr int ROUNDS = 20000;
    std::mt19937_64 random(20260207);
    const LgMap::Queue one = _text.queue(_one);
    _text.setBatch(5, LgMap::Written, _batch);
    _text.addWaiting(1, "waits\n", 4);
    const std::string good = _text._bytes;
    std::string bytes = good;
    const std::uint64_t batch = MapText::placeOfBatch(5);
    const std::uint64_t parts[][2] = {
        {offsetof(LgMap::Header, _state), 8},
        {offsetof(LgMap::Header, _queueCount), 4},
        {MapText::placeOfWaiting(1), sizeof(LgMap::WaitingLog)},
        {batch, 16},
        {batch + offsetof(LgMap::Batch, _queues), 2 * sizeof(LgMap::BatchQueue)},
        {batch + offsetof(LgMap::Batch, _lines), 6 * sizeof(LgMap::BatchLine)},
        {LgMap::QUEUES_AT, 4 * sizeof(LgMap::Queue)},
        {one._block + ENTRIES_BEGIN, 512},
        {one._block + one._entriesAt, 1024},
        {one._block + one._charactersAt + 960, 100}};
    const std::uint64_t numbers[] = {0,          1,          2,          63,    64,
                                     65,         96,         1023,       1024,  4096,
                                     16384,      32767,      32768,      65535, 65536,
                                     1U << 20,   1U << 26,   1ULL << 31, ~0U,   1ULL << 32,
                                     1ULL << 47, 1ULL << 48, 1ULL << 63, ~0ULL, ~0ULL - 4095};
    for (int round = 0; round < ROUNDS; ++round)
    {
        std::vector<std::uint64_t> places;
        for (std::uint64_t i = 1 + random() % 6; i > 0; --i)
        {
            const auto& [begin, size] = parts[random() % std::size(parts)];
            const std::uint64_t width = random() % 2 == 0 ? 4 : 8;
            const std::uint64_t at = begin + random() % (size / 4) * 4;
            const std::uint64_t any = random() >> random() % 64;
            const std::uint64_t number =
                random() % 3 == 0 ? any : numbers[random() % std::size(numbers)];
            std::memcpy(&bytes[at], &number, width);
            places.push_back(at);
        }
        loadAnything(bytes);
        ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        for (const std::uint64_t at : places) bytes.replace(at, 8, good, at, 8);
    }
}

TEST_F(LgLeftMapHostile, RandomBytesBehindAGoodHeader)
{
    constexpr int ROUNDS = 300;
    std::mt19937_64 random(4711);
    std::string bytes = _text._bytes;
    for (int round = 0; round < ROUNDS; ++round)
    {
        for (const std::uint64_t state : {0U, 1U, 2U})
        {
            const std::uint64_t number = (5 << LgMap::STATE_BITS) | state;
            std::memcpy(&bytes[offsetof(LgMap::Header, _state)], &number, sizeof number);
            const auto count = static_cast<std::uint32_t>(random() % 40);
            std::memcpy(&bytes[offsetof(LgMap::Header, _queueCount)], &count, sizeof count);
            for (std::uint64_t at = LgMap::QUEUES_AT; at < MapText::placeOf(40); at += 8)
            {
                const std::uint64_t any = random() >> random() % 64;
                std::memcpy(&bytes[at], &any, sizeof any);
            }
            const std::uint64_t batch = MapText::placeOfBatch(5);
            for (std::uint64_t at = batch; at < batch + sizeof(LgMap::Batch); at += 512)
            {
                const std::uint64_t any = random() >> random() % 64;
                std::memcpy(&bytes[at], &any, sizeof any);
            }
            loadAnything(bytes);
            ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        }
    }
}

} // namespace

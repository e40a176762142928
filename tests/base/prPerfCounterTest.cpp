#include "base/prPerfCounter.h"

#include "base/exInternalError.h"
#include "base/prEx.h"
#include "support/assertionText.h"
#include "support/platform.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::AssertionText;
using Zu::PrEx;

using Bytes = std::vector<unsigned char>;
using Sizes = std::vector<std::uint32_t>;

// The published layout: the size of each structure and the places of the fields that matter.
constexpr std::size_t BLOCK = 88;
constexpr std::size_t BLOCK_TOTAL = 20;
constexpr std::size_t BLOCK_HEADER = 24;
constexpr std::size_t BLOCK_OBJECTS = 28;

constexpr std::size_t OBJECT = 64;
constexpr std::size_t OBJECT_TOTAL = 0;
constexpr std::size_t OBJECT_DEFINITIONS = 4;
constexpr std::size_t OBJECT_HEADER = 8;
constexpr std::size_t OBJECT_NAME = 12;
constexpr std::size_t OBJECT_COUNTERS = 32;
constexpr std::size_t OBJECT_INSTANCES = 40;

constexpr std::size_t COUNTER = 40;
constexpr std::size_t COUNTER_LENGTH = 0;
constexpr std::size_t COUNTER_NAME = 4;
constexpr std::size_t COUNTER_TYPE = 28;
constexpr std::size_t COUNTER_SIZE = 32;
constexpr std::size_t COUNTER_OFFSET = 36;

constexpr std::size_t INSTANCE = 24;
constexpr std::size_t INSTANCE_LENGTH = 0;
constexpr std::size_t INSTANCE_NAME_OFFSET = 16;
constexpr std::size_t INSTANCE_NAME_LENGTH = 20;

// What the platform calls raw counts, a bulk count, text and nothing at all.
constexpr std::uint32_t RAW = 0x00010000;
constexpr std::uint32_t LARGE_RAW = 0x00010100;
constexpr std::uint32_t BULK = 0x10410500;
constexpr std::uint32_t TEXT = 0x00000B00;
constexpr std::uint32_t NO_DATA = 0x40000200;

std::uint32_t length(std::size_t size)
{
    return static_cast<std::uint32_t>(size);
}

// The least significant byte first, as the platform has it.
void put(Bytes& bytes, std::size_t at, std::uint64_t number, std::size_t size = 4)
{
    if (bytes.size() < at + size) bytes.resize(at + size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[at + i] = static_cast<unsigned char>(number >> 8 * i);
}

std::uint32_t numberAt(const Bytes& bytes, std::size_t at)
{
    std::uint32_t number = 0;
    for (std::size_t i = 4; i > 0; --i) number = number << 8 | bytes.at(at + i - 1);
    return number;
}

void append(Bytes& bytes, const Bytes& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

struct Counter
{
    std::uint32_t _name;
    std::uint32_t _type;
    std::uint32_t _offset;
    // How much longer than its structure the definition is.
    std::size_t _excess = 0;
};

Bytes bytesOf(const Counter& counter)
{
    Bytes bytes(COUNTER + counter._excess, 0xEE);
    put(bytes, COUNTER_LENGTH, bytes.size());
    put(bytes, COUNTER_NAME, counter._name);
    put(bytes, COUNTER_TYPE, counter._type);
    put(bytes, COUNTER_SIZE, counter._type == LARGE_RAW ? 8 : 4);
    put(bytes, COUNTER_OFFSET, counter._offset);
    return bytes;
}

// A counter block: its length, then 64-bit values, the first one at the offset 8.
Bytes valuesOf(const std::vector<std::uint64_t>& values)
{
    Bytes bytes;
    put(bytes, 4, 0);
    for (const std::uint64_t value : values) put(bytes, bytes.size(), value, 8);
    put(bytes, 0, bytes.size());
    return bytes;
}

struct Instance
{
    std::u16string _name;
    std::vector<std::uint64_t> _values;
    std::size_t _excess = 0;
};

Bytes definitionOf(const Instance& instance)
{
    Bytes bytes(INSTANCE + instance._excess, 0xEE);
    put(bytes, INSTANCE_NAME_OFFSET, bytes.size());
    put(bytes, INSTANCE_NAME_LENGTH, 2 * (instance._name.size() + 1));
    for (const char16_t character : instance._name) put(bytes, bytes.size(), character, 2);
    put(bytes, bytes.size(), 0, 2);
    bytes.resize((bytes.size() + 7) / 8 * 8, 0xEE);
    put(bytes, INSTANCE_LENGTH, bytes.size());
    return bytes;
}

struct Object
{
    std::uint32_t _name;
    std::vector<Counter> _counters;
    // Without instances there are values of the object itself.
    std::vector<Instance> _instances;
    std::vector<std::uint64_t> _values;
    std::size_t _excess = 0;
    std::uint32_t _emptyCount = 0xFFFFFFFF;
};

Bytes bytesOf(const Object& object)
{
    Bytes bytes(OBJECT + object._excess, 0xEE);
    put(bytes, OBJECT_HEADER, bytes.size());
    put(bytes, OBJECT_NAME, object._name);
    put(bytes, OBJECT_COUNTERS, object._counters.size());
    for (const Counter& counter : object._counters) append(bytes, bytesOf(counter));
    put(bytes, OBJECT_DEFINITIONS, bytes.size());
    for (const Instance& instance : object._instances)
    {
        append(bytes, definitionOf(instance));
        append(bytes, valuesOf(instance._values));
    }
    const bool isEmpty = object._instances.empty();
    if (isEmpty) append(bytes, valuesOf(object._values));
    put(bytes, OBJECT_INSTANCES, isEmpty ? object._emptyCount : object._instances.size());
    put(bytes, OBJECT_TOTAL, bytes.size());
    return bytes;
}

Bytes blockOf(const std::vector<Object>& objects, std::size_t excess = 0)
{
    Bytes bytes;
    for (const char letter : {'P', 'E', 'R', 'F'})
        append(bytes, {static_cast<Bytes::value_type>(letter), 0});
    put(bytes, 8, 1);
    bytes.resize(BLOCK + excess);
    put(bytes, BLOCK_HEADER, bytes.size());
    put(bytes, BLOCK_OBJECTS, objects.size());
    for (const Object& object : objects) append(bytes, bytesOf(object));
    put(bytes, BLOCK_TOTAL, bytes.size());
    return bytes;
}

// The outcome of a request, in words: the value, or the exception's class and reason.
std::string value(std::uint64_t number)
{
    return "value " + std::to_string(number);
}

std::string badObject(std::uint32_t index)
{
    return "object: Request with illegal counter object index " + std::to_string(index) + ".";
}

std::string badInstance(const std::string& name)
{
    return "instance: Request with illegal counter instance name " + name + ".";
}

std::string badCounter(std::uint32_t index)
{
    return "counter: Request with illegal counter index " + std::to_string(index) + ".";
}

const std::string UNSUPPORTED = "unsupported: Functionality unsupported by profiling package.";
const std::string INTERNAL = "internal error";

struct Request
{
    std::uint32_t _object;
    std::uint32_t _counter;
    const char* _instance = nullptr;
};

template <class Act> std::string outcomeOf(Act act)
{
    try
    {
        return value(act());
    }
    catch (const PrEx::ExBadCounterObjectIndex& exception)
    {
        return std::string("object: ") + exception.getReason();
    }
    catch (const PrEx::ExBadCounterInstance& exception)
    {
        return std::string("instance: ") + exception.getReason();
    }
    catch (const PrEx::ExBadCounterIndex& exception)
    {
        return std::string("counter: ") + exception.getReason();
    }
    catch (const PrEx::ExUnsupported& exception)
    {
        return std::string("unsupported: ") + exception.getReason();
    }
    catch (const Zu::ExInternalError&)
    {
        return INTERNAL;
    }
}

std::string outcomeOf(const Bytes& data, const Request& request)
{
    return outcomeOf(
        [&] {
            return Zu::prCounterValueIn(data, request._object, request._counter, request._instance);
        });
}

// Two kinds of objects, and one with each kind of counter.
constexpr std::uint32_t SYSTEM = 2;
constexpr std::uint32_t PROCESSOR = 238;
constexpr std::uint32_t KINDS = 4;

Object theSystem()
{
    return {SYSTEM, {{10, RAW, 8}, {12, LARGE_RAW, 16}}, {}, {0x99999999'00000017, 18000000000}};
}

Object theProcessor()
{
    return {PROCESSOR,
            {{6, LARGE_RAW, 8}, {8, RAW, 16}},
            {{u"A", {101, 102}}, {u"Zoo", {201, 202}}, {u"B", {301, 302}}, {u"C", {401, 402}}},
            {}};
}

Object theKinds()
{
    return {KINDS,
            {{20, RAW, 8}, {22, LARGE_RAW, 8}, {24, NO_DATA, 8}, {26, TEXT, 8}, {28, BULK, 8}},
            {},
            {0xFEDCBA98'87654321}};
}

std::vector<Object> theObjects()
{
    return {theSystem(), theProcessor(), theKinds()};
}

struct Case
{
    Request _request;
    std::string _outcome;
};

void expectCases(const Bytes& data, const std::vector<Case>& cases)
{
    for (const auto& [request, outcome] : cases)
        EXPECT_EQ(outcomeOf(data, request), outcome)
            << request._object << ' ' << request._counter << ' '
            << (request._instance ? request._instance : "(none)");
}

const std::vector<Case> CASES = {
    {{SYSTEM, 10}, value(0x17)},
    {{SYSTEM, 12}, value(18000000000)},
    {{PROCESSOR, 6, "A"}, value(101)},
    {{PROCESSOR, 8, "A"}, value(102)},
    {{PROCESSOR, 6, "B"}, value(301)},
    {{PROCESSOR, 8, "B"}, value(302)},
    {{PROCESSOR, 6, "C"}, value(401)},
    {{KINDS, 20}, value(0x87654321)},
    {{KINDS, 22}, value(0xFEDCBA98'87654321)},
    {{KINDS, 24}, INTERNAL},
    {{KINDS, 26}, UNSUPPORTED},
    {{KINDS, 28}, value(0xFEDCBA98'87654321)},
    {{3, 10}, badObject(3)},
    {{0, 10}, badObject(0)},
    {{SYSTEM, 6}, badCounter(6)},
    {{PROCESSOR, 10, "B"}, badCounter(10)},
    {{PROCESSOR, 6, "D"}, badInstance("D")},
};

class PrCounterValueIn : public testing::Test
{
protected:
    PrCounterValueIn()
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

TEST_F(PrCounterValueIn, FindsEachValueOfEachObject)
{
    expectCases(blockOf(theObjects()), CASES);
}

TEST_F(PrCounterValueIn, TheOrderOfTheObjectsDoesNotMatter)
{
    expectCases(blockOf({theKinds(), theProcessor(), theSystem()}), CASES);
    expectCases(blockOf({theProcessor(), theSystem(), theKinds()}), CASES);
}

TEST_F(PrCounterValueIn, RecordsMayBeLongerThanTheirStructures)
{
    std::vector<Object> objects = theObjects();
    std::size_t excess = 0;
    for (Object& object : objects)
    {
        object._excess = excess += 8;
        for (Counter& counter : object._counters) counter._excess = excess += 8;
        for (Instance& instance : object._instances) instance._excess = excess += 8;
    }
    expectCases(blockOf(objects, 24), CASES);
}

TEST_F(PrCounterValueIn, TheDataMayBeLongerThanTheBlock)
{
    Bytes data = blockOf(theObjects());
    append(data, bytesOf(Object{3, {{10, RAW, 8}}, {}, {77}}));
    data.resize(data.size() + 5000);
    expectCases(data, CASES);
}

TEST_F(PrCounterValueIn, DataOfNoUseHaveNoObject)
{
    EXPECT_EQ(outcomeOf(Bytes(), {SYSTEM, 10}), badObject(SYSTEM));
    for (const std::size_t size : {std::size_t{1}, BLOCK, std::size_t{8192}})
        for (const std::uint32_t index : {SYSTEM, 0U})
            EXPECT_EQ(outcomeOf(Bytes(size), {index, 0}), badObject(index)) << size;
    EXPECT_EQ(outcomeOf(Bytes(8192, 0xFF), {SYSTEM, 10}), badObject(SYSTEM));
    EXPECT_EQ(outcomeOf(blockOf({}), {SYSTEM, 10}), badObject(SYSTEM));
}

TEST_F(PrCounterValueIn, TheFirstOfEqualObjectsIsTaken)
{
    Object second = theSystem();
    second._values = {1, 2};
    second._counters.push_back({14, RAW, 8});
    const Bytes data = blockOf({theKinds(), theSystem(), second});
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 12}), value(18000000000));
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 14}), badCounter(14));
}

TEST_F(PrCounterValueIn, TheFirstOfEqualCountersIsTaken)
{
    const Bytes data = blockOf(
        {{SYSTEM, {{10, RAW, 8}, {12, RAW, 16}, {12, RAW, 24}, {12, TEXT, 8}}, {}, {1, 2, 3}}});
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 12}), value(2));
}

TEST_F(PrCounterValueIn, TheFirstOfEqualInstancesIsTaken)
{
    const Bytes data =
        blockOf({{PROCESSOR, {{6, RAW, 8}}, {{u"Z", {1}}, {u"A", {2}}, {u"A", {3}}}, {}}});
    EXPECT_EQ(outcomeOf(data, {PROCESSOR, 6, "A"}), value(2));
}

TEST_F(PrCounterValueIn, TheHighestIndicesAreFound)
{
    const Bytes data = blockOf({{0xFFFFFFFF, {{0xFFFFFFFE, RAW, 8}}, {}, {9}}});
    EXPECT_EQ(outcomeOf(data, {0xFFFFFFFF, 0xFFFFFFFE}), value(9));
    EXPECT_EQ(outcomeOf(data, {0xFFFFFFFE, 0xFFFFFFFE}),
              "object: Request with illegal counter object index -2.");
    EXPECT_EQ(outcomeOf(data, {0xFFFFFFFF, 0xFFFFFFFF}),
              "counter: Request with illegal counter index -1.");
}

TEST_F(PrCounterValueIn, AnObjectWhoseCountOfInstancesIsBelowOneHasValuesOfItsOwn)
{
    for (const std::uint32_t count : {0xFFFFFFFFU, 0U, 0xFFFFFFFEU, 0x80000000U})
    {
        Object object = theSystem();
        object._emptyCount = count;
        EXPECT_EQ(outcomeOf(blockOf({object}), {SYSTEM, 12}), value(18000000000)) << count;
    }
}

TEST_F(PrCounterValueIn, TheSizeBitsOfTheTypeSayHowTheValueIsRead)
{
    const struct
    {
        std::uint32_t _type;
        std::string _outcome;
    } kinds[] = {
        {0x00000000, value(0x87654321)},
        {RAW, value(0x87654321)},
        {0x10410400, value(0x87654321)},
        {0xFFFFFCFF, value(0x87654321)},
        {0x00000100, value(0xFEDCBA98'87654321)},
        {LARGE_RAW, value(0xFEDCBA98'87654321)},
        {BULK, value(0xFEDCBA98'87654321)},
        {0xFFFFFDFF, value(0xFEDCBA98'87654321)},
        {0x00000200, INTERNAL},
        {NO_DATA, INTERNAL},
        {0xFFFFFEFF, INTERNAL},
        {0x00000300, UNSUPPORTED},
        {TEXT, UNSUPPORTED},
        {0xFFFFFFFF, UNSUPPORTED},
    };
    for (const auto& [type, outcome] : kinds)
    {
        const Object object{SYSTEM, {{10, type, 8}}, {}, {0xFEDCBA98'87654321}};
        EXPECT_EQ(outcomeOf(blockOf({object}), {SYSTEM, 10}), outcome) << type;
    }
}

TEST_F(PrCounterValueIn, ATypeWithoutAFixedLengthNeedsNoValue)
{
    const Object object{SYSTEM, {{10, TEXT, 5000}, {12, NO_DATA, 5000}}, {}, {}};
    EXPECT_EQ(outcomeOf(blockOf({object}), {SYSTEM, 10}), UNSUPPORTED);
    EXPECT_EQ(outcomeOf(blockOf({object}), {SYSTEM, 12}), INTERNAL);
}

TEST_F(PrCounterValueIn, ValuesStandAtAnyOffset)
{
    for (std::uint32_t offset = 4; offset <= 16; ++offset)
    {
        Bytes block(24, 0xEE);
        put(block, 0, block.size());
        put(block, offset, 0xA1B2C3D4'E5F60718, 8);
        Bytes data = blockOf({{SYSTEM, {{10, LARGE_RAW, offset}, {12, RAW, offset}}, {}, {0, 0}}});
        std::copy(block.begin(), block.end(), data.end() - 24);
        EXPECT_EQ(outcomeOf(data, {SYSTEM, 10}), value(0xA1B2C3D4'E5F60718)) << offset;
        EXPECT_EQ(outcomeOf(data, {SYSTEM, 12}), value(0xE5F60718)) << offset;
    }
}

// The names of instances, the requested name and the instance that it finds; -1 for none.
const struct
{
    std::vector<std::u16string> _names;
    std::string _asked;
    int _found;
} NAMES[] = {
    {{u"A"}, "A", 0},
    {{u"B", u"A"}, "A", 1},
    {{u"C", u"B", u"A"}, "A", 2},
    {{u"a"}, "A", -1},
    // The second byte of each character ends the name.
    {{u"Apple"}, "A", 0},
    {{u"B", u"Apple", u"A"}, "A", 1},
    {{u"Apple"}, "Apple", -1},
    {{u"AB"}, "AB", -1},
    {{u"AB"}, "B", -1},
    {{u"_Total"}, "_Total", -1},
    {{u"_Total"}, "_", 0},
    {{u"A", u""}, "", 1},
    {{u"A"}, "", -1},
    {{u""}, "A", -1},
    // A character of two bytes is compared as these two.
    {{u"\u0141"}, "A\x01", 0},
    {{u"\u0141"}, "A", -1},
    {{u"\u0100"}, "", 0},
    {{u"\u00E9"}, "\xE9", 0},
    {{u"\u00E9"}, "\xC3\xA9", -1},
    {{u"\u4241C"}, "ABC", 0},
    {{u"\u4241C"}, "AB", -1},
};

TEST_F(PrCounterValueIn, NamesOfInstancesAreComparedByteByByte)
{
    for (const auto& [names, asked, found] : NAMES)
    {
        Object object{PROCESSOR, {{6, RAW, 8}}, {}, {}};
        for (std::size_t i = 0; i < names.size(); ++i) object._instances.push_back({names[i], {i}});
        const std::string outcome =
            found < 0 ? badInstance(asked) : value(static_cast<std::uint64_t>(found));
        EXPECT_EQ(outcomeOf(blockOf({object}), {PROCESSOR, 6, asked.c_str()}), outcome) << asked;
    }
}

TEST_F(PrCounterValueIn, TheLengthOfANameIsNotAsked)
{
    const Object object{PROCESSOR, {{6, RAW, 8}}, {{u"A", {5}}}, {}};
    for (const std::uint32_t size : {0U, 1U, 2U, 1000U, 0xFFFFFFFFU})
    {
        Bytes data = blockOf({object});
        put(data, BLOCK + OBJECT + COUNTER + INSTANCE_NAME_LENGTH, size);
        EXPECT_EQ(outcomeOf(data, {PROCESSOR, 6, "A"}), value(5)) << size;
    }
}

TEST_F(PrCounterValueIn, AVeryLongNameMatchesNothing)
{
    const std::string name(10000, 'A');
    const std::string outcome = outcomeOf(blockOf(theObjects()), {PROCESSOR, 6, name.c_str()});
    EXPECT_EQ(outcome, "instance: " +
                           ("Request with illegal counter instance name " + name).substr(0, 1023));
}

TEST_F(PrCounterValueIn, TheFirstThingThatIsMissingIsTold)
{
    const Bytes data = blockOf(theObjects());
    expectCases(data, {{{3, 999, "nobody"}, badObject(3)},
                       {{3, 999}, badObject(3)},
                       {{PROCESSOR, 999, "nobody"}, badInstance("nobody")},
                       {{PROCESSOR, 999, "A"}, badCounter(999)},
                       {{KINDS, 999}, badCounter(999)}});
    // Here the counter is one without a value.
    const Object object{PROCESSOR, {{6, TEXT, 8}, {8, NO_DATA, 8}}, {{u"A", {1}}}, {}};
    expectCases(blockOf({object}), {{{3, 6, "A"}, badObject(3)},
                                    {{PROCESSOR, 6, "B"}, badInstance("B")},
                                    {{PROCESSOR, 8, "B"}, badInstance("B")},
                                    {{PROCESSOR, 7, "A"}, badCounter(7)},
                                    {{PROCESSOR, 6, "A"}, UNSUPPORTED},
                                    {{PROCESSOR, 8, "A"}, INTERNAL}});
}

TEST_F(PrCounterValueIn, AnObjectWithoutInstancesTakesNoName)
{
    const Bytes data = blockOf(theObjects());
    EXPECT_DEATH(outcomeOf(data, {SYSTEM, 10, "A"}), AssertionText("instance == 0"));
    EXPECT_DEATH(outcomeOf(data, {SYSTEM, 999, ""}), AssertionText("instance == 0"));
}

TEST_F(PrCounterValueIn, AnObjectWithInstancesNeedsAName)
{
    const Bytes data = blockOf(theObjects());
    EXPECT_DEATH(outcomeOf(data, {PROCESSOR, 6}), AssertionText("instance != 0"));
    EXPECT_DEATH(outcomeOf(data, {PROCESSOR, 999}), AssertionText("instance != 0"));
}

TEST_F(PrCounterValueIn, TheObjectIsLookedForBeforeTheInstanceIsJudged)
{
    const Bytes data = blockOf(theObjects());
    EXPECT_EQ(outcomeOf(data, {3, 10, "A"}), badObject(3));
    EXPECT_EQ(outcomeOf(data, {3, 10, nullptr}), badObject(3));
}

// The places of the records in the sample block.
struct Places
{
    Places()
    {
        std::size_t at = BLOCK;
        for (const Object& object : theObjects())
        {
            _objects.push_back(at);
            at += bytesOf(object).size();
        }
        _objects.push_back(at);
        at = _objects[1] + OBJECT + 2 * COUNTER;
        for (const Instance& instance : theProcessor()._instances)
        {
            _instances.push_back(at);
            at += definitionOf(instance).size();
            _values.push_back(at);
            at += valuesOf(instance._values).size();
        }
        _instances.push_back(at);
    }

    // The objects, and the place behind the last; the instances of the second one, and the place
    // behind the last; their values.
    std::vector<std::size_t> _objects;
    std::vector<std::size_t> _instances;
    std::vector<std::size_t> _values;
};

const Places& places()
{
    static const Places thePlaces;
    return thePlaces;
}

// The requested record in the middle of the block, and those before and after it.
const Request MIDDLE{PROCESSOR, 8, "B"};
const std::string MIDDLE_VALUE = value(302);
const std::set<std::string> MIDDLE_MISSING = {badObject(PROCESSOR), badInstance("B"),
                                              badCounter(8)};

// The outcome for the sample block with another number at a place.
std::string outcomeWith(std::size_t place, std::uint32_t number, const Request& request = MIDDLE)
{
    Bytes data = blockOf(theObjects());
    put(data, place, number);
    return outcomeOf(data, request);
}

// A field with a length or an offset, its maximum, and the outcome of a length of 0 and of one that
// leads out of the data.
struct LengthField
{
    const char* _name;
    std::size_t _place;
    std::size_t _room;
    std::set<std::string> _outcomes;
};

std::vector<LengthField> lengthFields()
{
    const auto& [objects, instances, values] = places();
    const std::size_t end = objects[3];
    const std::size_t definitions = OBJECT + 2 * COUNTER;
    const std::size_t counters = objects[1] + OBJECT;
    const std::size_t endOfProcessor = objects[2];
    return {
        {"header of the block", BLOCK_HEADER, end, {badObject(PROCESSOR)}},
        {"object before", objects[0] + OBJECT_TOTAL, end - objects[0], {badObject(PROCESSOR)}},
        {"object", objects[1] + OBJECT_TOTAL, end - objects[1], {badObject(PROCESSOR)}},
        {"object behind", objects[2] + OBJECT_TOTAL, end - objects[2], {MIDDLE_VALUE}},
        {"header of the object", objects[1] + OBJECT_HEADER, definitions, {badCounter(8)}},
        {"definitions",
         objects[1] + OBJECT_DEFINITIONS,
         endOfProcessor - objects[1],
         {badInstance("B")}},
        {"counter before", counters + COUNTER_LENGTH, 2 * COUNTER, {badCounter(8)}},
        {"counter", counters + COUNTER + COUNTER_LENGTH, COUNTER, {badCounter(8)}},
        {"instance before",
         instances[1] + INSTANCE_LENGTH,
         endOfProcessor - instances[1],
         {badInstance("B")}},
        {"values before", values[1], endOfProcessor - values[1], {badInstance("B")}},
        {"instance",
         instances[2] + INSTANCE_LENGTH,
         endOfProcessor - instances[2],
         {badInstance("B")}},
        // Whether it is the instance or its value that isn't there is open.
        {"values", values[2], endOfProcessor - values[2], {badInstance("B"), badCounter(8)}},
        {"instance behind",
         instances[3] + INSTANCE_LENGTH,
         endOfProcessor - instances[3],
         {MIDDLE_VALUE}},
        {"values behind", values[3], endOfProcessor - values[3], {MIDDLE_VALUE}},
    };
}

TEST_F(PrCounterValueIn, ALengthOfZeroOrBeyondItsWholeEndsTheWalk)
{
    ASSERT_EQ(outcomeOf(blockOf(theObjects()), MIDDLE), MIDDLE_VALUE);
    for (const auto& [name, place, room, outcomes] : lengthFields())
        for (const std::uint32_t number : {0U, length(room + 1), length(room + 4), 0x7FFFFFFFU,
                                           0x80000000U, 0xFFFFFFFCU, 0xFFFFFFFFU})
        {
            const std::string outcome = outcomeWith(place, number);
            EXPECT_TRUE(outcomes.contains(outcome)) << name << ' ' << number << ": " << outcome;
        }
}

// The middle of a structure may look like a record.
TEST_F(PrCounterValueIn, ALengthThatIsTooSmallFindsTheValueOrMissesSomething)
{
    for (const auto& [name, place, room, outcomes] : lengthFields())
    {
        const std::uint32_t right = numberAt(blockOf(theObjects()), place);
        for (std::uint32_t number = 0; number < right; ++number)
        {
            const std::string outcome = outcomeWith(place, number);
            EXPECT_TRUE(outcome == MIDDLE_VALUE || MIDDLE_MISSING.contains(outcome))
                << name << ' ' << number << ": " << outcome;
        }
    }
}

TEST_F(PrCounterValueIn, ABlockWithoutAHeaderIsNotAnObjectItself)
{
    // An object in the block's place, whose fields at the block's own say that the header is empty.
    Object object = theSystem();
    object._emptyCount = 0;
    Bytes data = bytesOf(object);
    ASSERT_GT(data.size(), BLOCK);
    put(data, BLOCK_TOTAL, data.size());
    put(data, BLOCK_HEADER, 0);
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 10}), badObject(SYSTEM));
    // A header is followed by an object.
    const Bytes block = blockOf({object});
    data.insert(data.begin(), block.begin(), block.begin() + BLOCK);
    put(data, BLOCK_TOTAL, data.size());
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 10}), value(0x17));
}

TEST_F(PrCounterValueIn, ALengthMayReachTheVeryEndOfItsWhole)
{
    const auto& [objects, instances, values] = places();
    // The rest of the object belongs to the last values, and that of the block to the last object.
    const std::size_t rest = objects[2] - values[3];
    EXPECT_EQ(outcomeWith(values[3], length(rest), {PROCESSOR, 8, "C"}), value(402));
    EXPECT_EQ(outcomeWith(objects[1], length(objects[3] - objects[1])), MIDDLE_VALUE);
    EXPECT_EQ(outcomeWith(objects[1], length(objects[3] - objects[1]), {KINDS, 20}),
              badObject(KINDS));
}

TEST_F(PrCounterValueIn, DefinitionsThatReachToTheEndOfAnObjectLeaveNoValues)
{
    for (const Object& object : {theSystem(), theKinds()})
    {
        const std::size_t size = bytesOf(object).size();
        for (const std::uint32_t number :
             {0U, length(size), length(size + 1), length(size - 3), length(OBJECT), 0xFFFFFFFFU})
        {
            Bytes data = blockOf({object});
            put(data, BLOCK + OBJECT_DEFINITIONS, number);
            const std::uint32_t counter = object._counters[0]._name;
            EXPECT_EQ(outcomeOf(data, {object._name, counter}), badCounter(counter)) << number;
        }
    }
}

TEST_F(PrCounterValueIn, TheLengthOfOwnValuesBoundsThem)
{
    const std::size_t block = BLOCK + OBJECT + 2 * COUNTER;
    for (const std::uint32_t number : {0U, 1U, 3U, 4U, 8U, 23U, 25U, 0xFFFFFFFFU})
    {
        Bytes data = blockOf({theSystem()});
        put(data, block, number);
        EXPECT_EQ(outcomeOf(data, {SYSTEM, 12}), badCounter(12)) << number;
    }
    Bytes data = blockOf({theSystem()});
    put(data, block, 23);
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 10}), value(0x17));
    put(data, block, 12);
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 10}), value(0x17));
    put(data, block, 11);
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 10}), badCounter(10));
}

TEST_F(PrCounterValueIn, AValueLiesInItsBlockAsAWhole)
{
    // The block has 24 bytes, and more bytes follow it.
    const std::size_t counters = places()._objects[1] + OBJECT;
    const auto at = [&](std::uint32_t offset, const Request& request)
    {
        const std::size_t counter = request._counter == 6 ? counters : counters + COUNTER;
        return outcomeWith(counter + COUNTER_OFFSET, offset, request);
    };
    EXPECT_EQ(at(16, {PROCESSOR, 6, "B"}), value(302));
    EXPECT_EQ(at(20, {PROCESSOR, 8, "B"}), value(0));
    for (const std::uint32_t offset : {17U, 20U, 24U, 25U, 0x7FFFFFFFU, 0xFFFFFFF8U, 0xFFFFFFFFU})
        EXPECT_EQ(at(offset, {PROCESSOR, 6, "B"}), badCounter(6)) << offset;
    for (const std::uint32_t offset : {21U, 24U, 25U, 0x7FFFFFFFU, 0xFFFFFFFCU, 0xFFFFFFFFU})
        EXPECT_EQ(at(offset, {PROCESSOR, 8, "B"}), badCounter(8)) << offset;
}

TEST_F(PrCounterValueIn, ANameOutsideItsInstanceMatchesNothing)
{
    const auto& [objects, instances, values] = places();
    const std::size_t place = instances[2] + INSTANCE_NAME_OFFSET;
    const std::uint32_t size = length(values[2] - instances[2]);
    for (const std::uint32_t offset :
         {size, size + 1, length(objects[3] - instances[2]), 0x7FFFFFFFU, 0xFFFFFFFEU, 0xFFFFFFFFU})
        EXPECT_EQ(outcomeWith(place, offset), badInstance("B")) << offset;
}

TEST_F(PrCounterValueIn, ACountThatIsTooLargeFindsNoMore)
{
    const std::size_t object = places()._objects[1];
    for (const std::uint32_t count : {5U, 100U, 0x7FFFFFFFU})
    {
        EXPECT_EQ(outcomeWith(object + OBJECT_INSTANCES, count), MIDDLE_VALUE);
        EXPECT_EQ(outcomeWith(object + OBJECT_INSTANCES, count, {PROCESSOR, 8, "D"}),
                  badInstance("D"));
    }
    for (const std::uint32_t count : {3U, 100U, 0xFFFFFFFFU})
    {
        EXPECT_EQ(outcomeWith(object + OBJECT_COUNTERS, count), MIDDLE_VALUE);
        EXPECT_EQ(outcomeWith(object + OBJECT_COUNTERS, count, {PROCESSOR, 9, "B"}), badCounter(9));
    }
}

TEST_F(PrCounterValueIn, InstancesBeyondTheCountAreNotThere)
{
    const std::size_t place = places()._objects[1] + OBJECT_INSTANCES;
    EXPECT_EQ(outcomeWith(place, 3), MIDDLE_VALUE);
    EXPECT_EQ(outcomeWith(place, 2), badInstance("B"));
    EXPECT_EQ(outcomeWith(place, 1), badInstance("B"));
}

TEST_F(PrCounterValueIn, TheNumberOfObjectsIsNotAsked)
{
    for (const std::uint32_t number : {0U, 1U, 4U, 0xFFFFFFFFU})
        EXPECT_EQ(outcomeWith(BLOCK_OBJECTS, number), MIDDLE_VALUE) << number;
}

// The sample objects' own cases, each with the end of the object that it needs.
std::size_t endOf(const Request& request)
{
    const std::vector<Object> objects = theObjects();
    for (std::size_t i = 0; i < objects.size(); ++i)
        if (objects[i]._name == request._object) return places()._objects[i + 1];
    return 0;
}

TEST_F(PrCounterValueIn, ABlockThatEndsTooEarlyHasOnlyItsWholeObjects)
{
    const Bytes whole = blockOf(theObjects());
    for (const auto& [request, outcome] : CASES)
        for (std::size_t size = 0; size <= whole.size(); ++size)
        {
            const bool isThere = size >= endOf(request);
            const std::string expected = isThere ? outcome : badObject(request._object);
            // The block's length ends here; then the data end here, too.
            Bytes data = whole;
            put(data, BLOCK_TOTAL, size);
            ASSERT_EQ(outcomeOf(data, request), expected) << size;
            data = Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
            ASSERT_EQ(outcomeOf(data, request), expected) << size;
        }
}

TEST_F(PrCounterValueIn, DataThatEndBeforeTheBlockHaveOnlyTheirWholeObjects)
{
    const Bytes whole = blockOf(theObjects());
    for (const std::uint32_t total : {length(whole.size()), length(whole.size() + 1), 0xFFFFFFFFU})
        for (const auto& [request, outcome] : CASES)
            for (std::size_t size = 0; size <= whole.size(); ++size)
            {
                Bytes data = whole;
                put(data, BLOCK_TOTAL, total);
                data = Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
                const std::string found = outcomeOf(data, request);
                // A block that leads out of the data may count as missing.
                const bool isThere = size >= endOf(request) && found != badObject(request._object);
                ASSERT_EQ(found, isThere ? outcome : badObject(request._object)) << size;
                if (size == total)
                {
                    ASSERT_EQ(found, outcome);
                }
            }
}

TEST_F(PrCounterValueIn, AnObjectThatEndsTooEarlyHasOnlyItsWholeRecords)
{
    const Object processor = theProcessor();
    const Bytes whole = blockOf({processor});
    for (std::size_t size = 0; BLOCK + size <= whole.size(); ++size)
    {
        Bytes data(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(BLOCK + size));
        put(data, BLOCK_TOTAL, data.size());
        if (size >= 4) put(data, BLOCK + OBJECT_TOTAL, size);
        std::size_t end = OBJECT + 2 * COUNTER;
        for (const Instance& instance : processor._instances)
        {
            end += definitionOf(instance).size() + valuesOf(instance._values).size();
            if (instance._name.size() > 1) continue;
            const std::string name(1, static_cast<char>(instance._name[0]));
            std::string expected = value(instance._values[1]);
            if (size < end) expected = badInstance(name);
            if (size < OBJECT) expected = badObject(PROCESSOR);
            data.shrink_to_fit();
            ASSERT_EQ(outcomeOf(data, {PROCESSOR, 8, name.c_str()}), expected) << size;
        }
    }
}

TEST_F(PrCounterValueIn, AnObjectOfItsOwnValuesThatEndsTooEarlyHasNoValues)
{
    const Bytes whole = blockOf({theSystem()});
    for (std::size_t size = 0; BLOCK + size <= whole.size(); ++size)
    {
        Bytes data(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(BLOCK + size));
        put(data, BLOCK_TOTAL, data.size());
        if (size >= 4) put(data, BLOCK + OBJECT_TOTAL, size);
        std::string expected = badCounter(10);
        if (size < OBJECT) expected = badObject(SYSTEM);
        if (BLOCK + size == whole.size()) expected = value(0x17);
        ASSERT_EQ(outcomeOf(data, {SYSTEM, 10}), expected) << size;
    }
}

// Whether the object that the lengths lead to has instances; nothing if they lead to none.
std::optional<bool> hasInstances(const Bytes& data, std::uint32_t index)
{
    if (data.size() < BLOCK) return std::nullopt;
    const std::uint64_t end = std::min<std::uint64_t>(data.size(), numberAt(data, BLOCK_TOTAL));
    std::uint64_t at = numberAt(data, BLOCK_HEADER);
    while (at + OBJECT <= end)
    {
        const auto object = static_cast<std::size_t>(at);
        const std::uint64_t size = numberAt(data, object + OBJECT_TOTAL);
        if (size == 0 || at + size > end) return std::nullopt;
        if (numberAt(data, object + OBJECT_NAME) == index)
        {
            const std::uint32_t count = numberAt(data, object + OBJECT_INSTANCES);
            return count > 0 && count < 0x80000000;
        }
        at += size;
    }
    return std::nullopt;
}

// Spoils data in a few places, with numbers that lengths are likely to trip over.
class Spoiler
{
public:
    std::uint32_t below(std::size_t bound)
    {
        return static_cast<std::uint32_t>(_random() % bound);
    }

    Bytes spoiled(Bytes data)
    {
        for (std::uint32_t count = 1 + below(4); count > 0; --count)
        {
            const std::size_t place = 4 * below(data.size() / 4);
            switch (below(6))
            {
            case 0:
                data[below(data.size())] = static_cast<unsigned char>(below(256));
                break;
            case 1:
                put(data, place, static_cast<std::uint32_t>(_random()));
                break;
            case 2:
                put(data, place, below(2 * data.size()));
                break;
            case 3:
                put(data, place, numberAt(data, place) + below(17) - 8);
                break;
            case 4:
                put(data, place, below(2) == 0 ? 0 : 0xFFFFFFFF - below(9));
                break;
            default:
                put(data, place, numberAt(data, 4 * below(data.size() / 4)));
                break;
            }
        }
        if (below(8) == 0) data.resize(below(data.size() + 1));
        data.shrink_to_fit();
        return data;
    }

private:
    std::mt19937 _random{20031};
};

TEST_F(PrCounterValueIn, SpoiledDataGiveAValueOrOneOfTheExceptions)
{
    Spoiler spoiler;
    const Bytes whole = blockOf(theObjects());
    std::map<std::string, int> seen;
    for (int round = 0; round < 40000; ++round)
    {
        const Bytes data = spoiler.spoiled(whole);
        Request request = CASES[spoiler.below(CASES.size())]._request;
        const std::optional<bool> named = hasInstances(data, request._object);
        if (named) request._instance = *named ? "B" : nullptr;
        const std::string outcome = outcomeOf(data, request);
        const std::string kind = outcome.substr(0, outcome.find_first_of(": "));
        ++seen[kind];
        const std::map<std::string, std::string> expected = {
            {"object", badObject(request._object)},
            {"instance", badInstance("B")},
            {"counter", badCounter(request._counter)},
            {"unsupported", UNSUPPORTED},
            {"internal", INTERNAL}};
        ASSERT_TRUE(kind == "value" || outcome == expected.at(kind)) << round << ' ' << outcome;
        ASSERT_TRUE(named || kind == "object") << round << ' ' << outcome;
        ASSERT_TRUE(kind != "instance" || *named) << round;
    }
    EXPECT_EQ(seen.size(), 6U);
    for (const auto& [kind, count] : seen) EXPECT_GT(count, 100) << kind;
}

// The platform's codes, also where it is another one.
constexpr std::int32_t SUCCESS = 0;
constexpr std::int32_t NO_ACCESS = 5;
constexpr std::int32_t MORE_DATA = 234;

// A source of data that requires a buffer of this many bytes.
struct Source
{
    std::int32_t operator()(const char* valueName, unsigned char* buffer, std::uint32_t size)
    {
        _names.insert(valueName);
        _sizes.push_back(size);
        for (std::uint32_t i = 0; i < size; ++i) _isZeroed = _isZeroed && buffer[i] == 0;
        // Data written before the buffer turns out to be too small are ignored.
        for (std::uint32_t i = 0; i < size; ++i) buffer[i] = 0xAB;
        if (size < _needed) return MORE_DATA;
        for (std::uint32_t i = 0; i < size; ++i) buffer[i] = i < _needed ? 0xCD : 0;
        return SUCCESS;
    }

    std::uint32_t _needed;
    std::set<std::string> _names{};
    Sizes _sizes{};
    bool _isZeroed = true;
};

TEST(PrPerformanceData, TheBufferGrowsInStepsUntilTheDataFit)
{
    const struct
    {
        std::uint32_t _needed;
        Sizes _sizes;
    } cases[] = {
        {0, {8192}},
        {1, {8192}},
        {8192, {8192}},
        {8193, {8192, 9216}},
        {9216, {8192, 9216}},
        {9217, {8192, 9216, 10240}},
        {12000, {8192, 9216, 10240, 11264, 12288}},
    };
    for (const auto& [needed, sizes] : cases)
    {
        Source source{needed};
        const Bytes data = Zu::prPerformanceData(238, std::ref(source));
        EXPECT_EQ(source._sizes, sizes);
        EXPECT_TRUE(source._isZeroed) << needed;
        Bytes expected(needed, 0xCD);
        expected.resize(sizes.back());
        EXPECT_TRUE(data == expected) << needed;
    }
}

TEST(PrPerformanceData, DataWithoutAnEndAreAnError)
{
    Source source{1000000};
    std::string reason;
    try
    {
        Zu::prPerformanceData(238, std::ref(source), 10240);
    }
    catch (const Zu::ExInternalError& exception)
    {
        reason = exception.getReason();
    }
    EXPECT_EQ(reason, "Performance data without an end.");
    EXPECT_EQ(source._sizes, (Sizes{8192, 9216, 10240}));
}

TEST(PrPerformanceData, ManyStepsAreTaken)
{
    Source source{100000};
    const Bytes data = Zu::prPerformanceData(238, std::ref(source));
    ASSERT_EQ(source._sizes.size(), 91U);
    for (std::size_t i = 0; i < source._sizes.size(); ++i)
        EXPECT_EQ(source._sizes[i], 8192 + 1024 * i);
    EXPECT_EQ(data.size(), 100352U);
}

TEST(PrPerformanceData, TheNameIsTheIndexAsASignedDecimalNumber)
{
    const std::pair<unsigned int, std::string> names[] = {{0, "0"},
                                                          {2, "2"},
                                                          {238, "238"},
                                                          {2147483647, "2147483647"},
                                                          {2147483648, "-2147483648"},
                                                          {4294967295, "-1"}};
    for (const auto& [index, name] : names)
    {
        Source source{9000};
        Zu::prPerformanceData(index, std::ref(source));
        EXPECT_EQ(source._names, std::set<std::string>{name});
    }
}

TEST(PrPerformanceData, AFailureLeavesAnEmptyBufferInWhichNoObjectIs)
{
    const Bytes data = Zu::prPerformanceData(2, [](const char*, unsigned char*, std::uint32_t)
                                             { return NO_ACCESS; });
    EXPECT_TRUE(data == Bytes(8192));
    EXPECT_EQ(outcomeOf(data, {2, 10}), badObject(2));
    EXPECT_EQ(outcomeOf(data, {0, 0}), badObject(0));
}

TEST(PrPerformanceData, AFailureAfterAStepKeepsNothingOfTheStepBefore)
{
    const Bytes block = blockOf(theObjects());
    const Bytes data =
        Zu::prPerformanceData(SYSTEM,
                              [&block](const char*, unsigned char* buffer, std::uint32_t size)
                              {
                                  if (size > 8192) return NO_ACCESS;
                                  std::copy(block.begin(), block.end(), buffer);
                                  return MORE_DATA;
                              });
    EXPECT_TRUE(data == Bytes(9216));
    EXPECT_EQ(outcomeOf(data, {SYSTEM, 10}), badObject(SYSTEM));
}

TEST(PrPerformanceData, WhatTheQueryGivesIsWalkedThrough)
{
    std::vector<Object> objects = theObjects();
    Object large{3, {{10, RAW, 8}}, {}, std::vector<std::uint64_t>(1200, 5)};
    objects.insert(objects.begin(), large);
    const Bytes block = blockOf(objects);
    ASSERT_GT(block.size(), 9216U);
    const Bytes data =
        Zu::prPerformanceData(PROCESSOR,
                              [&block](const char*, unsigned char* buffer, std::uint32_t size)
                              {
                                  const std::size_t given =
                                      std::min<std::size_t>(size, block.size());
                                  std::copy_n(block.begin(), given, buffer);
                                  return given < block.size() ? MORE_DATA : SUCCESS;
                              });
    EXPECT_EQ(data.size(), 11264U);
    EXPECT_EQ(outcomeOf(data, MIDDLE), MIDDLE_VALUE);
    EXPECT_EQ(outcomeOf(data, {3, 10}), value(5));
}

TEST(PrPerformanceData, OnlyTheCodeForMoreDataAsksOnceMore)
{
    EXPECT_EQ(Zu::PR_MORE_DATA, MORE_DATA);
    for (const std::int32_t code : {SUCCESS, NO_ACCESS, 1, 2, 6, 122, 233, 235, 259, -1, -234})
    {
        int queries = 0;
        const Bytes data = Zu::prPerformanceData(2,
                                                 [&](const char*, unsigned char*, std::uint32_t)
                                                 {
                                                     ++queries;
                                                     return queries == 1 ? MORE_DATA : code;
                                                 });
        EXPECT_EQ(queries, 2) << code;
        EXPECT_EQ(data.size(), 9216U) << code;
    }
}

TEST(PrPerformanceData, AnExceptionOfTheQueryGoesThrough)
{
    const auto raise = [](const char*, unsigned char*, std::uint32_t) -> std::int32_t
    { throw PrEx::ExUnsupported("a.cpp", 1); };
    EXPECT_THROW(Zu::prPerformanceData(2, raise), PrEx::ExUnsupported);
}

TEST(PrGetCounterValue, AnObjectThatIsNotPublishedIsTold)
{
    for (const std::uint32_t index : {999999U, 0x7FFFFFFFU})
        for (const char* const instance : {static_cast<const char*>(nullptr), "", "A", "_Total"})
            EXPECT_EQ(outcomeOf([&] { return Zu::prGetCounterValue(index, 6, instance); }),
                      support::onWindows ? badObject(index) : UNSUPPORTED);
}

TEST(PrGetCounterValue, WithoutSuchDataNoObjectIsSupported)
{
    if (support::onWindows) GTEST_SKIP() << "what Windows publishes depends on the machine";
    for (const std::uint32_t index : {0U, 2U, 4U, 238U})
        for (const char* const instance : {static_cast<const char*>(nullptr), "0"})
            EXPECT_EQ(outcomeOf([&] { return Zu::prGetCounterValue(index, 6, instance); }),
                      UNSUPPORTED);
}

} // namespace

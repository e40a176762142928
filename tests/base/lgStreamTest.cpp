#include "base/lgStream.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <thread>

namespace
{

using Zu::LgStream;

constexpr unsigned int TEXT_INSERTED = 1;
constexpr unsigned int STRING_CLOSED = 2;

// A stream whose ring is so small that it is always full or about to wrap.
class SmallStream : public LgStream
{
public:
    explicit SmallStream(std::uint32_t size) : LgStream(size) {}
};

std::string take(LgStream& stream)
{
    std::array<char, 32768> text;
    stream >> text.data();
    return text.data();
}

// The text of an inserted value.
template <class T> std::string textOf(const T& value)
{
    LgStream stream;
    stream << value << Zu::ends;
    return take(stream);
}

template <class... Arguments> std::string printed(const char* format, Arguments... arguments)
{
    char text[400];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

TEST(LgStream, IsEmptyAtFirst)
{
    LgStream stream;
    EXPECT_EQ(stream.getNextSize(), 0U);
    EXPECT_EQ(take(stream), "");
    EXPECT_FALSE(stream.isFull());
    EXPECT_FALSE(stream.hasOverflowed());
    EXPECT_EQ(stream.getOutputFlags(), 0U);
    EXPECT_EQ(stream.getNumCharacters(), 32767U);
    EXPECT_EQ(LgStream::getMaxSize(), 32766U);
}

TEST(LgStream, EveryTypeHasOneForm)
{
    char text[] = "text";
    EXPECT_EQ(textOf("literal"), "literal");
    EXPECT_EQ(textOf(static_cast<char*>(text)), "text");
    EXPECT_EQ(textOf(static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(textOf(static_cast<char*>(nullptr)), "(null)");
    EXPECT_EQ(textOf(std::string("string")), "string");
    EXPECT_EQ(textOf(std::string_view("viewed on", 6)), "viewed");
    EXPECT_EQ(textOf(std::string_view("cut\0off", 7)), "cut");
    EXPECT_EQ(textOf(true), "true");
    EXPECT_EQ(textOf(false), "false");
    EXPECT_EQ(textOf('A'), "A");
    EXPECT_EQ(textOf(static_cast<signed char>('A')), "A");
    EXPECT_EQ(textOf(static_cast<unsigned char>('A')), "A");
    EXPECT_EQ(textOf(1.5F), "1.500000");
    EXPECT_EQ(textOf(-0.25), "-0.250000");
    EXPECT_EQ(textOf(0.1L), "0.100000");
    EXPECT_EQ(textOf(std::numeric_limits<float>::quiet_NaN()), "nan");
    EXPECT_EQ(textOf(-std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(textOf(-std::numeric_limits<long double>::quiet_NaN()), "nan");
    int target = 0;
    EXPECT_EQ(textOf(static_cast<void*>(&target)), printed("%p", static_cast<void*>(&target)));
    EXPECT_EQ(textOf(static_cast<const void*>(nullptr)),
              printed("%p", static_cast<const void*>(nullptr)));
}

TEST(LgStream, LongNumbersKeepAllDigits)
{
    EXPECT_EQ(textOf(1e300), printed("%f", 1e300));
    EXPECT_EQ(textOf(-std::numeric_limits<double>::max()),
              printed("%f", -std::numeric_limits<double>::max()));
    EXPECT_EQ(textOf(std::numeric_limits<long double>::max()).size(), 4933U + 7U);
}

template <class Integer> void checkIntegers(const char* format)
{
    using Limits = std::numeric_limits<Integer>;
    std::mt19937_64 random(5);
    LgStream stream;
    for (int i = 0; i < 100000; ++i)
    {
        // Numbers of all lengths, and the bounds.
        auto value = static_cast<Integer>(random() >> random() % 64);
        if (i == 0) value = Limits::min();
        if (i == 1) value = Limits::max();
        if (i == 2) value = 0;
        stream << value << Zu::ends;
        ASSERT_EQ(take(stream), printed(format, value));
    }
}

TEST(LgStream, IntegersAreThoseOfPrintf)
{
    checkIntegers<short>("%hd");
    checkIntegers<unsigned short>("%hu");
    checkIntegers<int>("%d");
    checkIntegers<unsigned int>("%u");
    checkIntegers<long>("%ld");
    checkIntegers<unsigned long>("%lu");
    checkIntegers<long long>("%lld");
    checkIntegers<unsigned long long>("%llu");
}

template <class Float> void checkFloats(const char* format)
{
    std::mt19937_64 random(6);
    LgStream stream;
    for (int i = 0; i < 150000; ++i)
    {
        // Numbers of all sizes that leave some digits, and some that do not.
        const auto digits = static_cast<Float>(static_cast<std::int64_t>(random()));
        const Float value = std::ldexp(digits, static_cast<int>(random() % 130) - 110);
        stream << value << Zu::ends;
        ASSERT_EQ(take(stream), printed(format, value));
    }
}

TEST(LgStream, FloatingPointNumbersAreThoseOfPrintf)
{
    checkFloats<float>("%f");
    checkFloats<double>("%f");
    checkFloats<long double>("%Lf");
}

TEST(LgStream, ANumberHasTheSameFormWhereverTheRingEnds)
{
    const struct
    {
        double _value;
        const char* _text;
    } cases[] = {{-4567.65, "-4567.650000"},
                 {0.0, "0.000000"},
                 {0.0001, "0.000100"},
                 {9007199254740993.0, "9007199254740992.000000"}};
    SmallStream stream(64);
    for (std::size_t i = 0; i < 500; ++i)
    {
        const std::string before(i % 11, 'x');
        const auto& row = cases[i % std::size(cases)];
        stream.resetOutputFlags();
        stream << row._value;
        ASSERT_EQ(stream.getOutputFlags(), TEXT_INSERTED);
        stream << before << row._value << Zu::ends;
        ASSERT_EQ(take(stream), row._text + before + row._text) << i;
    }
    EXPECT_FALSE(stream.hasOverflowed());
}

TEST(LgStream, ANumberThatDoesNotFitBecomesAMark)
{
    SmallStream stream(16);
    stream << "12345678" << -4567.65 << Zu::ends;
    EXPECT_EQ(take(stream), "12345678#");
}

TEST(LgStream, APaddedTextIsInsertedWithoutItsPadding)
{
    std::string padded = "0123456789abcdefghijklmnopqrstuv";
    ASSERT_EQ(padded.size(), std::size_t{LgStream::PADDED_SIZE});
    LgStream stream;
    // A fresh stream has not looked for room yet.
    stream << "first" << Zu::ends;
    ASSERT_EQ(take(stream), "first");
    for (std::uint32_t length = 1; length <= padded.size(); ++length)
    {
        stream.resetOutputFlags();
        ASSERT_TRUE(stream.insertPadded(padded.data(), length));
        EXPECT_EQ(stream.getOutputFlags(), TEXT_INSERTED);
        stream << "|";
        ASSERT_TRUE(stream.insertPadded(padded.data(), 2));
        stream << Zu::ends;
        EXPECT_EQ(take(stream), padded.substr(0, length) + "|01");
    }
}

TEST(LgStream, APaddedTextIsRefusedWhereTheRingHasNoRoomForItsPadding)
{
    const std::string padded(LgStream::PADDED_SIZE, 'p');
    SmallStream stream(64);
    std::size_t refused = 0;
    std::size_t inserted = 0;
    for (std::size_t i = 0; i < 1000; ++i)
    {
        const std::string before(i % 41, 'x');
        stream << before;
        const unsigned int room = stream.getNumCharacters();
        const bool isIn = stream.insertPadded(padded.data(), 3);
        ASSERT_EQ(stream.getNumCharacters(), isIn ? room - 3 : room);
        ++(isIn ? inserted : refused);
        if (room < LgStream::PADDED_SIZE)
        {
            ASSERT_FALSE(isIn) << i;
        }
        stream << "." << Zu::ends;
        ASSERT_EQ(take(stream), before + (isIn ? "ppp." : "."));
    }
    EXPECT_GT(inserted, 100U);
    EXPECT_GT(refused, 100U);
}

// What waits for the reader is not touched by the padding.
TEST(LgStream, ThePaddingDoesNotReachWhatTheReaderHasNotTaken)
{
    const std::string padded(LgStream::PADDED_SIZE, 'p');
    SmallStream stream(128);
    std::deque<std::string> expected;
    for (std::size_t i = 0; i < 5000; ++i)
    {
        const std::string text = std::to_string(i);
        const bool isIn = stream.insertPadded(padded.data(), 1);
        if (stream.getNumCharacters() < 12)
        {
            stream << Zu::ends;
            expected.push_back(isIn ? "p" : "");
            while (!expected.empty())
            {
                ASSERT_EQ(take(stream), expected.front());
                expected.pop_front();
            }
            continue;
        }
        stream << text << Zu::ends;
        expected.push_back((isIn ? "p" : "") + text);
    }
}

TEST(LgStream, ANulIsNoText)
{
    LgStream stream;
    stream << "one" << '\0' << static_cast<signed char>(0) << static_cast<unsigned char>(0)
           << " and the rest" << Zu::ends << "two" << Zu::ends;
    EXPECT_EQ(take(stream), "one and the rest");
    EXPECT_EQ(take(stream), "two");
}

TEST(LgStream, AnEmptyViewIsEmptyText)
{
    EXPECT_EQ(textOf(std::string_view()), "");
    LgStream stream;
    stream << std::string_view();
    EXPECT_EQ(stream.getOutputFlags(), TEXT_INSERTED);
}

TEST(LgStream, StringsComeOutOneByOne)
{
    LgStream stream;
    stream << "first" << Zu::ends << "second " << 2 << Zu::ends;
    EXPECT_EQ(stream.getNextSize(), 5U);
    EXPECT_EQ(take(stream), "first");
    EXPECT_EQ(stream.getNextSize(), 8U);
    EXPECT_EQ(take(stream), "second 2");
    EXPECT_EQ(stream.getNextSize(), 0U);
    EXPECT_EQ(take(stream), "");
}

TEST(LgStream, AStringThatDoesNotFitStaysAndTouchesNothing)
{
    LgStream stream;
    stream << "12345" << Zu::ends;
    std::array<char, 8> text;
    text.fill('x');
    unsigned int length = 0;
    EXPECT_FALSE(stream.take(text.data(), 5, length));
    EXPECT_EQ(length, 5U);
    EXPECT_EQ(std::string(text.data(), text.size()), "xxxxxxxx");
    EXPECT_TRUE(stream.take(text.data(), 6, length));
    EXPECT_EQ(length, 5U);
    EXPECT_EQ(std::string(text.data(), text.size()), std::string("12345\0xx", 8));
    EXPECT_TRUE(stream.take(text.data(), 1, length));
    EXPECT_EQ(length, 0U);
    EXPECT_STREQ(text.data(), "");
    EXPECT_FALSE(stream.take(text.data(), 0, length));
}

TEST(LgStream, AnUnfinishedStringIsNotSeen)
{
    LgStream stream;
    stream << "text";
    EXPECT_EQ(stream.getNextSize(), 0U);
    EXPECT_EQ(take(stream), "");
    stream.completeString();
    EXPECT_EQ(take(stream), "text");
}

TEST(LgStream, OutputFlagsTellTextAndEnd)
{
    LgStream stream;
    stream << "";
    EXPECT_EQ(stream.getOutputFlags(), TEXT_INSERTED);
    stream << Zu::ends;
    EXPECT_EQ(stream.getOutputFlags(), TEXT_INSERTED | STRING_CLOSED);
    stream.resetOutputFlags();
    EXPECT_EQ(stream.getOutputFlags(), 0U);
    stream << 'x';
    EXPECT_EQ(stream.getOutputFlags(), TEXT_INSERTED);
}

TEST(LgStream, EmptyStringsAreStringsToo)
{
    LgStream stream;
    // Also as the very first, and whether or not the reader looks in between.
    stream << "" << Zu::ends << "a" << Zu::ends << "" << Zu::ends << "b" << Zu::ends;
    for (const char* const text : {"", "a", "", "b"}) EXPECT_EQ(take(stream), text);
    LgStream other;
    other << "" << Zu::ends;
    EXPECT_EQ(take(other), "");
    other << "c" << Zu::ends;
    EXPECT_EQ(take(other), "c");
}

TEST(LgStream, APieceThatFillsTheRingIsTakenAndItsTerminatorStaysPending)
{
    LgStream stream;
    const std::string whole(stream.getNumCharacters(), 'x');
    stream << whole << Zu::ends;
    EXPECT_TRUE(stream.isFull());
    EXPECT_EQ(stream.getNumCharacters(), 0U);
    EXPECT_FALSE(stream.hasOverflowed());
    EXPECT_EQ(take(stream), whole);
    // One place is the reader's, one more that of the terminator.
    EXPECT_EQ(stream.getNumCharacters(), 32766U);
    const std::string next(32766, 'y');
    stream << next << Zu::ends;
    EXPECT_EQ(take(stream), next);
}

TEST(LgStream, AnEndBehindATerminatorThatWasNotSteppedPastIsNoString)
{
    SmallStream stream(16);
    stream << "0123456789abcde" << Zu::ends;
    EXPECT_EQ(take(stream), "0123456789abcde");
    stream.resetOutputFlags();
    stream << Zu::ends;
    EXPECT_EQ(stream.getOutputFlags(), STRING_CLOSED);
    EXPECT_EQ(stream.getNextSize(), 0U);
    EXPECT_EQ(stream.getNumCharacters(), 14U);
    // An empty text is one.
    stream << "" << Zu::ends << "next" << Zu::ends;
    EXPECT_EQ(take(stream), "");
    EXPECT_EQ(take(stream), "next");
}

TEST(LgStream, APieceThatDoesNotFitBecomesAMark)
{
    LgStream stream;
    stream << "first" << std::string(32767, 'x') << "third" << Zu::ends;
    EXPECT_TRUE(stream.hasOverflowed());
    EXPECT_EQ(take(stream), "first#third");
    EXPECT_FALSE(stream.hasOverflowed());
}

// What a reader would do while the writer waits.
struct Asked
{
    int _calls = 0;
    std::size_t _length = 0;
    std::string _taken;
};
Asked asked;

TEST(LgStream, TheRoomFunctionIsAskedBeforeTextIsLost)
{
    LgStream stream;
    asked = {};
    LgStream::setRoomFunction(
        [](LgStream& full, std::size_t length)
        {
            ++asked._calls;
            asked._length = length;
            EXPECT_FALSE(full.hasRoomFor(length));
            if (asked._calls != 2) asked._taken = take(full);
        });
    const std::string most(LgStream::BufSize - 20, 'x');
    stream << most << Zu::ends << "short";
    EXPECT_EQ(asked._calls, 0);
    stream << "too long for that" << 4711 << Zu::ends;
    EXPECT_EQ(asked._calls, 1);
    EXPECT_EQ(asked._length, std::strlen("too long for that"));
    EXPECT_EQ(asked._taken, most);
    EXPECT_EQ(take(stream), "shorttoo long for that4711");
    // One that does not wait, or waited in vain.
    stream << most << Zu::ends << "short"
           << "too long for that" << Zu::ends;
    EXPECT_EQ(asked._calls, 2);
    EXPECT_EQ(take(stream), most);
    EXPECT_EQ(take(stream), "short#");
    // The ring is full to the last place.
    asked._taken.clear();
    stream << std::string(LgStream::BufSize - 3, 'y') << Zu::ends << 'z' << Zu::ends;
    EXPECT_EQ(asked._calls, 3);
    EXPECT_EQ(asked._taken.size(), LgStream::BufSize - 3);
    EXPECT_EQ(take(stream), "z");
    // Nobody can make room for a text that is too long by itself.
    stream << most << most << Zu::ends;
    EXPECT_EQ(take(stream), most + '#');
    EXPECT_EQ(asked._calls, 3);
    LgStream::setRoomFunction(nullptr);
    stream << most << Zu::ends << most << Zu::ends;
    EXPECT_EQ(asked._calls, 3);
    EXPECT_EQ(take(stream), most);
    EXPECT_EQ(take(stream), "#");
}

TEST(LgStream, AFullRingDropsWhatFollows)
{
    SmallStream stream(16);
    stream << "0123456789abcde";
    EXPECT_TRUE(stream.isFull());
    stream.resetOutputFlags();
    stream << "dropped" << 'x';
    EXPECT_EQ(stream.getOutputFlags(), STRING_CLOSED);
    EXPECT_TRUE(stream.hasOverflowed());
    stream << Zu::ends;
    EXPECT_EQ(take(stream), "0123456789abcde");
}

TEST(LgStream, TakingNothingChangesNothing)
{
    SmallStream stream(16);
    stream << "0123456789abcde"
           << "dropped";
    EXPECT_EQ(take(stream), "");
    EXPECT_TRUE(stream.hasOverflowed());
    stream << Zu::ends;
    EXPECT_EQ(take(stream), "0123456789abcde");
}

TEST(LgStream, CopiesShareTheRing)
{
    LgStream stream;
    stream << "text" << Zu::ends;
    LgStream copy(stream);
    LgStream assigned;
    assigned = stream;
    EXPECT_EQ(take(copy), "text");
    EXPECT_EQ(take(assigned), "text");
    EXPECT_EQ(take(stream), "text");
}

TEST(LgStream, ACopyGoesOnWhereTheOtherOneStands)
{
    LgStream stream;
    stream << "one" << Zu::ends << "tw";
    LgStream assigned;
    assigned << "something else" << Zu::ends << "and more";
    assigned = stream;
    EXPECT_EQ(assigned.getNumCharacters(), stream.getNumCharacters());
    EXPECT_EQ(assigned.getOutputFlags(), stream.getOutputFlags());
    assigned << "o" << Zu::ends;
    EXPECT_EQ(take(assigned), "one");
    LgStream copy(assigned);
    EXPECT_EQ(take(copy), "two");
    EXPECT_EQ(take(assigned), "two");
}

// The stream as a queue of texts that reports how many characters it has left.
class Model
{
public:
    explicit Model(int size) : _left(size - 1) {}

    int room() const
    {
        return std::max(_left, 0);
    }

    void insert(const std::string& text)
    {
        if (room() == 0)
        {
            _overflowed = true;
            return;
        }
        const bool fits = static_cast<int>(text.size()) <= room();
        if (!fits) _overflowed = true;
        append(fits ? text : "#");
    }

    void insertCharacter(char character)
    {
        if (room() == 0)
            _overflowed = true;
        else
            append(std::string(1, character));
    }

    void complete()
    {
        if (_isPending)
        {
            // The last string was left on its terminator, and nothing was inserted since: it is
            // stepped past if there is room by now, and there is no other string.
            _isPending = _left < 0;
            return;
        }
        if (!_everUsed) --_left;
        _everUsed = true;
        _finished.push_back(_current);
        _current.clear();
        --_left;
        _isPending = _left < 0;
    }

    std::string take()
    {
        if (_finished.empty()) return "";
        const std::string text = _finished.front();
        _finished.pop_front();
        // The terminator of the text before becomes free, and this one's takes its place.
        _left += static_cast<int>(text.size()) + (_everTaken ? 1 : _startedEmpty ? 1 : 0);
        _everTaken = true;
        _overflowed = false;
        return text;
    }

    std::size_t nextSize() const
    {
        return _finished.empty() ? 0 : _finished.front().size();
    }

    bool overflowed() const
    {
        return _overflowed;
    }

private:
    void append(const std::string& text)
    {
        if (!_everUsed && !text.empty()) _everUsed = true;
        _isPending = false;
        _current += text;
        _left -= static_cast<int>(text.size());
    }

    int _left;
    bool _overflowed = false;
    bool _isPending = false;
    bool _everUsed = false;
    bool _everTaken = false;
    bool _startedEmpty = false;
    std::string _current;
    std::deque<std::string> _finished;

public:
    // To be called before complete() of the first string, if it is empty.
    void noteEmptyStart()
    {
        if (!_everUsed) _startedEmpty = true;
    }
};

TEST(LgStream, RandomOperationsFollowTheModel)
{
    std::mt19937 random(3);
    for (const int size : {4, 8, 16, 32, 64})
    {
        for (int round = 0; round < 300; ++round)
        {
            SmallStream stream(static_cast<std::uint32_t>(size));
            Model model(size);
            for (int step = 0; step < 200; ++step)
            {
                const auto operation = random() % 8;
                if (operation < 3)
                {
                    const std::string text(random() % (static_cast<unsigned int>(size) / 2),
                                           static_cast<char>('a' + step % 26));
                    stream << text;
                    model.insert(text);
                }
                else if (operation == 3)
                {
                    stream << 'z';
                    model.insertCharacter('z');
                }
                else if (operation < 6)
                {
                    model.noteEmptyStart();
                    stream << Zu::ends;
                    model.complete();
                }
                else
                {
                    ASSERT_EQ(stream.getNextSize(), model.nextSize());
                    ASSERT_EQ(take(stream), model.take()) << size << " " << round << " " << step;
                }
                ASSERT_EQ(stream.getNumCharacters(), static_cast<unsigned int>(model.room()))
                    << size << " " << round << " " << step << " " << operation;
                ASSERT_EQ(stream.isFull(), model.room() == 0);
                ASSERT_EQ(stream.hasOverflowed(), model.overflowed());
            }
        }
    }
}

TEST(LgStream, OneThreadWritesWhileAnotherReads)
{
    for (const std::uint32_t size : {64U, 256U})
    {
        constexpr int strings = 20000;
        SmallStream stream(size);
        std::thread writer(
            [&]
            {
                for (int i = 0; i < strings; ++i)
                {
                    while (stream.getNumCharacters() < 40) std::this_thread::yield();
                    stream << i << ' ' << std::string(static_cast<std::size_t>(i % 23), 'x')
                           << Zu::ends;
                }
            });
        for (int i = 0; i < strings; ++i)
        {
            while (stream.getNextSize() == 0) std::this_thread::yield();
            ASSERT_EQ(take(stream),
                      std::to_string(i) + " " + std::string(static_cast<std::size_t>(i % 23), 'x'));
        }
        writer.join();
    }
}

} // namespace

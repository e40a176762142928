#include "base/lgEvent.h"

#include "base/exInternalError.h"
#include "base/hwCounter.h"
#include "base/lgBaseText.h"
#include "base/lgFormat.h"
#include "base/lgStdText.h"
#include "base/lgTrace.h"
#include "base/osCpuInfo.h"
#include "base/rational.h"
#include "support/streamCapture.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <iomanip>
#include <iostream>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// A subsystem with its own groups, one of which has the name of a group elsewhere.
namespace lgEventTestShapes
{

ZU_DECLARE_LOG_GROUP(Query);
ZU_DEFINE_LOG_GROUP(Query);
ZU_DEFINE_LOG_GROUP(Circles);

void start()
{
    ZU_START_LOG_GROUP("Shapes", Query);
    ZU_START_LOG_GROUP("Shapes", Circles);
}

void stop()
{
    ZU_STOP_LOG_GROUP(Query);
    ZU_STOP_LOG_GROUP(Circles);
}

struct Circle
{
    double _radius;
};

Zu::LgStream& operator<<(Zu::LgStream& stream, const Circle& circle)
{
    return stream << "circle of " << circle._radius;
}

enum class Colour
{
    RED,
    GREEN
};

Zu::LgStream& operator<<(Zu::LgStream& stream, const Colour& colour)
{
    return stream << (colour == Colour::RED ? "red" : "green");
}

// A type that can't be copied, with a friend operator that only argument-dependent lookup finds.
class Box
{
public:
    explicit Box(int size) : _size(size) {}
    Box(const Box&) = delete;
    Box& operator=(const Box&) = delete;

    friend Zu::LgStream& operator<<(Zu::LgStream& stream, const Box& box)
    {
        return stream << "box of " << box._size;
    }

private:
    int _size;
};

template <class T> struct Pair
{
    T _first;
    T _second;
};

template <class T> Zu::LgStream& operator<<(Zu::LgStream& stream, const Pair<T>& pair)
{
    return stream << '<' << pair._first << ", " << pair._second << '>';
}

void log()
{
    ZU_LOG_WARNING(Query, "in shapes, " << Circle{2} << " and " << Colour::GREEN);
    ZU_LOG_WARNING(Circles, Circle{3});
}

} // namespace lgEventTestShapes

// A subsystem that logs into groups of others, by using their namespaces, and into its own.
namespace lgEventTestUser
{

namespace other
{
ZU_DEFINE_LOG_GROUP(Others);
} // namespace other

using namespace lgEventTestShapes;
using namespace other;

ZU_DEFINE_LOG_GROUP(Users);

namespace inner
{

ZU_DEFINE_LOG_GROUP(Inners);

void log()
{
    ZU_LOG_WARNING(Circles, "of shapes");
    ZU_LOG_WARNING(Others, "of another");
    ZU_LOG_WARNING(Users, "of the namespace around");
    ZU_LOG_WARNING(Inners, "of its own");
}

} // namespace inner

void run()
{
    ZU_START_LOG_GROUP("User", Others);
    ZU_START_LOG_GROUP("User", Users);
    using namespace inner;
    ZU_START_LOG_GROUP("User", Inners);
    log();
    ZU_STOP_LOG_GROUP(Others);
    ZU_STOP_LOG_GROUP(Users);
    ZU_STOP_LOG_GROUP(Inners);
}

} // namespace lgEventTestUser

namespace
{

ZU_DEFINE_LOG_GROUP(Query);
ZU_DEFINE_LOG_GROUP(Quiet);
ZU_DEFINE_LOG_GROUP(Unstarted);

using Zu::ExInternalError;
using Zu::LgLog;
using Zu::LgMajorGroup;
using Zu::LgQueue;
using Zu::LgStream;
namespace LgTypes = Zu::LgTypes;
namespace shapes = lgEventTestShapes;

using Texts = std::vector<std::string>;

constexpr LgTypes::Level LEVELS[] = {
    LgTypes::InternalError, LgTypes::FatalError, LgTypes::Error,    LgTypes::Warning,
    LgTypes::Informational, LgTypes::Tracing,    LgTypes::Profiling};

// The text of the oldest entry, which is removed; "lost N" for one of lost events.
std::string take(LgQueue& queue)
{
    std::vector<char> text(32768);
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

Texts takeAll(LgQueue& queue)
{
    Texts texts;
    while (!queue.isEmpty()) texts.push_back(take(queue));
    return texts;
}

template <class... Arguments> std::string printed(const char* format, Arguments... arguments)
{
    char text[400];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

// Groups are started and the process logs into a queue of the test, until the test ends. The group
// Query has all levels, Quiet those of a group that was not configured.
class LgEventTest : public testing::Test
{
protected:
    LgEventTest()
    {
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        LgMajorGroup::initialize("Database=Tracing,Database=Profiling,Shapes=Tracing");
        ZU_START_LOG_GROUP("Database", Query);
        ZU_START_LOG_GROUP("Other", Quiet);
        shapes::start();
        _current = &_queue;
        _calls = 0;
        LgLog::setQueueFunction(
            []
            {
                ++_calls;
                return _current;
            });
        LgLog::setLoggerActivation(true);
    }

    ~LgEventTest() override
    {
        LgLog::setLoggerActivation(false);
        LgLog::setQueueFunction(nullptr);
        shapes::stop();
        ZU_STOP_LOG_GROUP(Query);
        ZU_STOP_LOG_GROUP(Quiet);
        LgMajorGroup::finalize();
        takeAll(_queue);
    }

    // The texts of the events that act() logs.
    template <class Act> Texts logged(Act act)
    {
        act();
        return takeAll(_queue);
    }

    // What act() writes to standard output while the logger is inactive.
    template <class Act> std::string written(Act act)
    {
        LgLog::setLoggerActivation(false);
        std::string text = support::coutOf(act);
        LgLog::setLoggerActivation(true);
        EXPECT_TRUE(_queue.isEmpty());
        return text;
    }

    template <class Act> static std::string assertionOf(Act act)
    {
        try
        {
            act();
        }
        catch (const ExInternalError& exception)
        {
            return exception.getReason();
        }
        return "nothing raised";
    }

    void fillEntries()
    {
        for (int i = 0; i < 1022; ++i) ZU_LOG_WARNING(Query, i);
        ASSERT_TRUE(_queue.isFull());
        ASSERT_EQ(_queue.getLostCount(), 0U);
    }

    static inline LgQueue* _current;
    static inline int _calls;
    LgQueue _queue;
};

TEST_F(LgEventTest, AnEventIsTheGroupsNameABlankAndTheParts)
{
    EXPECT_EQ(logged([] { ZU_LOG_WARNING(Query, "took " << 12 << " s"); }),
              (Texts{"Query took 12 s"}));
    EXPECT_EQ(logged([] { ZU_LOG_WARNING(Quiet, ""); }), (Texts{"Quiet "}));
}

TEST_F(LgEventTest, EachMacroHasItsLevel)
{
    ZU_LOG_INTERNAL_ERROR(Query, "0");
    ZU_LOG_FATAL_ERROR(Query, "1");
    ZU_LOG_ERROR(Query, "2");
    ZU_LOG_WARNING(Query, "3");
    ZU_LOG_INFORMATIONAL(Query, "4");
    ZU_LOG_TRACING(Query, "5");
    ZU_LOG_PROFILING(Query, "6");
    for (const LgTypes::Level level : LEVELS)
    {
        ASSERT_FALSE(_queue.isEmpty());
        EXPECT_EQ(_queue.readEntry().getLevel(), level);
        EXPECT_EQ(take(_queue), "Query " + std::to_string(level));
    }
    EXPECT_TRUE(_queue.isEmpty());
}

TEST_F(LgEventTest, TheLevelMayBeKnownAtRunTimeOnly)
{
    for (const LgTypes::Level level : LEVELS)
    {
        int asked = 0;
        const auto levelOfEvent = [&]
        {
            ++asked;
            return level;
        };
        ZU_LOG(Query, levelOfEvent(), "run time");
        EXPECT_EQ(asked, 1);
        ASSERT_FALSE(_queue.isEmpty());
        EXPECT_EQ(_queue.readEntry().getLevel(), level);
        EXPECT_EQ(take(_queue), "Query run time");
    }
}

TEST_F(LgEventTest, TheGroupDecidesWhichLevelsAreLogged)
{
    LgMajorGroup& group = LgMajorGroup::getInstanceForName("Database");
    for (const LgTypes::Level threshold : LEVELS)
    {
        // Profiling switches that level on in addition to the others.
        group.setLogThreshold(threshold, true);
        Texts expected;
        for (const LgTypes::Level level : LEVELS)
        {
            if (group.getLogLevels() & LgTypes::levelBit[level])
                expected.push_back("Query " + std::to_string(level));
        }
        EXPECT_EQ(logged(
                      []
                      {
                          ZU_LOG_INTERNAL_ERROR(Query, "0");
                          ZU_LOG_FATAL_ERROR(Query, "1");
                          ZU_LOG_ERROR(Query, "2");
                          ZU_LOG_WARNING(Query, "3");
                          ZU_LOG_INFORMATIONAL(Query, "4");
                          ZU_LOG_TRACING(Query, "5");
                          ZU_LOG_PROFILING(Query, "6");
                      }),
                  expected);
    }
}

TEST_F(LgEventTest, NothingIsEvaluatedWhenTheLevelIsOff)
{
    int evaluated = 0;
    const auto operand = [&]
    {
        ++evaluated;
        return "operand";
    };
    const auto log = [&]
    {
        ZU_LOG_INFORMATIONAL(Quiet, operand());
        ZU_LOG(Quiet, LgTypes::Tracing, "text " << operand() << operand());
        ZU_LOG_PROFILING(Quiet, operand());
    };
    EXPECT_EQ(logged(log), Texts());
    EXPECT_EQ(written(log), "");
    EXPECT_EQ(evaluated, 0);
    EXPECT_EQ(_calls, 0);
    // Each operand once when it is on.
    LgMajorGroup::getInstanceForName("Other").setLogThreshold(LgTypes::Tracing, true);
    EXPECT_EQ(logged(log), (Texts{"Quiet operand", "Quiet text operandoperand"}));
    EXPECT_EQ(evaluated, 3);
    EXPECT_EQ(_calls, 2);
}

// Numbers that have a value and no place.
struct Limits
{
    static const int MAXIMUM = 42;
    static const bool IS_STRICT = true;
    static const char SIGN = '+';
    static const LgTypes::Level LEVEL = LgTypes::Error;
};

struct Bits
{
    unsigned int _low : 3;
    int _high : 5;
};

enum Plain
{
    PLAIN_ONE = 1,
    PLAIN_TWO
};

// Logs operands of all kinds.
void logOperands()
{
    char text[] = "array";
    char* const pointer = text;
    const char* const none = nullptr;
    const std::string string = "string";
    const Bits bits{5, -9};
    ZU_LOG_WARNING(Query, "literal " << text << ' ' << pointer << ' ' << none);
    ZU_LOG_WARNING(Query, string << ' ' << std::string_view("viewed on", 6) << ' '
                                 << (string + " of a temporary") << std::string(3, '!'));
    ZU_LOG_WARNING(Query, true << ' ' << false << ' ' << (1 < 2));
    ZU_LOG_WARNING(Query, 'A' << static_cast<signed char>('B') << static_cast<unsigned char>('C'));
    ZU_LOG_WARNING(Query, static_cast<short>(-1) << ' ' << static_cast<unsigned short>(65535));
    ZU_LOG_WARNING(Query, std::numeric_limits<int>::min() << ' ' << 4294967295U);
    ZU_LOG_WARNING(Query, -2147483647L << ' ' << 4294967295UL);
    ZU_LOG_WARNING(Query, std::numeric_limits<long long>::min()
                              << ' ' << std::numeric_limits<unsigned long long>::max());
    ZU_LOG_WARNING(Query, 1.5F << ' ' << -0.25 << ' ' << 0.1L << ' ' << 1e20);
    ZU_LOG_WARNING(Query, std::numeric_limits<float>::quiet_NaN());
    ZU_LOG_WARNING(Query, PLAIN_TWO << ' ' << LgTypes::Error);
    ZU_LOG_WARNING(Query, Limits::MAXIMUM << ' ' << Limits::IS_STRICT << ' ' << Limits::SIGN << ' '
                                          << Limits::LEVEL);
    ZU_LOG_WARNING(Query, bits._low << ' ' << bits._high);
    ZU_LOG_WARNING(Query,
                   shapes::Circle{0.5} << ", " << shapes::Colour::RED << ", " << shapes::Box(4));
    ZU_LOG_WARNING(Query, shapes::Pair<int>{1, 2} << shapes::Pair<shapes::Circle>{{1}, {2}});
}

const Texts OPERANDS = {
    "literal array array (null)",
    "string viewed string of a temporary!!!",
    "true false true",
    "ABC",
    "-1 65535",
    "-2147483648 4294967295",
    "-2147483647 4294967295",
    "-9223372036854775808 18446744073709551615",
    "1.500000 -0.250000 0.100000 100000000000000000000.000000",
    "nan",
    "2 2",
    "42 true + 2",
    "5 -9",
    "circle of 0.500000, red, box of 4",
    "<1, 2><circle of 1.000000, circle of 2.000000>",
};

TEST_F(LgEventTest, AnOperandIsWhateverAStreamTakes)
{
    Texts expected;
    for (const std::string& text : OPERANDS) expected.push_back("Query " + text);
    EXPECT_EQ(logged(logOperands), expected);
}

TEST_F(LgEventTest, WhileTheLoggerIsInactiveTheSameTextsAreLinesOfStandardOutput)
{
    std::string expected;
    for (const std::string& text : OPERANDS) expected += "Query " + text + '\n';
    EXPECT_EQ(written(logOperands), expected);
    EXPECT_EQ(_calls, 0);
}

TEST_F(LgEventTest, PointersHaveThePlatformsForm)
{
    int target = 0;
    void* const pointer = &target;
    const void* const constant = &target;
    const auto log = [&] { ZU_LOG_WARNING(Query, pointer << ' ' << constant << ' ' << &target); };
    const std::string text = "Query " + printed("%p %p %p", pointer, pointer, pointer);
    EXPECT_EQ(logged(log), (Texts{text}));
    EXPECT_EQ(written(log), text + '\n');
}

TEST_F(LgEventTest, OperandsMayHaveCommas)
{
    const auto log = [] {
        ZU_LOG_WARNING(Query, std::max<long>(1, 2) << std::map<int, int>{{1, 2}, {3, 4}}.size());
    };
    EXPECT_EQ(logged(log), (Texts{"Query 22"}));
}

TEST_F(LgEventTest, OperandsAreInsertedAsTheyAreAtTheEnd)
{
    // A text is inserted after all operands were evaluated; a number keeps its earlier value.
    std::string text = "old";
    int number = 1;
    const auto change = [&]
    {
        text = "new";
        number = 2;
        return "";
    };
    ZU_LOG_WARNING(Query, text << ' ' << number << change());
    EXPECT_EQ(take(_queue), "Query new 1");
}

TEST_F(LgEventTest, AStatementIsOneStatement)
{
    for (const bool isTrue : {true, false})
    {
        if (isTrue)
            ZU_LOG_WARNING(Query, "then");
        else
            ZU_LOG_WARNING(Query, "otherwise");
    }
    for (int i = 0; i < 2; ++i) ZU_LOG_ERROR(Query, i);
    EXPECT_EQ(takeAll(_queue), (Texts{"Query then", "Query otherwise", "Query 0", "Query 1"}));
}

TEST_F(LgEventTest, EachNamespaceHasItsGroups)
{
    shapes::log();
    ZU_LOG_WARNING(Query, "elsewhere");
    EXPECT_EQ(takeAll(_queue), (Texts{"Query in shapes, circle of 2.000000 and green",
                                      "Circles circle of 3.000000", "Query elsewhere"}));
    EXPECT_NE(LgGroups::MinorLevelQuery, shapes::LgGroups::MinorLevelQuery);
    // They hang on different major groups.
    LgMajorGroup::getInstanceForName("Shapes").setLogThreshold(LgTypes::Error, true);
    shapes::log();
    ZU_LOG_WARNING(Query, "still on");
    EXPECT_EQ(takeAll(_queue), (Texts{"Query still on"}));
}

TEST_F(LgEventTest, AStatementFindsTheGroupsOfNamespacesAroundItAndThoseThatItUses)
{
    lgEventTestUser::run();
    EXPECT_EQ(takeAll(_queue), (Texts{"Circles of shapes", "Others of another",
                                      "Users of the namespace around", "Inners of its own"}));
}

TEST_F(LgEventTest, OperandsMayBeValuesOfTheLibrariesAndNumbersInOtherForms)
{
    using namespace std::chrono_literals;
    const std::optional<int> none;
    ZU_LOG_WARNING(Query, Zu::Rational(1, 2) << ' ' << 250ms << ' ' << none << ' '
                                             << Zu::lgWidth(Zu::lgHex(255), 4, '0') << ' '
                                             << Zu::lgDecimals(2.0 / 3, 2));
    EXPECT_EQ(takeAll(_queue), (Texts{"Query (1/2=0.5) 250ms (none) 00ff 0.67"}));
}

TEST_F(LgEventTest, EachThreadLogsIntoItsOwnQueue)
{
    static thread_local LgQueue* queueOfThread;
    LgLog::setQueueFunction([] { return queueOfThread; });
    LgQueue queues[3];
    std::vector<std::thread> threads;
    for (LgQueue& queue : queues)
    {
        threads.emplace_back(
            [&queue]
            {
                queueOfThread = &queue;
                for (int i = 0; i < 1000; ++i) ZU_LOG_WARNING(Query, i << " of " << &queue);
            });
    }
    for (std::thread& thread : threads) thread.join();
    for (LgQueue& queue : queues)
    {
        for (int i = 0; i < 1000; ++i)
            ASSERT_EQ(take(queue), "Query " + printed("%d of %p", i, static_cast<void*>(&queue)));
        EXPECT_TRUE(queue.isEmpty());
    }
}

std::string logAndReturn(const std::string& text)
{
    ZU_LOG_ERROR(Query, "from inside " << text);
    return text;
}

TEST_F(LgEventTest, AnOperandThatLogsItselfDoesSoBeforeTheEvent)
{
    const auto log = [] {
        ZU_LOG_WARNING(Query,
                       "outer " << logAndReturn("one") << ' ' << logAndReturn("two").c_str());
    };
    const Texts expected = {"Query from inside one", "Query from inside two",
                            "Query outer one two"};
    log();
    ASSERT_FALSE(_queue.isEmpty());
    EXPECT_EQ(_queue.readEntry().getLevel(), LgTypes::Error);
    EXPECT_EQ(takeAll(_queue), expected);
    EXPECT_EQ(_queue.getLostCount(), 0U);
    EXPECT_EQ(written(log), expected[0] + '\n' + expected[1] + '\n' + expected[2] + '\n');
}

// Its insertion has a side effect.
struct Acting
{
    std::function<void()> _act;

    friend LgStream& operator<<(LgStream& stream, const Acting& acting)
    {
        stream << '[';
        acting._act();
        return stream << ']';
    }
};

TEST_F(LgEventTest, AnInsertionOperatorThatLogsLosesItsEventAndNotTheOneUnderWay)
{
    const Acting acting{[] { ZU_LOG_ERROR(Query, "from inside"); }};
    const auto log = [&] { ZU_LOG_WARNING(Query, "outer " << acting << " end"); };
    ZU_LOG_WARNING(Query, "before");
    log();
    EXPECT_EQ(_queue.getLostCount(), 1U);
    ZU_LOG_WARNING(Query, "after");
    EXPECT_EQ(takeAll(_queue), (Texts{"Query before", "Query outer [] end", "Query after"}));
    EXPECT_EQ(_queue.getLostCount(), 1U);
    log();
    EXPECT_EQ(_queue.readEntry().getLevel(), LgTypes::Warning);
    EXPECT_EQ(takeAll(_queue), (Texts{"Query outer [] end"}));
    EXPECT_EQ(_queue.getLostCount(), 2U);
}

TEST_F(LgEventTest, ATraceFromInsideAnInsertionOperatorIsLostToo)
{
    const Acting acting{[] { Zu::LgTrace::print("trace"); }};
    EXPECT_EQ(logged([&] { ZU_LOG_WARNING(Query, "outer " << acting << " end"); }),
              (Texts{"Query outer [] end"}));
    EXPECT_EQ(_queue.getLostCount(), 1U);
}

TEST_F(LgEventTest, AnInsertionOperatorThatThrowsLeavesNoTrace)
{
    const Acting acting{[] { throw std::domain_error("from inside"); }};
    const auto log = [&] { ZU_LOG_WARNING(Query, "outer " << acting << " end"); };
    ZU_LOG_WARNING(Query, "before");
    EXPECT_THROW(log(), std::domain_error);
    EXPECT_THROW(log(), std::domain_error);
    ZU_LOG_WARNING(Query, "after");
    EXPECT_EQ(takeAll(_queue), (Texts{"Query before", "Query after"}));
    EXPECT_THROW(log(), std::domain_error);
    EXPECT_TRUE(_queue.isEmpty());
    EXPECT_EQ(_queue.getStream().getNextSize(), 0U);
    EXPECT_EQ(_queue.getLostCount(), 0U);
    EXPECT_EQ(written([&] { EXPECT_THROW(log(), std::domain_error); }), "");
}

// The text that is taken back may have wrapped or filled the ring, and may have been cut.
TEST_F(LgEventTest, WhateverWasInsertedBeforeAnExceptionIsTakenBack)
{
    const Acting acting{[] { throw std::domain_error("from inside"); }};
    for (std::size_t length = 1; length < 40000; length += length / 3 + 1)
    {
        const std::string text(length, 'x');
        const auto log = [&] { ZU_LOG_WARNING(Query, text << acting); };
        for (int i = 0; i < 5; ++i)
        {
            EXPECT_THROW(log(), std::domain_error);
            EXPECT_TRUE(_queue.isEmpty()) << length;
            // Moves through the ring, and leaves no more room than there is.
            const std::string kept(i % 2 ? 7001U : 32500U, 'y');
            ZU_LOG_WARNING(Query, kept);
            EXPECT_THROW(log(), std::domain_error);
            ZU_LOG_WARNING(Query, "next");
            EXPECT_EQ(takeAll(_queue), (Texts{"Query " + kept, "Query next"})) << length;
        }
    }
    EXPECT_EQ(_queue.getLostCount(), 0U);
}

TEST_F(LgEventTest, AnExceptionWhileAnOperandIsEvaluatedBeginsNoEvent)
{
    const auto raise = []() -> int { throw std::range_error("operand"); };
    const auto log = [&] { ZU_LOG_WARNING(Query, "outer " << raise()); };
    EXPECT_THROW(log(), std::range_error);
    EXPECT_EQ(_calls, 0);
    EXPECT_EQ(logged([] { ZU_LOG_WARNING(Query, "next"); }), (Texts{"Query next"}));
}

TEST_F(LgEventTest, SuppressedEventsVanishUncounted)
{
    int inserted = 0;
    const Acting acting{[&] { ++inserted; }};
    {
        const LgQueue::SuppressGuard guard(_queue);
        ZU_LOG_WARNING(Query, "suppressed" << acting);
    }
    EXPECT_EQ(inserted, 0);
    EXPECT_TRUE(_queue.isEmpty());
    EXPECT_EQ(_queue.getLostCount(), 0U);
    EXPECT_EQ(logged([] { ZU_LOG_WARNING(Query, "seen"); }), (Texts{"Query seen"}));
}

TEST_F(LgEventTest, AnEventThatFindsNoRoomIsCountedAndNotInserted)
{
    int inserted = 0;
    const Acting acting{[&] { ++inserted; }};
    fillEntries();
    ZU_LOG_WARNING(Query, "lost" << acting);
    ZU_LOG_WARNING(Query, "lost" << acting);
    EXPECT_EQ(inserted, 0);
    EXPECT_EQ(_queue.getLostCount(), 2U);
    for (int i = 0; i < 1022; ++i) ASSERT_EQ(take(_queue), "Query " + std::to_string(i));
    EXPECT_EQ(takeAll(_queue), (Texts{"lost 2"}));
    EXPECT_EQ(logged([] { ZU_LOG_WARNING(Query, "next"); }), (Texts{"Query next"}));
}

TEST_F(LgEventTest, APieceThatDoesNotFitIsAMark)
{
    const std::string tooLong(40000, 'x');
    const auto log = [&] { ZU_LOG_WARNING(Query, "first " << tooLong << " third"); };
    EXPECT_EQ(logged(log), (Texts{"Query first # third"}));
    EXPECT_EQ(written(log), "Query first # third\n");
}

TEST_F(LgEventTest, WhileTheLoggerIsInactiveProfilingIsDropped)
{
    EXPECT_EQ(written(
                  []
                  {
                      ZU_LOG_INTERNAL_ERROR(Query, "0");
                      ZU_LOG_FATAL_ERROR(Query, "1");
                      ZU_LOG_ERROR(Query, "2");
                      ZU_LOG_WARNING(Query, "3");
                      ZU_LOG_INFORMATIONAL(Query, "4");
                      ZU_LOG_TRACING(Query, "5");
                      ZU_LOG_PROFILING(Query, "6");
                  }),
              "Query 0\nQuery 1\nQuery 2\nQuery 3\nQuery 4\nQuery 5\n");
}

// Puts the format of standard output back.
class FormatGuard
{
public:
    FormatGuard()
    {
        _format.copyfmt(std::cout);
    }
    FormatGuard(const FormatGuard&) = delete;
    FormatGuard& operator=(const FormatGuard&) = delete;
    ~FormatGuard()
    {
        std::cout.copyfmt(_format);
    }

private:
    std::ios _format{nullptr};
};

TEST_F(LgEventTest, TheFormatOfStandardOutputHasNoPartInALine)
{
    const FormatGuard guard;
    std::cout << std::hex << std::showbase << std::noboolalpha << std::setprecision(2)
              << std::scientific << std::setfill('*');
    EXPECT_EQ(written([] { ZU_LOG_WARNING(Query, 255 << ' ' << true << ' ' << 1.25); }),
              "Query 255 true 1.250000\n");
}

TEST_F(LgEventTest, AWidthThatIsSetOnStandardOutputDoesNotPadALine)
{
    const FormatGuard guard;
    std::cout.width(40);
    EXPECT_EQ(written([] { ZU_LOG_WARNING(Query, "text"); }), "Query text\n");
}

// Fails when it is notified of an event.
class FailingObserver : public LgQueue::Observer
{
public:
    void entryAdded(LgQueue&) override
    {
        throw std::runtime_error("told");
    }
    void entryRemoved(LgQueue&) override {}
    void waitForSpace(const LgQueue&, int) override {}
};

TEST_F(LgEventTest, AnObserverThatFailsLeavesTheEventPublished)
{
    _queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new FailingObserver));
    EXPECT_THROW(ZU_LOG_WARNING(Query, "one"), std::runtime_error);
    EXPECT_THROW(ZU_LOG_WARNING(Query, "two"), std::runtime_error);
    EXPECT_EQ(takeAll(_queue), (Texts{"Query one", "Query two"}));
}

// Traces a line while it is inserted.
struct Tracing
{
};

Zu::LgStream& operator<<(Zu::LgStream& stream, const Tracing&)
{
    stream << std::string(20000, 'x');
    Zu::LgTrace::print(std::string(20000, 'y').c_str());
    return stream;
}

// Reports that it was asked to wait, which would never end.
class CountingObserver : public LgQueue::Observer
{
public:
    explicit CountingObserver(int& waits) : _waits(waits) {}
    void entryAdded(LgQueue&) override {}
    void entryRemoved(LgQueue&) override {}
    void waitForSpace(const LgQueue&, int) override
    {
        ++_waits;
    }

private:
    int& _waits;
};

TEST_F(LgEventTest, ABlockingTraceFromInsideAnInsertionDoesNotWait)
{
    int waits = 0;
    _queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new CountingObserver(waits)));
    LgLog::setBlockingTrace(true);
    const Texts texts = logged([] { ZU_LOG_WARNING(Query, Tracing()); });
    LgLog::setBlockingTrace(false);
    EXPECT_EQ(waits, 0);
    EXPECT_EQ(texts, Texts{"Query " + std::string(20000, 'x')});
    EXPECT_EQ(_queue.getLostCount(), 1U);
}

TEST_F(LgEventTest, AGroupThatWasNotStartedBreaksARule)
{
    int evaluated = 0;
    const auto operand = [&] { return ++evaluated; };
    const auto log = [&](LgTypes::Level level) { ZU_LOG(Unstarted, level, operand()); };
    const std::string expected = "Assertion 'minor' failed.";
    for (const LgTypes::Level level : LEVELS) EXPECT_EQ(assertionOf([&] { log(level); }), expected);
    EXPECT_EQ(written([&] { EXPECT_EQ(assertionOf([&] { log(LgTypes::Error); }), expected); }), "");
    EXPECT_EQ(evaluated, 0);
    EXPECT_TRUE(_queue.isEmpty());
    EXPECT_EQ(_calls, 0);
}

TEST_F(LgEventTest, AGroupIsStartedOnce)
{
    const Zu::LgMinorGroup* const group = LgGroups::MinorLevelQuery;
    EXPECT_EQ(assertionOf([] { ZU_START_LOG_GROUP("Other", Query); }),
              "Assertion 'LgGroups::ZU_XGLUE( MinorLevel, Query ) == 0' failed.");
    EXPECT_EQ(LgGroups::MinorLevelQuery, group);
}

TEST_F(LgEventTest, AGroupIsStoppedOnceAfterItsStart)
{
    const std::string expected =
        "Assertion 'LgGroups::ZU_XGLUE( MinorLevel, Unstarted ) != 0' failed.";
    EXPECT_EQ(assertionOf([] { ZU_STOP_LOG_GROUP(Unstarted); }), expected);
    ZU_START_LOG_GROUP("Base", Unstarted);
    EXPECT_STREQ(LgGroups::MinorLevelUnstarted->getName(), "Unstarted");
    EXPECT_EQ(logged([] { ZU_LOG_WARNING(Unstarted, "started"); }), (Texts{"Unstarted started"}));
    ZU_STOP_LOG_GROUP(Unstarted);
    EXPECT_EQ(LgGroups::MinorLevelUnstarted, nullptr);
    EXPECT_EQ(assertionOf([] { ZU_STOP_LOG_GROUP(Unstarted); }), expected);
}

TEST(LgEventGroups, AGroupThatCannotStartStaysUnstarted)
{
    // There are no major groups before the logger is up.
    EXPECT_THROW(ZU_START_LOG_GROUP("Base", Unstarted), ExInternalError);
    EXPECT_EQ(LgGroups::MinorLevelUnstarted, nullptr);
}

} // namespace

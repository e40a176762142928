#include "app/lgLimit.h"

#include "app/lgService.h"
#include "base/lgMajorGroup.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Limited);

namespace
{

using Zu::LgLimit;
namespace LgTypes = Zu::LgTypes;

constexpr auto WARNING = LgTypes::Warning;

// Which executions are let through, as "x" and "-".
std::string patternOf(LgLimit& limit, const std::vector<std::uint64_t>& seconds)
{
    std::string pattern;
    for (const std::uint64_t second : seconds)
        pattern += limit.letsThroughIn(second, WARNING) ? 'x' : '-';
    return pattern;
}

struct Row
{
    LgLimit::Kind _kind;
    std::uint32_t _number;
    std::vector<std::uint64_t> _seconds;
    const char* _pattern;
};

TEST(LgLimit, LetsTheFirstOfEachSecondThroughOrEveryNth)
{
    constexpr auto SECOND = LgLimit::Kind::PerSecond;
    constexpr auto NTH = LgLimit::Kind::EveryNth;
    const Row rows[] = {
        {SECOND, 1, {7, 7, 7, 8, 8, 9, 11, 11}, "x--x-xx-"},
        {SECOND, 3, {7, 7, 7, 7, 7, 8, 8, 8, 8}, "xxx--xxx-"},
        // What was not used is not saved up.
        {SECOND, 2, {7, 9, 9, 9}, "xxx-"},
        // A second that is over counts as the latest one.
        {SECOND, 2, {7, 8, 7, 8, 7, 9}, "xxx--x"},
        {SECOND, 2, {0, 0, 0, 1}, "xx-x"},
        {SECOND, 1, {4294967295U, 4294967295U}, "x-"},
        {NTH, 1, {7, 7, 7}, "xxx"},
        {NTH, 3, {7, 7, 7, 7, 8, 9, 9}, "x--x--x"},
        {NTH, 4294967295U, {1, 1, 1}, "x--"},
    };
    for (const Row& row : rows)
    {
        // Limits never leave the list of all.
        auto* const limit = new LgLimit(row._kind, row._number, "row.cpp", 1, "Row");
        EXPECT_EQ(patternOf(*limit, row._seconds), row._pattern) << row._number;
        const std::string pattern = row._pattern;
        const auto written = std::count(pattern.begin(), pattern.end(), 'x');
        EXPECT_EQ(limit->getWrittenCount(), static_cast<std::uint64_t>(written));
        EXPECT_EQ(limit->getLeftOutCount(), pattern.size() - limit->getWrittenCount());
    }
}

TEST(LgLimit, WhatWasLeftOutIsTakenOnce)
{
    static LgLimit limit(LgLimit::Kind::EveryNth, 4, "once.cpp", 1, "Once");
    patternOf(limit, {1, 1, 1});
    EXPECT_EQ(limit.getOwedCount(), 2U);
    EXPECT_EQ(limit.takeLeftOut(), 2U);
    EXPECT_EQ(limit.takeLeftOut(), 0U);
    patternOf(limit, {1, 1});
    EXPECT_EQ(limit.getOwedCount(), 1U);
    EXPECT_EQ(limit.getLeftOutCount(), 3U);
    EXPECT_EQ(limit.takeLeftOut(), 1U);
    EXPECT_EQ(limit.getOwedCount(), 0U);
}

TEST(LgLimit, IsVisitedFromItsFirstExecutionOn)
{
    static LgLimit limit(LgLimit::Kind::PerSecond, 4, "visited.cpp", 17, "Visited");
    const auto visits = []
    {
        int count = 0;
        LgLimit::visitAll([&](LgLimit& visited) { count += &visited == &limit ? 1 : 0; });
        return count;
    };
    EXPECT_EQ(visits(), 0);
    limit.letsThroughIn(1, LgTypes::Tracing);
    limit.letsThroughIn(1, LgTypes::Warning);
    EXPECT_EQ(visits(), 1);
    EXPECT_STREQ(limit.getFile(), "visited.cpp");
    EXPECT_STREQ(limit.getGroup(), "Visited");
    EXPECT_EQ(limit.getLine(), 17);
    EXPECT_EQ(limit.getNumber(), 4U);
    EXPECT_EQ(limit.getKind(), LgLimit::Kind::PerSecond);
    EXPECT_EQ(limit.getLevel(), LgTypes::Tracing);
}

constexpr std::uint64_t EACH = 20000;
constexpr std::uint64_t THREADS = 8;

// Executes a limit on 8 threads, in which `SECONDS` seconds go by; returns what they took.
std::uint64_t takenByThreads(LgLimit& limit, std::uint64_t seconds)
{
    std::atomic<std::uint64_t> executions{0};
    std::atomic<std::uint64_t> taken{0};
    const auto run = [&]
    {
        for (std::uint64_t i = 0; i < EACH; ++i)
        {
            const std::uint64_t second = executions++ * seconds / (EACH * THREADS);
            if (limit.letsThroughIn(second, WARNING)) taken += limit.takeLeftOut();
        }
    };
    std::vector<std::thread> threads;
    for (std::uint64_t i = 0; i < THREADS; ++i) threads.emplace_back(run);
    for (std::thread& thread : threads) thread.join();
    return taken + limit.takeLeftOut();
}

TEST(LgLimit, EightThreadsLoseNoExecutionOfEveryNth)
{
    static LgLimit limit(LgLimit::Kind::EveryNth, 7, "threads.cpp", 1, "Threads");
    const std::uint64_t taken = takenByThreads(limit, 1);
    EXPECT_EQ(limit.getWrittenCount(), (EACH * THREADS + 6) / 7);
    EXPECT_EQ(limit.getLeftOutCount(), EACH * THREADS - limit.getWrittenCount());
    EXPECT_EQ(taken, limit.getLeftOutCount());
}

TEST(LgLimit, EightThreadsHaveOneLimitPerSecond)
{
    static LgLimit limit(LgLimit::Kind::PerSecond, 9, "threads.cpp", 2, "Threads");
    const std::uint64_t taken = takenByThreads(limit, 1);
    EXPECT_EQ(limit.getWrittenCount(), 9U);
    EXPECT_EQ(taken, EACH * THREADS - 9);

    static LgLimit many(LgLimit::Kind::PerSecond, 9, "threads.cpp", 3, "Threads");
    const std::uint64_t takenOfMany = takenByThreads(many, 50);
    EXPECT_EQ(takenOfMany, many.getLeftOutCount());
    EXPECT_EQ(many.getWrittenCount() + many.getLeftOutCount(), EACH * THREADS);
    // A thread that is held up may let a second go by, but never adds one.
    EXPECT_LE(many.getWrittenCount(), 50U * 9);
    EXPECT_GE(many.getWrittenCount(), 9U);
}

class LgLimitStatements : public testing::Test
{
protected:
    LgLimitStatements()
    {
        // What other tests have left.
        LgLimit::visitAll([](LgLimit& limit) { limit.takeLeftOut(); });
        Zu::LgMajorGroup::parse("LimitedMajor=Warning");
        ZU_START_LOG_GROUP("LimitedMajor", Limited);
    }

    ~LgLimitStatements() override
    {
        ZU_STOP_LOG_GROUP(Limited);
    }

    support::RunningLogger _logger;
};

TEST_F(LgLimitStatements, TheNextLineReportsWhatWasLeftOut)
{
    const support::StreamCapture capture(std::cout);
    int evaluated = 0;
    for (int i = 0; i < 8; ++i) ZU_LOG_EVERY(Limited, WARNING, 3, "number " << (++evaluated, i));
    EXPECT_EQ(capture.text(), "Limited number 0\n"
                              "Limited number 3 (2 left out)\n"
                              "Limited number 6 (2 left out)\n");
    EXPECT_EQ(evaluated, 3) << "operands of left-out executions";
}

TEST_F(LgLimitStatements, ADisabledLevelCountsNothing)
{
    const support::StreamCapture capture(std::cout);
    const auto log = [](int number)
    { ZU_LOG_EVERY(Limited, LgTypes::Informational, 2, "number " << number); };
    log(1);
    Zu::LgMajorGroup::parse("LimitedMajor=Informational");
    log(2);
    log(3);
    Zu::LgMajorGroup::parse("LimitedMajor=Warning");
    log(4);
    Zu::LgMajorGroup::parse("LimitedMajor=Informational");
    log(5);
    EXPECT_EQ(capture.text(), "Limited number 2\nLimited number 5 (1 left out)\n");
}

// How long a second lasts is the counter's affair; the limit holds in each.
TEST_F(LgLimitStatements, AtMostSoManyLinesAreWrittenInASecond)
{
    const support::StreamCapture capture(std::cout);
    constexpr std::uint64_t EXECUTIONS = 1000;
    const std::uint64_t start = Zu::HwCounter::timeStamp();
    for (std::uint64_t i = 0; i < EXECUTIONS; ++i) ZU_LOG_AT_MOST(Limited, WARNING, 2, "number");
    const double duration = Zu::HwCounter::seconds(start, Zu::HwCounter::timeStamp());
    const std::string text = capture.text();
    const auto lines = std::count(text.begin(), text.end(), '\n');
    EXPECT_EQ(text.rfind("Limited number\n", 0), 0U);
    EXPECT_GE(lines, 2);
    EXPECT_LE(static_cast<double>(lines), 2 * (duration + 2));
}

TEST_F(LgLimitStatements, MayBeNestedAndStandAfterIf)
{
    const support::StreamCapture capture(std::cout);
    const auto inner = []
    {
        ZU_LOG_EVERY(Limited, WARNING, 2, "inner");
        return 1;
    };
    for (int i = 0; i < 4; ++i)
        if (i != 2)
            ZU_LOG_EVERY(Limited, WARNING, 1, "outer " << inner());
        else
            ZU_LOG_WARNING(Limited, "otherwise");
    EXPECT_EQ(capture.text(), "Limited inner\nLimited outer 1\nLimited outer 1\n"
                              "Limited otherwise\nLimited inner (1 left out)\nLimited outer 1\n");
}

struct Failing
{
    bool _fails;
};

Zu::LgStream& operator<<(Zu::LgStream& stream, const Failing& failing)
{
    if (failing._fails) throw std::runtime_error("fails");
    return stream << "whole";
}

TEST_F(LgLimitStatements, AnEventThatIsWithdrawnTakesNoCountAlong)
{
    const support::StreamCapture capture(std::cout);
    const auto log = [](bool fails) { ZU_LOG_EVERY(Limited, WARNING, 2, Failing{fails}); };
    log(false);
    log(false);
    EXPECT_THROW(log(true), std::runtime_error);
    log(false);
    log(false);
    EXPECT_EQ(capture.text(), "Limited whole\nLimited whole (2 left out)\n");
}

TEST_F(LgLimitStatements, AnEventWithoutRoomTakesNoCountAlong)
{
    static Zu::LgQueue* theQueue = nullptr;
    Zu::LgQueue queue;
    theQueue = &queue;
    Zu::LgLog::setQueueFunction([] { return theQueue; });
    Zu::LgLog::setLoggerActivation(true);
    const auto log = [] { ZU_LOG_EVERY(Limited, WARNING, 2, "text"); };
    log();
    log();
    {
        const Zu::LgQueue::SuppressGuard guard(queue);
        log();
    }
    log();
    log();
    Zu::LgLog::setLoggerActivation(false);
    std::vector<std::string> texts;
    for (std::vector<char> text(Zu::LgStream::BufSize); !queue.isEmpty(); queue.removeEntry())
    {
        queue.getStream() >> text.data();
        texts.emplace_back(text.data());
    }
    EXPECT_EQ(texts, (std::vector<std::string>{"Limited text", "Limited text (2 left out)"}));
}

// The figures of one statement, by its group's name and line.
Zu::LgServiceHealth::Limit figuresOf(const Zu::LgServiceHealth& health, int line)
{
    for (const Zu::LgServiceHealth::Limit& limit : health._limits)
        if (limit._line == line && limit._file == __FILE__) return limit;
    return {};
}

TEST_F(LgLimitStatements, TheServiceReportsAtItsEndWhatIsOwed)
{
    int line = 0;
    {
        const Zu::LgService service;
        const std::uint64_t before = service.health()._everyNth._leftOut;
        for (int i = 0; i < 9; ++i)
        {
            line = __LINE__ + 1;
            ZU_LOG_EVERY(Limited, WARNING, 4, "number " << i);
            ZU_LOG_EVERY(Limited, WARNING, 1, "nothing is left out");
        }
        for (int i = 0; i < 3; ++i) ZU_LOG_EVERY(Limited, LgTypes::Error, 4, "error");
        const Zu::LgServiceHealth health = service.health();
        const Zu::LgServiceHealth::Limit figures = figuresOf(health, line);
        EXPECT_EQ(figures._written, 3U);
        EXPECT_EQ(figures._leftOut, 6U);
        EXPECT_EQ(figures._owed, 0U);
        EXPECT_EQ(figures._group, "Limited");
        EXPECT_EQ(figures._number, 4U);
        EXPECT_FALSE(figures._isPerSecond);
        EXPECT_EQ(figuresOf(health, line + 1)._line, 0) << "it has left out nothing";
        EXPECT_EQ(figuresOf(health, line + 3)._owed, 2U);
        EXPECT_EQ(health._everyNth._leftOut - before, 8U);
    }
    const std::vector<std::string> lines = _logger.linesOf("events.log");
    const std::string last =
        " Error: Limited (2 left out, lgLimitTest.cpp:" + std::to_string(line + 3) + ")";
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().substr(lines.back().find(')') + 1), last);
    EXPECT_EQ(lines.size(), 3U + 9 + 1 + 1);
}

} // namespace

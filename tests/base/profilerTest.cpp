#include "base/profiler.h"

#include "base/osCpuInfo.h"
#include "support/fakeTiming.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace
{

using support::addCycle;
using support::addSpan;
using support::awaitTick;
using support::digitsOf;
using support::FakeIntervalTimer;
using support::FixedProfiler;
using support::FlushRecorder;
using Zu::HwIntervalTimer;
using Zu::LgStream;
using Zu::OsCpuInfo;
using Zu::ProfilerBase;
using Zu::ProfilerCycle;
using Zu::ProfilerSpan;
using Zu::TodIntervalTimer;
using FakeProfiler = Zu::Profiler<FakeIntervalTimer>;

static_assert(std::is_abstract_v<ProfilerBase>);
static_assert(std::has_virtual_destructor_v<ProfilerBase>);
static_assert(std::is_same_v<decltype(FakeProfiler().cycles()), int>);
static_assert(!std::is_copy_constructible_v<ProfilerSpan>);
static_assert(!std::is_copy_assignable_v<ProfilerSpan>);
static_assert(!std::is_copy_constructible_v<ProfilerCycle>);
static_assert(!std::is_copy_assignable_v<ProfilerCycle>);

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double LARGEST = std::numeric_limits<double>::max();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

void setNow(double seconds)
{
    FakeIntervalTimer::setNow(seconds);
}

void expectUnused(const ProfilerBase& profiler)
{
    EXPECT_EQ(profiler.cycles(), 0);
    EXPECT_EQ(profiler.cycleTime(), 0);
    EXPECT_EQ(profiler.totalTime(), 0);
    EXPECT_EQ(profiler.averageTime(), 0);
    EXPECT_EQ(profiler.minTime(), 0);
    EXPECT_EQ(profiler.maxTime(), 0);
    EXPECT_EQ(profiler.standardDeviation(), 0);
}

TEST(Profiler, HasNoCycleAndZerosAtFirst)
{
    expectUnused(FakeProfiler());
    expectUnused(FakeProfiler("named"));
}

TEST(Profiler, TheDefaultNameIsAnonymous)
{
    EXPECT_STREQ(FakeProfiler().getName(), "anonymous");
}

TEST(Profiler, TheNameIsThePointerThatTheIntervalTimerHolds)
{
    char name[] = "name";
    FakeProfiler profiler(name);
    EXPECT_EQ(profiler.getName(), static_cast<const char*>(name));
    char other[] = "other";
    profiler.setName(other);
    EXPECT_EQ(profiler.getName(), static_cast<const char*>(other));
    other[0] = 'm';
    EXPECT_STREQ(profiler.getName(), "mther");
}

TEST(Profiler, ACycleHoldsSeveralSpans)
{
    FakeProfiler profiler;
    addSpan(profiler, 1);
    EXPECT_EQ(profiler.cycleTime(), 1);
    addSpan(profiler, 0.5);
    EXPECT_EQ(profiler.cycleTime(), 1.5);
    profiler.endCycle();
    EXPECT_EQ(profiler.cycleTime(), 0);
    EXPECT_EQ(profiler.cycles(), 1);
    EXPECT_EQ(profiler.totalTime(), 1.5);
    EXPECT_EQ(profiler.minTime(), 1.5);
    EXPECT_EQ(profiler.maxTime(), 1.5);
}

TEST(Profiler, ARunningSpanOrCycleIsNotInTheFigures)
{
    FakeProfiler profiler;
    setNow(1);
    profiler.start();
    setNow(8);
    expectUnused(profiler);
    profiler.stop();
    EXPECT_EQ(profiler.cycleTime(), 7);
    EXPECT_EQ(profiler.cycles(), 0);
    EXPECT_EQ(profiler.totalTime(), 0);
    EXPECT_EQ(profiler.averageTime(), 0);
    EXPECT_EQ(profiler.minTime(), 0);
    EXPECT_EQ(profiler.maxTime(), 0);
    EXPECT_EQ(profiler.standardDeviation(), 0);
}

TEST(Profiler, ASecondStopAddsTheSpanFromTheStartAgain)
{
    FakeProfiler profiler;
    setNow(10);
    profiler.start();
    setNow(12);
    profiler.stop();
    setNow(15);
    profiler.stop();
    EXPECT_EQ(profiler.cycleTime(), 2 + 5);
}

TEST(Profiler, AStartWhileASpanRunsBeginsItAnew)
{
    FakeProfiler profiler;
    setNow(10);
    profiler.start();
    setNow(12);
    profiler.start();
    setNow(15);
    profiler.stop();
    EXPECT_EQ(profiler.cycleTime(), 3);
}

TEST(Profiler, ASpanBelongsToTheCycleInWhichItIsStopped)
{
    FakeProfiler profiler;
    setNow(10);
    profiler.start();
    setNow(12);
    profiler.endCycle();
    EXPECT_EQ(profiler.cycles(), 1);
    EXPECT_EQ(profiler.totalTime(), 0);
    setNow(15);
    profiler.stop();
    EXPECT_EQ(profiler.cycleTime(), 5);
}

TEST(Profiler, ACycleWithoutSpansCountsWithZero)
{
    FakeProfiler profiler;
    addCycle(profiler, 4);
    profiler.endCycle();
    EXPECT_EQ(profiler.cycles(), 2);
    EXPECT_EQ(profiler.totalTime(), 4);
    EXPECT_EQ(profiler.averageTime(), 2);
    EXPECT_EQ(profiler.minTime(), 0);
    EXPECT_EQ(profiler.maxTime(), 4);
}

TEST(Profiler, OneCycleHasNoDeviation)
{
    FakeProfiler profiler;
    addCycle(profiler, 2);
    EXPECT_EQ(profiler.cycles(), 1);
    EXPECT_EQ(profiler.totalTime(), 2);
    EXPECT_EQ(profiler.averageTime(), 2);
    EXPECT_EQ(profiler.minTime(), 2);
    EXPECT_EQ(profiler.maxTime(), 2);
    EXPECT_EQ(profiler.standardDeviation(), 0);
    // Fewer than two cycles are not looked at.
    FakeProfiler infinite;
    addCycle(infinite, INFINITE);
    EXPECT_EQ(infinite.standardDeviation(), 0);
}

TEST(Profiler, CyclesOfOneAndThreeSecondsDeviateByTheRootOfTwo)
{
    FakeProfiler profiler;
    addCycle(profiler, 1);
    addCycle(profiler, 3);
    EXPECT_EQ(profiler.cycles(), 2);
    EXPECT_EQ(profiler.totalTime(), 4);
    EXPECT_EQ(profiler.averageTime(), 2);
    EXPECT_EQ(profiler.minTime(), 1);
    EXPECT_EQ(profiler.maxTime(), 3);
    EXPECT_EQ(profiler.standardDeviation(), std::sqrt(2.0));
}

TEST(Profiler, TheOrderOfTheCyclesIsOfNoMatter)
{
    std::array<double, 4> times{1, 2, 3, 6};
    do
    {
        FakeProfiler profiler;
        for (const double time : times) addCycle(profiler, time);
        EXPECT_EQ(profiler.totalTime(), 12);
        EXPECT_EQ(profiler.averageTime(), 3);
        EXPECT_EQ(profiler.minTime(), 1);
        EXPECT_EQ(profiler.maxTime(), 6);
        // 50 is the sum of the squares.
        EXPECT_EQ(profiler.standardDeviation(), std::sqrt((50.0 - 36.0) / 3));
    } while (std::next_permutation(times.begin(), times.end()));
}

TEST(Profiler, FiguresOfRandomCyclesAreThoseOfTheRunningSums)
{
    std::mt19937 random(7);
    FakeProfiler profiler;
    double total = 0;
    double sumOfSquares = 0;
    double least = INFINITE;
    double most = 0;
    for (int n = 1; n <= 1000; ++n)
    {
        const double time = 1e-6 * static_cast<double>(1 + random() % 1000000);
        addCycle(profiler, time);
        total += time;
        sumOfSquares += time * time;
        least = std::min(least, time);
        most = std::max(most, time);
        ASSERT_EQ(profiler.cycles(), n);
        ASSERT_EQ(profiler.cycleTime(), 0);
        ASSERT_EQ(profiler.totalTime(), total);
        ASSERT_EQ(profiler.averageTime(), total / n);
        ASSERT_EQ(profiler.minTime(), least);
        ASSERT_EQ(profiler.maxTime(), most);
        if (n < 2) continue;
        ASSERT_DOUBLE_EQ(profiler.standardDeviation(),
                         std::sqrt((sumOfSquares - total * total / n) / (n - 1)));
    }
}

// Cycles of equal length whose squares, by rounding, add up to less than the square of their sum
// divided by their number.
struct EqualCycles
{
    int _count;
    double _seconds;
};

EqualCycles cyclesThatRoundBelowZero()
{
    for (int count = 2; count < 20; ++count)
    {
        for (int i = 1; i < 1000; ++i)
        {
            const double seconds = i / 1000.0;
            double total = 0;
            double sumOfSquares = 0;
            for (int k = 0; k < count; ++k)
            {
                total += seconds;
                sumOfSquares += seconds * seconds;
            }
            if (sumOfSquares - total * total / count < 0) return {count, seconds};
        }
    }
    return {0, 0};
}

TEST(Profiler, TheDeviationOfEqualCyclesMayBeANaN)
{
    const EqualCycles cycles = cyclesThatRoundBelowZero();
    ASSERT_GT(cycles._count, 0);
    FakeProfiler profiler;
    for (int i = 0; i < cycles._count; ++i) addCycle(profiler, cycles._seconds);
    EXPECT_TRUE(std::isnan(profiler.standardDeviation()));
    EXPECT_EQ(profiler.minTime(), cycles._seconds);
    EXPECT_EQ(profiler.maxTime(), cycles._seconds);
}

TEST(Profiler, TheDeviationOfEqualCyclesIsZeroWithoutRounding)
{
    FakeProfiler profiler;
    for (int i = 0; i < 8; ++i) addCycle(profiler, 0.5);
    EXPECT_EQ(profiler.standardDeviation(), 0);
}

TEST(Profiler, ASpreadAtTheLimitOfPrecisionComesOutTooLarge)
{
    // The squares sum up to 2 + 2^-51, and the times to 2: their last bit is lost.
    FakeProfiler profiler;
    addCycle(profiler, 1);
    addCycle(profiler, 1 + std::ldexp(1.0, -52));
    EXPECT_EQ(profiler.totalTime(), 2);
    EXPECT_EQ(profiler.standardDeviation(), std::sqrt(std::ldexp(1.0, -51)));
}

TEST(Profiler, CyclesOfOverflowingSquaresHaveNoDeviation)
{
    FakeProfiler profiler;
    addCycle(profiler, 1e300);
    addCycle(profiler, 1e300);
    EXPECT_EQ(profiler.totalTime(), 2e300);
    EXPECT_EQ(profiler.averageTime(), 1e300);
    EXPECT_TRUE(std::isnan(profiler.standardDeviation()));
}

TEST(Profiler, NegativeCyclesLeaveTheMaximum)
{
    FakeProfiler profiler;
    addCycle(profiler, -2);
    EXPECT_EQ(profiler.totalTime(), -2);
    EXPECT_EQ(profiler.averageTime(), -2);
    EXPECT_EQ(profiler.minTime(), -2);
    EXPECT_EQ(profiler.maxTime(), 0);
    addCycle(profiler, -4);
    EXPECT_EQ(profiler.minTime(), -4);
    EXPECT_EQ(profiler.maxTime(), 0);
    EXPECT_EQ(profiler.standardDeviation(), std::sqrt(2.0));
}

TEST(Profiler, TheMinimumBeginsAtTheLargestNumber)
{
    FakeProfiler profiler;
    addCycle(profiler, INFINITE);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(profiler.minTime()), 0x7fefffffffffffffU);
    EXPECT_EQ(profiler.maxTime(), INFINITE);
    addCycle(profiler, LARGEST / 2);
    EXPECT_EQ(profiler.minTime(), LARGEST / 2);
}

TEST(Profiler, ACycleThatIsNotANumberIsNeitherLeastNorMost)
{
    FakeProfiler profiler;
    addCycle(profiler, NOT_A_NUMBER);
    EXPECT_EQ(profiler.minTime(), LARGEST);
    EXPECT_EQ(profiler.maxTime(), 0);
    EXPECT_TRUE(std::isnan(profiler.totalTime()));
    addCycle(profiler, 3);
    EXPECT_EQ(profiler.minTime(), 3);
    EXPECT_EQ(profiler.maxTime(), 3);
    EXPECT_TRUE(std::isnan(profiler.averageTime()));
    EXPECT_EQ(profiler.cycles(), 2);
}

TEST(Profiler, ResetForgetsTheCycles)
{
    FakeProfiler profiler("kept");
    addCycle(profiler, 1);
    addCycle(profiler, 5);
    addSpan(profiler, 2);
    profiler.reset();
    expectUnused(profiler);
    EXPECT_STREQ(profiler.getName(), "kept");
    addCycle(profiler, 2);
    EXPECT_EQ(profiler.minTime(), 2);
    EXPECT_EQ(profiler.maxTime(), 2);
    addCycle(profiler, 4);
    EXPECT_EQ(profiler.standardDeviation(), std::sqrt(2.0));
}

TEST(Profiler, AfterAResetTheMinimumBeginsAtTheLargestNumber)
{
    FakeProfiler profiler;
    addCycle(profiler, 1);
    profiler.reset();
    addCycle(profiler, INFINITE);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(profiler.minTime()), 0x7fefffffffffffffU);
}

TEST(Profiler, ResetLeavesTheIntervalTimer)
{
    FakeProfiler profiler;
    setNow(10);
    profiler.start();
    profiler.reset();
    setNow(13);
    profiler.stop();
    EXPECT_EQ(profiler.cycleTime(), 3);
}

TEST(ProfilerSpan, IsASpanForTheTimeOfItsScope)
{
    FakeProfiler profiler;
    setNow(5);
    {
        const ProfilerSpan span(profiler);
        setNow(7);
        EXPECT_EQ(profiler.cycleTime(), 0);
    }
    setNow(9);
    EXPECT_EQ(profiler.cycleTime(), 2);
    EXPECT_EQ(profiler.cycles(), 0);
    {
        const ProfilerSpan span(profiler);
        setNow(10);
    }
    EXPECT_EQ(profiler.cycleTime(), 3);
}

TEST(ProfilerSpan, EndsWhenAnExceptionLeavesTheScope)
{
    FakeProfiler profiler;
    setNow(5);
    const auto leave = [&profiler]
    {
        const ProfilerSpan span(profiler);
        setNow(9);
        throw std::runtime_error("left");
    };
    EXPECT_THROW(leave(), std::runtime_error);
    EXPECT_EQ(profiler.cycleTime(), 4);
    EXPECT_EQ(profiler.cycles(), 0);
}

TEST(ProfilerCycle, IsACycleOfTheSpansInItsScope)
{
    FakeProfiler profiler;
    {
        const ProfilerCycle cycle(profiler);
        addSpan(profiler, 1);
        addSpan(profiler, 2);
        // No span of it counts.
        setNow(100);
        EXPECT_EQ(profiler.cycles(), 0);
    }
    EXPECT_EQ(profiler.cycles(), 1);
    EXPECT_EQ(profiler.totalTime(), 3);
    EXPECT_EQ(profiler.cycleTime(), 0);
}

TEST(ProfilerCycle, WithoutSpansCountsWithZero)
{
    FakeProfiler profiler;
    {
        const ProfilerCycle cycle(profiler);
        setNow(100);
    }
    EXPECT_EQ(profiler.cycles(), 1);
    EXPECT_EQ(profiler.totalTime(), 0);
}

TEST(ProfilerCycle, EndsWhenAnExceptionLeavesTheScopeAfterTheSpanInIt)
{
    FakeProfiler profiler;
    setNow(0);
    const auto leave = [&profiler]
    {
        const ProfilerCycle cycle(profiler);
        const ProfilerSpan span(profiler);
        setNow(6);
        throw std::runtime_error("left");
    };
    EXPECT_THROW(leave(), std::runtime_error);
    EXPECT_EQ(profiler.cycles(), 1);
    EXPECT_EQ(profiler.totalTime(), 6);
    EXPECT_EQ(profiler.cycleTime(), 0);
}

// The report on a stream of this precision.
std::string reportOf(const ProfilerBase& profiler, int precision = 6)
{
    std::ostringstream os;
    os << std::setprecision(precision) << profiler;
    return os.str();
}

// The report on the ring of text.
std::string ringReportOf(const ProfilerBase& profiler)
{
    LgStream stream;
    stream << profiler << Zu::ends;
    std::array<char, 32768> text;
    stream >> text.data();
    return text.data();
}

FakeProfiler sampleProfiler(const char* name)
{
    FakeProfiler profiler(name);
    addCycle(profiler, 1);
    addCycle(profiler, 3);
    return profiler;
}

TEST(Profiler, TheReportHasARowForEachFigure)
{
    EXPECT_EQ(reportOf(sampleProfiler("parser")), "Profiler parser:\n"
                                                  "        Nb of cycles:   2\n"
                                                  "        Total time:     4.000000\n"
                                                  "        Average time:   2.000000\n"
                                                  "        Minimum time:   1.000000\n"
                                                  "        Maximum time:   3.000000\n"
                                                  "        Standard dev:   1.414214\n"
                                                  "\n");
}

TEST(Profiler, TheReportOfAnUnusedProfilerHasZeros)
{
    EXPECT_EQ(reportOf(FakeProfiler()), "Profiler anonymous:\n"
                                        "        Nb of cycles:   0\n"
                                        "        Total time:     0.000000\n"
                                        "        Average time:   0.000000\n"
                                        "        Minimum time:   0.000000\n"
                                        "        Maximum time:   0.000000\n"
                                        "        Standard dev:   0.000000\n"
                                        "\n");
}

TEST(Profiler, TheReportHasThePrecisionOfTheStream)
{
    const FakeProfiler profiler = sampleProfiler("p");
    EXPECT_EQ(reportOf(profiler, 0), "Profiler p:\n"
                                     "        Nb of cycles:   2\n"
                                     "        Total time:     4\n"
                                     "        Average time:   2\n"
                                     "        Minimum time:   1\n"
                                     "        Maximum time:   3\n"
                                     "        Standard dev:   1\n"
                                     "\n");
    EXPECT_EQ(reportOf(profiler, 3), "Profiler p:\n"
                                     "        Nb of cycles:   2\n"
                                     "        Total time:     4.000\n"
                                     "        Average time:   2.000\n"
                                     "        Minimum time:   1.000\n"
                                     "        Maximum time:   3.000\n"
                                     "        Standard dev:   1.414\n"
                                     "\n");
    EXPECT_EQ(reportOf(profiler, 12), "Profiler p:\n"
                                      "        Nb of cycles:   2\n"
                                      "        Total time:     4.000000000000\n"
                                      "        Average time:   2.000000000000\n"
                                      "        Minimum time:   1.000000000000\n"
                                      "        Maximum time:   3.000000000000\n"
                                      "        Standard dev:   1.414213562373\n"
                                      "\n");
}

// A different figure for each row, so that none can be mistaken for another.
FixedProfiler profilerOfSixFigures()
{
    FixedProfiler profiler;
    profiler._name = "six";
    profiler._cycles = 1234567;
    profiler._cycleTime = 99;
    profiler._total = 10.5;
    profiler._average = -20.25;
    profiler._minimum = -30.125;
    profiler._maximum = 40.75;
    profiler._deviation = 0.0625;
    return profiler;
}

TEST(Profiler, EachRowHasItsFigure)
{
    EXPECT_EQ(reportOf(profilerOfSixFigures(), 4), "Profiler six:\n"
                                                   "        Nb of cycles:   1234567\n"
                                                   "        Total time:     10.5000\n"
                                                   "        Average time:   -20.2500\n"
                                                   "        Minimum time:   -30.1250\n"
                                                   "        Maximum time:   40.7500\n"
                                                   "        Standard dev:   0.0625\n"
                                                   "\n");
    EXPECT_EQ(ringReportOf(profilerOfSixFigures()), "Profiler six:\n"
                                                    "        Nb of cycles:   1234567\n"
                                                    "        Total time  :   10.500000000\n"
                                                    "        Average time:   -20.250000000\n"
                                                    "        Minimum time:   -30.125000000\n"
                                                    "        Maximum time:   40.750000000\n"
                                                    "        Standard dev:   0.062500000\n"
                                                    "\n");
}

TEST(Profiler, TheReportShowsAnyName)
{
    FixedProfiler profiler;
    const std::string rows = "        Nb of cycles:   0\n"
                             "        Total time:     0.000000\n"
                             "        Average time:   0.000000\n"
                             "        Minimum time:   0.000000\n"
                             "        Maximum time:   0.000000\n"
                             "        Standard dev:   0.000000\n"
                             "\n";
    const std::string ringRows = "        Nb of cycles:   0\n"
                                 "        Total time  :   0.000000000\n"
                                 "        Average time:   0.000000000\n"
                                 "        Minimum time:   0.000000000\n"
                                 "        Maximum time:   0.000000000\n"
                                 "        Standard dev:   0.000000000\n"
                                 "\n";
    const std::string longName(500, 'n');
    for (const char* const name : {"", "two words", "100%s %n", "a: b\n", longName.c_str()})
    {
        profiler.setName(name);
        EXPECT_EQ(reportOf(profiler), "Profiler " + std::string(name) + ":\n" + rows);
        EXPECT_EQ(ringReportOf(profiler), "Profiler " + std::string(name) + ":\n" + ringRows);
    }
}

TEST(Profiler, TheReportIsLeftJustifiedAndFixedWhateverTheStreamWas)
{
    const FakeProfiler profiler = sampleProfiler("p");
    const std::string expected = reportOf(profiler);
    for (const auto adjustment : {std::ios_base::left, std::ios_base::right,
                                  std::ios_base::internal, std::ios_base::fmtflags{}})
    {
        for (const auto notation :
             {std::ios_base::fixed, std::ios_base::scientific,
              std::ios_base::fixed | std::ios_base::scientific, std::ios_base::fmtflags{}})
        {
            std::ostringstream os;
            os.setf(adjustment, std::ios_base::adjustfield);
            os.setf(notation, std::ios_base::floatfield);
            os.fill('*');
            os << profiler;
            EXPECT_EQ(os.str(), expected);
        }
    }
}

TEST(Profiler, TheReportPutsFlagsWidthAndFillBack)
{
    const FakeProfiler profiler = sampleProfiler("p");
    std::ostringstream os;
    os << std::right << std::scientific << std::hex << std::boolalpha << std::setprecision(2)
       << std::setfill('*') << std::setw(12);
    const auto flags = os.flags();
    EXPECT_EQ(&(os << static_cast<const ProfilerBase&>(profiler)), &os);
    EXPECT_EQ(os.flags(), flags);
    EXPECT_EQ(os.width(), 12);
    EXPECT_EQ(os.fill(), '*');
    EXPECT_EQ(os.precision(), 2);
    os << 2.5;
    // The width is that of the first text, too.
    const std::string report = reportOf(profiler, 2);
    EXPECT_EQ(report.substr(0, 9), "Profiler ");
    EXPECT_EQ(os.str(), "Profiler    " + report.substr(9) + "****2.50e+00");
}

TEST(Profiler, ANullNameIsShownAsSuch)
{
    Zu::Profiler<Zu::TodIntervalTimer> profiler;
    profiler.setName(nullptr);
    std::ostringstream os;
    os << static_cast<const ProfilerBase&>(profiler);
    EXPECT_TRUE(os.good());
    EXPECT_EQ(os.str().substr(0, 28), "Profiler (null):\n        Nb ");
    EXPECT_EQ(ringReportOf(profiler).substr(0, 17), "Profiler (null):\n");
}

TEST(Profiler, TheReportLeavesAPlainStreamPlain)
{
    std::ostringstream os;
    const auto flags = os.flags();
    os << sampleProfiler("p");
    EXPECT_EQ(os.flags(), flags);
    EXPECT_EQ(os.width(), 0);
    EXPECT_EQ(os.fill(), ' ');
    EXPECT_EQ(os.precision(), 6);
}

TEST(Profiler, TheReportFlushesEachRow)
{
    FlushRecorder recorder;
    std::ostream os(&recorder);
    os << sampleProfiler("p");
    const std::string text = recorder.str();
    int rows = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos;
         end = text.find('\n', end + 1))
    {
        const std::string written = text.substr(0, end + 1);
        const std::size_t begin = end == 0 ? 0 : text.rfind('\n', end - 1) + 1;
        if (text.compare(begin, 8, "        ") != 0) continue;
        ++rows;
        EXPECT_TRUE(recorder.wasFlushedAt(written)) << written;
    }
    EXPECT_EQ(rows, 6);
}

TEST(Profiler, TheReportShowsNumbersOfAllSizes)
{
    FixedProfiler profiler;
    profiler._cycles = std::numeric_limits<int>::max();
    profiler._total = 1e300;
    profiler._average = LARGEST;
    profiler._minimum = -LARGEST;
    profiler._maximum = INFINITE;
    profiler._deviation = -INFINITE;
    EXPECT_EQ(reportOf(profiler, 2), "Profiler fixed:\n"
                                     "        Nb of cycles:   2147483647\n"
                                     "        Total time:     " +
                                         digitsOf(1e300) +
                                         ".00\n        Average time:   " + digitsOf(LARGEST) +
                                         ".00\n        Minimum time:   -" + digitsOf(LARGEST) +
                                         ".00\n        Maximum time:   inf\n"
                                         "        Standard dev:   -inf\n"
                                         "\n");
    EXPECT_EQ(ringReportOf(profiler),
              "Profiler fixed:\n"
              "        Nb of cycles:   2147483647\n"
              "        Total time  :   " +
                  digitsOf(1e300) + ".000000000\n        Average time:   " + digitsOf(LARGEST) +
                  ".000000000\n        Minimum time:   -" + digitsOf(LARGEST) +
                  ".000000000\n        Maximum time:   inf\n"
                  "        Standard dev:   -inf\n"
                  "\n");
}

TEST(Profiler, TheReportsShowANaNWithoutASign)
{
    FixedProfiler profiler;
    for (const double sign : {1.0, -1.0})
    {
        const double nan = std::copysign(NOT_A_NUMBER, sign);
        profiler._total = nan;
        profiler._average = nan;
        profiler._minimum = nan;
        profiler._maximum = nan;
        profiler._deviation = nan;
        EXPECT_EQ(reportOf(profiler), "Profiler fixed:\n"
                                      "        Nb of cycles:   0\n"
                                      "        Total time:     nan\n"
                                      "        Average time:   nan\n"
                                      "        Minimum time:   nan\n"
                                      "        Maximum time:   nan\n"
                                      "        Standard dev:   nan\n"
                                      "\n");
        EXPECT_EQ(ringReportOf(profiler), "Profiler fixed:\n"
                                          "        Nb of cycles:   0\n"
                                          "        Total time  :   nan\n"
                                          "        Average time:   nan\n"
                                          "        Minimum time:   nan\n"
                                          "        Maximum time:   nan\n"
                                          "        Standard dev:   nan\n"
                                          "\n");
    }
}

TEST(Profiler, TheReportsShowADeviationThatRoundedBelowZeroAsNaN)
{
    const EqualCycles cycles = cyclesThatRoundBelowZero();
    ASSERT_GT(cycles._count, 0);
    FakeProfiler profiler;
    for (int i = 0; i < cycles._count; ++i) addCycle(profiler, cycles._seconds);
    const std::string end = "        Standard dev:   nan\n\n";
    for (const std::string& report : {reportOf(profiler), ringReportOf(profiler)})
    {
        ASSERT_GE(report.size(), end.size());
        EXPECT_EQ(report.substr(report.size() - end.size()), end);
    }
}

TEST(Profiler, TheRingReportHasARowForEachFigureWithNineDecimals)
{
    EXPECT_EQ(ringReportOf(sampleProfiler("parser")), "Profiler parser:\n"
                                                      "        Nb of cycles:   2\n"
                                                      "        Total time  :   4.000000000\n"
                                                      "        Average time:   2.000000000\n"
                                                      "        Minimum time:   1.000000000\n"
                                                      "        Maximum time:   3.000000000\n"
                                                      "        Standard dev:   1.414213562\n"
                                                      "\n");
    FixedProfiler rounded;
    rounded._total = 1.23456789012;
    rounded._average = 0.9999999996;
    rounded._minimum = 4e-10;
    rounded._maximum = 6e-10;
    rounded._deviation = -1.5;
    EXPECT_EQ(ringReportOf(rounded), "Profiler fixed:\n"
                                     "        Nb of cycles:   0\n"
                                     "        Total time  :   1.234567890\n"
                                     "        Average time:   1.000000000\n"
                                     "        Minimum time:   0.000000000\n"
                                     "        Maximum time:   0.000000001\n"
                                     "        Standard dev:   -1.500000000\n"
                                     "\n");
}

TEST(Profiler, TheRingReportIsInsertedAmongOtherText)
{
    const FakeProfiler profiler = sampleProfiler("p");
    const std::string report = ringReportOf(profiler);
    LgStream stream;
    stream << "before ";
    EXPECT_EQ(&(stream << static_cast<const ProfilerBase&>(profiler)), &stream);
    EXPECT_EQ(stream.getNextSize(), 0U);
    stream << "after" << Zu::ends;
    std::array<char, 32768> text;
    stream >> text.data();
    EXPECT_EQ(text.data(), "before " + report + "after");
}

// The two kinds that there are, each through the base.
template <class T> class ProfilerKindTest : public testing::Test
{
protected:
    void SetUp() override
    {
        OsCpuInfo::initialize();
    }
};

using Kinds = testing::Types<HwIntervalTimer, TodIntervalTimer>;
TYPED_TEST_SUITE(ProfilerKindTest, Kinds);

TYPED_TEST(ProfilerKindTest, IsUnusedAtFirst)
{
    std::unique_ptr<ProfilerBase> profiler = std::make_unique<Zu::Profiler<TypeParam>>();
    expectUnused(*profiler);
    EXPECT_STREQ(profiler->getName(), "anonymous");
    profiler->setName("set");
    EXPECT_STREQ(profiler->getName(), "set");
    profiler = std::make_unique<Zu::Profiler<TypeParam>>("named");
    EXPECT_STREQ(profiler->getName(), "named");
}

TYPED_TEST(ProfilerKindTest, MeasuresAtLeastTheSpansWithinItsOwn)
{
    const std::unique_ptr<ProfilerBase> profiler = std::make_unique<Zu::Profiler<TypeParam>>();
    double least = 0;
    for (int i = 0; i < 2; ++i)
    {
        const ProfilerCycle cycle(*profiler);
        const ProfilerSpan span(*profiler);
        TypeParam inner;
        inner.start();
        awaitTick<TypeParam>();
        inner.stop();
        least += inner.timeInterval();
    }
    EXPECT_GT(least, 0);
    EXPECT_EQ(profiler->cycles(), 2);
    EXPECT_GE(profiler->totalTime(), least);
    EXPECT_EQ(profiler->totalTime(), profiler->minTime() + profiler->maxTime());
    EXPECT_EQ(profiler->averageTime(), profiler->totalTime() / 2);
    EXPECT_GT(profiler->minTime(), 0);
    EXPECT_LE(profiler->minTime(), profiler->averageTime());
    EXPECT_LE(profiler->averageTime(), profiler->maxTime());
    EXPECT_EQ(profiler->cycleTime(), 0);
    profiler->reset();
    expectUnused(*profiler);
}

TYPED_TEST(ProfilerKindTest, SpansOfACycleAddUp)
{
    const std::unique_ptr<ProfilerBase> profiler = std::make_unique<Zu::Profiler<TypeParam>>();
    double last = 0;
    for (int i = 0; i < 3; ++i)
    {
        profiler->start();
        awaitTick<TypeParam>();
        profiler->stop();
        EXPECT_GT(profiler->cycleTime(), last);
        last = profiler->cycleTime();
    }
    profiler->endCycle();
    EXPECT_EQ(profiler->totalTime(), last);
    EXPECT_EQ(profiler->standardDeviation(), 0);
}

TYPED_TEST(ProfilerKindTest, HasTheReports)
{
    const Zu::Profiler<TypeParam> profiler("real");
    EXPECT_EQ(reportOf(profiler, 1), "Profiler real:\n"
                                     "        Nb of cycles:   0\n"
                                     "        Total time:     0.0\n"
                                     "        Average time:   0.0\n"
                                     "        Minimum time:   0.0\n"
                                     "        Maximum time:   0.0\n"
                                     "        Standard dev:   0.0\n"
                                     "\n");
    EXPECT_EQ(ringReportOf(profiler), "Profiler real:\n"
                                      "        Nb of cycles:   0\n"
                                      "        Total time  :   0.000000000\n"
                                      "        Average time:   0.000000000\n"
                                      "        Minimum time:   0.000000000\n"
                                      "        Maximum time:   0.000000000\n"
                                      "        Standard dev:   0.000000000\n"
                                      "\n");
}

} // namespace

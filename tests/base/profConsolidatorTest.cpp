#include "base/profConsolidator.h"

#include "base/osCpuInfo.h"
#include "support/fakeTiming.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <sstream>
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
using Zu::ProfConsolidator;
using Zu::ProfilerBase;
using FakeProfiler = Zu::Profiler<FakeIntervalTimer>;

static_assert(std::is_polymorphic_v<ProfConsolidator>);
static_assert(!std::has_virtual_destructor_v<ProfConsolidator>);
static_assert(std::is_same_v<decltype(ProfConsolidator().cycles()), int>);

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double LARGEST = std::numeric_limits<double>::max();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// A profiler with a cycle of each length.
template <class... Seconds> FakeProfiler profilerOf(Seconds... seconds)
{
    FakeProfiler profiler;
    (addCycle(profiler, seconds), ...);
    return profiler;
}

template <class... Profilers> ProfConsolidator consolidated(Profilers... profilers)
{
    ProfConsolidator consolidator;
    (consolidator.consolidate(profilers), ...);
    return consolidator;
}

TEST(ProfConsolidator, HasNoCycleAndZerosAtFirst)
{
    const ProfConsolidator consolidator;
    EXPECT_EQ(consolidator.cycles(), 0);
    EXPECT_EQ(consolidator.totalTime(), 0);
    EXPECT_EQ(consolidator.averageTime(), 0);
    EXPECT_EQ(consolidator.minTime(), 0);
    EXPECT_EQ(consolidator.maxTime(), 0);
}

TEST(ProfConsolidator, OneProfilerGivesItsOwnFigures)
{
    const ProfConsolidator consolidator = consolidated(profilerOf(1.0, 3.0));
    EXPECT_EQ(consolidator.cycles(), 2);
    EXPECT_EQ(consolidator.totalTime(), 4);
    EXPECT_EQ(consolidator.averageTime(), 2);
    EXPECT_EQ(consolidator.minTime(), 1);
    EXPECT_EQ(consolidator.maxTime(), 3);
}

TEST(ProfConsolidator, SeveralProfilersGiveTheFiguresOfAllCycles)
{
    const ProfConsolidator consolidator =
        consolidated(profilerOf(2.0, 3.0), profilerOf(0.5, 2.5), profilerOf(4.0));
    EXPECT_EQ(consolidator.cycles(), 5);
    EXPECT_EQ(consolidator.totalTime(), 12);
    EXPECT_EQ(consolidator.averageTime(), 2.4);
    EXPECT_EQ(consolidator.minTime(), 0.5);
    EXPECT_EQ(consolidator.maxTime(), 4);
}

TEST(ProfConsolidator, TheAverageWeighsCyclesAndNotProfilers)
{
    EXPECT_EQ(consolidated(profilerOf(1.0, 1.0, 1.0), profilerOf(5.0)).averageTime(), 2);
}

TEST(ProfConsolidator, AProfilerCountsEachTimeAndStaysAsItIs)
{
    FakeProfiler profiler = profilerOf(1.0, 3.0);
    addSpan(profiler, 7);
    ProfConsolidator consolidator;
    consolidator.consolidate(profiler);
    consolidator.consolidate(profiler);
    EXPECT_EQ(consolidator.cycles(), 4);
    EXPECT_EQ(consolidator.totalTime(), 8);
    EXPECT_EQ(consolidator.minTime(), 1);
    EXPECT_EQ(consolidator.maxTime(), 3);
    EXPECT_EQ(profiler.cycles(), 2);
    EXPECT_EQ(profiler.totalTime(), 4);
    EXPECT_EQ(profiler.minTime(), 1);
    EXPECT_EQ(profiler.maxTime(), 3);
    EXPECT_EQ(profiler.cycleTime(), 7);
}

TEST(ProfConsolidator, ARunningCycleIsNotInTheFigures)
{
    FakeProfiler profiler = profilerOf(2.0);
    addSpan(profiler, 100);
    ProfConsolidator consolidator;
    consolidator.consolidate(profiler);
    EXPECT_EQ(consolidator.cycles(), 1);
    EXPECT_EQ(consolidator.totalTime(), 2);
    EXPECT_EQ(consolidator.maxTime(), 2);
}

TEST(ProfConsolidator, AnUnusedProfilerLeavesTheCyclesAndPullsTheMinimumToZero)
{
    ProfConsolidator consolidator = consolidated(profilerOf(2.0, 4.0));
    EXPECT_EQ(consolidator.minTime(), 2);
    FakeProfiler unused;
    consolidator.consolidate(unused);
    EXPECT_EQ(consolidator.cycles(), 2);
    EXPECT_EQ(consolidator.totalTime(), 6);
    EXPECT_EQ(consolidator.averageTime(), 3);
    EXPECT_EQ(consolidator.minTime(), 0);
    EXPECT_EQ(consolidator.maxTime(), 4);
}

TEST(ProfConsolidator, AnUnusedProfilerBeforeAllOthersCountsToo)
{
    ProfConsolidator consolidator = consolidated(FakeProfiler());
    EXPECT_EQ(consolidator.cycles(), 0);
    EXPECT_EQ(consolidator.averageTime(), 0);
    EXPECT_EQ(consolidator.minTime(), 0);
    EXPECT_EQ(consolidator.maxTime(), 0);
    FakeProfiler used = profilerOf(2.0, 4.0);
    consolidator.consolidate(used);
    EXPECT_EQ(consolidator.cycles(), 2);
    EXPECT_EQ(consolidator.minTime(), 0);
    EXPECT_EQ(consolidator.maxTime(), 4);
}

TEST(ProfConsolidator, NegativeTimesLeaveTheMaximum)
{
    const ProfConsolidator consolidator = consolidated(profilerOf(-2.0), profilerOf(-4.0));
    EXPECT_EQ(consolidator.totalTime(), -6);
    EXPECT_EQ(consolidator.averageTime(), -3);
    EXPECT_EQ(consolidator.minTime(), -4);
    EXPECT_EQ(consolidator.maxTime(), 0);
}

TEST(ProfConsolidator, AMaximumBelowZeroDoesNotBecomeTheMaximum)
{
    FixedProfiler profiler;
    profiler._cycles = 1;
    profiler._minimum = -3;
    profiler._maximum = -2;
    const ProfConsolidator consolidator = consolidated(profiler);
    EXPECT_EQ(consolidator.minTime(), -3);
    EXPECT_EQ(consolidator.maxTime(), 0);
}

TEST(ProfConsolidator, TheMinimumBeginsAtTheLargestNumber)
{
    FixedProfiler profiler;
    profiler._cycles = 1;
    profiler._minimum = INFINITE;
    profiler._maximum = INFINITE;
    ProfConsolidator consolidator = consolidated(profiler);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(consolidator.minTime()), 0x7fefffffffffffffU);
    EXPECT_EQ(consolidator.maxTime(), INFINITE);
}

TEST(ProfConsolidator, WhatIsNotANumberIsNeitherLeastNorMost)
{
    FixedProfiler profiler;
    profiler._cycles = 1;
    profiler._total = NOT_A_NUMBER;
    profiler._minimum = NOT_A_NUMBER;
    profiler._maximum = NOT_A_NUMBER;
    const ProfConsolidator consolidator = consolidated(profilerOf(1.0, 2.0), profiler);
    EXPECT_EQ(consolidator.cycles(), 3);
    EXPECT_EQ(consolidator.minTime(), 1);
    EXPECT_EQ(consolidator.maxTime(), 2);
    EXPECT_TRUE(std::isnan(consolidator.totalTime()));
}

TEST(ProfConsolidator, WithoutCyclesAverageAndMinimumAreZeroWhateverTheFields)
{
    FixedProfiler profiler;
    profiler._total = 5;
    profiler._minimum = 1;
    profiler._maximum = 3;
    const ProfConsolidator consolidator = consolidated(profiler);
    EXPECT_EQ(consolidator.cycles(), 0);
    EXPECT_EQ(consolidator.totalTime(), 5);
    EXPECT_EQ(consolidator.averageTime(), 0);
    EXPECT_EQ(consolidator.minTime(), 0);
    EXPECT_EQ(consolidator.maxTime(), 3);
}

TEST(ProfConsolidator, CopiesHaveTheFiguresAndGoOnAlone)
{
    FakeProfiler more = profilerOf(9.0);
    ProfConsolidator original = consolidated(profilerOf(1.0, 3.0));
    const ProfConsolidator copy(original);
    ProfConsolidator assigned = consolidated(profilerOf(0.25), profilerOf(50.0));
    assigned = original;
    original.consolidate(more);
    EXPECT_EQ(original.cycles(), 3);
    for (const ProfConsolidator* const other :
         {&copy, static_cast<const ProfConsolidator*>(&assigned)})
    {
        EXPECT_EQ(other->cycles(), 2);
        EXPECT_EQ(other->totalTime(), 4);
        EXPECT_EQ(other->averageTime(), 2);
        EXPECT_EQ(other->minTime(), 1);
        EXPECT_EQ(other->maxTime(), 3);
    }
}

// It is never deleted through its base.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Leaves unused profilers out.
class UsedOnlyConsolidator final : public ProfConsolidator
{
public:
    void consolidate(ProfilerBase& profiler) override
    {
        if (profiler.cycles() > 0) ProfConsolidator::consolidate(profiler);
    }
};

#pragma GCC diagnostic pop

TEST(ProfConsolidator, ConsolidationCanBeOverridden)
{
    UsedOnlyConsolidator derived;
    ProfConsolidator& consolidator = derived;
    FakeProfiler unused;
    FakeProfiler used = profilerOf(2.0);
    consolidator.consolidate(unused);
    consolidator.consolidate(used);
    EXPECT_EQ(consolidator.cycles(), 1);
    EXPECT_EQ(consolidator.minTime(), 2);
}

TEST(ProfConsolidator, TakesBothKindsOfProfiler)
{
    Zu::OsCpuInfo::initialize();
    Zu::Profiler<Zu::HwIntervalTimer> fine;
    Zu::Profiler<Zu::TodIntervalTimer> coarse;
    for (int i = 0; i < 2; ++i)
    {
        const Zu::ProfilerCycle cycle(fine);
        const Zu::ProfilerSpan span(fine);
        awaitTick<Zu::HwIntervalTimer>();
    }
    {
        const Zu::ProfilerCycle cycle(coarse);
        const Zu::ProfilerSpan span(coarse);
        awaitTick<Zu::TodIntervalTimer>();
    }
    ProfConsolidator consolidator;
    consolidator.consolidate(fine);
    consolidator.consolidate(coarse);
    EXPECT_EQ(consolidator.cycles(), 3);
    EXPECT_EQ(consolidator.totalTime(), fine.totalTime() + coarse.totalTime());
    EXPECT_EQ(consolidator.minTime(), std::min(fine.minTime(), coarse.minTime()));
    EXPECT_EQ(consolidator.maxTime(), std::max(fine.maxTime(), coarse.maxTime()));
    EXPECT_GT(consolidator.minTime(), 0);
}

// The report on a stream of this precision.
std::string reportOf(const ProfConsolidator& consolidator, int precision = 6)
{
    std::ostringstream os;
    os << std::setprecision(precision) << consolidator;
    return os.str();
}

TEST(ProfConsolidator, TheReportHasARowForEachFigure)
{
    EXPECT_EQ(reportOf(consolidated(profilerOf(1.0, 3.0), profilerOf(4.0))),
              "Profiler Consolidator:\n"
              "        Nb of cycles:   3\n"
              "        Total time:     8.000000\n"
              "        Average time:   2.666667\n"
              "        Minimum time:   1.000000\n"
              "        Maximum time:   4.000000\n"
              "\n");
}

TEST(ProfConsolidator, TheReportBeforeAnyProfilerHasZeros)
{
    EXPECT_EQ(reportOf(ProfConsolidator()), "Profiler Consolidator:\n"
                                            "        Nb of cycles:   0\n"
                                            "        Total time:     0.000000\n"
                                            "        Average time:   0.000000\n"
                                            "        Minimum time:   0.000000\n"
                                            "        Maximum time:   0.000000\n"
                                            "\n");
}

TEST(ProfConsolidator, TheReportHasThePrecisionOfTheStream)
{
    const ProfConsolidator consolidator = consolidated(profilerOf(1.0, 3.0), profilerOf(4.0));
    EXPECT_EQ(reportOf(consolidator, 0), "Profiler Consolidator:\n"
                                         "        Nb of cycles:   3\n"
                                         "        Total time:     8\n"
                                         "        Average time:   3\n"
                                         "        Minimum time:   1\n"
                                         "        Maximum time:   4\n"
                                         "\n");
    EXPECT_EQ(reportOf(consolidator, 12), "Profiler Consolidator:\n"
                                          "        Nb of cycles:   3\n"
                                          "        Total time:     8.000000000000\n"
                                          "        Average time:   2.666666666667\n"
                                          "        Minimum time:   1.000000000000\n"
                                          "        Maximum time:   4.000000000000\n"
                                          "\n");
}

TEST(ProfConsolidator, TheReportIsLeftJustifiedAndFixedWhateverTheStreamWas)
{
    const ProfConsolidator consolidator = consolidated(profilerOf(1.0, 3.0));
    const std::string expected = reportOf(consolidator);
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
            os << consolidator;
            EXPECT_EQ(os.str(), expected);
        }
    }
}

TEST(ProfConsolidator, TheReportPutsFlagsWidthAndFillBack)
{
    const ProfConsolidator consolidator = consolidated(profilerOf(1.0, 3.0));
    std::ostringstream os;
    os << std::right << std::scientific << std::hex << std::boolalpha << std::setprecision(2)
       << std::setfill('*') << std::setw(12);
    const auto flags = os.flags();
    EXPECT_EQ(&(os << consolidator), &os);
    EXPECT_EQ(os.flags(), flags);
    EXPECT_EQ(os.width(), 12);
    EXPECT_EQ(os.fill(), '*');
    EXPECT_EQ(os.precision(), 2);
    os << 2.5;
    EXPECT_EQ(os.str(), reportOf(consolidator, 2) + "****2.50e+00");
}

TEST(ProfConsolidator, TheReportFlushesEachRow)
{
    FlushRecorder recorder;
    std::ostream os(&recorder);
    os << consolidated(profilerOf(1.0));
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
    EXPECT_EQ(rows, 5);
}

TEST(ProfConsolidator, TheReportShowsNumbersOfAllSizes)
{
    FixedProfiler profiler;
    profiler._cycles = 1;
    profiler._total = 1e300;
    profiler._minimum = -LARGEST;
    profiler._maximum = INFINITE;
    EXPECT_EQ(reportOf(consolidated(profiler), 2),
              "Profiler Consolidator:\n"
              "        Nb of cycles:   1\n"
              "        Total time:     " +
                  digitsOf(1e300) + ".00\n        Average time:   " + digitsOf(1e300) +
                  ".00\n        Minimum time:   -" + digitsOf(LARGEST) +
                  ".00\n        Maximum time:   inf\n"
                  "\n");
    EXPECT_EQ(reportOf(consolidated(profilerOf(-2.0, -1.0)), 1), "Profiler Consolidator:\n"
                                                                 "        Nb of cycles:   2\n"
                                                                 "        Total time:     -3.0\n"
                                                                 "        Average time:   -1.5\n"
                                                                 "        Minimum time:   -2.0\n"
                                                                 "        Maximum time:   0.0\n"
                                                                 "\n");
}

TEST(ProfConsolidator, TheReportShowsANaNWithoutASign)
{
    for (const double sign : {1.0, -1.0})
    {
        FixedProfiler profiler;
        profiler._cycles = 1;
        profiler._total = std::copysign(NOT_A_NUMBER, sign);
        EXPECT_EQ(reportOf(consolidated(profiler), 1), "Profiler Consolidator:\n"
                                                       "        Nb of cycles:   1\n"
                                                       "        Total time:     nan\n"
                                                       "        Average time:   nan\n"
                                                       "        Minimum time:   0.0\n"
                                                       "        Maximum time:   0.0\n"
                                                       "\n");
    }
}

} // namespace

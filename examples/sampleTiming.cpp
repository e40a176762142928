#include "sampleTiming.h"

#include "base/base.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <memory>
#include <numeric>
#include <vector>

ZU_TRACE_LEVEL(Merge);

namespace sample
{

namespace
{

constexpr int CYCLES = 100;
constexpr int BEATS = 10;
constexpr double INTERVAL = 0.01;

using Numbers = std::vector<int>;

// Sorts by merging halves; small parts are not traced.
Numbers sorted(const Numbers& numbers)
{
    if (numbers.size() < 2) return numbers;
    ZU_TRACE_SCOPE(Merge, "sort");
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    const Numbers left = sorted(Numbers(numbers.begin(), middle));
    const Numbers right = sorted(Numbers(middle, numbers.end()));
    Numbers result;
    std::merge(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(result));
    ZU_TRACE(Merge, left.size() << " and " << right.size() << " numbers, from " << result.front()
                                << " to " << result.back());
    return result;
}

double milliseconds(double seconds)
{
    return seconds * 1000.0;
}

} // namespace

void showTrace()
{
    Zu::Trace::setOptions("show=Merge");
    sorted({4, 2, 3, 1});
    Zu::Trace::setOptions("hide=Merge");
}

void showProfile()
{
    Numbers numbers(1000);
    std::iota(numbers.rbegin(), numbers.rend(), 0);
    Zu::Profiler<Zu::HwIntervalTimer> profiler("sorting 1000 numbers");
    for (int i = 0; i < CYCLES; ++i)
    {
        const Zu::ProfilerCycle cycle(profiler);
        const Zu::ProfilerSpan span(profiler);
        sorted(numbers);
    }
    std::cout << profiler;
}

void showBeat()
{
    const std::unique_ptr<Zu::PeriodicTimer> timer(Zu::PeriodicTimer::create(INTERVAL));
    const std::ios_base::fmtflags flags = std::cout.flags();
    const std::streamsize precision = std::cout.precision();
    std::cout << std::fixed << std::setprecision(3);
    double worst = 0;
    timer->start();
    const double start = timer->getCurrentTime();
    for (int i = 0; i < BEATS; ++i)
    {
        const std::uint32_t count = timer->wait();
        const double time = timer->getCurrentTime() - start;
        const double late = time - count * timer->getInterval();
        worst = std::max(worst, std::abs(late));
        std::cout << "  beat " << std::setw(2) << count << " after " << std::setw(8)
                  << milliseconds(time) << " ms, " << std::showpos << milliseconds(late)
                  << std::noshowpos << " ms" << std::endl;
    }
    timer->stop();
    std::cout << "  " << BEATS << " beats of " << milliseconds(timer->getInterval())
              << " ms, the worst one off by " << milliseconds(worst) << " ms" << std::endl;
    std::cout.flags(flags);
    std::cout.precision(precision);
}

} // namespace sample

// Tables of how late sleeps and beats of a millisecond come, compared with the platform's own
// means. The candidates take turns, so that the machine's noise affects all of them alike.

#include "base/inInitGuard.h"
#include "base/periodicTimer.h"
#include "base/sleeper.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/timerfd.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int ROUNDS = 10;
constexpr int SLEEPS = 100;
constexpr int BEATS = 200;
constexpr double INTERVAL = 0.001;

class Sample
{
public:
    void add(double microseconds)
    {
        _values.push_back(microseconds);
    }

    void print(const char* name)
    {
        std::sort(_values.begin(), _values.end());
        std::printf("  %-34s %8.1f %8.1f\n", name, at(0.5), at(0.99));
    }

private:
    double at(double share) const
    {
        return _values[static_cast<std::size_t>(share * static_cast<double>(_values.size() - 1))];
    }

    std::vector<double> _values;
};

double microsecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

template <class Sleep> void measureSleeps(Sample& sample, const Sleep& sleep)
{
    for (int i = 0; i < SLEEPS; ++i)
    {
        const auto start = Clock::now();
        sleep();
        sample.add(microsecondsSince(start) - INTERVAL * 1e6);
    }
}

// The time between two consecutive beats, minus the interval.
template <class Wait> void measureBeats(Sample& sample, const Wait& wait)
{
    wait();
    auto last = Clock::now();
    for (int i = 0; i < BEATS; ++i)
    {
        wait();
        const auto now = Clock::now();
        sample.add(std::abs(std::chrono::duration<double, std::micro>(now - last).count() -
                            INTERVAL * 1e6));
        last = now;
    }
}

void measureDescriptor(Sample& sample)
{
    const int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    const timespec interval{0, static_cast<long>(INTERVAL * 1e9)};
    const itimerspec times{interval, interval};
    timerfd_settime(timer, 0, &times, nullptr);
    measureBeats(sample,
                 [timer]
                 {
                     std::uint64_t beats;
                     if (read(timer, &beats, sizeof beats) != sizeof beats) std::abort();
                 });
    close(timer);
}

void measureTimer(Sample& sample)
{
    const std::unique_ptr<Zu::PeriodicTimer> timer(Zu::PeriodicTimer::create(INTERVAL));
    timer->start();
    measureBeats(sample, [&timer] { timer->wait(); });
}

} // namespace

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    Zu::Sleeper& sleeper = Zu::Sleeper::getInstance();
    Sample ours;
    Sample standard;
    Sample timer;
    Sample descriptor;
    for (int round = 0; round < ROUNDS; ++round)
    {
        measureSleeps(ours, [&sleeper] { sleeper.sleep(INTERVAL); });
        measureSleeps(standard,
                      [] { std::this_thread::sleep_for(std::chrono::duration<double>(INTERVAL)); });
        measureTimer(timer);
        measureDescriptor(descriptor);
    }
    std::printf("overshoot of a sleep of 1 ms, us      median      p99\n");
    ours.print("Sleeper::sleep");
    standard.print("std::this_thread::sleep_for");
    std::printf("jitter of a beat of 1 ms, us          median      p99\n");
    timer.print("PeriodicTimer::wait");
    descriptor.print("a bare loop on a timerfd");
    return 0;
}

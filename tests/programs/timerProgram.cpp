// Sleeps and beats between the start and the end of the packages, or around them, in the order of
// its words.

#include "base/base.h"
#include "base/inSingletonEx.h"
#include "base/periodicTimer.h"
#include "base/sleeper.h"

#include "support/platform.h"

#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <latch>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Zu::HwCounter;
using Zu::PeriodicTimer;
using Zu::Sleeper;
using Timer = std::unique_ptr<PeriodicTimer>;

constexpr double INTERVAL = 0.005;

template <class Value> void say(const char* what, const Value& value)
{
    std::cout << what << ' ' << value << std::endl;
}

// Calls a function that needs the packages, and prints the outcome.
void attempt(const char* what, const std::function<void()>& call)
{
    try
    {
        call();
        say(what, "returned");
    }
    catch (const Zu::InSingletonEx::ExNotInitialized& exception)
    {
        say(what, exception.getReason());
    }
}

Sleeper& sleeper()
{
    return Sleeper::getInstance();
}

double now()
{
    return sleeper().getTime();
}

// How early a timer may end: that of Windows counts in ticks of its resolution, and may be set at
// the end of a tick.
double earliness()
{
    return support::onWindows ? sleeper().getResolution() : 0;
}

Timer makeTimer(double interval)
{
    return Timer(PeriodicTimer::create(interval));
}

void runThreads(int number, const std::function<void(int)>& work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < number; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

// Whether a sleep returns true and lasts at least this long.
bool sleepsFor(Sleeper& sleeper, double seconds, double least)
{
    const double start = sleeper.getTime();
    return sleeper.sleep(seconds) && sleeper.getTime() - start >= least - earliness();
}

bool sleepsFor(double seconds)
{
    return sleepsFor(sleeper(), seconds, seconds);
}

void sleepShortly()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    say("0.0005 s", sleeper().sleep(0.0005));
    say("just below 0.001 s", sleeper().sleep(0.0009999999999999998));
    say("0 s", sleeper().sleep(0));
    say("-0.0005 s", sleeper().sleep(-0.0005));
    say("-1 s", sleeper().sleep(-1));
    say("2^32 ms", sleeper().sleep(4294967.296));
    say("1e300 s", sleeper().sleep(1e300));
    say("no number", sleeper().sleep(nan));
    say("without end", sleeper().sleep(infinite));
}

void sleepLonger()
{
    say("0.001 s", sleepsFor(0.001));
    say("0.0019 s", sleepsFor(sleeper(), 0.0019, 0.001));
    say("0.002 s", sleepsFor(0.002));
    say("0.0209 s", sleepsFor(sleeper(), 0.0209, 0.020));
    say("0.05 s", sleepsFor(0.05));
    say("2^32 + 2 ms", sleepsFor(sleeper(), 4294967.298, 0.002));
    bool all = true;
    for (int i = 0; i < 10; ++i) all = sleepsFor(0.002) && all;
    say("one after another", all);
    // More than a second in all, so one of them ends in another second than it begins.
    bool across = true;
    for (int i = 0; i < 21; ++i) across = sleepsFor(0.05) && across;
    say("across a second", across);
    // Each begins where the one before ended, at a tick, so only the first one is early. The ticks
    // need not agree exactly with the clock.
    const double start = now();
    bool slept = true;
    for (int i = 0; i < 20; ++i) slept = sleeper().sleep(0.001) && slept;
    say("twenty of 0.001 s", slept && now() - start >= 0.020 - 2 * earliness());
}

// Each sleeps for a different time, so one that is woken together with another ends too early.
void sleepTogether()
{
    std::atomic<int> good{0};
    std::latch ready(10);
    runThreads(10,
               [&](int thread)
               {
                   Sleeper& own = sleeper();
                   ready.arrive_and_wait();
                   const double seconds = 0.005 * (thread + 1);
                   if (sleepsFor(own, seconds, seconds)) ++good;
                   if (sleepsFor(own, 0.01, 0.01)) ++good;
               });
    say("sleeps", good);
}

void sleepByReference()
{
    Sleeper& taken = sleeper();
    const double early = earliness();
    bool slept = false;
    double time = 0;
    const double before = taken.getTime();
    std::thread(
        [&]
        {
            const double start = taken.getTime();
            slept = taken.sleep(0.01);
            time = taken.getTime();
            slept = slept && time - start >= 0.01 - early && !taken.sleep(0.0005);
        })
        .join();
    say("by reference", slept);
    say("one time base", before <= time && time <= taken.getTime());

    std::atomic<int> good{0};
    runThreads(10,
               [&](int thread)
               {
                   const double seconds = 0.002 * (thread + 1);
                   const double start = taken.getTime();
                   if (taken.sleep(seconds) && taken.getTime() - start >= seconds - early) ++good;
               });
    say("by reference together", good);
}

void sleepInManyThreads()
{
    std::atomic<int> good{0};
    for (int i = 0; i < 5; ++i)
        runThreads(10, [&](int) { good += sleepsFor(0.001) && &sleeper() == &sleeper(); });
    say("threads", good);
    say("and then here", sleepsFor(0.001));
}

void shareInstance()
{
    Sleeper* const here = &sleeper();
    std::atomic<int> same{0};
    runThreads(4, [&](int) { same += &sleeper() == here; });
    say("same in threads", same);
    say("same here", &sleeper() == here);
}

void readTime()
{
    bool between = true;
    for (int i = 0; i < 1000; ++i)
    {
        const double before = HwCounter::seconds();
        const double time = now();
        between = between && before <= time && time <= HwCounter::seconds();
    }
    say("the counter's seconds", between);
    bool forward = true;
    const double start = now();
    double last = start;
    for (int i = 0; i < 100000 || last == start; ++i)
    {
        const double time = now();
        forward = forward && time >= last;
        last = time;
    }
    say("never back", forward);
    std::atomic<int> good{0};
    runThreads(4, [&](int) { good += now() >= last; });
    say("in threads", good);
}

void readResolution()
{
    say("positive", sleeper().getResolution() > 0);
    say("that of timers", sleeper().getResolution() == PeriodicTimer::getResolution());
}

// The moments between which a timer was started.
struct Start
{
    double _earliest;
    double _latest;
};

template <class Act> Start startBy(Act act)
{
    const double earliest = now();
    act();
    return {earliest, now()};
}

double beats(double seconds, double interval)
{
    return std::floor(seconds / interval + 0.5);
}

// Whether `count` returns exactly the count that corresponds to the time since the start.
template <class Count> bool fits(const Start& start, double interval, Count count)
{
    const double asked = now();
    const double counted = count();
    const double answered = now();
    return beats(asked - start._latest, interval) <= counted &&
           counted <= beats(answered - start._earliest, interval);
}

// Whether this many waits take at least as many intervals, a full first one included.
bool waitsFor(PeriodicTimer& timer, int waits, const Start& start)
{
    for (int i = 0; i < waits; ++i) timer.wait();
    return now() - start._earliest >= waits * timer.getInterval() - earliness();
}

void makeStoppedTimer()
{
    for (const double interval : {INTERVAL, 0.01, 0.0105})
    {
        const Timer timer = makeTimer(interval);
        say("interval", timer->getInterval());
        say("count", timer->getCurrentCount());
        say("stopped", timer->stop());
        say("count", timer->getCurrentCount());
    }
}

void startTwice()
{
    const Timer timer = makeTimer(INTERVAL);
    say("start", timer->start());
    say("start", timer->start());
    say("stop", timer->stop());
    say("stop", timer->stop());
    say("count", timer->getCurrentCount());
    say("start", timer->start());
    timer->wait();
    say("stop", timer->stop());
    say("count", timer->getCurrentCount());
}

void waitForBeats()
{
    const Timer timer = makeTimer(INTERVAL);
    const Start start = startBy([&] { timer->start(); });
    bool fitting = true;
    bool rising = true;
    bool whole = true;
    std::uint32_t last = 0;
    for (int waits = 1; waits <= 20; ++waits)
    {
        std::uint32_t count = 0;
        fitting = fits(start, INTERVAL, [&] { return count = timer->wait(); }) && fitting;
        rising = rising && count >= last;
        last = count;
        whole = whole && now() - start._earliest >= waits * INTERVAL - earliness();
    }
    say("counts fit", fitting);
    say("counts never fall", rising);
    say("whole intervals", whole);
    say("count fits", fits(start, INTERVAL, [&] { return timer->getCurrentCount(); }));
    say("count goes on", timer->getCurrentCount() >= last);
}

// Queries beats that nobody has waited for.
void missBeats()
{
    const Timer timer = makeTimer(INTERVAL);
    const Start start = startBy([&] { timer->start(); });
    while (now() - start._latest < 8 * INTERVAL) sleeper().sleep(INTERVAL);
    say("counts without a wait", timer->getCurrentCount() >= 8);
    say("counts what it missed", timer->wait() >= 8);
    // A wait that ended with an earlier beat would take no time, now and each time.
    bool waited = false;
    timer->setInterval(4 * INTERVAL);
    for (int i = 0; i < 50 && !waited; ++i)
    {
        timer->wait();
        sleeper().sleep(5 * INTERVAL);
        const double asked = now();
        timer->wait();
        waited = now() - asked >= INTERVAL;
    }
    say("waits for the next", waited);
}

void changeIntervalWhileRunning()
{
    const Timer timer = makeTimer(INTERVAL);
    const Start start = startBy([&] { timer->start(); });
    while (timer->wait() < 6) continue;

    Start again = startBy([&] { say("same interval", timer->setInterval(INTERVAL)); });
    say("new start", fits(again, INTERVAL, [&] { return timer->getCurrentCount(); }));
    say("still running", !timer->start());
    timer->wait();

    again = startBy([&] { say("longer", timer->setInterval(4 * INTERVAL)); });
    say("interval", timer->getInterval());
    say("beats", waitsFor(*timer, 3, again));
    say("counts", fits(again, 4 * INTERVAL, [&] { return timer->getCurrentCount(); }));

    say("very long", timer->setInterval(1000));
    again = startBy([&] { say("shorter", timer->setInterval(2 * INTERVAL)); });
    say("beats", waitsFor(*timer, 3, again));
    say("counts", fits(again, 2 * INTERVAL, [&] { return timer->getCurrentCount(); }));
    say("later than at first", again._latest > start._latest);
    say("stop", timer->stop());
}

void changeIntervalWhileStopped()
{
    const Timer timer = makeTimer(INTERVAL);
    say("longer", timer->setInterval(4 * INTERVAL));
    say("interval", timer->getInterval());
    say("stop", timer->stop());
    say("count", timer->getCurrentCount());
    const Start start = startBy([&] { say("start", timer->start()); });
    say("beats", waitsFor(*timer, 3, start));
    say("counts", fits(start, 4 * INTERVAL, [&] { return timer->getCurrentCount(); }));
    say("stop", timer->stop());
}

void changeIntervalUnchecked()
{
    const Timer timer = makeTimer(INTERVAL);
    for (const double interval : {0.6, 0.0005, -1.0})
    {
        say("interval", timer->setInterval(interval));
        say("start", timer->start());
        say("stop", timer->stop());
    }
    timer->setInterval(INTERVAL);
    const Start start = startBy([&] { timer->start(); });
    say("beats", waitsFor(*timer, 2, start));
}

void readTimeOfTimer()
{
    const Timer timer = makeTimer(INTERVAL);
    const double before = now();
    const double time = timer->getCurrentTime();
    say("the sleeper's", before <= time && time <= now());
    say("resolution", PeriodicTimer::getResolution() > 0);
}

void endWhileRunning()
{
    for (int i = 0; i < 20; ++i)
    {
        const Timer timer = makeTimer(INTERVAL);
        timer->start();
        if (i % 2 == 0) timer->wait();
    }
    const Timer timer = makeTimer(INTERVAL);
    const Start start = startBy([&] { timer->start(); });
    say("beats", waitsFor(*timer, 2, start));
}

void assignTimers()
{
    const Timer timer = makeTimer(INTERVAL);
    Timer other = makeTimer(2 * INTERVAL);
    timer->start();
    Start start = startBy([&] { *timer = *other; });
    say("interval", timer->getInterval());
    say("still running", !timer->start());
    say("the other stopped", !other->stop());
    // Each has its own beat.
    other->start();
    other.reset();
    say("beats", waitsFor(*timer, 3, start));

    other = makeTimer(3 * INTERVAL);
    timer->stop();
    other->start();
    *timer = *other;
    say("interval", timer->getInterval());
    say("still stopped", !timer->stop());
    start = startBy([&] { timer->start(); });
    say("beats", waitsFor(*timer, 2, start));
    say("the other running", !other->start());
}

void beatInAnotherThread()
{
    const Timer timer = makeTimer(INTERVAL);
    const Start start = startBy([&] { timer->start(); });
    bool good = false;
    std::thread([&] { good = waitsFor(*timer, 3, start); }).join();
    say("beats there", good);
    say("and here", waitsFor(*timer, 4, start));
}

void beatTogether()
{
    // Made one by one: each is tried out, and ten at the same time may not get a good beat in time.
    std::vector<Timer> timers;
    for (int i = 0; i < 10; ++i) timers.push_back(makeTimer(INTERVAL + 0.001 * i));
    std::atomic<int> good{0};
    std::latch ready(10);
    runThreads(10,
               [&](int thread)
               {
                   PeriodicTimer& timer = *timers[static_cast<std::size_t>(thread)];
                   ready.arrive_and_wait();
                   const Start start = startBy([&] { timer.start(); });
                   good += waitsFor(timer, 5, start);
               });
    say("timers", good);
}

void tryOutside(const char* when)
{
    std::cout << when << std::endl;
    attempt("sleeper", [] { sleeper(); });
    attempt("timer", [] { makeTimer(INTERVAL); });
    say("resolution", PeriodicTimer::getResolution() > 0);
}

void tryAroundPackages(int count, char** words)
{
    tryOutside("before");
    Timer stopped;
    Timer running;
    {
        const Zu::InInitGuard guard(count, words);
        std::cout << "between" << std::endl;
        attempt("sleeper", [] { sleeper(); });
        stopped = makeTimer(INTERVAL);
        running = makeTimer(INTERVAL);
        running->start();
    }
    tryOutside("after");
    say("count", stopped->getCurrentCount());
    attempt("time", [&] { stopped->getCurrentTime(); });
    attempt("start", [&] { stopped->start(); });
    attempt("running count", [&] { running->getCurrentCount(); });
}

// Makes a timer with an impossible interval.
void makeBadTimer(const std::string& interval)
{
    makeTimer(std::strtod(interval.c_str(), nullptr));
}

const std::map<std::string, std::function<void()>> actions{
    {"sleepShortly", sleepShortly},
    {"sleepLonger", sleepLonger},
    {"sleepTogether", sleepTogether},
    {"sleepByReference", sleepByReference},
    {"sleepInManyThreads", sleepInManyThreads},
    {"shareInstance", shareInstance},
    {"readTime", readTime},
    {"readResolution", readResolution},
    {"makeStoppedTimer", makeStoppedTimer},
    {"startTwice", startTwice},
    {"waitForBeats", waitForBeats},
    {"missBeats", missBeats},
    {"changeIntervalWhileRunning", changeIntervalWhileRunning},
    {"changeIntervalWhileStopped", changeIntervalWhileStopped},
    {"changeIntervalUnchecked", changeIntervalUnchecked},
    {"readTimeOfTimer", readTimeOfTimer},
    {"endWhileRunning", endWhileRunning},
    {"assignTimers", assignTimers},
    {"beatInAnotherThread", beatInAnotherThread},
    {"beatTogether", beatTogether},
};

} // namespace

int main(int count, char** words)
{
    const std::string action = words[1];
    if (action == "aroundPackages")
    {
        tryAroundPackages(count, words);
    }
    else
    {
        const std::string interval = count > 2 ? words[2] : "";
        const Zu::InInitGuard guard(count, words);
        if (action == "makeBadTimer")
            makeBadTimer(interval);
        else
            actions.at(action)();
    }
    std::cout << "end" << std::endl;
}

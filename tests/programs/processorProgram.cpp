// Queries the processor and the hardware counter in the order of its words, in a process in which
// nothing has done so before.

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <iostream>
#include <latch>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace Zu;

void showFeatures()
{
    std::cout << "MMX " << OsCpuInfo::hasMMX() << ", SSE " << OsCpuInfo::hasSSE() << std::endl;
}

void showType()
{
    OsCpuInfo::Type type = OsCpuInfo::MIPS;
    OsCpuInfo::getDetailedType(&type, nullptr, nullptr, nullptr);
    std::cout << "type " << type << std::endl;
}

// The value is computed before anything is written: a query that fails writes nothing.
void show(const char* what, bool value)
{
    std::cout << what << ' ' << value << std::endl;
}

// Whether the counter's seconds agree with its ticks.
bool secondsFollowTicks()
{
    const double before = HwCounter::seconds();
    const double ticks = static_cast<double>(HwCounter::timeStamp()) * HwCounter::resolution();
    const double after = HwCounter::seconds();
    return before <= ticks && ticks <= after;
}

bool hasTheStatedRate()
{
    const std::unique_ptr<HwCounterEng> stated(HwCounterEng::create());
    return HwCounter::getRateNumerator() == stated->getRateNumerator() &&
           HwCounter::getRateDenominator() == stated->getRateDenominator() &&
           HwCounter::resolution() == stated->resolution();
}

// How many of eight threads, which make the first read at the same time, get ticks of the same
// engine.
void readTogether()
{
    constexpr int THREADS = 8;
    std::latch ready(THREADS);
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i)
        threads.emplace_back(
            [&]
            {
                ready.arrive_and_wait();
                const std::uint64_t first = HwCounter::timeStamp();
                good += first <= HwCounter::timeStamp() && HwCounter::getRateNumerator() > 0;
            });
    for (std::thread& thread : threads) thread.join();
    std::cout << "one engine " << good << std::endl;
}

void showName()
{
    const std::string name = OsCpuInfo::getTypeName();
    std::cout << "name " << name << std::endl;
}

const std::map<std::string, std::function<void()>> actions{
    {"initialize", [] { OsCpuInfo::initialize(); }},
    {"finalize", [] { OsCpuInfo::finalize(); }},
    {"features", showFeatures},
    {"type", showType},
    {"name", showName},
    {"frequency", [] { show("frequency", OsCpuInfo::getHwCounterFrequency() > 0); }},
    {"init", [] { HwCounter::init(); }},
    {"timeStamp", [] { show("timeStamp", HwCounter::timeStamp() > 0); }},
    {"seconds", [] { show("seconds", secondsFollowTicks()); }},
    {"interval", [] { show("interval", HwCounter::seconds(7, 7) == 0); }},
    {"dump", [] { HwCounter::dump(std::cout); }},
    {"create", [] { show("create", HwCounterEng::create() != nullptr); }},
    {"early rate", [] { show("early rate", hasTheStatedRate()); }},
    {"together", readTogether},
};

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) actions.at(argv[i])();
    std::cout << "end" << std::endl;
}

// Asks for the processor and the hardware counter in the order of its words, in a process in which
// nothing has done so before.

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"

#include <functional>
#include <iostream>
#include <map>
#include <string>

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

// The value is known before anything is written: what has no value leaves no trace.
void show(const char* what, bool value)
{
    std::cout << what << ' ' << value << std::endl;
}

// Whether the counter's time lies where its ticks do.
bool secondsFollowTicks()
{
    const double before = HwCounter::seconds();
    const double ticks = static_cast<double>(HwCounter::timeStamp()) * HwCounter::resolution();
    const double after = HwCounter::seconds();
    return before <= ticks && ticks <= after;
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
};

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) actions.at(argv[i])();
    std::cout << "end" << std::endl;
}

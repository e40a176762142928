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

// Whether the counter's time lies where its ticks do.
void showSeconds()
{
    const double before = HwCounter::seconds();
    const double ticks = static_cast<double>(HwCounter::timeStamp()) * HwCounter::resolution();
    const double after = HwCounter::seconds();
    std::cout << "seconds " << (before <= ticks && ticks <= after) << std::endl;
}

const std::map<std::string, std::function<void()>> actions{
    {"initialize", [] { OsCpuInfo::initialize(); }},
    {"finalize", [] { OsCpuInfo::finalize(); }},
    {"features", showFeatures},
    {"type", showType},
    {"name", [] { std::cout << "name " << OsCpuInfo::getTypeName() << std::endl; }},
    {"frequency",
     [] { std::cout << "frequency " << (OsCpuInfo::getHwCounterFrequency() > 0) << std::endl; }},
    {"init", [] { HwCounter::init(); }},
    {"timeStamp", [] { std::cout << "timeStamp " << (HwCounter::timeStamp() > 0) << std::endl; }},
    {"seconds", showSeconds},
    {"interval", [] { std::cout << "interval " << HwCounter::seconds(7, 7) << std::endl; }},
    {"dump", [] { HwCounter::dump(std::cout); }},
};

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) actions.at(argv[i])();
    std::cout << "end" << std::endl;
}

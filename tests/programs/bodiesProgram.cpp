// What the bodies of the library's packages have prepared: nothing here makes it on demand.

#include "base/hwCounter.h"
#include "base/inInitGuard.h"
#include "base/osCpuInfo.h"

#include <iostream>

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    Zu::OsCpuInfo::Type type = Zu::OsCpuInfo::UNKNOWN;
    Zu::OsCpuInfo::getDetailedType(&type, nullptr, nullptr, nullptr);
    std::cout << "type " << type << std::endl;
    std::cout << "SSE " << Zu::OsCpuInfo::hasSSE() << std::endl;
    std::cout << "denominator " << Zu::HwCounter::getRateDenominator() << std::endl;
    return 0;
}

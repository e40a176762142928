// What the start of the packages does for everything that reads the time.

#ifndef ZU_FUZZ_HARDWARECOUNTER_H
#define ZU_FUZZ_HARDWARECOUNTER_H

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"

namespace fuzz
{

// Acts once per process, however often it is called.
inline void startHardwareCounter()
{
    static const bool isStarted = []
    {
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        return true;
    }();
    static_cast<void>(isStarted);
}

} // namespace fuzz

#endif

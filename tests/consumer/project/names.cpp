// Headers of the project and of the library have the same names: the library's headers find each
// other, and the project finds its own.

#include "base/lgEvent.h"
#include "base/profiler.h"
#include "base/timer.h"

#include <iostream>

void writeOwnTimer()
{
    Zu::Profiler<Zu::HwIntervalTimer> profiler;
    profiler.setName("of the library");
    std::cout << "own " << own::Timer()._ticks << " " << own::Event()._number << " beside "
              << profiler.getName() << std::endl;
}

// Whether the counts of the reference clock begin with the start of the packages.

#include "base/base.h"

#include <cstdint>
#include <iostream>

int main(int count, char** words)
{
    const Zu::InInitGuard guard(count, words);
    const std::uint64_t started = Zu::HwCounter::timeStamp();
    constexpr long long WHILE = 1000000;
    while (static_cast<long long>(Zu::HwCounter::timeStamp() - started) < WHILE) continue;
    const Zu::DtRefTime time = Zu::DtRefTimeFactory::getInstance().create();
    std::cout << "counts from the start: " << (time.getCount() >= WHILE) << "\n";
}

#include "base/base.h"
#include <iostream>

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    const auto start = Zu::HwCounter::timeStamp();
    Zu::InInitMgr::getInstance().dump(std::cout);
    std::cout << Zu::HwCounter::seconds(start, Zu::HwCounter::timeStamp()) << " s\n";
}

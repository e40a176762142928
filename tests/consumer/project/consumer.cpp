// Starts the installed library, logs through the kit, and prints its build.

#include "app/lgService.h"
#include "base/base.h"
#include "base/inSingleton.imp"

#include <iostream>

// See names.cpp and prefixed.cpp.
void writeOwnTimer();
void writePrefixed();

struct Store
{
    int _items = 3;
};

template class Zu::InSingleton<Store>;

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    const Zu::LgService service;
    Zu::InSingleton<Store>::create(new Store);
    std::cout << "items " << Zu::InSingleton<Store>::getInstance()._items << std::endl;
    Zu::InSingleton<Store>::destroy();
    writeOwnTimer();
    writePrefixed();
    Zu::DbgBuildInfoMgr::printBuildInfo(std::cout, false);
}

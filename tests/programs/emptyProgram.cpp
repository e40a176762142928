// A program without packages, aliases and variables of its own: the library alone, started and
// stopped.

#include "base/inContextAliasMgrBase.h"
#include "base/inInitGuard.h"
#include "base/inInitMgr.h"

#include <iostream>

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    Zu::InInitMgr::getInstance().dump(std::cout);
    for (const char* word : Zu::InContextAliasMgrBase::getUnboundArgs())
        std::cout << "word '" << word << "'" << std::endl;
    return 0;
}

// A program without its own packages, aliases and variables: the library alone, started and
// stopped.

#include "base/inContextAliasMgrBase.h"
#include "base/inInitGuard.h"
#include "base/inInitMgr.h"

#include <iostream>
#include <vector>

int main(int argc, char** argv)
{
    // Like a program that makes its words itself.
    std::vector<const char*> words(argv, argv + argc + 1);
    const char** theWords = words.data();
    const Zu::InInitGuard guard(argc, theWords);
    if (theWords) std::cout << "the words are still there" << std::endl;
    Zu::InInitMgr::getInstance().dump(std::cout);
    for (const char* word : Zu::InContextAliasMgrBase::getUnboundArgs())
        std::cout << "word '" << word << "'" << std::endl;
    return 0;
}

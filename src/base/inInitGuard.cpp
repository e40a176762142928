#include "base/inInitGuard.h"

#include "base/compiler.h"
#include "base/inEx.h"
#include "base/inInitMgr.h"

#include <exception>
#include <iostream>
#include <vector>

namespace Zu
{

namespace
{

void start(int& argc, const char* const*& argv)
{
    InInitMgr& manager = InInitMgr::getInstance();
    try
    {
        manager.initialize(argc, argv);
    }
    catch (const InEx& exception)
    {
        std::cout << "Initialisation failed: " << exception.getReason() << std::endl;
        manager.dump(std::cout) << std::endl;
        manager.finalize();
        throw;
    }
}

// How many exceptions were in flight when each of the existing guards was made, the latest last. A
// guard in the body of a package may exist while an older exception unwinds the stack below it,
// which does not concern that guard.
ZU_CONSTINIT_VECTOR std::vector<int> exceptionsAtStart ZU_CONSTINIT_VECTOR_PRIORITY;

void noteStart()
{
    exceptionsAtStart.push_back(std::uncaught_exceptions());
}

// Runs the work at the end of a guard. Exceptions pass through, but never while the stack unwinds
// through the guard.
template <class Work> void runAtEnd(Work work)
{
    const int atStart = exceptionsAtStart.back();
    exceptionsAtStart.pop_back();
    if (std::uncaught_exceptions() <= atStart)
    {
        work();
        return;
    }
    try
    {
        work();
    }
    catch (...)
    {
        // The exception in flight says more than one from the clean-up after it.
    }
}

// Starts with words of another type than the manager's, and takes them from the caller as the
// manager does.
template <class Words> void startWith(int& argc, Words& argv)
{
    const char* const* words = argv;
    try
    {
        start(argc, words);
    }
    catch (...)
    {
        if (!words) argv = nullptr;
        throw;
    }
    argv = nullptr;
}

} // namespace

InInitGuard::InInitGuard(int& argc, const char* const*& argv)
{
    start(argc, argv);
    noteStart();
}

InInitGuard::InInitGuard(int& argc, char**& argv)
{
    startWith(argc, argv);
    noteStart();
}

InInitGuard::InInitGuard(int& argc, const char**& argv)
{
    startWith(argc, argv);
    noteStart();
}

InInitGuard::~InInitGuard() noexcept(false)
{
    runAtEnd([] { InInitMgr::getInstance().finalize(); });
}

InReinitGuard::InReinitGuard()
{
    InInitMgr::getInstance().incReinitCount();
    noteStart();
}

InReinitGuard::~InReinitGuard() noexcept(false)
{
    runAtEnd([] { InInitMgr::getInstance().decReinitCount(); });
}

} // namespace Zu

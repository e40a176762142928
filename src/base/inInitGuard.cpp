#include "base/inInitGuard.h"

#include "base/inEx.h"
#include "base/inInitMgr.h"

#include <exception>
#include <iostream>

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

// Runs work in a destructor: its exceptions pass, but never into an unwinding stack.
template <class Work> void runInDestructor(Work work)
{
    if (std::uncaught_exceptions() == 0)
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
        // The exception under way tells more than one from cleaning up after it.
    }
}

} // namespace

InInitGuard::InInitGuard(int& argc, const char* const*& argv)
{
    start(argc, argv);
}

InInitGuard::InInitGuard(int& argc, char**& argv)
{
    const char* const* words = argv;
    argv = nullptr;
    start(argc, words);
}

InInitGuard::~InInitGuard() noexcept(false)
{
    runInDestructor([] { InInitMgr::getInstance().finalize(); });
}

InReinitGuard::InReinitGuard()
{
    InInitMgr::getInstance().incReinitCount();
}

InReinitGuard::~InReinitGuard() noexcept(false)
{
    runInDestructor([] { InInitMgr::getInstance().decReinitCount(); });
}

} // namespace Zu

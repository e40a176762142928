#include "app/crash.h"

#include <csignal>
#include <windows.h>

namespace
{

void (*theReport)(int) = nullptr;

int signalOf(DWORD exception)
{
    if (exception == EXCEPTION_INT_DIVIDE_BY_ZERO) return SIGFPE;
    return exception == EXCEPTION_ILLEGAL_INSTRUCTION ? SIGILL : SIGSEGV;
}

// Ends the process with the number of the exception as its exit value, as the system would after it
// has started a debugger.
LONG WINAPI filter(EXCEPTION_POINTERS* exception)
{
    if (theReport) theReport(signalOf(exception->ExceptionRecord->ExceptionCode));
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

void crashQuietly()
{
    SetUnhandledExceptionFilter(&filter);
}

void onCrash(void (*report)(int))
{
    theReport = report;
    crashQuietly();
    std::signal(SIGABRT, report);
}

int endOfChild(void (*)())
{
    return -1;
}

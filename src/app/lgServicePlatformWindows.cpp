#include "app/lgServicePlatform.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <windows.h>

namespace Zu::LgServicePlatform
{

namespace
{

std::atomic<void (*)()> fatalFunction{nullptr};

using AbortHandler = void (*)(int);

// What was there before.
LPTOP_LEVEL_EXCEPTION_FILTER filterBefore = nullptr;
AbortHandler abortBefore = SIG_DFL;

void callFatalFunction()
{
    void (*const function)() = fatalFunction.load();
    if (function) function();
}

LONG WINAPI filterFatal(EXCEPTION_POINTERS* exception)
{
    callFatalFunction();
    return filterBefore ? filterBefore(exception) : EXCEPTION_CONTINUE_SEARCH;
}

void handleAbort(int signal)
{
    callFatalFunction();
    std::signal(signal, abortBefore);
    std::raise(signal);
}

void installFatal()
{
    const LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(&filterFatal);
    if (filter != &filterFatal) filterBefore = filter;
    const AbortHandler handler = std::signal(SIGABRT, &handleAbort);
    if (handler != &handleAbort) abortBefore = handler == SIG_ERR ? SIG_DFL : handler;
}

// What was installed since stays, and may call what is here.
void removeFatal()
{
    const LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(filterBefore);
    if (filter != &filterFatal) SetUnhandledExceptionFilter(filter);
    const AbortHandler handler = std::signal(SIGABRT, abortBefore);
    if (handler != &handleAbort) std::signal(SIGABRT, handler);
}

} // namespace

bool prepareBarrier()
{
    return true;
}

bool barrier()
{
    FlushProcessWriteBuffers();
    return true;
}

bool nap()
{
    return false;
}

void lowerPriority()
{
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_LOWEST);
}

// The system's own limit lies beyond.
const std::size_t LONGEST_THREAD_NAME = 1000;

void nameThread(const std::string& name)
{
    // Not in each version of the system.
    using Function = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    static const auto function = reinterpret_cast<Function>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("kernelbase.dll"), "SetThreadDescription")));
    if (!function) return;
    const int size = static_cast<int>(name.size());
    std::wstring wide(name.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, name.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(std::max(length, 0)));
    function(GetCurrentThread(), wide.c_str());
}

void onFork(void (*)(), void (*)(), void (*)()) {}

void onQuickExit(void (*)()) {}

void onHangup(void (*)()) {}

void onFatalSignals(void (*function)())
{
    fatalFunction = function;
    if (function)
        installFatal();
    else
        removeFatal();
}

bool isEnding()
{
    using Question = BOOLEAN(WINAPI*)();
    const HMODULE library = GetModuleHandleA("ntdll.dll");
    if (!library) return false;
    void* const address =
        reinterpret_cast<void*>(GetProcAddress(library, "RtlDllShutdownInProgress"));
    const auto isInProgress = reinterpret_cast<Question>(address);
    return isInProgress && isInProgress();
}

struct SignalBlock::Saved
{
};

SignalBlock::SignalBlock() = default;

SignalBlock::~SignalBlock() = default;

} // namespace Zu::LgServicePlatform

#include "app/lgServicePlatform.h"

#include <system_error>
#include <windows.h>

namespace Zu::LgServicePlatform
{

namespace
{

DWORD slot = FLS_OUT_OF_INDEXES;
ThreadEnded threadEnded = nullptr;
BOOLEAN(WINAPI* shutdownInProgress)() = nullptr;

// Also called for the thread that ends the process, when all others have been stopped wherever they
// were, with whatever they had locked.
void WINAPI slotEnded(void* value)
{
    if (!value || (shutdownInProgress && shutdownInProgress())) return;
    FlsSetValue(slot, nullptr);
    threadEnded(value);
}

[[noreturn]] void raise(const char* call)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), call);
}

} // namespace

void setThreadEnded(ThreadEnded ended)
{
    threadEnded = ended;
    // Asked for now: at the end of the process nothing may be looked up.
    const FARPROC function =
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlDllShutdownInProgress");
    shutdownInProgress =
        reinterpret_cast<decltype(shutdownInProgress)>(reinterpret_cast<void*>(function));
    // Threads will call into this module at their end, so it stays loaded.
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const char*>(&slotEnded), &self);
    slot = FlsAlloc(&slotEnded);
    if (slot == FLS_OUT_OF_INDEXES) raise("FlsAlloc");
}

void* threadValue()
{
    // The call resets the last error, which a log statement must not do to its thread.
    const DWORD error = GetLastError();
    void* const value = FlsGetValue(slot);
    SetLastError(error);
    return value;
}

void setThreadValue(void* value)
{
    if (!FlsSetValue(slot, value)) raise("FlsSetValue");
}

bool prepareBarrier()
{
    return true;
}

void barrier()
{
    FlushProcessWriteBuffers();
}

bool nap()
{
    return false;
}

void onFork(void (*)(), void (*)(), void (*)()) {}

struct SignalBlock::Saved
{
};

SignalBlock::SignalBlock() = default;

SignalBlock::~SignalBlock() = default;

} // namespace Zu::LgServicePlatform

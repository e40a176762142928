#include "app/threadSlot.h"

#include <new>
#include <system_error>
#include <windows.h>

namespace Zu::ThreadSlot
{

namespace
{

DWORD slots[Count] = {FLS_OUT_OF_INDEXES, FLS_OUT_OF_INDEXES, FLS_OUT_OF_INDEXES};
ThreadEnded threadEnded[Count] = {};
BOOLEAN(WINAPI* shutdownInProgress)() = nullptr;

// Also called for the thread that ends the process, after all others were stopped wherever they
// were, possibly holding locks.
template <Slot slot> void WINAPI slotEnded(void* value)
{
    if (!value || (shutdownInProgress && shutdownInProgress())) return;
    FlsSetValue(slots[slot], nullptr);
    threadEnded[slot](value);
}

constexpr PFLS_CALLBACK_FUNCTION SLOT_ENDED[Count] = {&slotEnded<Queue>, &slotEnded<Traces>,
                                                      &slotEnded<Context>};

[[noreturn]] void raise(const char* call)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), call);
}

} // namespace

void setThreadEnded(Slot slot, ThreadEnded ended)
{
    threadEnded[slot] = ended;
    // Looked up now: at the end of the process that is not allowed.
    const FARPROC function =
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlDllShutdownInProgress");
    shutdownInProgress =
        reinterpret_cast<decltype(shutdownInProgress)>(reinterpret_cast<void*>(function));
    // Threads call into this module when they end, so it stays loaded.
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const char*>(SLOT_ENDED[slot]), &self);
    slots[slot] = FlsAlloc(SLOT_ENDED[slot]);
    if (slots[slot] == FLS_OUT_OF_INDEXES) raise("FlsAlloc");
}

void* get(Slot slot)
{
    // The call resets the last error, which a log statement must leave alone.
    const DWORD error = GetLastError();
    void* const value = FlsGetValue(slots[slot]);
    SetLastError(error);
    return value;
}

void set(Slot slot, void* value)
{
    if (FlsSetValue(slots[slot], value)) return;
    if (GetLastError() == ERROR_NOT_ENOUGH_MEMORY) throw std::bad_alloc();
    raise("FlsSetValue");
}

} // namespace Zu::ThreadSlot

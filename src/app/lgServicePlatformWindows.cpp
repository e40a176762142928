#include "app/lgServicePlatform.h"

#include <windows.h>

namespace Zu::LgServicePlatform
{

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

void onFork(void (*)(), void (*)(), void (*)()) {}

void onQuickExit(void (*)()) {}

void onHangup(void (*)()) {}

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

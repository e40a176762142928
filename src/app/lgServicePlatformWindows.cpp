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

struct SignalBlock::Saved
{
};

SignalBlock::SignalBlock() = default;

SignalBlock::~SignalBlock() = default;

} // namespace Zu::LgServicePlatform

#include "base/sleeper.h"

#include "base/inSingleton.imp"

namespace Zu
{

template class ZU_BASE_API InSingleton<Sleeper>;

Sleeper::~Sleeper() = default;

Sleeper& Sleeper::getInstance()
{
    Sleeper& sleeper = InSingleton<Sleeper>::getInstance();
    prepareThread(sleeper);
    return sleeper;
}

} // namespace Zu

#include "base/lgInterProcessLock.h"

#include <exception>

namespace Zu
{

LgInterProcessLock::~LgInterProcessLock() noexcept(false) = default;

void LgInterProcessLockGuard::lock()
{
    _exceptions = std::uncaught_exceptions();
    _lock->lock();
}

void LgInterProcessLockGuard::unlock()
{
    try
    {
        _lock->unlock();
    }
    catch (...)
    {
        if (std::uncaught_exceptions() == _exceptions) throw;
    }
}

} // namespace Zu

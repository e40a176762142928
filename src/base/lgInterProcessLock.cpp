#include "base/lgInterProcessLock.h"

#include <exception>

namespace Zu
{

LgInterProcessLock::~LgInterProcessLock() noexcept(false) = default;

LgInterProcessLockGuard::LgInterProcessLockGuard(LgInterProcessLock* l)
    : _lock(l), _exceptions(std::uncaught_exceptions())
{
    if (_lock) _lock->lock();
}

LgInterProcessLockGuard::~LgInterProcessLockGuard() noexcept(false)
{
    if (!_lock) return;
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

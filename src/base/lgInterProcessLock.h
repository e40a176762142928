/// @file
/// The lock that keeps lines of several processes apart in one log file.

#ifndef ZU_BASE_LGINTERPROCESSLOCK_H
#define ZU_BASE_LGINTERPROCESSLOCK_H

#include "baseApi.h"
#include "ownedPtr.h"

namespace Zu
{

/// A lock that processes find by its name. The thread that holds it may take it again, and releases
/// it as often.
///
/// Processes that share a log file must also all append to it (a `+` before its name): otherwise
/// each truncates it and writes at a place of its own.
///
/// Every failure raises ExSysErrorWindows with the platform's code. A holder that died is one,
/// deliberately: whoever takes the lock next is told once that a line may have been left
/// unfinished, and does not hold the lock then; from there on it works again.
class ZU_BASE_API LgInterProcessLock
{
public:
    LgInterProcessLock() = default;
    LgInterProcessLock(const LgInterProcessLock&) = delete;
    LgInterProcessLock& operator=(const LgInterProcessLock&) = delete;

    /// Leaves the lock to its other users; a failure raises, unless an exception is under way.
    virtual ~LgInterProcessLock() noexcept(false);

    /// Waits for the lock, without a limit.
    virtual void lock() = 0;

    /// Releases it; for the thread that holds it.
    virtual void unlock() = 0;

    /// A new object for the lock of this name, which is made if no process has it; the caller owns
    /// it. The lock ends with its last user. Without a name (null) it is a lock of this process
    /// alone.
    static LgInterProcessLock* create(const char* name);
};

/// The destructor may throw.
template <> inline constexpr bool ownedMayThrow<LgInterProcessLock> = true;

/// Holds a lock for the time of a scope; a null one costs nothing, which is the normal case of a
/// process that shares no file. What unlock() raises leaves the destructor, unless another
/// exception is under way.
class ZU_BASE_API LgInterProcessLockGuard
{
public:
    /// Takes the lock, which may be null and must outlive the guard.
    explicit LgInterProcessLockGuard(LgInterProcessLock* l) : _lock(l)
    {
        if (_lock) lock();
    }

    LgInterProcessLockGuard(const LgInterProcessLockGuard&) = delete;
    LgInterProcessLockGuard& operator=(const LgInterProcessLockGuard&) = delete;

    ~LgInterProcessLockGuard() noexcept(false)
    {
        if (_lock) unlock();
    }

private:
    void lock();
    void unlock();

    LgInterProcessLock* _lock;
    // How many exceptions were under way when the scope began.
    int _exceptions = 0;
};

} // namespace Zu

#endif

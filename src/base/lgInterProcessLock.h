/// @file
/// The lock that keeps lines of several processes apart in one log file.

#ifndef ZU_BASE_LGINTERPROCESSLOCK_H
#define ZU_BASE_LGINTERPROCESSLOCK_H

#include "baseApi.h"
#include "ownedPtr.h"

namespace Zu
{

/// A recursive lock that processes find by its name. The thread that holds it may take it again,
/// and must release it as many times.
///
/// Processes that share a log file must also all append to it (a `+` before its name): otherwise
/// each truncates it and writes at its own position.
///
/// Every failure raises ExSysErrorWindows with the platform's code. The death of the holder
/// deliberately counts as a failure: the next thread to take the lock gets the exception, once,
/// since a line may have been left unfinished. It does not hold the lock then; afterwards the lock
/// works again.
class ZU_BASE_API LgInterProcessLock
{
public:
    LgInterProcessLock() = default;
    LgInterProcessLock(const LgInterProcessLock&) = delete;
    LgInterProcessLock& operator=(const LgInterProcessLock&) = delete;

    /// Leaves the lock to its other users. A failure raises, unless an exception is already in
    /// flight.
    virtual ~LgInterProcessLock() noexcept(false);

    /// Waits for the lock, without a limit.
    virtual void lock() = 0;

    /// Releases the lock. Only the thread that holds it may call this.
    virtual void unlock() = 0;

    /// A new object, owned by the caller, for the lock of this name. The lock is created if no
    /// process has it and ends with its last user. Without a name (null) the lock is private to
    /// this process.
    static LgInterProcessLock* create(const char* name);
};

/// The destructor may throw.
template <> inline constexpr bool ownedMayThrow<LgInterProcessLock> = true;

/// Holds a lock for the duration of a scope. A null lock costs nothing; this is the normal case of
/// a process that shares no file. The destructor passes on what unlock() raises, unless another
/// exception is in flight.
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
    // How many exceptions were in flight when the scope began.
    int _exceptions = 0;
};

} // namespace Zu

#endif

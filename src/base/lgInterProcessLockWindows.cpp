#include "base/lgInterProcessLock.h"

#include "base/exSysError.h"

#include <exception>
#include <windows.h>

namespace Zu
{

namespace
{

class LockWindows : public LgInterProcessLock
{
public:
    explicit LockWindows(const char* name) : _mutex(CreateMutexA(nullptr, FALSE, name))
    {
        if (!_mutex) throw ExSysErrorWindows(__FILE__, __LINE__);
    }

    ~LockWindows() noexcept(false) override
    {
        const bool isClosed = CloseHandle(_mutex);
        if (!isClosed && std::uncaught_exceptions() == 0)
            throw ExSysErrorWindows(__FILE__, __LINE__);
    }

    void lock() override
    {
        const DWORD result = WaitForSingleObject(_mutex, INFINITE);
        if (result == WAIT_OBJECT_0) return;
        if (result == WAIT_ABANDONED)
        {
            // The dead holder's mutex is ours now, which no caller expects who sees an exception.
            ReleaseMutex(_mutex);
            SetLastError(ERROR_ABANDONED_WAIT_0);
        }
        throw ExSysErrorWindows(__FILE__, __LINE__);
    }

    void unlock() override
    {
        if (!ReleaseMutex(_mutex)) throw ExSysErrorWindows(__FILE__, __LINE__);
    }

private:
    HANDLE _mutex;
};

} // namespace

LgInterProcessLock* LgInterProcessLock::create(const char* name)
{
    return new LockWindows(name);
}

} // namespace Zu

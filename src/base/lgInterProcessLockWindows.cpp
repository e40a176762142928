#include "base/lgInterProcessLock.h"

#include "base/exRaise.h"

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
        if (!_mutex) ZU_RAISE_LAST_ERROR();
    }

    ~LockWindows() noexcept(false) override
    {
        const bool isClosed = CloseHandle(_mutex);
        if (!isClosed && std::uncaught_exceptions() == 0) ZU_RAISE_LAST_ERROR();
    }

    void lock() override
    {
        const DWORD result = WaitForSingleObject(_mutex, INFINITE);
        if (result == WAIT_OBJECT_0) return;
        if (result == WAIT_ABANDONED)
        {
            // The dead holder's mutex is now ours, which a caller that gets an exception does not
            // expect.
            ReleaseMutex(_mutex);
            ZU_RAISE_SYSTEM_ERROR(ERROR_ABANDONED_WAIT_0);
        }
        ZU_RAISE_LAST_ERROR();
    }

    void unlock() override
    {
        if (!ReleaseMutex(_mutex)) ZU_RAISE_LAST_ERROR();
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

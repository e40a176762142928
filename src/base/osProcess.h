/// @file
/// Child processes.

#ifndef ZU_BASE_OSPROCESS_H
#define ZU_BASE_OSPROCESS_H

#include "baseApi.h"
#include "objPtr.h"

namespace Zu
{

/// A started child process, as the platform represents it.
class ZU_BASE_API OsProcessImp
{
public:
    OsProcessImp() = default;
    OsProcessImp(const OsProcessImp&) = delete;
    OsProcessImp& operator=(const OsProcessImp&) = delete;
    virtual ~OsProcessImp();

    /// Waits for the child to end, without a time limit.
    virtual void wait() = 0;
};

/// Starts child processes, one at a time, and waits for them. The exit value is not reported. An
/// object belongs to one thread at a time.
///
/// On Linux a detached child is reaped when the next one is started or detached, and a program must
/// not reap all of its children itself (`waitpid` with -1).
class ZU_BASE_API OsProcess
{
public:
    /// No child.
    OsProcess();
    OsProcess(const OsProcess&) = delete;
    OsProcess& operator=(const OsProcess&) = delete;

    /// Detaches the child without waiting for it; it runs on.
    ~OsProcess();

    /// Starts the program named by the first word of a null-terminated array, with the caller's
    /// environment and current directory; the name is looked up as the system does. The child
    /// inherits no files but the standard ones. An earlier child is detached once the new one runs.
    ///
    /// On Windows the words are joined into one line, each followed by a blank, and nothing is
    /// quoted: the child splits a word that contains blanks. On Linux it gets the words as they
    /// are.
    ///
    /// Raises ExSysErrorWindows if the child can't be started.
    void start(const char* const* argv);

    /// Waits for the child to end, without a time limit; returns at once if there is no child or it
    /// has been waited for already.
    void wait();

private:
    static ObjPtrRet<OsProcessImp> performStart(const char* const* argv);

    ObjPtr<OsProcessImp> _imp;
};

} // namespace Zu

#endif

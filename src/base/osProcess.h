/// @file
/// Child processes.

#ifndef ZU_BASE_OSPROCESS_H
#define ZU_BASE_OSPROCESS_H

#include "baseApi.h"
#include "objPtr.h"

namespace Zu
{

/// A started child process, as the platform keeps it.
class ZU_BASE_API OsProcessImp
{
public:
    OsProcessImp() = default;
    OsProcessImp(const OsProcessImp&) = delete;
    OsProcessImp& operator=(const OsProcessImp&) = delete;
    virtual ~OsProcessImp();

    /// Waits for the child's end without a limit.
    virtual void wait() = 0;
};

/// Starts child processes, one at a time, and waits for them. The exit value is not reported. An
/// object belongs to one thread at a time.
///
/// On Linux a child that was let go of is reaped when the next one is started or let go of, and a
/// program must not take the ends of all of its children itself (`waitpid` with -1).
class ZU_BASE_API OsProcess
{
public:
    /// No child.
    OsProcess();
    OsProcess(const OsProcess&) = delete;
    OsProcess& operator=(const OsProcess&) = delete;

    /// Lets go of the child without waiting for it; it runs on.
    ~OsProcess();

    /// Starts the program named by the first of the words, a null-terminated array, with the
    /// caller's environment and current directory; its name is looked up as the system does.
    /// The child inherits no files but the standard ones. An earlier child is let go of once the
    /// new one runs.
    ///
    /// On Windows the words are joined into one line, each with a blank behind it, and nothing is
    /// quoted: the child splits a word with blanks in it. On Linux it gets the words as they are.
    ///
    /// Raises ExSysErrorWindows if the child can't be started.
    void start(const char* const* argv);

    /// Waits for the child's end without a limit; returns at once if there is none or it has been
    /// waited for already.
    void wait();

private:
    static ObjPtrRet<OsProcessImp> performStart(const char* const* argv);

    ObjPtr<OsProcessImp> _imp;
};

} // namespace Zu

#endif

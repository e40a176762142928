/// @file
/// The holder of the process's argument list.

#ifndef ZU_BASE_INCONTEXTALIASMGRBASE_H
#define ZU_BASE_INCONTEXTALIASMGRBASE_H

#include "baseApi.h"
#include "containers.h"

namespace Zu
{

/// Keeps the words of the command line from start-up to shut-down.
///
/// Thread-safety: written by start-up and shut-down alone; plain reads are safe between them.
class ZU_BASE_API InContextAliasMgrBase
{
    friend class InInitMgr;

public:
    virtual ~InContextAliasMgrBase();

    /// After start-up the program name and whatever the option parser did not consume; without any
    /// alias for arguments, the whole command line. The strings are owned by the list.
    static const Vector<char*>& getUnboundArgs();

    /// The first word of the command line. The list must not be empty; that is not checked.
    static const char* getApplicationName();

protected:
    /// For the managers of the kinds; the list is of all of them.
    InContextAliasMgrBase();

    /// The list; its strings are allocated with `new[]` and owned by it.
    static Vector<char*>& args();

private:
    static Vector<char*> _args;
};

} // namespace Zu

#endif

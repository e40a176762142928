/// @file
/// Keeps the argument list of the process.

#ifndef ZU_BASE_INCONTEXTALIASMGRBASE_H
#define ZU_BASE_INCONTEXTALIASMGRBASE_H

#include "baseApi.h"
#include "containers.h"

namespace Zu
{

/// Keeps the words of the command line from start-up to shut-down.
///
/// Thread-safety: only start-up and shut-down write it; plain reads are safe between them.
class ZU_BASE_API InContextAliasMgrBase
{
    friend class InInitMgr;

public:
    virtual ~InContextAliasMgrBase();

    /// After start-up, the program name and the words that the option parser did not consume.
    /// Without any alias for options it is the whole command line. The list owns the strings.
    static const Vector<char*>& getUnboundArgs();

    /// The first word of the command line. The list must not be empty, which is not checked.
    static const char* getApplicationName();

protected:
    /// For the managers of the kinds, which share the list.
    InContextAliasMgrBase();

    /// The list. It owns its strings, which are allocated with `new[]`.
    static Vector<char*>& args();

private:
    static Vector<char*> _args;
};

} // namespace Zu

#endif

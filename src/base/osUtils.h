/// @file
/// Facts about host, user, process and thread.

#ifndef ZU_BASE_OSUTILS_H
#define ZU_BASE_OSUTILS_H

#include "arrayPtr.h"
#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// Asks the platform about where the process runs. Any thread may call it.
class ZU_BASE_API OsUtils
{
public:
    OsUtils() = delete;

    /// Sleeps for this many whole seconds; signals do not shorten it.
    static void sleep(unsigned int seconds);

    /// The process id.
    static std::uint32_t getPid();

    /// The id of the calling thread, as the system's own tools show it.
    static std::uint32_t getThreadId();

    /// The host's name; on Windows it has at most 15 characters. Raises ExSysErrorANSI.
    static ArrayPtrRet<char> getHostName();

    /// The name of the user that the process runs as; on Windows it has at most 256 characters. The
    /// flag has no effect. Raises ExSysErrorANSI, also if the user has no name, which can happen in
    /// a container.
    static ArrayPtrRet<char> getUserName(bool flag);
};

} // namespace Zu

#endif

/// @file
/// Keys of the Windows registry; part of the library for Windows only.

#ifndef ZU_BASE_OSREGKEYHANDLE_H
#define ZU_BASE_OSREGKEYHANDLE_H

#include "baseApi.h"

// The system's types, declared as in its headers so that those need not be included.
struct HKEY__;
typedef HKEY__* HKEY; ///< A key of the registry.
struct _FILETIME;

namespace Zu
{

/// An open key of the registry. A key that can't be opened or closed is a fatal error; queries
/// return the platform's code and raise nothing. An object belongs to one thread at a time.
class ZU_BASE_API OsRegKeyHandle
{
public:
    /// Opens the key below `parent`, with the arguments of RegOpenKeyExA.
    OsRegKeyHandle(HKEY parent, const char* subKey, unsigned long options, unsigned long access);
    OsRegKeyHandle(const OsRegKeyHandle&) = delete;
    OsRegKeyHandle& operator=(const OsRegKeyHandle&) = delete;
    ~OsRegKeyHandle();

    /// RegQueryValueExA on this key.
    long queryValue(const char* name, unsigned long* reserved, unsigned long* type,
                    unsigned char* data, unsigned long* dataSize);

    /// RegQueryInfoKeyA on this key.
    long queryInfo(char* className, unsigned long* classNameSize, unsigned long* reserved,
                   unsigned long* subKeys, unsigned long* maxSubKeyLength,
                   unsigned long* maxClassLength, unsigned long* values,
                   unsigned long* maxValueNameLength, unsigned long* maxValueLength,
                   unsigned long* securityDescriptorSize, _FILETIME* lastWriteTime);

    /// The key; it stays owned by this object.
    HKEY getOSHandle() const;

private:
    HKEY _key;
};

} // namespace Zu

#endif

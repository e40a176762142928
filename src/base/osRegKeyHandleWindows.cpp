#include "base/osRegKeyHandle.h"

#include "base/internalAssert.h"

#include <windows.h>

namespace Zu
{

OsRegKeyHandle::OsRegKeyHandle(HKEY parent, const char* subKey, unsigned long options,
                               unsigned long access)
    : _key(nullptr)
{
    const long result = RegOpenKeyExA(parent, subKey, options, access, &_key);
    ZU_INTERNAL_ASSERT(result == ERROR_SUCCESS);
}

OsRegKeyHandle::~OsRegKeyHandle()
{
    const long result = RegCloseKey(_key);
    ZU_INTERNAL_ASSERT(result == ERROR_SUCCESS);
}

long OsRegKeyHandle::queryValue(const char* name, unsigned long* reserved, unsigned long* type,
                                unsigned char* data, unsigned long* dataSize)
{
    return RegQueryValueExA(_key, name, reserved, type, data, dataSize);
}

long OsRegKeyHandle::queryInfo(char* className, unsigned long* classNameSize,
                               unsigned long* reserved, unsigned long* subKeys,
                               unsigned long* maxSubKeyLength, unsigned long* maxClassLength,
                               unsigned long* values, unsigned long* maxValueNameLength,
                               unsigned long* maxValueLength, unsigned long* securityDescriptorSize,
                               _FILETIME* lastWriteTime)
{
    return RegQueryInfoKeyA(_key, className, classNameSize, reserved, subKeys, maxSubKeyLength,
                            maxClassLength, values, maxValueNameLength, maxValueLength,
                            securityDescriptorSize, lastWriteTime);
}

HKEY OsRegKeyHandle::getOSHandle() const
{
    return _key;
}

} // namespace Zu

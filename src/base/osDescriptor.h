/// @file
/// Open descriptors; part of the library for Linux only. Internal to the library.

#ifndef ZU_BASE_OSDESCRIPTOR_H
#define ZU_BASE_OSDESCRIPTOR_H

#include "baseApi.h"

namespace Zu
{

/// Moves an open file to a descriptor that is none of the standard streams'. A process may have
/// been started without these; what it then wrote to its standard output would land in the file.
/// Children do not inherit the new descriptor. Returns a negative number, with `errno` set, if no
/// descriptor is free; a negative `number` is returned unchanged.
ZU_BASE_API int osAboveStandard(int number);

/// Closes its descriptor when it is destroyed; a negative number means none.
class ZU_BASE_API OsDescriptor
{
public:
    explicit OsDescriptor(int number) : _number(number) {}
    OsDescriptor(const OsDescriptor&) = delete;
    OsDescriptor& operator=(const OsDescriptor&) = delete;
    ~OsDescriptor();

    int get() const
    {
        return _number;
    }

    /// Hands the descriptor to the caller, who closes it.
    int release()
    {
        const int number = _number;
        _number = -1;
        return number;
    }

    /// Closes what it holds, and holds `number` from here on.
    void reset(int number);

private:
    int _number;
};

} // namespace Zu

#endif

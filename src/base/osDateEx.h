/// @file
/// The exceptions of dates.

#ifndef ZU_BASE_OSDATEEX_H
#define ZU_BASE_OSDATEEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of dates.
class ZU_BASE_API OsDateEx : public ExBase
{
public:
    class ExInvalidDate;

protected:
    OsDateEx(const char* file, int line);
};

/// A count beyond the calendar: "Invalid date specified."
class ZU_BASE_API OsDateEx::ExInvalidDate : public std::runtime_error, public OsDateEx
{
public:
    ExInvalidDate(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif

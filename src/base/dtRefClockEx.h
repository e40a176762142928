/// @file
/// The exceptions of the reference clock.

#ifndef ZU_BASE_DTREFCLOCKEX_H
#define ZU_BASE_DTREFCLOCKEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of the reference clock.
class ZU_BASE_API DtRefClockEx : public ExBase
{
public:
    class SourceMismatch;
    class GetCount;

protected:
    DtRefClockEx(const char* file, int line);
};

/// A count taken from another clock: "Clock source name does not match system reference clock."
class ZU_BASE_API DtRefClockEx::SourceMismatch : public std::logic_error, public DtRefClockEx
{
public:
    SourceMismatch(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Reference clock failed to get clock value." For clock sources that can fail; the library's own
/// does not.
class ZU_BASE_API DtRefClockEx::GetCount : public std::logic_error, public DtRefClockEx
{
public:
    GetCount(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif

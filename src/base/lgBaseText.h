/// @file
/// Values of the library in log statements.

#ifndef ZU_BASE_LGBASETEXT_H
#define ZU_BASE_LGBASETEXT_H

#include "baseApi.h"
#include "interval.h"

namespace Zu
{

class DtRefTime;
class DtTime;
class DtTimeIndex;
class DtTimeMark;
class ExBase;
class LgStream;
class OsFilePath;
class Rational;

/// @{
/// Insert a value as its insertion operator writes it to a new standard stream.
ZU_BASE_API LgStream& operator<<(LgStream& stream, const Rational& rational);
ZU_BASE_API LgStream& operator<<(LgStream& stream, const DtTimeIndex& index);
ZU_BASE_API LgStream& operator<<(LgStream& stream, const DtTime& time);
ZU_BASE_API LgStream& operator<<(LgStream& stream, const DtRefTime& time);
ZU_BASE_API LgStream& operator<<(LgStream& stream, const DtTimeMark& mark);
/// @}

/// @{
/// Inserts the bounds of an interval, "[0, 1]".
ZU_BASE_API LgStream& lgInsertInterval(LgStream& stream, double min, double max);
ZU_BASE_API LgStream& lgInsertInterval(LgStream& stream, const DtTimeIndex& min,
                                       const DtTimeIndex& max);
/// @}

/// Inserts an interval as its insertion operator writes it to a new standard stream.
template <class T> LgStream& operator<<(LgStream& stream, const Interval<T>& interval)
{
    return lgInsertInterval(stream, interval._min, interval._max);
}

/// Inserts the path unchanged.
ZU_BASE_API LgStream& operator<<(LgStream& stream, const OsFilePath& path);

/// Inserts the exception's reason.
ZU_BASE_API LgStream& operator<<(LgStream& stream, const ExBase& exception);

} // namespace Zu

#endif

/// @file
/// Conversion of times from and to seconds, texts and intervals.

#ifndef ZU_BASE_DTTIMEUTIL_H
#define ZU_BASE_DTTIMEUTIL_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "dtTime.h"
#include "interval.h"

namespace Zu
{

/// Conversions of times. A number of seconds that does not fit in a 64-bit count gives the smallest
/// count. Any thread may call them.
class ZU_BASE_API DtTimeUtil
{
public:
    DtTimeUtil() = delete;

    /// @{
    /// The seconds from tick 0, (denominator / numerator) * count.
    static float getSecondsFloat(const DtTime& time);
    static double getSecondsDouble(const DtTime& time);
    /// @}

    /// The time at that rate, truncated toward zero. Raises DtEx::BadRate if the rate is 0.
    static DtTime getDtTimeFromSeconds(const Rational& rate, double seconds);

    /// The same, computed in single precision.
    static DtTime getDtTimeFromSeconds(const Rational& rate, float seconds);

    /// The time as text: the count, then numerator and denominator of the rate, in decimal and
    /// separated by blanks: "1001 30000 1001". The caller owns it.
    static ArrayPtrRet<char> getDtStringFromDtTime(const DtTime& time);

    /// The time of such a text. There may be several blanks before each field. Anything after the
    /// third field is ignored, as is anything after the digits of a field. The count is
    /// deliberately not checked: text that is not a number reads as 0, and a number beyond 64 bits
    /// as the nearest count.
    ///
    /// Raises DtEx::DtStringError if the numerator or denominator is missing, has no digits, or
    /// does not fit in 32 bits; DtEx::BadRate for the numerator 0 and RationalEx::ExDenominatorZero
    /// for the denominator 0. `errno` is deliberately not cleared: if it is ERANGE from an earlier
    /// call, a number at either end of the 32-bit range also counts as one that does not fit.
    static DtTime getDtTimeFromDtString(const char* text);

    /// The ticks at the rate of `rateSource` that enclose the interval: the lower bound truncated
    /// toward zero (deliberately also for negative seconds), the upper one rounded up.
    static Interval<DtTimeIndex> getInclusiveDtTimeIndexInterval(const DtTime& rateSource,
                                                                 const Interval<double>& seconds);

    /// The same in single precision, where an upper bound beyond 32 bits is not rounded up.
    static Interval<DtTimeIndex> getInclusiveDtTimeIndexInterval(const DtTime& rateSource,
                                                                 const Interval<float>& seconds);

    /// @{
    /// The bounds in seconds, at the rate of `rateSource`.
    static Interval<double> getSecondsIntervalDouble(const DtTime& rateSource,
                                                     const Interval<DtTimeIndex>& indices);
    static Interval<float> getSecondsIntervalFloat(const DtTime& rateSource,
                                                   const Interval<DtTimeIndex>& indices);
    /// @}
};

} // namespace Zu

#endif

/// @file
/// Maps between the time of a stream and the reference clock.

#ifndef ZU_BASE_DTTIMEMARK_H
#define ZU_BASE_DTTIMEMARK_H

#include "baseApi.h"
#include "dtRefTime.h"
#include "dtTime.h"

#include <iosfwd>

namespace Zu
{

/// Ties one position in a stream to a moment on the reference clock. All other positions follow
/// from it.
class ZU_BASE_API DtTimeMark
{
public:
    /// Stream time 0 at 1/1, and the reference time that was never set.
    DtTimeMark() = default;

    /// The stream is at `streamTime` when the clock is at `refTime`.
    DtTimeMark(const DtTime& streamTime, const DtRefTime& refTime);

    /// The position in the stream.
    DtTime getStreamTime() const;

    /// The moment on the reference clock.
    DtRefTime getRefTime() const;

    /// Where the stream is at that moment, truncated toward zero to the stream's ticks. The rate of
    /// `refTime` is ignored. Raises RationalEx::ExDenominatorZero if this mark's reference time was
    /// never set.
    DtTimeMark evalTime(const DtRefTime& refTime) const;

    /// When the stream is at that position, truncated toward zero to the clock's ticks. The result
    /// has `streamTime` unchanged, and the rate of the clock rather than the one in this mark.
    DtTimeMark evalTime(const DtTime& streamTime) const;

    /// Writes both times in parentheses, with a blank between them.
    void dump(std::ostream& os) const;

private:
    DtTime _streamTime;
    DtRefTime _refTime;
};

/// The same as DtTimeMark::dump().
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const DtTimeMark& mark);

} // namespace Zu

#endif

#include "base/dtTimeUtil.h"

#include "base/dtArithmetic.h"
#include "base/duplicateString.h"
#include "base/textTokens.h"
#include "base/truncateTo.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

namespace Zu
{

namespace
{

using Error = DtEx::DtStringError;

// Blanks alone separate the fields of a text.
constexpr char BLANK = ' ';

// Seconds per tick.
template <class Float> Float period(const Rational& rate)
{
    return static_cast<Float>(rate.getDenominator()) / static_cast<Float>(rate.getNumerator());
}

// Ticks per second.
template <class Float> Float frequency(const Rational& rate)
{
    return static_cast<Float>(rate.getNumerator()) / static_cast<Float>(rate.getDenominator());
}

// Reads a number like a 32-bit strtol().
std::int32_t readNumber(std::string_view field, Error::ErrorCode malformed,
                        Error::ErrorCode overflow)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const std::string text(field);
    char* end = nullptr;
    long long number = std::strtoll(text.c_str(), &end, 10);
    if (number > Limits::max() || number < Limits::min())
    {
        errno = ERANGE;
        number = number > 0 ? Limits::max() : Limits::min();
    }
    const bool isExtreme = number == Limits::max() || number == Limits::min();
    if (isExtreme && errno == ERANGE) throw Error(__FILE__, __LINE__, overflow);
    if (number == 0 && end == text.c_str()) throw Error(__FILE__, __LINE__, malformed);
    return static_cast<std::int32_t>(number);
}

} // namespace

float DtTimeUtil::getSecondsFloat(const DtTime& time)
{
    return period<float>(time.getRate()) * time.getCount().getFloat();
}

double DtTimeUtil::getSecondsDouble(const DtTime& time)
{
    return period<double>(time.getRate()) * time.getCount().getDouble();
}

DtTime DtTimeUtil::getDtTimeFromSeconds(const Rational& rate, double seconds)
{
    return DtTime(DtArithmetic::truncate(frequency<double>(rate) * seconds), rate);
}

DtTime DtTimeUtil::getDtTimeFromSeconds(const Rational& rate, float seconds)
{
    return DtTime(truncateTo<std::int64_t>(frequency<float>(rate) * seconds), rate);
}

ArrayPtrRet<char> DtTimeUtil::getDtStringFromDtTime(const DtTime& time)
{
    char text[48];
    std::snprintf(text, sizeof text, "%" PRId64 " %" PRId32 " %" PRId32,
                  static_cast<std::int64_t>(time.getCount()), time.getRate().getNumerator(),
                  time.getRate().getDenominator());
    return duplicateString(text);
}

DtTime DtTimeUtil::getDtTimeFromDtString(const char* text)
{
    std::string_view rest = text;
    skip(rest, BLANK);
    const std::string countField(takeField(rest, BLANK));
    const int error = errno;
    const long long count = std::strtoll(countField.c_str(), nullptr, 10);
    // A count that does not fit must not affect the fields after it.
    errno = error;
    const std::int32_t numerator = readNumber(takeField(rest, BLANK), Error::RateNumeratorMalformed,
                                              Error::RateNumeratorOverflow);
    const std::int32_t denominator = readNumber(
        takeField(rest, BLANK), Error::RateDenominatorMalformed, Error::RateDenominatorOverflow);
    return DtTime(count, numerator, denominator);
}

Interval<DtTimeIndex> DtTimeUtil::getInclusiveDtTimeIndexInterval(const DtTime& rateSource,
                                                                  const Interval<double>& seconds)
{
    const double rate = frequency<double>(rateSource.getRate());
    return {DtArithmetic::truncate(rate * seconds._min), DtArithmetic::ceil(rate * seconds._max)};
}

Interval<DtTimeIndex> DtTimeUtil::getInclusiveDtTimeIndexInterval(const DtTime& rateSource,
                                                                  const Interval<float>& seconds)
{
    const float rate = frequency<float>(rateSource.getRate());
    float upper = rate * seconds._max;
    const auto whole = truncateTo<std::int32_t>(upper);
    if (whole != std::numeric_limits<std::int32_t>::min() && static_cast<float>(whole) != upper)
        upper = static_cast<float>(upper < 0 ? whole : whole + 1);
    return {truncateTo<std::int64_t>(rate * seconds._min), truncateTo<std::int64_t>(upper)};
}

Interval<double> DtTimeUtil::getSecondsIntervalDouble(const DtTime& rateSource,
                                                      const Interval<DtTimeIndex>& indices)
{
    const double length = period<double>(rateSource.getRate());
    return {indices._min.getDouble() * length, indices._max.getDouble() * length};
}

Interval<float> DtTimeUtil::getSecondsIntervalFloat(const DtTime& rateSource,
                                                    const Interval<DtTimeIndex>& indices)
{
    const float length = period<float>(rateSource.getRate());
    return {indices._min.getFloat() * length, indices._max.getFloat() * length};
}

} // namespace Zu

// A byte that decides whether `errno` is ERANGE beforehand, and lines with one time each.

#include "base/dtEx.h"
#include "base/dtTime.h"
#include "base/dtTimeUtil.h"
#include "base/rationalEx.h"

#include "fuzzTarget.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

namespace
{

using Zu::DtTime;
using Zu::DtTimeUtil;
using Zu::Rational;
using Error = Zu::DtEx::DtStringError;
__extension__ using Wide = __int128;

constexpr std::int64_t MIN_COUNT = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t MAX_COUNT = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t MIN_32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t MAX_32 = std::numeric_limits<std::int32_t>::max();

// The possible exceptions, and the fields of a valid text.
struct BadRate
{
};
struct ZeroDenominator
{
};
struct Fields
{
    std::int64_t _count;
    std::int32_t _numerator;
    std::int32_t _denominator;
};
using Result = std::variant<Fields, Error::ErrorCode, BadRate, ZeroDenominator>;

// The number that a field begins with, within 80 bits; nothing if it has no digits.
std::optional<Wide> numberOf(const std::string& field)
{
    std::size_t place = std::min(field.find_first_not_of(" \t\n\v\f\r"), field.size());
    const bool isNegative = place < field.size() && field[place] == '-';
    if (place < field.size() && (field[place] == '-' || field[place] == '+')) ++place;
    const std::size_t begin = place;
    constexpr Wide BOUND = Wide{1} << 80;
    Wide number = 0;
    for (; place < field.size() && field[place] >= '0' && field[place] <= '9'; ++place)
        number = std::min(number * 10 + (field[place] - '0'), BOUND);
    if (place == begin) return std::nullopt;
    return isNegative ? -number : number;
}

std::vector<std::string> fieldsOf(const std::string& text)
{
    std::vector<std::string> fields;
    for (const std::string& piece : fuzz::split(text, ' '))
        if (!piece.empty()) fields.push_back(piece);
    fields.resize(std::max<std::size_t>(fields.size(), 3));
    return fields;
}

// Whether the number counts as one that does not fit in 32 bits. A number at either end of the
// range does so if `errno` was ERANGE beforehand.
bool isOverflow(const std::optional<Wide>& number, bool isRangeError)
{
    if (!number) return false;
    if (*number < MIN_32 || *number > MAX_32) return true;
    return isRangeError && (*number == MIN_32 || *number == MAX_32);
}

Result expectedOf(const std::string& text, bool isRangeError)
{
    const std::vector<std::string> fields = fieldsOf(text);
    const Wide count = numberOf(fields[0]).value_or(0);
    const std::optional<Wide> numerator = numberOf(fields[1]);
    const std::optional<Wide> denominator = numberOf(fields[2]);
    if (isOverflow(numerator, isRangeError)) return Error::RateNumeratorOverflow;
    if (!numerator) return Error::RateNumeratorMalformed;
    if (isOverflow(denominator, isRangeError)) return Error::RateDenominatorOverflow;
    if (!denominator) return Error::RateDenominatorMalformed;
    if (*denominator == 0) return ZeroDenominator();
    if (*numerator == 0) return BadRate();
    return Fields{static_cast<std::int64_t>(std::clamp<Wide>(count, MIN_COUNT, MAX_COUNT)),
                  static_cast<std::int32_t>(*numerator), static_cast<std::int32_t>(*denominator)};
}

bool isIdentical(const DtTime& a, const DtTime& b)
{
    return a.getCount() == b.getCount() && a.getRate() == b.getRate();
}

std::optional<DtTime> parse(const std::string& text, bool isRangeError)
{
    const Result expected = expectedOf(text, isRangeError);
    errno = isRangeError ? ERANGE : 0;
    try
    {
        const DtTime time = DtTimeUtil::getDtTimeFromDtString(fuzz::exactCopy(text).get());
        const Fields* const fields = std::get_if<Fields>(&expected);
        FUZZ_REQUIRE(fields);
        FUZZ_REQUIRE(isIdentical(
            time, DtTime(fields->_count, Rational(fields->_numerator, fields->_denominator))));
        // The ratio is that of the text, except for numbers whose negation does not fit.
        if (fields->_denominator != MIN_32 && fields->_numerator != MIN_32)
            FUZZ_REQUIRE(Wide{fields->_numerator} * time.getRate().getDenominator() ==
                         Wide{fields->_denominator} * time.getRate().getNumerator());
        return time;
    }
    catch (const Error& error)
    {
        const Error::ErrorCode* const code = std::get_if<Error::ErrorCode>(&expected);
        FUZZ_REQUIRE(code && *code == error.getErrorCode());
    }
    catch (const Zu::DtEx::BadRate&)
    {
        FUZZ_REQUIRE(std::holds_alternative<BadRate>(expected));
    }
    catch (const Zu::RationalEx::ExDenominatorZero&)
    {
        FUZZ_REQUIRE(std::holds_alternative<ZeroDenominator>(expected));
    }
    return std::nullopt;
}

void checkRoundTrip(const DtTime& time)
{
    // A denominator that stayed negative inverts the sign of the rate when it is read again.
    if (time.getRate().getDenominator() < 0) return;
    errno = 0;
    const Zu::ArrayPtr<char> text(DtTimeUtil::getDtStringFromDtTime(time));
    FUZZ_REQUIRE(isIdentical(DtTimeUtil::getDtTimeFromDtString(text.get()), time));
}

bool fits(Wide number)
{
    return number >= MIN_COUNT && number <= MAX_COUNT;
}

bool isSmall(Wide number)
{
    return number > MIN_32 && number <= MAX_32;
}

// Comparisons are exact as long as denominator times numerator times count fits.
void checkOrder(const DtTime& a, const DtTime& b)
{
    const Wide left = Wide{a.getRate().getDenominator()} * b.getRate().getNumerator();
    const Wide right = Wide{b.getRate().getDenominator()} * a.getRate().getNumerator();
    const Wide leftCount = std::int64_t{a.getCount()};
    const Wide rightCount = std::int64_t{b.getCount()};
    if (!fits(left * leftCount) || !fits(right * rightCount)) return;
    FUZZ_REQUIRE((a < b) == (left * leftCount < right * rightCount));
    FUZZ_REQUIRE((a == b) == (left * leftCount == right * rightCount));
    FUZZ_REQUIRE((a <= b) == (a < b || a == b));
    FUZZ_REQUIRE((a > b) == !(a <= b));
    FUZZ_REQUIRE((a >= b) == !(a < b));
    FUZZ_REQUIRE((a != b) == !(a == b));
    if (a == b) FUZZ_REQUIRE(std::hash<DtTime>()(a) == std::hash<DtTime>()(b));
}

// The same instant at the other rate, truncated, provided that no product overflows.
void checkConversion(const DtTime& time, const Rational& to)
{
    try
    {
        const Zu::DtTimeIndex converted = time.convertRate(to).getCount();
        const Rational from = time.getRate();
        Wide above = Wide{from.getDenominator()} * to.getNumerator();
        Wide below = Wide{to.getDenominator()} * from.getNumerator();
        // The numerator of a reduced ratio carries the sign.
        if (below < 0)
        {
            above = -above;
            below = -below;
        }
        const Wide count = std::int64_t{time.getCount()};
        if (from == to || !isSmall(above) || !isSmall(below) || !fits(above * count)) return;
        FUZZ_REQUIRE(Wide{std::int64_t{converted}} == above * count / below);
    }
    catch (const Zu::RationalEx::ExDenominatorZero&)
    {
        const auto wrapped = static_cast<std::uint32_t>(to.getDenominator()) *
                             static_cast<std::uint32_t>(time.getRate().getNumerator());
        FUZZ_REQUIRE(wrapped == 0);
    }
}

void checkArithmetic(const DtTime& a, const DtTime& b)
{
    try
    {
        const DtTime sum = a + b;
        FUZZ_REQUIRE(isIdentical(sum, b + a));
        const DtTime difference = sum - b;
        if (a.isRateEqual(b)) FUZZ_REQUIRE(isIdentical(difference, a));
    }
    catch (const Zu::RationalEx::ExDenominatorZero&)
    {
        FUZZ_REQUIRE(!a.isRateEqual(b));
    }
    catch (const Zu::DtEx::BadRate&)
    {
        FUZZ_REQUIRE(!a.isRateEqual(b));
    }
}

// For the sanitizers: every conversion is defined for every time.
void touch(const DtTime& time)
{
    std::ostringstream text;
    text << time;
    FUZZ_REQUIRE(text.str().find(" @ (") != std::string::npos);
    const double seconds = DtTimeUtil::getSecondsDouble(time);
    const float singleSeconds = DtTimeUtil::getSecondsFloat(time);
    FUZZ_REQUIRE(DtTimeUtil::getDtTimeFromSeconds(time.getRate(), seconds).isRateEqual(time));
    FUZZ_REQUIRE(DtTimeUtil::getDtTimeFromSeconds(time.getRate(), singleSeconds).isRateEqual(time));
    const Zu::Interval<double> interval{seconds, seconds};
    const auto ticks = DtTimeUtil::getInclusiveDtTimeIndexInterval(time, interval);
    if (ticks._max != MIN_COUNT) FUZZ_REQUIRE(ticks._min <= ticks._max);
    const Zu::Interval<float> singleInterval{singleSeconds, singleSeconds};
    DtTimeUtil::getInclusiveDtTimeIndexInterval(time, singleInterval);
    const Zu::DtTimeIndex count = time.getCount();
    FUZZ_REQUIRE(count.getMinutes(time.getRate()) > -60 && count.getMinutes(time.getRate()) < 60);
    count.getHours(time.getRate());
    count.getSeconds(time.getRate());
}

void run(fuzz::Input input)
{
    const bool isRangeError = (input.takeByte() & 1) != 0;
    std::vector<DtTime> times;
    for (const std::string& text : input.takeLines())
        if (const std::optional<DtTime> time = parse(text, isRangeError)) times.push_back(*time);
    for (std::size_t i = 0; i < times.size(); ++i)
    {
        const DtTime& time = times[i];
        const DtTime& other = times[i / 2];
        checkRoundTrip(time);
        checkOrder(time, other);
        checkConversion(time, other.getRate());
        checkArithmetic(time, other);
        touch(time);
    }
}

} // namespace

FUZZ_TARGET(dtText, run);

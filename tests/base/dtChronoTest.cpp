#include "base/dtChrono.h"

#include "base/dtEx.h"

#include "support/timeReference.h"

#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <ratio>
#include <string>
#include <type_traits>

namespace
{

using std::chrono::duration_cast;
using std::chrono::hours;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::nanoseconds;
using std::chrono::seconds;
using support::HIGHEST;
using support::LOWEST;
using support::outcomeOf;
using support::textOf;
using support::TimeRandom;
using support::valueOf;
using Zu::dtDurationFrom;
using Zu::DtEx;
using Zu::dtRateOf;
using Zu::DtTime;
using Zu::dtTimeFrom;
using Zu::Rational;

using Days = std::chrono::duration<std::int64_t, std::ratio<86400>>;
using Frames = std::chrono::duration<std::int64_t, std::ratio<1001, 30000>>;

static_assert(dtRateOf<nanoseconds>() == Rational(1000000000, 1));
static_assert(dtRateOf<microseconds>() == Rational(1000000, 1));
static_assert(dtRateOf<milliseconds>() == Rational(1000, 1));
static_assert(dtRateOf<seconds>() == Rational(1, 1));
static_assert(dtRateOf<minutes>() == Rational(1, 60));
static_assert(dtRateOf<hours>() == Rational(1, 3600));
static_assert(dtRateOf<Days>() == Rational(1, 86400));
static_assert(dtRateOf<Frames>() == Rational(30000, 1001));
static_assert(dtRateOf<std::chrono::duration<int, std::ratio<2, 50>>>() == Rational(25, 1));
static_assert(dtRateOf<std::chrono::duration<double>>() == Rational(1, 1));

static_assert(dtTimeFrom(minutes(3)) == DtTime(180, 1, 1));
static_assert(dtTimeFrom(seconds(2), Rational(25, 1)).getCount() == 50);
static_assert(dtDurationFrom<milliseconds>(DtTime(1, 25, 1)) == milliseconds(40));
static_assert(std::is_same_v<decltype(dtDurationFrom<hours>(DtTime())), hours>);

TEST(DtChrono, ADurationIsATimeAtItsOwnRate)
{
    EXPECT_EQ(textOf(dtTimeFrom(milliseconds(1500))), "1500 at 1000/1");
    EXPECT_EQ(textOf(dtTimeFrom(minutes(-3))), "-3 at 1/60");
    EXPECT_EQ(textOf(dtTimeFrom(Frames(1001))), "1001 at 30000/1001");
    EXPECT_EQ(textOf(dtTimeFrom(nanoseconds::max())), "9223372036854775807 at 1000000000/1");
    EXPECT_EQ(textOf(dtTimeFrom(nanoseconds::min())), "-9223372036854775808 at 1000000000/1");
    EXPECT_EQ(textOf(dtTimeFrom(std::chrono::duration<short>(-7))), "-7 at 1/1");
    EXPECT_EQ(textOf(dtTimeFrom(std::chrono::duration<unsigned>(4294967295U))),
              "4294967295 at 1/1");
}

TEST(DtChrono, ACountBeyond64BitsWraps)
{
    using Unsigned = std::chrono::duration<std::uint64_t>;
    EXPECT_EQ(textOf(dtTimeFrom(Unsigned(9223372036854775808ULL))), "-9223372036854775808 at 1/1");
    EXPECT_EQ(textOf(dtTimeFrom(Unsigned(18446744073709551615ULL))), "-1 at 1/1");
}

TEST(DtChrono, ADurationAtAnotherRateIsTruncatedTowardZero)
{
    EXPECT_EQ(textOf(dtTimeFrom(milliseconds(99), Rational(25, 1))), "2 at 25/1");
    EXPECT_EQ(textOf(dtTimeFrom(milliseconds(-99), Rational(25, 1))), "-2 at 25/1");
    EXPECT_EQ(textOf(dtTimeFrom(seconds(1001), Rational(30000, 1001))), "30000 at 30000/1001");
    EXPECT_EQ(textOf(dtTimeFrom(milliseconds(99), Rational(1000, 1))), "99 at 1000/1");
    EXPECT_THROW(dtTimeFrom(milliseconds(99), Rational(0, 1)), DtEx::BadRate);
}

TEST(DtChrono, ATimeIsADurationRoundedInAStyle)
{
    const DtTime plus(7, 2, 1);
    const DtTime minus(-7, 2, 1);
    EXPECT_EQ(dtDurationFrom<seconds>(plus).count(), 3);
    EXPECT_EQ(dtDurationFrom<seconds>(plus, std::round_toward_zero).count(), 3);
    EXPECT_EQ(dtDurationFrom<seconds>(plus, std::round_to_nearest).count(), 4);
    EXPECT_EQ(dtDurationFrom<seconds>(plus, std::round_toward_infinity).count(), 4);
    EXPECT_EQ(dtDurationFrom<seconds>(plus, std::round_toward_neg_infinity).count(), 3);
    EXPECT_EQ(dtDurationFrom<seconds>(plus, std::round_indeterminate).count(), 4);
    EXPECT_EQ(dtDurationFrom<seconds>(minus).count(), -3);
    EXPECT_EQ(dtDurationFrom<seconds>(minus, std::round_to_nearest).count(), -3);
    EXPECT_EQ(dtDurationFrom<seconds>(minus, std::round_toward_infinity).count(), -3);
    EXPECT_EQ(dtDurationFrom<seconds>(minus, std::round_toward_neg_infinity).count(), -4);
    EXPECT_EQ(dtDurationFrom<seconds>(minus, std::round_indeterminate).count(), -4);
    EXPECT_EQ(dtDurationFrom<Frames>(DtTime(1001, 1, 1)).count(), 30000);
    using Small = std::chrono::duration<std::int16_t>;
    EXPECT_EQ(dtDurationFrom<Small>(DtTime(-64000, 2, 1)).count(), -32000);
    EXPECT_EQ(dtDurationFrom<seconds>(DtTime(HIGHEST, 1, 1), std::round_to_nearest).count(),
              LOWEST);
}

// A duration of one kind as the time of another.
template <class To, class From> void expectCast(From from)
{
    ASSERT_EQ(dtTimeFrom(from, dtRateOf<To>()).getCount(), duration_cast<To>(from).count())
        << from.count();
    ASSERT_EQ(dtDurationFrom<To>(dtTimeFrom(from)), duration_cast<To>(from)) << from.count();
}

TEST(DtChrono, TruncatesAsTheStandardLibraryDoes)
{
    TimeRandom random(641);
    for (int i = 0; i < 20000; ++i)
    {
        const std::int64_t fine = random.number64();
        expectCast<microseconds>(nanoseconds(fine));
        expectCast<milliseconds>(nanoseconds(fine));
        expectCast<seconds>(nanoseconds(fine));
        expectCast<seconds>(milliseconds(fine));
        expectCast<minutes>(milliseconds(fine));
        expectCast<hours>(milliseconds(fine));
        expectCast<hours>(seconds(fine));
        expectCast<Days>(minutes(fine));
        const std::int64_t coarse = fine >> 31;
        expectCast<nanoseconds>(seconds(coarse));
        expectCast<milliseconds>(Days(coarse));
        expectCast<minutes>(Days(coarse));
        expectCast<milliseconds>(Frames(coarse));
        expectCast<Frames>(milliseconds(coarse));
        expectCast<Frames>(Frames(fine));
    }
}

TEST(DtChrono, RoundsUpAndDownAsTheStandardLibraryDoes)
{
    TimeRandom random(642);
    for (int i = 0; i < 20000; ++i)
    {
        const milliseconds duration(random.number64() >> 20);
        const DtTime time = dtTimeFrom(duration);
        ASSERT_EQ(dtDurationFrom<seconds>(time, std::round_toward_neg_infinity),
                  std::chrono::floor<seconds>(duration));
        ASSERT_EQ(dtDurationFrom<seconds>(time, std::round_toward_infinity),
                  std::chrono::ceil<seconds>(duration));
        // The standard's rounding to nearest takes halves to even.
        if (duration.count() % 500 != 0)
        {
            ASSERT_EQ(dtDurationFrom<seconds>(time, std::round_to_nearest),
                      std::chrono::round<seconds>(duration));
        }
    }
}

TEST(DtChrono, ThereAndBackAgainIsTheSameDuration)
{
    TimeRandom random(643);
    for (int i = 0; i < 20000; ++i)
    {
        const nanoseconds duration(random.number64());
        ASSERT_EQ(dtDurationFrom<nanoseconds>(dtTimeFrom(duration)), duration);
        const DtTime time(random.number64(), 30000, 1001);
        ASSERT_EQ(textOf(dtTimeFrom(dtDurationFrom<Frames>(time))), textOf(time));
    }
}

TEST(DtChrono, ProductsOfRatesWrapAsInEveryConversion)
{
    // An hour is 3.6e12 ns, but the product of the rates does not fit 32 bits.
    EXPECT_EQ(dtDurationFrom<nanoseconds>(DtTime(1, 1, 3600)).count(),
              support::convertedCount(1, {1, 3600}, {1000000000, 1}));
    TimeRandom random(644);
    for (int i = 0; i < 20000; ++i)
    {
        const std::int64_t count = random.number64();
        const DtTime time(count, random.rate());
        const std::string expected = outcomeOf(
            [&] {
                return std::to_string(convertedCount(count, valueOf(time)._rate, {1000, 1}));
            });
        ASSERT_EQ(
            outcomeOf([&] { return std::to_string(dtDurationFrom<milliseconds>(time).count()); }),
            expected)
            << time;
    }
}

} // namespace

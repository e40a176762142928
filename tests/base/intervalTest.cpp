#include "base/interval.h"

#include "base/dtTime.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <unordered_set>

namespace
{

using Zu::DtTimeIndex;
using Zu::Interval;

template <class T> constexpr T NO_NUMBER = std::numeric_limits<T>::quiet_NaN();
template <class T> constexpr T POS_INFINITY = std::numeric_limits<T>::infinity();

template <class T> constexpr bool isPlainPair()
{
    return std::is_trivially_copyable_v<Interval<T>> && std::is_standard_layout_v<Interval<T>> &&
           !std::is_polymorphic_v<Interval<T>> && sizeof(Interval<T>) == 2 * sizeof(T);
}
static_assert(isPlainPair<float>() && isPlainPair<double>() && isPlainPair<DtTimeIndex>());

static_assert(Interval<float>::DISJOINT == 0 && Interval<double>::DISJOINT == 0);
static_assert(Interval<float>::CONTAINED == 1 && Interval<double>::CONTAINED == 1);
static_assert(Interval<float>::OVERLAPPING == 2 && Interval<double>::OVERLAPPING == 2);
static_assert(Interval<float>::CONTAINING == 3 && Interval<double>::CONTAINING == 3);

static_assert(Interval<float>(2)._min == 2 && Interval<float>(2)._max == 2);
static_assert(Interval<double>(1, 4).getLength() == 3 && Interval<double>(1, 4).getCenter() == 2.5);
static_assert(Interval<double>(-1, 2) * Interval<double>(-3, 1) == Interval<double>(-6, 3));
static_assert((Interval<float>(1, 2) *= -1.0F) == Interval<float>(-2, -1));
static_assert(Interval<float>(0, 1).containsClosed(1.0F));
static_assert(Interval<float>(3, 1).isInverted() && Interval<float>(1, 3).clamp(4) == 3);
static_assert(Interval<double>(1, 2).getInclusiveContainment(Interval<double>(0, 3)) ==
              Interval<double>::CONTAINED);
static_assert(Interval<double>(0, 1).getExclusiveContainment(Interval<double>(1, 2)) ==
              Interval<double>::DISJOINT);
static_assert(Interval<DtTimeIndex>(DtTimeIndex(3))._max == DtTimeIndex(3));

template <class T> bool isSame(T a, T b)
{
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

// Bound by bound, to the sign of 0; two NaNs are equal.
template <class T> void expectSame(const Interval<T>& actual, const Interval<T>& expected)
{
    EXPECT_TRUE(isSame(actual._min, expected._min) && isSame(actual._max, expected._max))
        << actual << " instead of " << expected;
}

// Calls with random intervals, of which every fourth is inverted.
template <class T, class Act> void forRandomPairs(Act act)
{
    std::mt19937 random(61);
    std::uniform_real_distribution<T> bounds(-100, 100);
    const auto make = [&]
    {
        const T a = bounds(random);
        const T b = bounds(random);
        return random() % 4 == 0 ? Interval<T>(std::max(a, b), std::min(a, b))
                                 : Interval<T>(std::min(a, b), std::max(a, b));
    };
    for (int i = 0; i < 5000; ++i)
    {
        const Interval<T> first = make();
        act(first, make(), bounds(random));
    }
}

template <class Act> void forRandomPairsOfBoth(Act act)
{
    forRandomPairs<float>(act);
    forRandomPairs<double>(act);
}

// Calls with a value of each of the two types.
template <class Act> void forBoth(Act act)
{
    act(float());
    act(double());
}

template <class T> Interval<T> leastAndGreatest(std::initializer_list<T> values)
{
    return Interval<T>(std::min(values), std::max(values));
}

TEST(Interval, KeepsTheBoundsAsGiven)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            const Interval<T> single(T(2.5));
            EXPECT_EQ(single._min, T(2.5));
            EXPECT_EQ(single._max, T(2.5));
            const Interval<T> inverted(3, -1);
            EXPECT_EQ(inverted._min, T(3));
            EXPECT_EQ(inverted._max, T(-1));
            const auto bounds = std::bit_cast<std::array<T, 2>>(inverted);
            EXPECT_EQ(bounds[0], T(3));
            Interval<T> copy(inverted);
            copy._min = 7;
            EXPECT_EQ(inverted._min, T(3));
            EXPECT_EQ(copy, Interval<T>(7, -1));
        });
}

TEST(Interval, LengthAndCenter)
{
    forRandomPairsOfBoth(
        [](const auto& a, const auto&, auto v)
        {
            using T = decltype(v);
            EXPECT_EQ(a.getLength(), a._max - a._min);
            EXPECT_EQ(a.getCenter(), (a._max + a._min) * T(0.5));
            static_assert(std::is_same_v<decltype(a.getLength()), T>);
            static_assert(std::is_same_v<decltype(a.getCenter()), T>);
        });
    EXPECT_EQ(Interval<float>(3, 1).getLength(), -2.0F);
    EXPECT_EQ(Interval<float>(-1, 4).getCenter(), 1.5F);
    EXPECT_TRUE(std::isnan(Interval<double>(POS_INFINITY<double>).getLength()));
    EXPECT_EQ(Interval<double>(1e308, 1.5e308).getCenter(), POS_INFINITY<double>);
}

TEST(Interval, MovesByAValue)
{
    forRandomPairsOfBoth(
        [](auto a, const auto&, auto v)
        {
            const auto before = a;
            expectSame(a += v, {before._min + v, before._max + v});
            a = before;
            expectSame(a -= v, {before._min - v, before._max - v});
        });
}

TEST(Interval, SumsAndDifferencesOfIntervals)
{
    forRandomPairsOfBoth(
        [](auto a, const auto& b, auto)
        {
            const auto before = a;
            expectSame(a += b, {before._min + b._min, before._max + b._max});
            a = before;
            expectSame(a -= b, {before._min - b._max, before._max - b._min});
            expectSame(before + b, {before._min + b._min, before._max + b._max});
            expectSame(before - b, {before._min - b._max, before._max - b._min});
        });
    Interval<float> difference(1, 3);
    difference -= Interval<float>(1, 2);
    EXPECT_EQ(difference, Interval<float>(-1, 2));
}

TEST(Interval, CanBeItsOwnOperand)
{
    Interval<double> sum(1, 2);
    sum += sum;
    EXPECT_EQ(sum, Interval<double>(2, 4));
    Interval<double> difference(1, 3);
    difference -= difference;
    EXPECT_EQ(difference, Interval<double>(-2, 2));
    Interval<double> product(-1, 2);
    product *= product;
    EXPECT_EQ(product, Interval<double>(-2, 4));
    Interval<double> quotient(1, 2);
    quotient /= quotient;
    EXPECT_EQ(quotient, Interval<double>(0.5, 2));
}

TEST(Interval, OperatorsReturnTheIntervalItself)
{
    Interval<float> interval(1, 2);
    EXPECT_EQ(&(interval += 1.0F), &interval);
    EXPECT_EQ(&(interval -= 1.0F), &interval);
    EXPECT_EQ(&(interval *= 1.0F), &interval);
    EXPECT_EQ(&(interval /= 1.0F), &interval);
    EXPECT_EQ(&(interval += Interval<float>(0, 1)), &interval);
    EXPECT_EQ(&(interval -= Interval<float>(0, 1)), &interval);
    EXPECT_EQ(&(interval *= Interval<float>(0, 1)), &interval);
    EXPECT_EQ(&(interval /= Interval<float>(1, 2)), &interval);
}

TEST(Interval, ScalingByANegativeValueSwapsTheBounds)
{
    forRandomPairsOfBoth(
        [](auto a, const auto&, auto v)
        {
            const auto before = a;
            a *= v;
            if (v >= 0)
                expectSame(a, {before._min * v, before._max * v});
            else
                expectSame(a, {before._max * v, before._min * v});
            a = before;
            a /= v;
            if (v >= 0)
                expectSame(a, {before._min / v, before._max / v});
            else
                expectSame(a, {before._max / v, before._min / v});
        });
}

TEST(Interval, ScalingByUnusualValues)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            const T infinite = POS_INFINITY<T>;
            const T nan = NO_NUMBER<T>;
            const auto times = [](T min, T max, T v) { return Interval<T>(min, max) *= v; };
            const auto by = [](T min, T max, T v) { return Interval<T>(min, max) /= v; };
            expectSame(times(1, 2, -1), {-2, -1});
            expectSame(times(1, 2, T(0.0)), {T(0.0), T(0.0)});
            expectSame(times(-1, 2, T(-0.0)), {T(0.0), T(-0.0)});
            expectSame(times(-1, 2, infinite), {-infinite, infinite});
            expectSame(times(-1, 3, -infinite), {-infinite, infinite});
            expectSame(times(0, 1, infinite), {nan, infinite});
            expectSame(times(0, 1, -infinite), {-infinite, nan});
            expectSame(times(1, 2, nan), {nan, nan});
            expectSame(times(nan, 2, -1), {-2, nan});
            expectSame(by(1, 2, 4), {T(0.25), T(0.5)});
            expectSame(by(1, 2, -4), {T(-0.5), T(-0.25)});
            expectSame(by(-1, 2, T(0.0)), {-infinite, infinite});
            // -0 is at or above 0, so the bounds stay where they are.
            expectSame(by(-1, 2, T(-0.0)), {infinite, -infinite});
            expectSame(by(0, 1, T(0.0)), {nan, infinite});
            expectSame(by(nan, 1, T(0.0)), {nan, infinite});
            expectSame(by(-infinite, infinite, T(0.0)), {-infinite, infinite});
            expectSame(by(-1, 2, infinite), {T(-0.0), T(0.0)});
            expectSame(by(-1, 2, -infinite), {T(-0.0), T(0.0)});
            expectSame(by(1, 2, nan), {nan, nan});
        });
}

TEST(Interval, TheProductGoesFromTheLeastToTheGreatestProductOfBounds)
{
    forRandomPairsOfBoth(
        [](auto a, const auto& b, auto v)
        {
            using T = decltype(v);
            const Interval<T> expected = leastAndGreatest<T>(
                {a._min * b._min, a._min * b._max, a._max * b._min, a._max * b._max});
            expectSame(a * b, expected);
            a *= b;
            expectSame(a, expected);
        });
    const struct
    {
        Interval<double> _a;
        Interval<double> _b;
        Interval<double> _product;
    } cases[] = {
        {{-1, 2}, {-3, 1}, {-6, 3}},  {{1, 2}, {3, 4}, {3, 8}},     {{-2, -1}, {3, 4}, {-8, -3}},
        {{1, 2}, {-4, -3}, {-8, -3}}, {{-2, -1}, {-4, -3}, {3, 8}}, {{-1, 2}, {3, 4}, {-4, 8}},
        {{-1, 2}, {-4, -3}, {-8, 4}}, {{3, 4}, {-1, 2}, {-4, 8}},   {{2, -1}, {3, 4}, {-4, 8}},
        {{-3, 2}, {-1, 2}, {-6, 4}},
    };
    for (const auto& row : cases) EXPECT_EQ(row._a * row._b, row._product) << row._a << row._b;
}

TEST(Interval, TheQuotientIsTheProductWithTheReciprocal)
{
    forRandomPairsOfBoth(
        [](auto a, const auto& b, auto v)
        {
            using T = decltype(v);
            const T low = static_cast<T>(1.0 / static_cast<double>(b._max));
            const T high = static_cast<T>(1.0 / static_cast<double>(b._min));
            const Interval<T> expected =
                leastAndGreatest<T>({a._min * low, a._min * high, a._max * low, a._max * high});
            expectSame(a / b, expected);
            a /= b;
            expectSame(a, expected);
        });
    EXPECT_EQ(Interval<float>(1, 2) / Interval<float>(2, 4), Interval<float>(0.25F, 1));
    EXPECT_EQ(Interval<double>(-1, 2) / Interval<double>(-4, -2), Interval<double>(-1, 0.5));
}

TEST(Interval, DividingByAnIntervalThatHoldsZeroGivesInfinitiesOrNaNs)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            using I = Interval<T>;
            const T infinite = POS_INFINITY<T>;
            expectSame(I(1, 2) / I(0, 1), I(1, infinite));
            expectSame(I(1, 2) / I(0, 0), I(infinite, infinite));
            expectSame(I(1, 2) / I(T(-0.0), T(-0.0)), I(-infinite, -infinite));
            expectSame(I(1, 2) / I(-1, T(-0.0)), I(-infinite, -1));
            expectSame(I(1, 2) / I(-1, 0), I(-2, infinite));
            expectSame(I(-1, 2) / I(0, 1), I(-infinite, infinite));
            // Where 0 is only inside the interval, both bounds have reciprocals.
            expectSame(I(1, 2) / I(-1, 1), I(-2, 2));
            const I undefined = I(0, 0) / I(0, 0);
            EXPECT_TRUE(std::isnan(undefined._min) && std::isnan(undefined._max)) << undefined;
            I quotient(-1, 2);
            quotient /= I(0, 1);
            expectSame(quotient, I(-infinite, infinite));
        });
}

TEST(Interval, ExtendsToTakeInAValueOrAnInterval)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            using I = Interval<T>;
            const T nan = NO_NUMBER<T>;
            const struct
            {
                I _before;
                I _other;
                I _after;
            } cases[] = {
                {{0, 2}, {1, 1}, {0, 2}},       {{0, 2}, {3, 3}, {0, 3}},
                {{0, 2}, {-1, -1}, {-1, 2}},    {{0, 2}, {0, 0}, {0, 2}},
                {{0, 2}, {2, 2}, {0, 2}},       {{0, 2}, {-1, 3}, {-1, 3}},
                {{0, 2}, {0.5, 1}, {0, 2}},     {{0, 2}, {1, 5}, {0, 5}},
                {{0, 2}, {5, 7}, {0, 7}},       {{2, 0}, {1, 1}, {1, 1}},
                {{5, -5}, {1, 2}, {1, 2}},      {{0, 2}, {3, -1}, {0, 2}},
                {{0, 2}, {nan, nan}, {nan, 2}}, {{nan, 2}, {1, 1}, {1, 2}},
                {{0, nan}, {-1, 5}, {-1, nan}}, {{0, 2}, {nan, 3}, {nan, 3}},
                {{0, 2}, {-1, nan}, {-1, 2}},
            };
            for (const auto& row : cases)
            {
                I interval = row._before;
                interval.extend(row._other);
                expectSame(interval, row._after);
                if (!isSame(row._other._min, row._other._max)) continue;
                interval = row._before;
                interval.extend(row._other._min);
                expectSame(interval, row._after);
            }
        });
}

TEST(Interval, IntersectsToTheCommonPart)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            using I = Interval<T>;
            const T nan = NO_NUMBER<T>;
            const struct
            {
                I _before;
                I _other;
                I _after;
            } cases[] = {
                {{0, 2}, {1, 1}, {1, 1}},     {{0, 2}, {3, 3}, {3, 2}},
                {{0, 2}, {-1, -1}, {0, -1}},  {{0, 2}, {0, 0}, {0, 0}},
                {{0, 2}, {2, 2}, {2, 2}},     {{0, 2}, {-1, 3}, {0, 2}},
                {{0, 2}, {0.5, 1}, {0.5, 1}}, {{0, 2}, {1, 5}, {1, 2}},
                {{0, 2}, {-5, 1}, {0, 1}},    {{0, 2}, {5, 7}, {5, 2}},
                {{2, 0}, {1, 1}, {2, 0}},     {{0, 2}, {nan, nan}, {0, nan}},
                {{nan, 2}, {1, 1}, {nan, 1}}, {{0, nan}, {-1, 5}, {0, 5}},
                {{0, 2}, {nan, 1}, {0, 1}},   {{0, 2}, {1, nan}, {1, nan}},
            };
            for (const auto& row : cases)
            {
                I interval = row._before;
                interval.intersect(row._other);
                expectSame(interval, row._after);
                if (!isSame(row._other._min, row._other._max)) continue;
                interval = row._before;
                interval.intersect(row._other._min);
                expectSame(interval, row._after);
            }
        });
}

TEST(Interval, ContainsValuesByItsKindOfEnds)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            const T tiny = std::numeric_limits<T>::denorm_min();
            const T nan = NO_NUMBER<T>;
            const struct
            {
                Interval<T> _interval;
                T _value;
                bool _closed;
                bool _open;
                bool _leftOpen;
                bool _rightOpen;
            } cases[] = {
                {{0, 1}, T(0.5), true, true, true, true},
                {{0, 1}, 0, true, false, false, true},
                {{0, 1}, T(-0.0), true, false, false, true},
                {{0, 1}, 1, true, false, true, false},
                {{0, 1}, tiny, true, true, true, true},
                {{0, 1}, -tiny, false, false, false, false},
                {{0, 1}, std::nextafter(T(1), T(2)), false, false, false, false},
                {{0, 1}, std::nextafter(T(1), T(0)), true, true, true, true},
                {{0, 1}, 2, false, false, false, false},
                {{0, 1}, -1, false, false, false, false},
                {{1, 1}, 1, true, false, false, false},
                {{1, 0}, T(0.5), false, false, false, false},
                {{1, 0}, 1, false, false, false, false},
                {{1, 0}, 0, false, false, false, false},
                {{0, 1}, nan, false, false, false, false},
                {{nan, 1}, T(0.5), false, false, false, false},
                {{0, nan}, T(0.5), false, false, false, false},
                {{-POS_INFINITY<T>, POS_INFINITY<T>}, POS_INFINITY<T>, true, false, true, false},
            };
            for (const auto& row : cases)
            {
                SCOPED_TRACE(testing::Message() << row._interval << " and " << row._value);
                EXPECT_EQ(row._interval.containsClosed(row._value), row._closed);
                EXPECT_EQ(row._interval.containsOpen(row._value), row._open);
                EXPECT_EQ(row._interval.containsLeftOpen(row._value), row._leftOpen);
                EXPECT_EQ(row._interval.containsRightOpen(row._value), row._rightOpen);
            }
        });
}

TEST(Interval, ContainsIntervalsByItsKindOfEnds)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            const T nan = NO_NUMBER<T>;
            const struct
            {
                Interval<T> _interval;
                Interval<T> _other;
                bool _closed;
                bool _open;
                bool _leftOpen;
                bool _rightOpen;
            } cases[] = {
                {{0, 3}, {1, 2}, true, true, true, true},
                {{0, 3}, {0, 2}, true, false, false, true},
                {{0, 3}, {1, 3}, true, false, true, false},
                {{0, 3}, {0, 3}, true, false, false, false},
                {{0, 3}, {-1, 2}, false, false, false, false},
                {{0, 3}, {1, 4}, false, false, false, false},
                {{0, 3}, {-1, 4}, false, false, false, false},
                {{0, 3}, {4, 5}, false, false, false, false},
                {{0, 3}, {3, 3}, true, false, true, false},
                {{0, 3}, {0, 0}, true, false, false, true},
                {{3, 0}, {1, 2}, false, false, false, false},
                {{0, 3}, {nan, 2}, false, false, false, false},
                {{0, 3}, {1, nan}, false, false, false, false},
                {{nan, 3}, {1, 2}, false, false, false, false},
                {{0, nan}, {1, 2}, false, false, false, false},
            };
            for (const auto& row : cases)
            {
                SCOPED_TRACE(testing::Message() << row._interval << " and " << row._other);
                EXPECT_EQ(row._interval.containsClosed(row._other), row._closed);
                EXPECT_EQ(row._interval.containsOpen(row._other), row._open);
                EXPECT_EQ(row._interval.containsLeftOpen(row._other), row._leftOpen);
                EXPECT_EQ(row._interval.containsRightOpen(row._other), row._rightOpen);
            }
        });
}

TEST(Interval, InclusiveContainmentCountsACommonEndPoint)
{
    forBoth(
        [](auto zero)
        {
            using I = Interval<decltype(zero)>;
            const auto nan = NO_NUMBER<decltype(zero)>;
            const struct
            {
                I _interval;
                I _other;
                typename I::Containment _result;
            } cases[] = {
                {{1, 2}, {0, 3}, I::CONTAINED},
                {{0, 3}, {1, 2}, I::CONTAINING},
                {{0, 2}, {1, 3}, I::OVERLAPPING},
                {{1, 3}, {0, 2}, I::OVERLAPPING},
                {{0, 1}, {2, 3}, I::DISJOINT},
                {{2, 3}, {0, 1}, I::DISJOINT},
                {{0, 1}, {1, 2}, I::OVERLAPPING},
                {{1, 2}, {0, 1}, I::OVERLAPPING},
                {{0, 1}, {0, 1}, I::CONTAINED},
                {{1, 1}, {1, 1}, I::CONTAINED},
                {{0, 1}, {0, 2}, I::CONTAINED},
                {{1, 2}, {0, 2}, I::CONTAINED},
                {{0, 2}, {0, 1}, I::CONTAINING},
                {{0, 2}, {1, 2}, I::CONTAINING},
                {{1, 1}, {0, 1}, I::CONTAINED},
                {{0, 1}, {1, 1}, I::CONTAINING},
                // Only inverted intervals are inside another, or contain one, without meeting it.
                {{5, 1}, {0, 3}, I::DISJOINT},
                {{2, 1}, {2, 1}, I::DISJOINT},
                {{0, 3}, {5, 1}, I::DISJOINT},
                // A NaN is not above anything.
                {{nan, nan}, {0, 1}, I::CONTAINING},
                {{0, 1}, {nan, nan}, I::CONTAINING},
                {{0, 5}, {nan, 3}, I::CONTAINING},
                {{0, 2}, {nan, 3}, I::OVERLAPPING},
                {{4, 5}, {nan, 3}, I::DISJOINT},
            };
            for (const auto& row : cases)
                EXPECT_EQ(row._interval.getInclusiveContainment(row._other), row._result)
                    << row._interval << row._other;
        });
}

TEST(Interval, ExclusiveContainmentDoesNotCountACommonEndPoint)
{
    forBoth(
        [](auto zero)
        {
            using I = Interval<decltype(zero)>;
            const auto nan = NO_NUMBER<decltype(zero)>;
            const struct
            {
                I _interval;
                I _other;
                typename I::Containment _result;
            } cases[] = {
                {{1, 2}, {0, 3}, I::CONTAINED},
                {{0, 3}, {1, 2}, I::CONTAINING},
                {{0, 2}, {1, 3}, I::OVERLAPPING},
                {{1, 3}, {0, 2}, I::OVERLAPPING},
                {{0, 1}, {2, 3}, I::DISJOINT},
                {{2, 3}, {0, 1}, I::DISJOINT},
                {{0, 1}, {1, 2}, I::DISJOINT},
                {{1, 2}, {0, 1}, I::DISJOINT},
                {{0, 1}, {0, 1}, I::CONTAINED},
                {{0, 1}, {0, 2}, I::CONTAINED},
                {{1, 2}, {0, 2}, I::CONTAINED},
                {{0, 2}, {0, 1}, I::CONTAINING},
                {{0, 2}, {1, 2}, I::CONTAINING},
                {{1, 1}, {0, 2}, I::CONTAINED},
                {{0, 2}, {1, 1}, I::CONTAINING},
                // A single point at the end of the other one has no interior to share.
                {{0, 0}, {0, 1}, I::DISJOINT},
                {{1, 1}, {1, 1}, I::DISJOINT},
                {{0, 1}, {1, 1}, I::DISJOINT},
                {{5, 1}, {0, 3}, I::DISJOINT},
                {{2, 1}, {2, 1}, I::DISJOINT},
                {{0, 3}, {5, 1}, I::DISJOINT},
                {{nan, nan}, {0, 1}, I::CONTAINING},
                {{0, 1}, {nan, nan}, I::CONTAINING},
                {{0, 5}, {nan, 3}, I::CONTAINING},
                {{0, 2}, {nan, 3}, I::OVERLAPPING},
                {{3, 5}, {nan, 3}, I::DISJOINT},
            };
            for (const auto& row : cases)
                EXPECT_EQ(row._interval.getExclusiveContainment(row._other), row._result)
                    << row._interval << row._other;
        });
}

// The three conditions of a classification and the result of each combination. Small intervals
// cover all eight.
TEST(Interval, EveryCombinationOfTheThreeTestsHasItsContainment)
{
    const int inclusive[] = {0, 0, 0, 0, 1, 1, 2, 3};
    const int exclusive[] = {0, 0, 1, 1, 0, 0, 2, 3};
    bool isInclusiveReached[8] = {};
    bool isExclusiveReached[8] = {};
    const float bounds[] = {0, 1, 2, 3, NO_NUMBER<float>};
    for (const float a : bounds)
        for (const float b : bounds)
            for (const float c : bounds)
                for (const float d : bounds)
                {
                    const int isOutside = !(a >= c && d >= b);
                    const int isHolding = !(a > c) && !(d > b);
                    const int isMeeting = !(a > d) && !(c > b);
                    const int isMeetingInside = !(a >= d) && !(c >= b);
                    const int i = 4 * isMeeting + 2 * isOutside + isHolding;
                    const int e = 4 * isOutside + 2 * isMeetingInside + isHolding;
                    isInclusiveReached[i] = true;
                    isExclusiveReached[e] = true;
                    SCOPED_TRACE(testing::Message() << a << b << c << d);
                    const Interval<float> floats(a, b);
                    const Interval<float> otherFloats(c, d);
                    EXPECT_EQ(floats.getInclusiveContainment(otherFloats), inclusive[i]);
                    EXPECT_EQ(floats.getExclusiveContainment(otherFloats), exclusive[e]);
                    const Interval<double> doubles(a, b);
                    const Interval<double> otherDoubles(c, d);
                    EXPECT_EQ(doubles.getInclusiveContainment(otherDoubles), inclusive[i]);
                    EXPECT_EQ(doubles.getExclusiveContainment(otherDoubles), exclusive[e]);
                }
    for (int index = 0; index < 8; ++index)
    {
        EXPECT_TRUE(isInclusiveReached[index]) << index;
        EXPECT_TRUE(isExclusiveReached[index]) << index;
    }
}

TEST(Interval, ClampsToTheNearestValueInside)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            const T nan = NO_NUMBER<T>;
            const struct
            {
                Interval<T> _interval;
                T _value;
                T _result;
            } cases[] = {
                {{1, 3}, 2, 2},
                {{1, 3}, 1, 1},
                {{1, 3}, 3, 3},
                {{1, 3}, 0, 1},
                {{1, 3}, 4, 3},
                {{1, 3}, POS_INFINITY<T>, 3},
                {{1, 3}, -POS_INFINITY<T>, 1},
                {{1, 3}, nan, 1},
                {{3, 1}, 2, 3},
                {{3, 1}, 0, 3},
                {{3, 1}, 3, 1},
                {{3, 1}, 4, 1},
                {{nan, 3}, 2, nan},
                {{1, nan}, 2, nan},
                {{1, nan}, 0, 1},
            };
            for (const auto& row : cases)
                EXPECT_TRUE(isSame(row._interval.clamp(row._value), row._result))
                    << row._interval << row._value << " " << row._interval.clamp(row._value);
        });
}

TEST(Interval, OrderOfTheBounds)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            const T nan = NO_NUMBER<T>;
            const struct
            {
                Interval<T> _interval;
                bool _isInverted;
                bool _isNonEmptyOpen;
            } cases[] = {
                {{1, 2}, false, true},
                {{1, 1}, false, false},
                {{T(0.0), T(-0.0)}, false, false},
                {{2, 1}, true, false},
                {{nan, 1}, false, true},
                {{1, nan}, false, true},
                {{nan, nan}, false, true},
                {{-POS_INFINITY<T>, POS_INFINITY<T>}, false, true},
                {{POS_INFINITY<T>, -POS_INFINITY<T>}, true, false},
            };
            for (const auto& row : cases)
            {
                EXPECT_EQ(row._interval.isInverted(), row._isInverted) << row._interval;
                EXPECT_EQ(row._interval.isValid(), !row._isInverted) << row._interval;
                EXPECT_EQ(row._interval.isNonEmptyOpen(), row._isNonEmptyOpen) << row._interval;
            }
        });
}

TEST(Interval, EqualWithinAToleranceIsBothBoundsWithinIt)
{
    forBoth(
        [](auto zero)
        {
            using T = decltype(zero);
            const T nan = NO_NUMBER<T>;
            const T ulp = std::numeric_limits<T>::epsilon();
            const struct
            {
                Interval<T> _other;
                bool _isEqual;
            } cases[] = {
                {{1, 2}, true},
                {{T(1.125), T(1.875)}, true},
                {{T(1.25) - ulp, 2}, true},
                {{T(1.25), 2}, false},
                {{T(0.75), 2}, false},
                {{1, T(2.25)}, false},
                {{1, T(1.75)}, false},
                {{3, 4}, false},
                {{nan, 2}, true},
                {{1, nan}, true},
                {{nan, 3}, false},
            };
            for (const auto& row : cases)
                EXPECT_EQ(Interval<T>(1, 2).isEqual(row._other, T(0.25)), row._isEqual)
                    << row._other;
        });
}

TEST(Interval, IsEqualToOneWithTheSameBounds)
{
    forBoth(
        [](auto zero)
        {
            using I = Interval<decltype(zero)>;
            const auto nan = NO_NUMBER<decltype(zero)>;
            EXPECT_TRUE(I(1, 2) == I(1, 2));
            EXPECT_FALSE(I(1, 2) != I(1, 2));
            EXPECT_FALSE(I(1, 2) == I(1, 3));
            EXPECT_FALSE(I(1, 2) == I(0, 2));
            EXPECT_TRUE(I(1, 2) != I(2, 1));
            EXPECT_TRUE(I(-zero, 1) == I(zero, 1));
            EXPECT_FALSE(I(nan, 1) == I(nan, 1));
        });
}

TEST(Interval, EqualIntervalsHaveEqualHashes)
{
    forRandomPairsOfBoth(
        [](const auto& a, const auto& b, auto v)
        {
            using I = Interval<decltype(v)>;
            const std::hash<I> hash;
            EXPECT_EQ(hash(a), hash(I(a._min, a._max)));
            std::unordered_set<I> set = {a, b, a};
            EXPECT_EQ(set.size(), 2U);
            EXPECT_EQ(set.count(b), 1U);
            EXPECT_EQ(set.count(I(v + 200)), 0U);
        });
    EXPECT_EQ(std::hash<Interval<double>>()({-0.0, 1}), std::hash<Interval<double>>()({0.0, 1}));
}

template <class T> std::string textOf(const Interval<T>& interval)
{
    std::ostringstream out;
    out << interval;
    return out.str();
}

TEST(Interval, IsWrittenInBrackets)
{
    EXPECT_EQ(textOf(Interval<float>(0, 1)), "[0, 1]");
    EXPECT_EQ(textOf(Interval<double>(2.5, -1e30)), "[2.5, -1e+30]");
    EXPECT_EQ(textOf(Interval<double>(-POS_INFINITY<double>, POS_INFINITY<double>)), "[-inf, inf]");
    std::ostringstream out;
    out.precision(2);
    out << std::fixed << Interval<double>(1.0, 2.125);
    EXPECT_EQ(out.str(), "[1.00, 2.12]");
}

TEST(Interval, ANaNIsWrittenWithoutASign)
{
    EXPECT_EQ(textOf(Interval<float>(-NO_NUMBER<float>, NO_NUMBER<float>)), "[nan, nan]");
    EXPECT_EQ(textOf(Interval<double>(NO_NUMBER<double>, -NO_NUMBER<double>)), "[nan, nan]");
}

TEST(Interval, OfTimeIndicesIsAPairOfBounds)
{
    using I = Interval<DtTimeIndex>;
    const DtTimeIndex low(-5);
    const DtTimeIndex high(INT64_C(0x7FFFFFFFFFFFFFFF));
    const I interval(low, high);
    EXPECT_EQ(interval._min, low);
    EXPECT_EQ(interval._max, high);
    const I single(high);
    EXPECT_EQ(single._min, high);
    EXPECT_EQ(single._max, high);
    const I inverted(high, low);
    EXPECT_EQ(inverted._min, high);
    EXPECT_EQ(inverted._max, low);
    const I copy(interval);
    EXPECT_TRUE(copy == interval);
    EXPECT_TRUE(inverted != interval);
    EXPECT_FALSE(I(low, low) == interval);
    EXPECT_EQ(std::hash<I>()(copy), std::hash<I>()(interval));
    EXPECT_EQ(textOf(I(DtTimeIndex(-5), DtTimeIndex(7))), "[-5, 7]");
}

TEST(Interval, ABoundDividedByZeroIsInfinite)
{
    EXPECT_EQ(Interval<double>(1, 2) / Interval<double>(0, 1),
              Interval<double>(1, POS_INFINITY<double>));
}

} // namespace

#include "base/floatUtil.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace
{

using Zu::FloatUtil;

template <class T> using Limits = std::numeric_limits<T>;
template <class T> constexpr T NO_NUMBER = Limits<T>::quiet_NaN();
template <class T> constexpr T POS_INFINITY = Limits<T>::infinity();
template <class T> using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

static_assert(FloatUtil::abs(-1.5F) == 1.5F && FloatUtil::abs(-1.5) == 1.5);
static_assert(FloatUtil::getCompareEps(7.0F) == 0.0001F && FloatUtil::getCompareEps(7.0) == 1e-7);
static_assert(FloatUtil::getCompareEpsPrecision(7.0F) == 5);
static_assert(FloatUtil::getCompareEpsPrecision(7.0) == 8);
static_assert(FloatUtil::sgn(-0.0) == 1 && FloatUtil::sgn(-0.0F) == 1);
static_assert(FloatUtil::floor(-0.5) == -1 && FloatUtil::floor(-0.5F) == -1);
static_assert(FloatUtil::ceil(0.5) == 1 && FloatUtil::ceil(0.5F) == 1);
static_assert(FloatUtil::round(2.5) == 3 && FloatUtil::round(-2.5F) == -2);
static_assert(FloatUtil::isnan(NO_NUMBER<float>) && !FloatUtil::isnan(1.0));
static_assert(FloatUtil::isinf(-POS_INFINITY<double>) && FloatUtil::isfinite(1.0F));
static_assert(FloatUtil::smoothStep(0, 1, 0.5F, 0, 1) == 0.5F);
static_assert(FloatUtil::isEqual(1.0, 1.0) && FloatUtil::isGreater(2.0F, 1.0F, 0.5F));

static_assert(std::is_same_v<decltype(FloatUtil::getCompareEps(1.0F)), float>);
static_assert(std::is_same_v<decltype(FloatUtil::getCompareEps(1.0)), double>);
static_assert(std::is_same_v<decltype(FloatUtil::sgn(1.0)), int>);
static_assert(std::is_same_v<decltype(FloatUtil::getCompareEpsPrecision(1.0F)), int>);

template <class T> Bits<T> bitsOf(T x)
{
    return std::bit_cast<Bits<T>>(x);
}

// Equal to the sign of 0; two NaNs are equal.
template <class T> void expectSame(T actual, T expected, T argument)
{
    if (std::isnan(expected))
        EXPECT_TRUE(std::isnan(actual)) << argument;
    else
        EXPECT_EQ(bitsOf(actual), bitsOf(expected)) << argument << ": " << actual;
}

// Random bit patterns, so all magnitudes and kinds, and numbers with a fraction near 0.
template <class T> std::vector<T> samples()
{
    std::vector<T> all;
    std::mt19937_64 random(41);
    std::uniform_real_distribution<T> around(-1000, 1000);
    for (int i = 0; i < 20000; ++i)
    {
        all.push_back(std::bit_cast<T>(static_cast<Bits<T>>(random())));
        all.push_back(around(random));
    }
    for (int i = -2000; i <= 2000; ++i) all.push_back(static_cast<T>(i) / 4);
    return all;
}

template <class T, class Act> void forSamples(Act act)
{
    for (const T x : samples<T>()) act(x);
}

template <class Act> void forBothSamples(Act act)
{
    forSamples<float>(act);
    forSamples<double>(act);
}

TEST(FloatUtil, AbsClearsTheSignBit)
{
    forBothSamples(
        [](auto x)
        {
            using T = decltype(x);
            static_assert(std::is_same_v<decltype(FloatUtil::abs(x)), T>);
            // A signalling NaN may become a quiet one on the way through a function.
            if (std::isnan(x))
                EXPECT_FALSE(std::signbit(FloatUtil::abs(x)));
            else
                EXPECT_EQ(bitsOf(FloatUtil::abs(x)), bitsOf(x) & ~bitsOf(T(-0.0))) << x;
        });
    EXPECT_EQ(bitsOf(FloatUtil::abs(-0.0F)), 0U);
    EXPECT_EQ(bitsOf(FloatUtil::abs(-0.0)), 0U);
    EXPECT_EQ(bitsOf(FloatUtil::abs(std::bit_cast<float>(0xFFC12345U))), 0x7FC12345U);
    EXPECT_EQ(bitsOf(FloatUtil::abs(std::bit_cast<double>(0xFFF8000000012345ULL))),
              0x7FF8000000012345ULL);
    EXPECT_EQ(FloatUtil::abs(-POS_INFINITY<float>), POS_INFINITY<float>);
    EXPECT_EQ(FloatUtil::abs(-POS_INFINITY<double>), POS_INFINITY<double>);
}

TEST(FloatUtil, TheDefaultToleranceIsTheTypesOwn)
{
    for (const double x : {0.0, -3.5, 1e30, POS_INFINITY<double>, NO_NUMBER<double>})
    {
        EXPECT_EQ(bitsOf(FloatUtil::getCompareEps(static_cast<float>(x))), 0x38D1B717U) << x;
        EXPECT_EQ(bitsOf(FloatUtil::getCompareEps(x)), 0x3E7AD7F29ABCAF48ULL) << x;
        EXPECT_EQ(FloatUtil::getCompareEpsPrecision(static_cast<float>(x)), 5) << x;
        EXPECT_EQ(FloatUtil::getCompareEpsPrecision(x), 8) << x;
    }
}

template <class T> void expectSigns()
{
    const struct
    {
        T _x;
        int _sign;
    } cases[] = {
        {1, 1},
        {T(0.0), 1},
        {T(-0.0), 1},
        {Limits<T>::denorm_min(), 1},
        {Limits<T>::max(), 1},
        {POS_INFINITY<T>, 1},
        {-1, -1},
        {-Limits<T>::denorm_min(), -1},
        {Limits<T>::lowest(), -1},
        {-POS_INFINITY<T>, -1},
        {NO_NUMBER<T>, -1},
        {-NO_NUMBER<T>, -1},
    };
    for (const auto& row : cases) EXPECT_EQ(FloatUtil::sgn(row._x), row._sign) << row._x;
}

TEST(FloatUtil, TheSignIsNeverZeroAndOfANaNIsNegative)
{
    expectSigns<float>();
    expectSigns<double>();
}

template <class T> struct WholeRow
{
    T _x;
    T _floor;
    T _ceil;
    T _round;
};

template <class T> void expectWhole(const std::vector<WholeRow<T>>& rows)
{
    for (const WholeRow<T>& row : rows)
    {
        expectSame(FloatUtil::floor(row._x), row._floor, row._x);
        expectSame(FloatUtil::ceil(row._x), row._ceil, row._x);
        expectSame(FloatUtil::round(row._x), row._round, row._x);
    }
}

// Properties in both precisions; the result is -0 only where the argument is.
template <class T> std::vector<WholeRow<T>> commonWholeRows()
{
    const T tiny = Limits<T>::denorm_min();
    const T infinite = POS_INFINITY<T>;
    const T largest = Limits<T>::max();
    return {
        {T(0.0), T(0.0), T(0.0), T(0.0)},
        {T(-0.0), T(-0.0), T(-0.0), T(0.0)},
        {T(0.25), 0, 1, 0},
        {T(0.5), 0, 1, 1},
        {T(0.75), 0, 1, 1},
        {T(-0.25), -1, 0, 0},
        {T(-0.5), -1, 0, 0},
        {T(-0.75), -1, 0, -1},
        {1, 1, 1, 1},
        {-1, -1, -1, -1},
        {T(1.5), 1, 2, 2},
        {T(-1.5), -2, -1, -1},
        {T(2.5), 2, 3, 3},
        {T(-2.5), -3, -2, -2},
        {T(-2.75), -3, -2, -3},
        {tiny, 0, 1, 0},
        {-tiny, -1, 0, 0},
        {Limits<T>::min(), 0, 1, 0},
        {-Limits<T>::min(), -1, 0, 0},
        {infinite, infinite, infinite, infinite},
        {-infinite, -infinite, -infinite, -infinite},
        {largest, largest, largest, largest},
        {-largest, -largest, -largest, -largest},
        {NO_NUMBER<T>, NO_NUMBER<T>, NO_NUMBER<T>, NO_NUMBER<T>},
    };
}

TEST(FloatUtil, FloorCeilAndRoundOfFloats)
{
    expectWhole(commonWholeRows<float>());
    expectWhole<float>({
        {3e9F, 3e9F, 3e9F, 3e9F},
        {-3e9F, -3e9F, -3e9F, -3e9F},
        {2147483648.0F, 2147483648.0F, 2147483648.0F, 2147483648.0F},
        {-2147483648.0F, -2147483648.0F, -2147483648.0F, -2147483648.0F},
        {2147483520.0F, 2147483520.0F, 2147483520.0F, 2147483520.0F},
        {-2147483904.0F, -2147483904.0F, -2147483904.0F, -2147483904.0F},
        {4194303.5F, 4194303.0F, 4194304.0F, 4194304.0F},
        {-4194303.5F, -4194304.0F, -4194303.0F, -4194303.0F},
        {8388607.0F, 8388607.0F, 8388607.0F, 8388607.0F},
    });
}

TEST(FloatUtil, FloorCeilAndRoundOfDoubles)
{
    expectWhole(commonWholeRows<double>());
    expectWhole<double>({
        {3000000000.5, 3000000000.0, 3000000001.0, 3000000001.0},
        {-3000000000.5, -3000000001.0, -3000000000.0, -3000000000.0},
        {2147483647.5, 2147483647.0, 2147483648.0, 2147483648.0},
        {-2147483648.5, -2147483649.0, -2147483648.0, -2147483648.0},
        {2251799813685247.5, 2251799813685247.0, 2251799813685248.0, 2251799813685248.0},
        {-2251799813685247.5, -2251799813685248.0, -2251799813685247.0, -2251799813685247.0},
        {0x1p63, 0x1p63, 0x1p63, 0x1p63},
        {-0x1p63, -0x1p63, -0x1p63, -0x1p63},
        {0x1.fffffffffffffp62, 0x1.fffffffffffffp62, 0x1.fffffffffffffp62, 0x1.fffffffffffffp62},
        {-0x1.0000000000001p63, -0x1.0000000000001p63, -0x1.0000000000001p63,
         -0x1.0000000000001p63},
        {1e19, 1e19, 1e19, 1e19},
    });
}

TEST(FloatUtil, FloorAndCeilAgreeWithThePlatformExceptForNegativeZero)
{
    forBothSamples(
        [](auto x)
        {
            using T = decltype(x);
            const T floor = FloatUtil::floor(x);
            const T ceil = FloatUtil::ceil(x);
            expectSame(floor, std::floor(x), x);
            // Adding 0 turns -0 into 0 and nothing else.
            expectSame(ceil, x == 0 ? x : std::ceil(x) + T(0.0), x);
            static_assert(std::is_same_v<decltype(FloatUtil::floor(x)), T>);
            static_assert(std::is_same_v<decltype(FloatUtil::ceil(x)), T>);
        });
}

TEST(FloatUtil, RoundIsTheFloorOfHalfMore)
{
    forBothSamples(
        [](auto x)
        {
            using T = decltype(x);
            static_assert(std::is_same_v<decltype(FloatUtil::round(x)), T>);
            expectSame(FloatUtil::round(x), std::floor(x + T(0.5)), x);
        });
}

TEST(FloatUtil, ValuesBeyondTheIntegersComeBackUnchanged)
{
    const auto expectUnchanged = [](auto x)
    {
        EXPECT_EQ(bitsOf(FloatUtil::floor(x)), bitsOf(x)) << x;
        EXPECT_EQ(bitsOf(FloatUtil::ceil(x)), bitsOf(x)) << x;
        EXPECT_EQ(bitsOf(FloatUtil::round(x)), bitsOf(x)) << x;
    };
    std::mt19937_64 random(42);
    std::uniform_real_distribution<float> floats(0x1p31F, Limits<float>::max());
    std::uniform_real_distribution<double> doubles(0x1p63, 1e300);
    for (int i = 0; i < 1000; ++i)
    {
        const float x = floats(random);
        const double y = doubles(random);
        expectUnchanged(x);
        expectUnchanged(-x);
        expectUnchanged(y);
        expectUnchanged(-y);
    }
    expectUnchanged(NO_NUMBER<float>);
    expectUnchanged(NO_NUMBER<double>);
}

// Arguments of all domains, with values at which functions are undefined, poles and NaNs.
template <class T> std::vector<T> arguments()
{
    std::vector<T> all = {T(0.0),          T(-0.0),          1,           -1, 2, -2, T(0.5),
                          POS_INFINITY<T>, -POS_INFINITY<T>, NO_NUMBER<T>};
    std::mt19937 random(43);
    std::uniform_real_distribution<T> unit(-1, 1);
    std::uniform_real_distribution<T> wide(-100, 100);
    for (int i = 0; i < 200; ++i)
    {
        all.push_back(unit(random));
        all.push_back(wide(random));
    }
    return all;
}

template <class T, class Actual, class Expected>
void expectFunctionOf(Actual actual, Expected expected)
{
    static_assert(std::is_same_v<decltype(actual(T())), T>);
    for (const T x : arguments<T>()) expectSame(actual(x), expected(x), x);
}

template <class Actual, class Expected> void expectFunction(Actual actual, Expected expected)
{
    expectFunctionOf<float>(actual, expected);
    expectFunctionOf<double>(actual, expected);
}

template <class T, class Actual, class Expected>
void expectFunctionOfTwo(Actual actual, Expected expected)
{
    static_assert(std::is_same_v<decltype(actual(T(), T())), T>);
    const std::vector<T> all = arguments<T>();
    for (std::size_t i = 0; i < all.size(); i += i < 10 ? 1 : 17)
        for (const T y : all) expectSame(actual(all[i], y), expected(all[i], y), y);
}

template <class Actual, class Expected> void expectBinary(Actual actual, Expected expected)
{
    expectFunctionOfTwo<float>(actual, expected);
    expectFunctionOfTwo<double>(actual, expected);
}

TEST(FloatUtil, FunctionsOfOneArgumentAreThePlatformsOfThatPrecision)
{
    expectFunction([](auto x) { return FloatUtil::sqrt(x); }, [](auto x) { return std::sqrt(x); });
    expectFunction([](auto x) { return FloatUtil::sin(x); }, [](auto x) { return std::sin(x); });
    expectFunction([](auto x) { return FloatUtil::cos(x); }, [](auto x) { return std::cos(x); });
    expectFunction([](auto x) { return FloatUtil::tan(x); }, [](auto x) { return std::tan(x); });
    expectFunction([](auto x) { return FloatUtil::asin(x); }, [](auto x) { return std::asin(x); });
    expectFunction([](auto x) { return FloatUtil::acos(x); }, [](auto x) { return std::acos(x); });
    expectFunction([](auto x) { return FloatUtil::atan(x); }, [](auto x) { return std::atan(x); });
    expectFunction([](auto x) { return FloatUtil::exp(x); }, [](auto x) { return std::exp(x); });
    expectFunction([](auto x) { return FloatUtil::log(x); }, [](auto x) { return std::log(x); });
    expectFunction([](auto x) { return FloatUtil::log10(x); },
                   [](auto x) { return std::log10(x); });
}

TEST(FloatUtil, FunctionsOfTwoArgumentsAreThePlatformsOfThatPrecision)
{
    expectBinary([](auto x, auto y) { return FloatUtil::mod(x, y); },
                 [](auto x, auto y) { return std::fmod(x, y); });
    expectBinary([](auto x, auto y) { return FloatUtil::pow(x, y); },
                 [](auto x, auto y) { return std::pow(x, y); });
    expectBinary([](auto y, auto x) { return FloatUtil::atan2(y, x); },
                 [](auto y, auto x) { return std::atan2(y, x); });
    expectBinary([](auto x, auto y) { return FloatUtil::hypot(x, y); },
                 [](auto x, auto y) { return std::sqrt(x * x + y * y); });
}

TEST(FloatUtil, KnownValuesOfTheFunctions)
{
    EXPECT_EQ(FloatUtil::mod(5.5, 2.0), 1.5);
    EXPECT_EQ(FloatUtil::mod(-5.5F, 2.0F), -1.5F);
    EXPECT_EQ(FloatUtil::pow(2.0, 10.0), 1024.0);
    EXPECT_EQ(FloatUtil::pow(2.0F, -1.0F), 0.5F);
    EXPECT_EQ(FloatUtil::sqrt(9.0), 3.0);
    EXPECT_EQ(FloatUtil::exp(0.0), 1.0);
    EXPECT_EQ(FloatUtil::log(1.0F), 0.0F);
    EXPECT_EQ(FloatUtil::log10(1000.0), 3.0);
    EXPECT_EQ(FloatUtil::cos(0.0F), 1.0F);
    EXPECT_DOUBLE_EQ(FloatUtil::atan2(1.0, 0.0), 1.5707963267948966);
    EXPECT_FLOAT_EQ(FloatUtil::atan2(0.0F, -1.0F), 3.1415927F);
    EXPECT_TRUE(std::isnan(FloatUtil::sqrt(-1.0)));
    EXPECT_TRUE(std::isnan(FloatUtil::acos(2.0F)));
    EXPECT_EQ(FloatUtil::log(0.0), -POS_INFINITY<double>);
}

TEST(FloatUtil, HypotIsNotScaledAgainstOverflow)
{
    EXPECT_EQ(FloatUtil::hypot(3.0F, 4.0F), 5.0F);
    EXPECT_EQ(FloatUtil::hypot(3.0, -4.0), 5.0);
    EXPECT_EQ(FloatUtil::hypot(1e20F, 0.0F), POS_INFINITY<float>);
    EXPECT_EQ(FloatUtil::hypot(1e20, 0.0), 1e20);
    EXPECT_EQ(FloatUtil::hypot(0.0, 1e200), POS_INFINITY<double>);
    EXPECT_EQ(FloatUtil::hypot(1e-30F, 0.0F), 0.0F);
    EXPECT_EQ(FloatUtil::hypot(1e-200, 1e-200), 0.0);
}

template <class T> void expectClasses()
{
    const struct
    {
        T _x;
        bool _isNaN;
        bool _isFinite;
        bool _isInfinite;
    } cases[] = {
        {T(0.0), false, true, false},
        {T(-0.0), false, true, false},
        {1, false, true, false},
        {Limits<T>::denorm_min(), false, true, false},
        {-Limits<T>::denorm_min(), false, true, false},
        {Limits<T>::max(), false, true, false},
        {Limits<T>::lowest(), false, true, false},
        {POS_INFINITY<T>, false, false, true},
        {-POS_INFINITY<T>, false, false, true},
        {NO_NUMBER<T>, true, false, false},
        {-NO_NUMBER<T>, true, false, false},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(FloatUtil::isnan(row._x), row._isNaN) << row._x;
        EXPECT_EQ(FloatUtil::isfinite(row._x), row._isFinite) << row._x;
        EXPECT_EQ(FloatUtil::isinf(row._x), row._isInfinite) << row._x;
    }
}

TEST(FloatUtil, ClassesOfNumbers)
{
    expectClasses<float>();
    expectClasses<double>();
}

TEST(FloatUtil, SmoothStepIsACubicBetweenTheEdges)
{
    const float nan = NO_NUMBER<float>;
    const float infinite = POS_INFINITY<float>;
    const struct
    {
        float _edge0;
        float _edge1;
        float _x;
        float _low;
        float _high;
        float _result;
    } cases[] = {
        {0, 1, -1, 2, 10, 2},
        {0, 1, 0, 2, 10, 2},
        {0, 1, 0.25F, 2, 10, 3.25F},
        {0, 1, 0.5F, 2, 10, 6},
        {0, 1, 0.75F, 2, 10, 8.75F},
        {0, 1, 1, 2, 10, 10},
        {0, 1, 2, 2, 10, 10},
        {-4, 4, -2, 0, 1, 0.15625F},
        {4, 8, 5, 10, 2, 8.75F},
        {0, 1, -infinite, 2, 10, 2},
        {0, 1, infinite, 2, 10, 10},
        {0, 1, nan, 2, 10, 2},
        {nan, 1, 0.5F, 2, 10, 2},
        {0, nan, 0.5F, 2, 10, nan},
        // Edges that coincide make a step, and those in reverse order never meet the curve.
        {1, 1, 0.5F, 2, 10, 2},
        {1, 1, 1, 2, 10, 10},
        {1, 0, 0.5F, 2, 10, 2},
        {1, 0, 2, 2, 10, 10},
    };
    for (const auto& row : cases)
        expectSame(FloatUtil::smoothStep(row._edge0, row._edge1, row._x, row._low, row._high),
                   row._result, row._x);
    static_assert(std::is_same_v<decltype(FloatUtil::smoothStep(0, 1, 0, 0, 1)), float>);
}

TEST(FloatUtil, AnglesAreConvertedByTwoProducts)
{
    const struct
    {
        float _float;
        std::uint32_t _degreesOfFloat;
        std::uint32_t _radiansOfFloat;
        double _double;
        std::uint64_t _degreesOfDouble;
        std::uint64_t _radiansOfDouble;
    } cases[] = {
        {1.0F, 0x42652EE0, 0x3C8EFA36, 1.0, 0x404CA5DC1A63C1F8, 0x3F91DF46A2529D39},
        {2.5F, 0x430F3D4C, 0x3D32B8C3, 2.5, 0x4061E7A9907E593B, 0x3FA657184AE74487},
        {0.1F, 0x40B758B3, 0x3AE4C389, 0.1, 0x4016EB167B830193, 0x3F5C987103B761F5},
        {1000.0F, 0x475FCFC7, 0x418BA058, 1000.0, 0x40EBF9F8F1C56B6C, 0x4031740AFA84AD89},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(bitsOf(FloatUtil::radiansToDegrees(row._float)), row._degreesOfFloat);
        EXPECT_EQ(bitsOf(FloatUtil::degreesToRadians(row._float)), row._radiansOfFloat);
        EXPECT_EQ(bitsOf(FloatUtil::radiansToDegrees(row._double)), row._degreesOfDouble);
        EXPECT_EQ(bitsOf(FloatUtil::degreesToRadians(row._double)), row._radiansOfDouble);
    }
    forSamples<float>(
        [](float x)
        {
            expectSame(FloatUtil::radiansToDegrees(x), x * 180.0F * 0.31830987F, x);
            expectSame(FloatUtil::degreesToRadians(x), x * 3.1415927F * 0.0055555557F, x);
        });
    forSamples<double>(
        [](double x)
        {
            expectSame(FloatUtil::radiansToDegrees(x), x * 180.0 * 0.3183098861837907, x);
            expectSame(FloatUtil::degreesToRadians(x), x * 3.141592653589793 * 0.005555555555555556,
                       x);
        });
}

TEST(FloatUtil, TheFirstProductOfAConversionCanOverflow)
{
    EXPECT_EQ(FloatUtil::radiansToDegrees(3e36F), POS_INFINITY<float>);
    EXPECT_EQ(FloatUtil::degreesToRadians(-2e38F), -POS_INFINITY<float>);
    EXPECT_EQ(FloatUtil::radiansToDegrees(1.5e306), POS_INFINITY<double>);
    EXPECT_EQ(FloatUtil::degreesToRadians(-1e308), -POS_INFINITY<double>);
}

template <class T> struct CompareRow
{
    T _a;
    T _b;
    T _eps;
    bool _isEqual;
    bool _isGreater;
    bool _isGreaterEqual;
    bool _isSmaller;
    bool _isSmallerEqual;
};

template <class T> void expectComparisons()
{
    const T infinite = POS_INFINITY<T>;
    const T nan = NO_NUMBER<T>;
    const T ulp = Limits<T>::epsilon();
    const T q = T(0.25);
    const CompareRow<T> rows[] = {
        {1, 1, q, true, false, true, false, true},
        {T(-0.0), T(0.0), q, true, false, true, false, true},
        // The tolerance itself is outside, and one unit less is inside.
        {T(1.25), 1, q, false, false, true, false, false},
        {1, T(1.25), q, false, false, false, false, true},
        {T(1.25) - ulp, 1, q, true, false, true, false, true},
        {T(1.25) + ulp, 1, q, false, true, true, false, false},
        {1, T(1.25) - ulp, q, true, false, true, false, true},
        {1, T(1.25) + ulp, q, false, false, false, true, true},
        {2, 1, q, false, true, true, false, false},
        {1, 2, q, false, false, false, true, true},
        {-2, -1, q, false, false, false, true, true},
        {-1, -2, q, false, true, true, false, false},
        // With no tolerance nothing is equal.
        {1, 1, 0, false, false, false, false, false},
        {1 + ulp, 1, 0, false, true, true, false, false},
        {1, 1 + ulp, 0, false, false, false, true, true},
        {nan, 1, q, true, false, false, true, true},
        {1, nan, q, true, false, false, true, true},
        {nan, nan, q, true, false, false, true, true},
        {1, 1, nan, true, false, false, true, true},
        {infinite, 1, q, false, true, true, false, false},
        {1, infinite, q, false, false, false, true, true},
        {-infinite, infinite, q, false, false, false, true, true},
        // The difference of infinities is a NaN, and the bounds are infinite.
        {infinite, infinite, q, true, false, false, false, false},
        {-infinite, -infinite, q, true, false, false, false, false},
    };
    for (const CompareRow<T>& row : rows)
    {
        const T a = row._a;
        const T b = row._b;
        const T eps = row._eps;
        SCOPED_TRACE(testing::Message() << a << " and " << b << " by " << eps);
        EXPECT_EQ(FloatUtil::isEqual(a, b, eps), row._isEqual);
        EXPECT_EQ(FloatUtil::isGreater(a, b, eps), row._isGreater);
        EXPECT_EQ(FloatUtil::isGreaterEqual(a, b, eps), row._isGreaterEqual);
        EXPECT_EQ(FloatUtil::isSmaller(a, b, eps), row._isSmaller);
        EXPECT_EQ(FloatUtil::isSmallerEqual(a, b, eps), row._isSmallerEqual);
    }
}

TEST(FloatUtil, ComparisonsAreStrictAndTreatNaNsByTheirPhrasing)
{
    expectComparisons<float>();
    expectComparisons<double>();
}

template <class T> void expectDefaultTolerance(T eps)
{
    const T less = std::nextafter(eps, T(0));
    const T more = std::nextafter(eps, T(1));
    EXPECT_TRUE(FloatUtil::isEqual(less, T(0)));
    EXPECT_FALSE(FloatUtil::isEqual(eps, T(0)));
    EXPECT_TRUE(FloatUtil::isEqual(-less, T(0)));
    EXPECT_FALSE(FloatUtil::isEqual(-eps, T(0)));
    EXPECT_FALSE(FloatUtil::isGreater(eps, T(0)));
    EXPECT_TRUE(FloatUtil::isGreater(more, T(0)));
    EXPECT_FALSE(FloatUtil::isGreaterEqual(-eps, T(0)));
    EXPECT_TRUE(FloatUtil::isGreaterEqual(-less, T(0)));
    EXPECT_FALSE(FloatUtil::isSmaller(-eps, T(0)));
    EXPECT_TRUE(FloatUtil::isSmaller(-more, T(0)));
    EXPECT_FALSE(FloatUtil::isSmallerEqual(eps, T(0)));
    EXPECT_TRUE(FloatUtil::isSmallerEqual(less, T(0)));

    EXPECT_FALSE(FloatUtil::isEqual(T(1), T(1) + eps, eps));
    EXPECT_FALSE(FloatUtil::isEqual(T(1), T(1) + eps));
    const T nan = NO_NUMBER<T>;
    EXPECT_TRUE(FloatUtil::isEqual(nan, T(1)));
    EXPECT_FALSE(FloatUtil::isGreater(nan, T(1)));
    EXPECT_FALSE(FloatUtil::isGreaterEqual(nan, T(1)));
    EXPECT_TRUE(FloatUtil::isSmaller(nan, T(1)));
    EXPECT_TRUE(FloatUtil::isSmallerEqual(nan, T(1)));
}

TEST(FloatUtil, WithoutAToleranceTheDefaultOneHolds)
{
    expectDefaultTolerance(0.0001F);
    expectDefaultTolerance(1e-7);
}

TEST(FloatUtil, NumbersOfOtherTypesFollowTheFloatingPointOne)
{
    const double both = 1.5;
    const float single = 5.5F;
    EXPECT_EQ(FloatUtil::pow(both, 2), 2.25);
    EXPECT_EQ(FloatUtil::mod(single, 2), 1.5F);
    EXPECT_TRUE(FloatUtil::isGreater(both, 1));
    static_assert(std::is_same_v<decltype(FloatUtil::mod(single, 2)), float>);
}

} // namespace
